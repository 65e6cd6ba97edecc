// Handles from QNVEnable to QNVDisable: any number at once, independent, in any order.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <vector>

#include "support/device_classes.h"
#include "support/plane_image.h"
#include "support/random_bytes.h"

namespace qnv::test {
namespace {

constexpr DeviceOptions kLifecycleBand{.width = 9, .height = 4};

TEST(Lifecycle, ManyDevicesAreIndependent) {
  constexpr uint32_t kDevices = 24;
  std::vector<std::unique_ptr<TestDevice>> devices;
  const std::vector<DeviceOptions> classes = DeviceClasses(kLifecycleBand);
  for (uint32_t n = 0; n < kDevices; ++n) {
    devices.push_back(std::make_unique<TestDevice>(classes[n % classes.size()]));
  }
  const DRAWMODE mode = MakeDrawMode();
  // Each has its own origin, so a shared state would put a pixel into another's place.
  for (uint32_t n = 0; n < kDevices; ++n) devices[n]->SetOrigin(static_cast<int32_t>(n % 9), 2);
  for (uint32_t n = 0; n < kDevices; ++n) {
    QNVPixel(devices[n]->handle(), 0, 0, 0x010101u * (n + 1), &mode, &kEverywhere);
  }
  for (uint32_t n = 0; n < kDevices; ++n) {
    SCOPED_TRACE(n);
    PlaneImage expected = UntouchedBand(*devices[n]);
    const uint8_t value = static_cast<uint8_t>(n + 1);
    expected.Set(static_cast<int32_t>(n % 9), 2, {value, value, value});
    EXPECT_TRUE(BandShows(*devices[n], expected));
  }
  // Out of order, the odd ones first; the others keep working.
  for (uint32_t n = 1; n < kDevices; n += 2) devices[n].reset();
  for (uint32_t n = 0; n < kDevices; n += 2) {
    SCOPED_TRACE(n);
    EXPECT_EQ(0x010101u * (n + 1), QNVPixel(devices[n]->handle(), 0, 0, 0, nullptr, &kEverywhere));
  }
}

TEST(Lifecycle, PatternsAreNotShared) {
  TestDevice first({.width = 8, .height = 1});
  TestDevice second({.width = 8, .height = 1});
  const DRAWMODE mode = MakeDrawMode();
  const PhysicalBrush red = SolidBrush(first.handle(), 0x0000FF);
  const PhysicalBrush blue = SolidBrush(second.handle(), 0xFF0000);
  const int16_t row[] = {0, 0, 0, 8};
  QNVOutput(first.handle(), OS_SCANLINES, 2, row, nullptr, &red, &mode, &kEverywhere);
  QNVOutput(second.handle(), OS_SCANLINES, 2, row, nullptr, &blue, &mode, &kEverywhere);
  first.band().Fill(0xCC);
  second.band().Fill(0xCC);
  // Without a draw mode each paints with what it was given last.
  QNVOutput(first.handle(), OS_SCANLINES, 2, row, nullptr, nullptr, nullptr, &kEverywhere);
  QNVOutput(second.handle(), OS_SCANLINES, 2, row, nullptr, nullptr, nullptr, &kEverywhere);
  EXPECT_TRUE(BandIs(first, {{'r', 0x0000FF}}, "rrrrrrrr"));
  EXPECT_TRUE(BandIs(second, {{'b', 0xFF0000}}, "bbbbbbbb"));
}

TEST(Lifecycle, DisableLeavesTheBuffersAlone) {
  for (const DeviceOptions& options : DeviceClasses(kLifecycleBand)) {
    SCOPED_TRACE(Describe(options));
    FencedBuffer band(28 * 4, 0);
    FencedBuffer tags(12 * 4, 0);
    FillWithNoise(&band, 1);
    FillWithNoise(&tags, 2);
    const std::vector<uint8_t> bandBefore(band.data(), band.data() + band.size());
    const std::vector<uint8_t> tagsBefore(tags.data(), tags.data() + tags.size());
    const DeviceDescription description{options.kind, options.bitsPerPixel, 360, options.width, options.height, 360};
    const BandRect rect{0, 0, 9, 4};
    QNVDisable(QNVEnable(&description, &rect, band.data(), options.tagPlane ? tags.data() : nullptr));
    EXPECT_EQ(0, std::memcmp(bandBefore.data(), band.data(), band.size()));
    EXPECT_EQ(0, std::memcmp(tagsBefore.data(), tags.data(), tags.size()));
    EXPECT_TRUE(band.FencesIntact() && tags.FencesIntact());
  }
}

// A handle whose device pointer is null: only the handle goes, the device it once named lives on.
TEST(Lifecycle, DisableOfAHandleWithoutADeviceFreesTheHandleOnly) {
  // Static, because nothing frees this device again; the aligned copy shows a leak checker that it is known.
  static void* device;
  static std::array<uint8_t, 2 + sizeof(void*)> orphan;
  static std::array<uint8_t, 24> band;
  const DeviceDescription description{QNV_KIND_RASTER, 24, 360, 8, 1, 360};
  const BandRect rect{0, 0, 8, 1};
  DeviceHandle* handle = QNVEnable(&description, &rect, band.data(), nullptr);
  ASSERT_NE(nullptr, handle);
  auto* bytes = reinterpret_cast<uint8_t*>(handle);
  std::memcpy(orphan.data(), bytes, orphan.size());
  std::memcpy(&device, bytes + 2, sizeof device);
  std::memset(bytes + 2, 0, sizeof(void*));
  QNVDisable(handle);
  EXPECT_NE(nullptr, device);
  // Any record with the magic word and the device's address is a handle.
  EXPECT_EQ(0x00112233u, QNVColorInfo(reinterpret_cast<DeviceHandle*>(orphan.data()), 0x00112233, nullptr));
}

}  // namespace
}  // namespace qnv::test
