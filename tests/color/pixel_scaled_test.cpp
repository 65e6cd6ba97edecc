// Single pixels on the resolution-mapping device: clipped at page resolution, stored at band resolution, and in gray
// mode turned gray where they lie.
#include <gtest/gtest.h>

#include <string>

#include "support/plane_image.h"
#include "support/test_device.h"
#include "support/transfer_model.h"

namespace qnv::test {
namespace {

DRAWMODE ModeOf(uint16_t rop2) {
  DRAWMODE mode = MakeDrawMode();
  mode.Rop2 = static_cast<int16_t>(rop2);
  return mode;
}

// The three bytes of a band pixel after it was turned gray: its first byte has the weight of red.
PixelBytes Grayed(const PixelBytes& bytes) {
  const uint8_t level = static_cast<uint8_t>((bytes[0] * 30 + bytes[1] * 59 + bytes[2] * 11) / 100);
  return {level, level, level};
}

struct ClipCase {
  const char* name;
  int32_t x;
  int32_t y;
  BandRect clip;
  bool inside;
  int32_t column;
  int32_t row;
};

// Half the resolution, band of 6 x 4 at (10, 20), origin (2, 4).
constexpr ClipCase kClips[] = {
    {"top left of the band", 18, 36, kEverywhere, true, 0, 0},
    {"rounds up into the band", 17, 35, kEverywhere, true, 0, 0},    // 19 / 2 and 39 / 2
    {"rounds up below the band", 28, 43, kEverywhere, false, 0, 0},  // 47 / 2 is 24
    {"last column and row", 28, 42, kEverywhere, true, 5, 3},
    {"left of the band", 16, 36, kEverywhere, false, 0, 0},
    {"clip of this page pixel", 20, 38, {20, 38, 21, 39}, true, 1, 1},
    {"clip ends before its column", 20, 38, {0, 0, 20, 100}, false, 0, 0},
    {"clip begins after its column", 20, 38, {21, 0, 100, 100}, false, 0, 0},
    {"clip ends above its row", 20, 38, {0, 0, 100, 38}, false, 0, 0},
    {"clip begins below its row", 20, 38, {0, 39, 100, 100}, false, 0, 0},
    // The neighbour that shares the band pixel lies in the clip, this one does not.
    {"clip is not widened to band pixels", 20, 38, {19, 37, 20, 38}, false, 0, 0},
};

TEST(PixelScaled, ClippedBeforeScaling) {
  for (const ClipCase& c : kClips) {
    SCOPED_TRACE(c.name);
    ScaledDevice device({.width = 6, .height = 4, .resolutionA = 720, .resolutionB = 360, .left = 10, .top = 20});
    device.SetOrigin(2, 4);
    PlaneImage expected = BandImage(device);
    const DRAWMODE mode = ModeOf(R2_COPYPEN);
    EXPECT_EQ(0u, QNVPixel(device.handle(), c.x, c.y, 0x00010203, &mode, &c.clip));
    if (c.inside) expected.Set(c.column, c.row, {1, 2, 3});
    EXPECT_TRUE(BandShows(device, expected));
    EXPECT_EQ(c.inside ? 0x00030201u : 0u, QNVPixel(device.handle(), c.x, c.y, 0, nullptr, &c.clip)) << "read";
  }
}

TEST(PixelScaled, EveryBinaryOperationInColor) {
  for (uint16_t bits : {uint16_t{24}, uint16_t{8}}) {
    for (uint16_t code = 0; code <= 17; ++code) {
      SCOPED_TRACE("code " + std::to_string(code) + ", " + std::to_string(bits) + " bits");
      ScaledDevice device({.bitsPerPixel = bits, .width = 5, .height = 3});
      PlaneImage expected = BandImage(device);
      expected.Set(4, 2, {0xAA, 0x0A, 0xA0});
      LoadBand(&device, expected);
      const DRAWMODE mode = ModeOf(code);
      EXPECT_EQ(0u, QNVPixel(device.handle(), 4, 2, 0x00CCC00C, &mode, &kEverywhere));
      // A binary operation is the ternary one that has the pen as its source.
      const uint8_t index = static_cast<uint8_t>(((code - 1) & 15) * 0x11);
      expected.Set(4, 2,
                   {Rop3Byte(index, 0, 0xCC, 0xAA), Rop3Byte(index, 0, 0xC0, 0x0A), Rop3Byte(index, 0, 0x0C, 0xA0)});
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

TEST(PixelScaled, GrayModeGraysEveryPixelItWrites) {
  for (uint16_t code = 0; code <= 17; ++code) {
    SCOPED_TRACE(code);
    ScaledDevice device({.bitsPerPixel = 0, .width = 4, .height = 2});
    PlaneImage expected = BandImage(device);
    expected.Set(3, 1, {0xAA, 0x0A, 0xA0});
    LoadBand(&device, expected);
    const DRAWMODE mode = ModeOf(code);
    EXPECT_EQ(0u, QNVPixel(device.handle(), 3, 1, 0x00CCC00C, &mode, &kEverywhere));
    const uint8_t index = static_cast<uint8_t>(((code - 1) & 15) * 0x11);
    expected.Set(
        3, 1, Grayed({Rop3Byte(index, 0, 0xCC, 0xAA), Rop3Byte(index, 0, 0xC0, 0x0A), Rop3Byte(index, 0, 0x0C, 0xA0)}));
    EXPECT_TRUE(BandShows(device, expected));
  }
}

struct GrayCase {
  const char* name;
  uint32_t color;
  uint8_t level;
};

// A color that the host has not converted: blue, first in memory, has the weight of red.
constexpr GrayCase kGrays[] = {
    {"red", 0x000000FF, 28},
    {"green", 0x0000FF00, 150},
    {"blue", 0x00FF0000, 76},
    {"white", 0x00FFFFFF, 255},
    {"black", 0, 0},
    {"a gray", 0x00808080, 128},
    {"truncated", 0x00010000, 0},
    {"mixed", 0x00102030, 28},  // (16 * 30 + 32 * 59 + 48 * 11) / 100
};

TEST(PixelScaled, GrayLevels) {
  for (const GrayCase& c : kGrays) {
    SCOPED_TRACE(c.name);
    ScaledDevice device({.bitsPerPixel = 0, .width = 4, .height = 2});
    PlaneImage expected = BandImage(device);
    const DRAWMODE mode = ModeOf(R2_COPYPEN);
    EXPECT_EQ(0u, QNVPixel(device.handle(), 2, 1, c.color, &mode, &kEverywhere));
    expected.Set(2, 1, {c.level, c.level, c.level});
    EXPECT_TRUE(BandShows(device, expected));
    EXPECT_EQ(c.level * 0x010101u, QNVPixel(device.handle(), 2, 1, 0, nullptr, &kEverywhere));
  }
}

TEST(PixelScaled, GrayModeReadsWithoutGraying) {
  ScaledDevice device({.bitsPerPixel = 0, .width = 4, .height = 2});
  PlaneImage band = BandImage(device);
  band.Set(3, 1, {0x11, 0x22, 0x33});
  LoadBand(&device, band);
  EXPECT_EQ(0x00332211u, QNVPixel(device.handle(), 3, 1, 0, nullptr, &kEverywhere));
  EXPECT_TRUE(BandShows(device, band));
}

TEST(PixelScaled, NullClipIsRefused) {
  ScaledDevice device({.width = 6, .height = 4});
  const PlaneImage before = BandImage(device);
  const DRAWMODE mode = ModeOf(R2_COPYPEN);
  EXPECT_EQ(0u, QNVPixel(device.handle(), 1, 1, 0x00070707, &mode, nullptr));
  EXPECT_EQ(0u, QNVPixel(device.handle(), 1, 1, 0, nullptr, nullptr));
  EXPECT_TRUE(BandShows(device, before));
}

}  // namespace
}  // namespace qnv::test
