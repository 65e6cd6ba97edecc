// Rectangles of pixels whose corners lie far outside: only what can be seen is visited, and all of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "random/random.h"
#include "reference/model.h"
#include "robustness/thread_clock.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

const DeviceOptions kPolyPixelDevices[] = {
    {},
    {.bitsPerPixel = 8},
    {.tagPlane = true},
    {.kind = QNV_KIND_SCALED},
    {.kind = QNV_KIND_SCALED, .resolutionA = 720, .resolutionB = 360},
    {.kind = QNV_KIND_SCALED, .resolutionA = 360, .resolutionB = 720},
    {.kind = QNV_KIND_SCALED, .bitsPerPixel = 0, .resolutionA = 7, .resolutionB = 5},
    {.kind = QNV_KIND_SCALED, .bitsPerPixel = 0, .resolutionA = 65535, .resolutionB = 1},
    {.kind = QNV_KIND_SCALED, .resolutionA = 65535, .resolutionB = 1},
    {.kind = QNV_KIND_SCALED, .resolutionA = 1, .resolutionB = 65535},
};

TEST(PolyPixel, CornersFarOutside) {
  for (const DeviceOptions& original : kPolyPixelDevices) {
    for (int32_t left : {0, -5, INT32_MIN, INT32_MAX - 64}) {
      DeviceOptions options = original;
      options.left = left;
      options.top = left == INT32_MAX - 64 ? INT32_MAX - 32 : left;
      for (int32_t origin : {0, 100, -100, INT32_MIN, INT32_MAX}) {
        TestDevice device(options);
        device.SetOrigin(origin, origin == INT32_MIN ? INT32_MAX : -origin);
        for (uint32_t rop = 1; rop <= 16; ++rop) {
          DRAWMODE mode = MakeDrawMode();
          mode.Rop2 = static_cast<int16_t>(rop);
          const BandRect clip{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
          const double before = ThreadSeconds();
          EXPECT_EQ(
              0u, QNVPolyPixel(device.handle(), INT32_MIN, INT32_MAX, INT32_MAX, INT32_MIN, 0x00123456, &mode, &clip));
          EXPECT_EQ(0u, QNVPolyPixel(device.handle(), -30000, -30000, 30000, 30000, 0x00123456, &mode, &kEverywhere));
          EXPECT_EQ(0u, QNVPolyPixel(device.handle(), INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX, 0, nullptr, &clip));
          EXPECT_LT(ThreadSeconds() - before, kEndsInSeconds)
              << options.kind << ", " << options.resolutionA << " to " << options.resolutionB << ", band at " << left;
        }
        EXPECT_TRUE(device.FencesIntact());
      }
    }
  }
}

// Rectangles of a few thousand points, some of them across the end of the numbers, one by one in the model.
TEST(PolyPixel, AsTheModelPaints) {
  Random random(4711);
  for (int round = 0; round < 1500; ++round) {
    DeviceOptions options =
        kPolyPixelDevices[static_cast<std::size_t>(random.Range(0, int{std::size(kPolyPixelDevices)} - 1))];
    options.width = 9;
    options.height = 6;
    options.left = random.Range(-6, 4);
    options.top = random.Range(-6, 4);
    TestDevice device(options);
    const DeviceDescription description{options.kind,  options.bitsPerPixel, options.resolutionA,
                                        options.width, options.height,       options.resolutionB};
    const BandRect band{options.left, options.top, options.left + 9, options.top + 6};
    if (options.tagPlane) {  // tags are written from the first image on
      const uint32_t info[] = {40, 1, 1, 1 | 24 << 16, 0, 0, 0, 0, 0, 0};
      const uint32_t pixel = 0;
      const DRAWMODE mode = MakeDrawMode();
      QNVStretchDIBits(device.handle(), 0, options.left, options.top, 1, 1, 0, 0, 1, 1, &pixel, info, nullptr, SRCCOPY,
                       nullptr, &mode, &kEverywhere);
    }
    const std::vector<uint8_t> colors = device.BandBytes(), tags = device.TagBytes();
    const auto model = reference::MakeModel(&description, &band, &colors, options.tagPlane ? &tags : nullptr);
    ASSERT_NE(nullptr, model);
    if (options.tagPlane) {
      const uint32_t info[] = {40, 1, 1, 1 | 24 << 16, 0, 0, 0, 0, 0, 0};
      const uint32_t pixel = 0;
      const DRAWMODE mode = MakeDrawMode();
      model->StretchDIBits(
          {0, options.left, options.top, 1, 1, 0, 0, 1, 1, &pixel, info, SRCCOPY, nullptr, &mode, &kEverywhere});
    }
    const bool wraps = random.Percent(20);
    const DrawingOrigin origin{wraps ? INT32_MAX - random.Range(0, 8) : random.Range(-5, 5), random.Range(-5, 5)};
    QNVControl(device.handle(), QNV_SET_ORIGIN, &origin, nullptr);
    model->Control(QNV_SET_ORIGIN, &origin);
    for (int call = 0; call < 4; ++call) {
      DRAWMODE mode = MakeDrawMode();
      mode.Rop2 = static_cast<int16_t>(random.Range(1, 16));
      // From the origin's own place, where the band is, to somewhere near it.
      const auto nearBand = [&](int32_t o) {
        return static_cast<int32_t>(static_cast<uint32_t>(random.Range(-40, 40)) - static_cast<uint32_t>(o));
      };
      int32_t x1 = nearBand(origin.x), x2 = nearBand(origin.x), y1 = nearBand(origin.y), y2 = nearBand(origin.y);
      if (std::abs(int64_t{x1} - x2) > 1000) x2 = x1;  // across the end of the numbers
      x1 = std::min(x1, INT32_MAX - 1);                // the model counts past the last point
      x2 = std::min(x2, INT32_MAX - 1);
      const BandRect clips[] = {{0, 0, 0, 0}, {-3, -3, 30, 30}, kEverywhere, {2, 1, 6, 5}, {-2000, 1, 2000, 4}};
      const BandRect clip = clips[random.Range(0, 4)];
      const uint32_t color = static_cast<uint32_t>(random.Range(0, 0xFFFFFF));
      QNVPolyPixel(device.handle(), x1, y1, x2, y2, color, &mode, &clip);
      model->PolyPixel(x1, y1, x2, y2, color, &mode, &clip);
      ASSERT_EQ(model->band().bytes(), device.BandBytes())
          << "round " << round << ", " << options.resolutionA << " to " << options.resolutionB << ", rop " << mode.Rop2
          << ", " << x1 << ", " << y1 << " to " << x2 << ", " << y2 << ", origin " << origin.x << ", " << origin.y;
      if (options.tagPlane) {
        ASSERT_EQ(model->tags()->bytes(), device.TagBytes()) << "round " << round;
      }
    }
    ASSERT_TRUE(device.FencesIntact());
  }
}

// A thousand points on one gray pixel, each of which turns its level into another: the levels repeat after one, two, or
// many of them.
TEST(PolyPixel, PointsOnOneGrayPixel) {
  Random random(2718);
  const DeviceOptions options{.kind = QNV_KIND_SCALED, .bitsPerPixel = 0, .resolutionA = 65535, .resolutionB = 1};
  TestDevice device(options);
  const DeviceDescription description{options.kind,  options.bitsPerPixel, options.resolutionA,
                                      options.width, options.height,       options.resolutionB};
  const BandRect band{0, 0, static_cast<int32_t>(options.width), static_cast<int32_t>(options.height)};
  const std::vector<uint8_t> colors = device.BandBytes();
  const auto model = reference::MakeModel(&description, &band, &colors, nullptr);
  ASSERT_NE(nullptr, model);
  DRAWMODE mode = MakeDrawMode();
  for (int16_t rop = 1; rop <= 16; ++rop) {
    mode.Rop2 = rop;
    for (int i = 0; i < 40; ++i) {
      const auto color = static_cast<uint32_t>(random.Range(0, 0xFFFFFF));
      const int32_t last = random.Range(600, 1400);
      QNVPolyPixel(device.handle(), 0, 0, last, 1, color, &mode, &kEverywhere);
      model->PolyPixel(0, 0, last, 1, color, &mode, &kEverywhere);
      ASSERT_EQ(model->band().bytes(), device.BandBytes()) << "rop " << rop << ", " << color << ", " << last;
    }
  }
  EXPECT_TRUE(device.FencesIntact());
}

}  // namespace
}  // namespace qnv::test
