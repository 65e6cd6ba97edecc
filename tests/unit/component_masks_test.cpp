// The components of 16-bit pixels: five bits each, other fields, and masks that are none.
#include <gtest/gtest.h>

#include <cstring>

#include "image/color_tables.h"

namespace qnv {
namespace {

PixelMasks MasksOf(uint32_t compression, uint32_t red, uint32_t green, uint32_t blue) {
  uint8_t info[52] = {};
  const uint32_t masks[3] = {red, green, blue};
  std::memcpy(info + 40, masks, sizeof masks);
  Dib dib{};
  dib.compression = compression;
  dib.bitCount = 16;
  dib.info = info;
  return MakePixelMasks(dib, PixelTarget::kSource24);
}

// The field's own high bits fill what eight bits have more.
uint8_t Widened(uint32_t pixel, uint32_t lowest, uint32_t bits) {
  const uint32_t field = pixel >> lowest & ((1u << bits) - 1);
  return static_cast<uint8_t>(field << (8 - bits) | field >> (2 * bits - 8));
}

TEST(ComponentMasks, FieldsOfEveryPixel) {
  const PixelMasks five = MasksOf(BI_RGB, 1, 2, 3);  // masks that nobody reads
  const PixelMasks six = MasksOf(BI_BITFIELDS, 0xF800, 0x07E0, 0x001F);
  for (uint32_t pixel = 0; pixel <= 0xFFFF; ++pixel) {
    ASSERT_EQ(five.component[0].Extract(pixel), Widened(pixel, 10, 5)) << pixel;
    ASSERT_EQ(five.component[1].Extract(pixel), Widened(pixel, 5, 5)) << pixel;
    ASSERT_EQ(five.component[2].Extract(pixel), Widened(pixel, 0, 5)) << pixel;
    ASSERT_EQ(six.component[0].Extract(pixel), Widened(pixel, 11, 5)) << pixel;
    ASSERT_EQ(six.component[1].Extract(pixel), Widened(pixel, 5, 6)) << pixel;
    ASSERT_EQ(six.component[2].Extract(pixel), Widened(pixel, 0, 5)) << pixel;
  }
}

TEST(ComponentMasks, DegenerateMasks) {
  constexpr struct {
    const char* name;
    uint32_t mask, pixel;
    uint8_t expected;
  } kCases[] = {
      {"no bits", 0x0000, 0xFFFF, 0},
      {"lowest bit alone", 0x0001, 0xFFFF, 0},
      {"highest bit alone", 0x8000, 0xFFFF, 0},
      {"all sixteen", 0xFFFF, 0xABCD, 0xAB},
      {"low byte", 0x00FF, 0xABCD, 0xCD},
      {"upper half of the header's mask is cut", 0xFFFF001F, 0x001F, 0xFF},
      {"two bits", 0x0003, 0x0003, 0xC0 + 0x30},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(MasksOf(BI_BITFIELDS, c.mask, 0, 0).component[0].Extract(c.pixel), c.expected) << c.name;
  }
}

}  // namespace
}  // namespace qnv
