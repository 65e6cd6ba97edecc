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

TEST(ComponentMasks, FiveBitsEachWithoutBitFields) {
  const PixelMasks masks = MasksOf(BI_RGB, 1, 2, 3);
  for (uint32_t x = 0; x < 32; ++x) {
    const uint8_t expected = static_cast<uint8_t>(x * 8 + x / 4);
    EXPECT_EQ(masks.component[0].Extract(x << 10), expected);
    EXPECT_EQ(masks.component[1].Extract(x << 5), expected);
    EXPECT_EQ(masks.component[2].Extract(x), expected);
  }
  EXPECT_EQ(masks.component[0].Extract(0x83FF), 0);
}

TEST(ComponentMasks, FiveSixFive) {
  const PixelMasks masks = MasksOf(BI_BITFIELDS, 0xF800, 0x07E0, 0x001F);
  EXPECT_EQ(masks.component[0].up, 0u);
  EXPECT_EQ(masks.component[1].up, 5u);
  EXPECT_EQ(masks.component[2].up, 11u);
  EXPECT_EQ(masks.component[0].fill, 5u);
  EXPECT_EQ(masks.component[1].fill, 6u);
  EXPECT_EQ(masks.component[2].fill, 5u);
  EXPECT_EQ(masks.component[1].Extract(0x07E0), 255);
  EXPECT_EQ(masks.component[1].Extract(0x0020), 4);
}

struct Case {
  const char* name;
  uint32_t mask;
  uint32_t pixel;
  uint8_t expected;
};

TEST(ComponentMasks, DegenerateMasks) {
  constexpr Case kCases[] = {
      {"no bits", 0x0000, 0xFFFF, 0},
      {"lowest bit alone", 0x0001, 0xFFFF, 0},
      {"highest bit alone", 0x8000, 0xFFFF, 0},
      {"all sixteen", 0xFFFF, 0xABCD, 0xAB},
      {"low byte", 0x00FF, 0xABCD, 0xCD},
      {"upper half of the header's mask is cut", 0xFFFF001F, 0x001F, 0xFF},
      {"two bits", 0x0003, 0x0003, 0xC0 + 0x30},
  };
  for (const Case& c : kCases) {
    EXPECT_EQ(MasksOf(BI_BITFIELDS, c.mask, 0, 0).component[0].Extract(c.pixel), c.expected) << c.name;
  }
}

}  // namespace
}  // namespace qnv
