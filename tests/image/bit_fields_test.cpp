// 16 and 32 bits a pixel: masks, shifts and how a component fills its byte.
#include <gtest/gtest.h>

#include "image/dib_builder.h"

namespace qnv::test {
namespace {

struct PixelCase {
  const char* name;
  uint32_t masks[3];  // red, green, blue; all 0: no masks, the default layout
  uint32_t pixel;
  uint32_t red, green, blue;
};

Dib OnePixel(uint16_t bitCount, bool withMasks, const uint32_t (&masks)[3], uint32_t pixel, uint32_t headerSize) {
  std::vector<uint8_t> info =
      DibInfo(1, 1, {.bitCount = bitCount, .compression = withMasks ? BI_BITFIELDS : BI_RGB, .headerSize = headerSize});
  if (withMasks) {
    // The masks lie at byte 40, however long the header says it is.
    info.resize(std::max<std::size_t>(info.size(), 52));
    std::vector<uint8_t> bytes;
    for (uint32_t mask : masks) Append32(bytes, mask);
    std::copy(bytes.begin(), bytes.end(), info.begin() + 40);
  }
  std::vector<uint8_t> bits;
  AppendDibRow(bits, {pixel}, bitCount);
  return Dib(info, bits);
}

void RunPixelCases(uint16_t bitCount, bool withMasks, const std::vector<PixelCase>& cases) {
  for (const PixelCase& c : cases) {
    for (uint32_t headerSize : {40u, 108u, 124u, 12u}) {
      for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
        TestDevice device({.bitsPerPixel = bandDepth, .width = 1, .height = 1});
        const Dib dib = OnePixel(bitCount, withMasks, c.masks, c.pixel, headerSize);
        EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 1, 1, 0, 0, 1, 1})) << c.name;
        const uint32_t colour = c.blue << 16 | c.green << 8 | c.red;
        EXPECT_TRUE(BandIs(device, {{'x', Physical(device, colour)}}, "x"))
            << c.name << ", header of " << headerSize << ", " << bandDepth << "-bit band";
      }
    }
  }
}

TEST(BitFields, DefaultSixteenBits) {
  RunPixelCases(16, false,
                {
                    {"white", {}, 0x7FFF, 255, 255, 255},
                    {"the top bit is not read", {}, 0x8000, 0, 0, 0},
                    {"blue", {}, 0x001F, 0, 0, 255},
                    {"green", {}, 0x03E0, 0, 255, 0},
                    {"red", {}, 0x7C00, 255, 0, 0},
                    {"one step each", {}, 0x0421, 8, 8, 8},
                    {"half", {}, 0x4210, 132, 132, 132},
                    {"different steps", {}, 1 << 10 | 17 << 5 | 30, 8, 140, 247},
                });
}

// A 5-bit x becomes 8 x + x / 4.
TEST(BitFields, EveryFiveBitLevel) {
  for (uint32_t x = 0; x < 32; ++x) {
    RunPixelCases(16, false, {{"gray ramp", {}, x << 10 | x << 5 | x, 8 * x + x / 4, 8 * x + x / 4, 8 * x + x / 4}});
  }
}

// A 6-bit x becomes 4 x + x / 16.
TEST(BitFields, EverySixBitLevel) {
  for (uint32_t x = 0; x < 64; ++x) {
    RunPixelCases(16, true, {{"5-6-5", {0xF800, 0x07E0, 0x001F}, x << 5, 0, 4 * x + x / 16, 0}});
  }
}

TEST(BitFields, SixteenBitMasks) {
  RunPixelCases(
      16, true,
      {
          {"5-6-5 white", {0xF800, 0x07E0, 0x001F}, 0xFFFF, 255, 255, 255},
          {"5-6-5 red", {0xF800, 0x07E0, 0x001F}, 0xF800, 255, 0, 0},
          {"5-6-5 blue", {0xF800, 0x07E0, 0x001F}, 0x001F, 0, 0, 255},
          {"5-5-5 given", {0x7C00, 0x03E0, 0x001F}, 0xC210, 132, 132, 132},
          {"red and blue exchanged", {0x001F, 0x07E0, 0xF800}, 0xF800, 0, 0, 255},
          {"4-4-4", {0x0F00, 0x00F0, 0x000F}, 0xF5A1, 0x55, 0xAA, 0x11},
          {"4-4-4 in the top bits", {0xF000, 0x0F00, 0x00F0}, 0x5A1F, 0x55, 0xAA, 0x11},
          {"8 bits of green", {0x0000, 0xFF00, 0x00FF}, 0xC35A, 0, 0xC3, 0x5A},
          // Up shift 14, fill shift 2: a 2-bit x becomes 64 x + 16 x.
          {"2 bits", {0x0003, 0x000C, 0x0030}, 0x002D, 80, 240, 160},
          // A single bit is shifted just past its byte.
          {"1 bit", {0x0002, 0x0004, 0x8000}, 0xFFFF, 0, 0, 0},
          {"1 bit, the lowest", {0x0001, 0x0001, 0x0001}, 0xFFFF, 0, 0, 0},
          {"no mask, no component", {0, 0, 0x001F}, 0xFFFF, 0, 0, 255},
          {"only the low 16 bits of a mask count", {0x12340F00, 0xFFFF00F0, 0x8000000F}, 0x05A1, 0x55, 0xAA, 0x11},
      });
}

// 32-bit pixels have one layout; masks are not looked at, and the top byte never.
TEST(BitFields, ThirtyTwoBits) {
  const std::vector<PixelCase> cases = {
      {"components", {0, 0, 0}, 0x80102030, 0x10, 0x20, 0x30},
      {"white", {0, 0, 0}, 0x00FFFFFF, 255, 255, 255},
      {"top byte alone", {0, 0, 0}, 0xFF000000, 0, 0, 0},
      {"with the usual masks", {0xFF0000, 0xFF00, 0xFF}, 0x80102030, 0x10, 0x20, 0x30},
      {"with masks that say otherwise", {0xFF, 0xFF00, 0xFF0000}, 0x80102030, 0x10, 0x20, 0x30},
  };
  RunPixelCases(32, false, {cases.begin(), cases.begin() + 3});
  RunPixelCases(32, true, cases);
}

}  // namespace
}  // namespace qnv::test
