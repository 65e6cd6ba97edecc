// Rectangles of pixels on every device class: both corners included, each pixel once, the rules of single pixels.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "support/plane_image.h"
#include "support/random_bytes.h"
#include "support/tag_plane.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

struct DeviceCase {
  const char* name;
  DeviceOptions options;
};

const DeviceCase kDevices[] = {
    {"plain 24 bits", {.bitsPerPixel = 24, .width = 9, .height = 8}},
    {"plain 8 bits", {.bitsPerPixel = 8, .width = 9, .height = 8}},
    {"scaled, one to one", {.kind = QNV_KIND_SCALED, .width = 9, .height = 8}},
    {"dual-plane", {.bitsPerPixel = 24, .width = 9, .height = 8, .tagPlane = true}},
};

struct Case {
  const char* name;
  int32_t x1;
  int32_t y1;
  int32_t x2;
  int32_t y2;
  BandRect clip;
  BandRect painted;
};

constexpr Case kCases[] = {
    {"corners in order", 3, 4, 5, 7, kEverywhere, {3, 4, 6, 8}},
    {"x exchanged", 5, 4, 3, 7, kEverywhere, {3, 4, 6, 8}},
    {"y exchanged", 3, 7, 5, 4, kEverywhere, {3, 4, 6, 8}},
    {"both exchanged", 5, 7, 3, 4, kEverywhere, {3, 4, 6, 8}},
    {"one pixel", 2, 2, 2, 2, kEverywhere, {2, 2, 3, 3}},
    {"one row", 0, 1, 8, 1, kEverywhere, {0, 1, 9, 2}},
    {"one column", 4, 0, 4, 7, kEverywhere, {4, 0, 5, 8}},
    {"across every edge of the band", -3, -3, 20, 20, kEverywhere, {0, 0, 9, 8}},
    {"outside the band", 9, 0, 12, 7, kEverywhere, {0, 0, 0, 0}},
    {"left edge clipped by one", 0, 0, 8, 7, {1, 0, 9, 8}, {1, 0, 9, 8}},
    {"top edge clipped by one", 0, 0, 8, 7, {0, 1, 9, 8}, {0, 1, 9, 8}},
    {"right edge clipped by one", 0, 0, 8, 7, {0, 0, 8, 8}, {0, 0, 8, 8}},
    {"bottom edge clipped by one", 0, 0, 8, 7, {0, 0, 9, 7}, {0, 0, 9, 7}},
    {"empty clip", 0, 0, 8, 7, {4, 4, 4, 8}, {0, 0, 0, 0}},
};

// An exclusive-or shows each visit: a pixel visited twice would be back at its old value.
TEST(PolyPixel, VisitsEachPixelOfTheRectangleOnce) {
  for (const DeviceCase& d : kDevices) {
    for (const Case& c : kCases) {
      SCOPED_TRACE(std::string(d.name) + ", " + c.name);
      TestDevice device(d.options);
      FillWithNoise(&device.band(), 3);
      PlaneImage expected = BandImage(device);
      DRAWMODE mode = MakeDrawMode();
      mode.Rop2 = R2_XORPEN;
      EXPECT_EQ(0u, QNVPolyPixel(device.handle(), c.x1, c.y1, c.x2, c.y2, 0x00FFFFFF, &mode, &c.clip));
      for (int32_t y = c.painted.top; y < c.painted.bottom; ++y) {
        for (int32_t x = c.painted.left; x < c.painted.right; ++x) {
          for (int i = 0; i < expected.bytesPerPixel(); ++i) expected.At(x, y)[i] ^= 0xFF;
        }
      }
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

TEST(PolyPixel, CopiesTheColor) {
  for (const DeviceCase& d : kDevices) {
    SCOPED_TRACE(d.name);
    TestDevice device(d.options);
    device.SetOrigin(1, 2);
    PlaneImage expected = BandImage(device);
    const DRAWMODE mode = MakeDrawMode();
    EXPECT_EQ(0u, QNVPolyPixel(device.handle(), 0, 0, 2, 1, 0x00332211, &mode, &kEverywhere));
    expected.Fill({1, 2, 4, 4}, expected.bytesPerPixel() == 3 ? PixelBytes{0x33, 0x22, 0x11} : PixelBytes{0x11, 0, 0});
    EXPECT_TRUE(BandShows(device, expected));
  }
}

TEST(PolyPixel, WithoutADrawModeNothingHappens) {
  for (const DeviceCase& d : kDevices) {
    SCOPED_TRACE(d.name);
    TestDevice device(d.options);
    const PlaneImage before = BandImage(device);
    EXPECT_EQ(0u, QNVPolyPixel(device.handle(), 0, 0, 8, 7, 0x00332211, nullptr, &kEverywhere));
    EXPECT_TRUE(BandShows(device, before));
  }
}

TEST(PolyPixel, NullClipIsRefused) {
  for (const DeviceCase& d : kDevices) {
    SCOPED_TRACE(d.name);
    TestDevice device(d.options);
    const PlaneImage before = BandImage(device);
    const DRAWMODE mode = MakeDrawMode();
    EXPECT_EQ(0u, QNVPolyPixel(device.handle(), 0, 0, 8, 7, 0x00332211, &mode, nullptr));
    EXPECT_TRUE(BandShows(device, before));
  }
}

// A rectangle that ends at the last coordinate there is: the walk over it has to end.
TEST(PolyPixel, EndsAtTheLastCoordinate) {
  TestDevice device({.width = 9, .height = 8});
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
  DRAWMODE mode = MakeDrawMode();
  mode.Rop2 = R2_XORPEN;
  // Page columns 1, 2 and 3 become band columns 1, 1 and 2; page rows 3 and 4 both become row 2.
  EXPECT_EQ(0u, QNVPolyPixel(device.handle(), 1, 3, 3, 4, 0x00FFFFFF, &mode, &kEverywhere));
  EXPECT_TRUE(BandShows(device, expected));
  EXPECT_EQ(0u, QNVPolyPixel(device.handle(), 1, 3, 3, 3, 0x00FFFFFF, &mode, &kEverywhere));
  for (int i = 0; i < 3; ++i) expected.At(2, 2)[i] ^= 0xFF;
  EXPECT_TRUE(BandShows(device, expected));
}

TEST(PolyPixel, GrayModeGraysEachPixel) {
  ScaledDevice device({.bitsPerPixel = 0, .width = 9, .height = 8});
  PlaneImage expected = BandImage(device);
  const DRAWMODE mode = MakeDrawMode();
  EXPECT_EQ(0u, QNVPolyPixel(device.handle(), 2, 1, 7, 6, 0x000000FF, &mode, &kEverywhere));
  expected.Fill({2, 1, 8, 7}, {28, 28, 28});
  EXPECT_TRUE(BandShows(device, expected));
}

TEST(PolyPixel, DualPlaneTagsEachPixel) {
  DualPlaneDevice device({.width = 9, .height = 8});
  MakeTagsMixed(&device, 9);
  PlaneImage band = BandImage(device);
  PlaneImage tags = TagImage(device);
  const DRAWMODE mode = MakeDrawMode();
  const BandRect clip{0, 0, 7, 5};
  EXPECT_EQ(0u, QNVPolyPixel(device.handle(), 8, 7, 2, 1, 0x00010203, &mode, &clip));
  band.Fill({2, 1, 7, 5}, {1, 2, 3});
  tags.Fill({2, 1, 7, 5}, {1, 0, 0});
  EXPECT_TRUE(BandShows(device, band));
  EXPECT_TRUE(TagsShow(device, tags));
}

}  // namespace
}  // namespace qnv::test
