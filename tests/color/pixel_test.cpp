// Single pixels on plain devices: reading, all binary raster operations, clipping.
#include <gtest/gtest.h>

#include <string>

#include "support/plane_image.h"
#include "support/random_bytes.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

DRAWMODE ModeOf(uint16_t rop2) {
  DRAWMODE mode = MakeDrawMode();
  mode.Rop2 = static_cast<int16_t>(rop2);
  return mode;
}

TEST(Pixel, ReadsTheBandsOwnByteOrder) {
  TestDevice device({.width = 4, .height = 2});
  PlaneImage band = BandImage(device);
  band.Set(2, 1, {0x11, 0x22, 0x33});
  band.Set(3, 1, {0xA1, 0xB2, 0xC3});  // the last bytes of the band: no fourth one may be fetched
  LoadBand(&device, band);
  EXPECT_EQ(0x00332211u, QNVPixel(device.handle(), 2, 1, 0x12345678, nullptr, &kEverywhere));
  EXPECT_EQ(0x00C3B2A1u, QNVPixel(device.handle(), 3, 1, 0, nullptr, &kEverywhere));
  EXPECT_TRUE(BandShows(device, band)) << "reading writes nothing";
}

TEST(Pixel, ReadsGrayIntoThreeBytes) {
  TestDevice device({.bitsPerPixel = 8, .width = 4, .height = 2});
  PlaneImage band = BandImage(device);
  band.Set(3, 1, {0x5A, 0, 0});
  LoadBand(&device, band);
  EXPECT_EQ(0x005A5A5Au, QNVPixel(device.handle(), 3, 1, 0, nullptr, &kEverywhere));
  EXPECT_TRUE(BandShows(device, band));
}

// What is written in one order is read in the other.
TEST(Pixel, WritesTheHighByteFirst) {
  TestDevice device({.width = 4, .height = 2});
  PlaneImage expected = BandImage(device);
  const DRAWMODE mode = ModeOf(R2_COPYPEN);
  EXPECT_EQ(0u, QNVPixel(device.handle(), 3, 1, 0x00332211, &mode, &kEverywhere));
  expected.Set(3, 1, {0x33, 0x22, 0x11});
  EXPECT_TRUE(BandShows(device, expected));
  EXPECT_EQ(0x00112233u, QNVPixel(device.handle(), 3, 1, 0, nullptr, &kEverywhere));
}

TEST(Pixel, GrayTakesTheLowByte) {
  TestDevice device({.bitsPerPixel = 8, .width = 4, .height = 2});
  PlaneImage expected = BandImage(device);
  const DRAWMODE mode = ModeOf(R2_COPYPEN);
  EXPECT_EQ(0u, QNVPixel(device.handle(), 3, 1, 0xAA332211, &mode, &kEverywhere));
  expected.Set(3, 1, {0x11, 0, 0});
  EXPECT_TRUE(BandShows(device, expected));
}

// With d = 1010 and s = 1100 a code's result is the code less one, bit by bit; here in both halves of the byte.
struct Rop2Case {
  const char* name;
  uint16_t code;
  uint8_t result;  // of d = 0xAA, s = 0xCC
};

constexpr Rop2Case kRop2[] = {
    {"R2_BLACK", 1, 0x00},
    {"R2_NOTMERGEPEN", 2, 0x11},
    {"R2_MASKNOTPEN", 3, 0x22},
    {"R2_NOTCOPYPEN", 4, 0x33},
    {"R2_MASKPENNOT", 5, 0x44},
    {"R2_NOT", 6, 0x55},
    {"R2_XORPEN", 7, 0x66},
    {"R2_NOTMASKPEN", 8, 0x77},
    {"R2_MASKPEN", 9, 0x88},
    {"R2_NOTXORPEN", 10, 0x99},
    {"R2_NOP", 11, 0xAA},
    {"R2_MERGENOTPEN", 12, 0xBB},
    {"R2_COPYPEN", 13, 0xCC},
    {"R2_MERGEPENNOT", 14, 0xDD},
    {"R2_MERGEPEN", 15, 0xEE},
    {"R2_WHITE", 16, 0xFF},
    // Codes outside the numbering count with the low four bits of the code less one.
    {"0", 0, 0xFF},
    {"17", 17, 0x00},
    {"29", 29, 0xCC},
    {"0x010D", 0x010D, 0xCC},
    {"0xFFFF", 0xFFFF, 0xEE},
    {"0x8000", 0x8000, 0xFF},
};

TEST(Pixel, EveryBinaryOperation) {
  for (uint16_t bits : {uint16_t{24}, uint16_t{8}}) {
    for (const Rop2Case& c : kRop2) {
      SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(bits) + " bits");
      TestDevice device({.bitsPerPixel = bits, .width = 5, .height = 3});
      PlaneImage expected = BandImage(device);
      expected.Set(2, 1, {0xAA, 0xAA, 0xAA});
      LoadBand(&device, expected);
      const DRAWMODE mode = ModeOf(c.code);
      EXPECT_EQ(0u, QNVPixel(device.handle(), 2, 1, 0x00CCCCCC, &mode, &kEverywhere));
      expected.Set(2, 1, {c.result, c.result, c.result});
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

// Each byte of a pixel meets its own byte of the color.
TEST(Pixel, OperationsActByteByByte) {
  TestDevice device({.width = 4, .height = 1});
  PlaneImage expected = BandImage(device);
  expected.Set(1, 0, {0x0F, 0x55, 0xF0});
  LoadBand(&device, expected);
  const DRAWMODE exclusive = ModeOf(R2_XORPEN);
  QNVPixel(device.handle(), 1, 0, 0x00FF0F33, &exclusive, &kEverywhere);
  expected.Set(1, 0, {0xF0, 0x5A, 0xC3});
  EXPECT_TRUE(BandShows(device, expected));
  const DRAWMODE maskNot = ModeOf(R2_MASKNOTPEN);
  QNVPixel(device.handle(), 1, 0, 0x000FF0FF, &maskNot, &kEverywhere);
  expected.Set(1, 0, {0xF0, 0x0A, 0x00});
  EXPECT_TRUE(BandShows(device, expected));
}

// Nothing but the first word of a draw mode is looked at: here it is all there is.
TEST(Pixel, ReadsOnlyTheOperationOfTheDrawMode) {
  TestDevice device({.width = 4, .height = 1});
  PlaneImage expected = BandImage(device);
  FencedBuffer memory(2, 0);
  memory.data()[0] = R2_COPYPEN;
  QNVPixel(device.handle(), 1, 0, 0x00010203, reinterpret_cast<const DRAWMODE*>(memory.data()), &kEverywhere);
  expected.Set(1, 0, {1, 2, 3});
  EXPECT_TRUE(BandShows(device, expected));
}

struct ClipCase {
  const char* name;
  int32_t x;
  int32_t y;
  BandRect clip;
  bool inside;
};

// On a band of 6 x 4 at (10, 20) with origin (3, -2): the band begins at page (7, 22).
constexpr ClipCase kClips[] = {
    {"top left of the band", 7, 22, kEverywhere, true},
    {"bottom right of the band", 12, 25, kEverywhere, true},
    {"left of the band", 6, 22, kEverywhere, false},
    {"above the band", 7, 21, kEverywhere, false},
    {"at the band's right edge", 13, 25, kEverywhere, false},
    {"at the band's bottom edge", 12, 26, kEverywhere, false},
    {"clip of this one pixel", 9, 23, {9, 23, 10, 24}, true},
    {"clip ends before its column", 9, 23, {5, 20, 9, 30}, false},
    {"clip begins after its column", 9, 23, {10, 20, 30, 30}, false},
    {"clip ends above its row", 9, 23, {5, 20, 30, 23}, false},
    {"clip begins below its row", 9, 23, {5, 24, 30, 30}, false},
    {"empty clip", 9, 23, {9, 23, 9, 23}, false},
    {"turned clip", 9, 23, {10, 24, 9, 23}, false},
    {"all zeros is a clip like any other", 9, 23, {0, 0, 0, 0}, false},
    {"clip in band coordinates would cut it", 7, 22, {0, 0, 10, 23}, true},
};

TEST(Pixel, ClipAndBandAreHalfOpen) {
  for (uint16_t bits : {uint16_t{24}, uint16_t{8}}) {
    for (const ClipCase& c : kClips) {
      SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(bits) + " bits");
      TestDevice device({.bitsPerPixel = bits, .width = 6, .height = 4, .left = 10, .top = 20});
      device.SetOrigin(3, -2);
      PlaneImage expected = BandImage(device);
      const DRAWMODE mode = ModeOf(R2_COPYPEN);
      EXPECT_EQ(0u, QNVPixel(device.handle(), c.x, c.y, 0x00070707, &mode, &c.clip));
      if (c.inside) expected.Set(c.x + 3 - 10, c.y - 2 - 20, {7, 7, 7});
      EXPECT_TRUE(BandShows(device, expected));
      EXPECT_EQ(c.inside ? 0x00070707u : 0u, QNVPixel(device.handle(), c.x, c.y, 0, nullptr, &c.clip)) << "read";
    }
  }
}

TEST(Pixel, NullClipIsRefused) {
  for (uint16_t bits : {uint16_t{24}, uint16_t{8}}) {
    SCOPED_TRACE(bits);
    TestDevice device({.bitsPerPixel = bits, .width = 6, .height = 4});
    const PlaneImage before = BandImage(device);
    const DRAWMODE mode = ModeOf(R2_COPYPEN);
    EXPECT_EQ(0u, QNVPixel(device.handle(), 1, 1, 0x00070707, &mode, nullptr));
    EXPECT_EQ(0u, QNVPixel(device.handle(), 1, 1, 0x00070707, nullptr, nullptr));
    EXPECT_TRUE(BandShows(device, before));
  }
}

}  // namespace
}  // namespace qnv::test
