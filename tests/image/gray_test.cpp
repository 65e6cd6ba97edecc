// Images on a gray band: weights 30, 59 and 11 of red, green and blue, truncated.
#include <gtest/gtest.h>

#include "image/dib_builder.h"

namespace qnv::test {
namespace {

struct GrayCase {
  const char* name;
  uint32_t red, green, blue;
  uint32_t gray;
};

const GrayCase kCases[] = {
    {"blue", 0, 0, 255, 28},       {"green", 0, 255, 0, 150},    {"red", 255, 0, 0, 76},
    {"white", 255, 255, 255, 255}, {"black", 0, 0, 0, 0},        {"truncated, not rounded", 0, 1, 3, 0},
    {"just below", 3, 0, 0, 0},    {"just reached", 2, 0, 4, 1}, {"yellow", 255, 255, 0, 226},
    {"magenta", 255, 0, 255, 104}, {"cyan", 0, 255, 255, 178},   {"gray stays", 137, 137, 137, 137},
};

Dib OnePixel(uint16_t bitCount, const GrayCase& c) {
  const uint32_t colour = c.blue << 16 | c.green << 8 | c.red;
  const uint32_t pixel = bitCount > 8 ? c.red << 16 | c.green << 8 | c.blue : 1;
  std::vector<uint32_t> table;
  if (bitCount <= 8) table = {0x5A5A5A, colour};
  std::vector<uint8_t> bits;
  AppendDibRow(bits, {pixel}, bitCount);
  return Dib(DibInfo(1, 1, {.bitCount = bitCount, .coloursUsed = bitCount <= 8 ? 2u : 0u}, table), bits);
}

TEST(GrayImages, EveryDepth) {
  for (const GrayCase& c : kCases) {
    for (uint16_t depth : {uint16_t{1}, uint16_t{4}, uint16_t{8}, uint16_t{24}, uint16_t{32}}) {
      for (uint32_t rop : {SRCCOPY, 0x00CC0021u}) {
        TestDevice device({.bitsPerPixel = 8, .width = 5, .height = 1});
        EXPECT_EQ(1u, Stretch(device, OnePixel(depth, c), {1, 0, 3, 1, 0, 0, 1, 1}, {.rop = rop})) << c.name;
        EXPECT_TRUE(BandIs(device, {{'g', Gray(c.gray)}}, ".ggg.")) << c.name << ", " << depth << " bits";
      }
    }
  }
}

// 16 bits: the filled-up components are weighed.
TEST(GrayImages, SixteenBits) {
  struct Case {
    uint32_t pixel;
    uint32_t gray;
  };
  const Case cases[] = {{0x7FFF, 255}, {0x001F, 28}, {0x03E0, 150}, {0x7C00, 76}, {0x4210, 132}, {0x0421, 8}};
  for (const Case& c : cases) {
    TestDevice device({.bitsPerPixel = 8, .width = 3, .height = 1});
    std::vector<uint8_t> bits;
    AppendDibRow(bits, {c.pixel}, 16);
    const Dib dib(DibInfo(1, 1, {.bitCount = 16}), bits);
    EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 2, 1, 0, 0, 1, 1}));
    EXPECT_TRUE(BandIs(device, {{'g', Gray(c.gray)}}, "gg.")) << std::hex << c.pixel;
  }
}

}  // namespace
}  // namespace qnv::test
