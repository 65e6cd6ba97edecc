// Rectangles of pixels on every device class: both corners included, each pixel once, the rules of single pixels.
// Clips are in laws/clipping_test.cpp.
#include <gtest/gtest.h>

#include <climits>

#include "support/device_classes.h"
#include "support/plane_image.h"
#include "support/random_bytes.h"

namespace qnv::test {
namespace {

constexpr DeviceOptions kPolyBand{.width = 9, .height = 8};

// An exclusive-or shows each visit: a pixel visited twice would be back at its old value.
TEST(PolyPixel, VisitsEachPixelOfTheRectangleOnce) {
  struct Case {
    const char* name;
    int32_t x1;
    int32_t y1;
    int32_t x2;
    int32_t y2;
    BandRect painted;
  };
  constexpr Case kCases[] = {
      {"corners in order", 3, 4, 5, 7, {3, 4, 6, 8}},  {"x exchanged", 5, 4, 3, 7, {3, 4, 6, 8}},
      {"y exchanged", 3, 7, 5, 4, {3, 4, 6, 8}},       {"both exchanged", 5, 7, 3, 4, {3, 4, 6, 8}},
      {"one pixel", 2, 2, 2, 2, {2, 2, 3, 3}},         {"one row", 0, 1, 8, 1, {0, 1, 9, 2}},
      {"one column", 4, 0, 4, 7, {4, 0, 5, 8}},        {"across every edge of the band", -3, -3, 20, 20, {0, 0, 9, 8}},
      {"outside the band", 9, 0, 12, 7, {0, 0, 0, 0}},
  };
  for (const DeviceOptions& options : DeviceClasses(kPolyBand)) {
    for (const Case& c : kCases) {
      SCOPED_TRACE(Text(c.name, ", ", Describe(options)));
      TestDevice device(options);
      FillWithNoise(&device.band(), 3);
      PlaneImage expected = BandImage(device);
      const DRAWMODE mode = MakeDrawMode({.rop2 = R2_XORPEN});
      EXPECT_EQ(0u, QNVPolyPixel(device.handle(), c.x1, c.y1, c.x2, c.y2, 0x00FFFFFF, &mode, &kEverywhere));
      for (int32_t y = c.painted.top; y < c.painted.bottom; ++y) {
        for (int32_t x = c.painted.left; x < c.painted.right; ++x) {
          const uint32_t inverted = expected.Color(x, y) ^ 0xFFFFFF;
          expected.SetColor(x, y, options.bitsPerPixel == 0 ? Regrayed(inverted) : inverted);
        }
      }
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

TEST(PolyPixel, CopiesTheColor) {
  for (const DeviceOptions& options : DeviceClasses(kPolyBand)) {
    SCOPED_TRACE(Describe(options));
    TestDevice device(options);
    device.SetOrigin(1, 2);
    PlaneImage expected = BandImage(device);
    const DRAWMODE mode = MakeDrawMode();
    EXPECT_EQ(0u, QNVPolyPixel(device.handle(), 0, 0, 2, 1, 0x000000FF, nullptr, &kEverywhere)) << "no draw mode";
    EXPECT_TRUE(BandShows(device, expected)) << "no draw mode";
    EXPECT_EQ(0u, QNVPolyPixel(device.handle(), 0, 0, 2, 1, 0x000000FF, &mode, &kEverywhere));
    // Red: last in the band, the low byte of an 8-bit band, and a gray of 28 in gray mode.
    expected.Fill({1, 2, 4, 4}, options.bitsPerPixel == 0   ? PixelBytes{28, 28, 28}
                                : options.bitsPerPixel == 8 ? PixelBytes{0xFF}
                                                            : PixelBytes{0x00, 0x00, 0xFF});
    EXPECT_TRUE(BandShows(device, expected));
  }
}

// A rectangle that ends at the last coordinate there is: the walk over it has to end.
TEST(PolyPixel, EndsAtTheLastCoordinate) {
  TestDevice device(kPolyBand);
  device.SetOrigin(-(INT_MAX - 4), -(INT_MAX - 3));
  PlaneImage expected = BandImage(device);
  const DRAWMODE mode = MakeDrawMode();
  const BandRect clip{INT_MAX - 10, INT_MAX - 10, INT_MAX, INT_MAX};
  EXPECT_EQ(0u, QNVPolyPixel(device.handle(), INT_MAX - 4, INT_MAX - 2, INT_MAX, INT_MAX, 0x00010203, &mode, &clip));
  expected.Fill({0, 1, 4, 3}, {1, 2, 3});  // the clip cannot hold the last coordinate itself
  EXPECT_TRUE(BandShows(device, expected));
}

// Two page pixels share a band pixel: each of them inverts it.
TEST(PolyPixel, ScaledDeviceVisitsPagePixels) {
  ScaledDevice device({.width = 9, .height = 8, .resolutionA = 720, .resolutionB = 360});
  FillWithNoise(&device.band(), 8);
  PlaneImage expected = BandImage(device);
  const DRAWMODE mode = MakeDrawMode({.rop2 = R2_XORPEN});
  // Page columns 1, 2 and 3 become band columns 1, 1 and 2; page rows 3 and 4 both become row 2.
  EXPECT_EQ(0u, QNVPolyPixel(device.handle(), 1, 3, 3, 4, 0x00FFFFFF, &mode, &kEverywhere));
  EXPECT_TRUE(BandShows(device, expected));
  EXPECT_EQ(0u, QNVPolyPixel(device.handle(), 1, 3, 3, 3, 0x00FFFFFF, &mode, &kEverywhere));
  expected.SetColor(2, 2, expected.Color(2, 2) ^ 0xFFFFFF);
  EXPECT_TRUE(BandShows(device, expected));
}

}  // namespace
}  // namespace qnv::test
