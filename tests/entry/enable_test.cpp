// Which descriptions make a device, and what the library takes from the host when it makes one.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "support/device_classes.h"
#include "support/host_handle.h"
#include "support/plane_image.h"

namespace qnv::test {
namespace {

struct EnableCase {
  uint16_t kind;
  uint16_t bitsPerPixel;
  uint16_t resolutionA;
  bool secondBuffer;
};

// Plain devices have 24 or 8 bits, dual-plane and scaled ones any depth; a scaled one needs a resolution.
const std::vector<EnableCase> kMade = {{1, 24, 360, false}, {1, 8, 360, false}, {1, 24, 0, false},  {1, 24, 360, true},
                                       {1, 8, 360, true},   {1, 16, 360, true}, {1, 0, 360, true},  {1, 24, 0, true},
                                       {0, 24, 360, false}, {0, 0, 360, false}, {0, 8, 360, false}, {0, 16, 360, false},
                                       {0, 24, 360, true}};

// No byte of a kind or a depth counts alone.
const std::vector<EnableCase> kRefused = {{1, 0, 360, false},     {1, 1, 360, false},       {1, 4, 360, false},
                                          {1, 16, 360, false},    {1, 32, 360, false},      {1, 0x0118, 360, false},
                                          {0, 24, 0, false},      {2, 24, 360, false},      {2, 24, 360, true},
                                          {3, 24, 360, false},    {0x0100, 24, 360, false}, {0x0101, 24, 360, false},
                                          {0xFFFF, 24, 360, true}};

// Every byte of the buffer, and nothing around it was written.
bool Holds(const FencedBuffer& buffer, uint8_t value) {
  return buffer.FencesIntact() &&
         std::count(buffer.data(), buffer.data() + buffer.size(), value) == static_cast<std::ptrdiff_t>(buffer.size());
}

TEST(Enable, MakesADeviceForKnownKindsAndDepths) {
  for (bool made : {true, false}) {
    for (const EnableCase& c : made ? kMade : kRefused) {
      SCOPED_TRACE(Text("kind ", c.kind, ", ", c.bitsPerPixel, " bits", c.secondBuffer ? ", second buffer" : ""));
      FencedBuffer band(24 * 4, 0xCC);
      FencedBuffer second(8 * 4, 0xCC);
      const DeviceDescription description{c.kind, c.bitsPerPixel, c.resolutionA, 8, 4, 360};
      const BandRect rect{0, 0, 8, 4};
      DeviceHandle* handle = QNVEnable(&description, &rect, band.data(), c.secondBuffer ? second.data() : nullptr);
      EXPECT_EQ(made, handle != nullptr);
      QNVDisable(handle);
      EXPECT_TRUE(Holds(band, 0xCC));
      EXPECT_TRUE(Holds(second, 0xCC));
    }
  }
}

TEST(Enable, RefusesNullRecords) {
  const DeviceDescription description{QNV_KIND_RASTER, 24, 360, 8, 4, 360};
  const BandRect rect{0, 0, 8, 4};
  FencedBuffer band(24 * 4, 0xCC);
  EXPECT_EQ(nullptr, QNVEnable(nullptr, &rect, band.data(), nullptr));
  EXPECT_EQ(nullptr, QNVEnable(&description, nullptr, band.data(), nullptr));
  EXPECT_EQ(nullptr, QNVEnable(nullptr, nullptr, nullptr, nullptr));
}

// Kind 1 with a second buffer is the device whose clear fills that buffer with 1; kind 0 never looks at it.
TEST(Enable, SecondBufferBelongsToKindOneOnly) {
  FencedBuffer band(24 * 4, 0xCC);
  for (uint16_t kind : {uint16_t{QNV_KIND_RASTER}, uint16_t{QNV_KIND_SCALED}}) {
    FencedBuffer second(8 * 4, 0xCC);
    const HostHandle host({kind, 24, 360, 8, 4, 360}, {0, 0, 8, 4}, band.data(), second.data());
    EXPECT_EQ(1u, QNVControl(host.get(), QNV_CLEAR_BAND, nullptr, nullptr) & 0xFFFF);
    EXPECT_TRUE(Holds(second, kind == QNV_KIND_RASTER ? 0x01 : 0xCC)) << kind;
  }
}

TEST(Enable, CopiesTheRecordsItIsGiven) {
  FencedBuffer band(24 * 4, 0x00);
  DeviceDescription description{QNV_KIND_RASTER, 24, 360, 8, 4, 360};
  BandRect rect{10, 20, 18, 24};
  DeviceHandle* handle = QNVEnable(&description, &rect, band.data(), nullptr);
  ASSERT_NE(nullptr, handle);
  std::memset(&description, 0xEE, sizeof description);
  std::memset(&rect, 0xEE, sizeof rect);
  const DRAWMODE mode = MakeDrawMode();
  EXPECT_EQ(0u, QNVPixel(handle, 17, 23, 0x00112233, &mode, &kEverywhere));
  const uint8_t expected[3] = {0x11, 0x22, 0x33};
  EXPECT_EQ(0, std::memcmp(expected, band.data() + 3 * 24 + 7 * 3, 3)) << "last pixel of the last row";
  EXPECT_EQ(1u, QNVControl(handle, QNV_CLEAR_BAND, nullptr, nullptr) & 0xFFFF);
  QNVDisable(handle);
  EXPECT_TRUE(band.FencesIntact());
}

// Until the host sets an origin there is none.
TEST(Enable, StartsWithoutAnOrigin) {
  for (const DeviceOptions& options : DeviceClasses({.width = 9, .height = 3})) {
    SCOPED_TRACE(Describe(options));
    TestDevice device(options);
    const DRAWMODE mode = MakeDrawMode();
    QNVPixel(device.handle(), 0, 0, Gray(7), &mode, &kEverywhere);
    EXPECT_TRUE(BandIs(device, {{'p', Gray(7)}}, "p........"));
  }
}

TEST(Enable, WithoutABandBufferNothingIsPainted) {
  for (const DeviceOptions& options : DeviceClasses()) {
    SCOPED_TRACE(Describe(options));
    FencedBuffer second(8 * 4, 0xCC);
    const HostHandle host({options.kind, options.bitsPerPixel, 360, 8, 4, 360}, {0, 0, 8, 4}, nullptr,
                          options.tagPlane ? second.data() : nullptr);
    ASSERT_NE(nullptr, host.get());
    const DRAWMODE mode = MakeDrawMode();
    const PhysicalBrush brush = SolidBrush(host.get(), 0x102030);
    EXPECT_EQ(1u, QNVControl(host.get(), QNV_CLEAR_BAND, nullptr, nullptr) & 0xFFFF);
    EXPECT_EQ(0u, QNVPixel(host.get(), 1, 1, 0x102030, &mode, &kEverywhere));
    EXPECT_EQ(0u, QNVPixel(host.get(), 1, 1, 0, nullptr, &kEverywhere));
    EXPECT_EQ(0u, QNVPolyPixel(host.get(), 0, 0, 3, 3, 0x102030, &mode, &kEverywhere));
    EXPECT_EQ(1u, QNVDevBitBlt(host.get(), 0, 0, nullptr, 0, 0, 8, 4, PATCOPY, &brush, &mode, &kEverywhere) & 0xFFFF);
    const int16_t points[] = {0, 1, 0, 5};
    EXPECT_EQ(1u, QNVOutput(host.get(), OS_SCANLINES, 2, points, nullptr, &brush, &mode, &kEverywhere) & 0xFFFF);
    EXPECT_TRUE(Holds(second, options.tagPlane ? 0x01 : 0xCC)) << "the clear still tags";
  }
}

}  // namespace
}  // namespace qnv::test
