// QNVDevSetDIBitsToDevice is one particular QNVStretchDIBits: unscaled, a source copy, the whole width, stored rows
// from the first scan on.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

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
    {"24 bits", {.width = 45, .height = 21, .left = 3, .top = 5}},
    {"8 bits", {.bitsPerPixel = 8, .width = 45, .height = 21, .left = 3, .top = 5}},
    {"scaled", {.kind = QNV_KIND_SCALED, .width = 45, .height = 21, .resolutionA = 600, .resolutionB = 400}},
    {"gray mode", {.kind = QNV_KIND_SCALED, .bitsPerPixel = 0, .width = 45, .height = 21, .resolutionA = 300}},
    {"dual-plane", {.width = 45, .height = 21, .left = 3, .top = 5, .tagPlane = true}},
};

constexpr std::array<uint16_t, 7> kDepths = {1, 4, 8, 16, 24, 32, 5};  // the last one is refused

TEST(SetDIBits, EqualsItsStretchDIBits) {
  constexpr int32_t kRows = 20;
  constexpr int32_t kMaxWidth = 40;
  std::vector<uint8_t> bits(kMaxWidth * 4 * kRows);
  RandomBytes random(1);
  for (uint8_t& byte : bits) byte = random.Byte();
  std::vector<uint8_t> info(40 + 1024);
  for (uint8_t& byte : info) byte = random.Byte();
  uint32_t painted = 0;
  for (const DeviceCase& d : kDevices) {
    TestDevice set(d.options);
    TestDevice stretch(d.options);
    for (uint32_t n = 0; n < 700; ++n) {
      SCOPED_TRACE(std::string(d.name) + ", case " + std::to_string(n));
      if (d.options.tagPlane) {
        MakeTagsMixed(&set, n);
        MakeTagsMixed(&stretch, n);
      }
      BITMAPINFOHEADER header{};
      header.biSize = sizeof header;
      header.biWidth = 1 + static_cast<int32_t>(random.Below(kMaxWidth));
      header.biHeight = n % 3 == 0 ? -kRows : kRows;
      header.biPlanes = n % 50 == 49 ? 2 : 1;
      header.biBitCount = kDepths[n % kDepths.size()];
      header.biClrUsed = n % 4 == 0 ? 2 : 0;
      std::memcpy(info.data(), &header, sizeof header);
      const uint32_t startScan = random.Below(kRows);
      const uint32_t numScans = random.Below(kRows + 4);
      const int32_t x = static_cast<int32_t>(random.Below(60)) - 15;
      const int32_t y = static_cast<int32_t>(random.Below(40)) - 15;
      const DrawingOrigin origin{static_cast<int32_t>(random.Below(9)) - 4, static_cast<int32_t>(random.Below(9)) - 4};
      QNVControl(set.handle(), QNV_SET_ORIGIN, &origin, nullptr);
      QNVControl(stretch.handle(), QNV_SET_ORIGIN, &origin, nullptr);
      const DRAWMODE mode = MakeDrawMode();
      const BandRect narrow{5, 7, 25, 19};
      const BandRect& clip = n % 2 == 0 ? kEverywhere : narrow;
      const int32_t rows = static_cast<int32_t>(numScans);
      const uint32_t result = QNVDevSetDIBitsToDevice(set.handle(), x, y, startScan, numScans, &clip, &mode,
                                                      bits.data(), info.data(), nullptr) &
                              0xFFFF;
      EXPECT_EQ(result, QNVStretchDIBits(stretch.handle(), 0, x, y, header.biWidth, rows, 0,
                                         static_cast<int32_t>(startScan), header.biWidth, rows, bits.data(),
                                         info.data(), nullptr, SRCCOPY, nullptr, &mode, &clip) &
                            0xFFFF);
      painted += result;
      ASSERT_TRUE(SameImage(BandImage(set), BandImage(stretch)));
      if (d.options.tagPlane) {
        ASSERT_TRUE(SameImage(TagImage(set), TagImage(stretch)));
      }
    }
    EXPECT_TRUE(set.FencesIntact());
    EXPECT_TRUE(stretch.FencesIntact());
  }
  EXPECT_GT(painted, 1000u) << "the cases hardly paint anything";
}

TEST(SetDIBits, NullBitmapInfoIsRefused) {
  for (const DeviceCase& d : kDevices) {
    SCOPED_TRACE(d.name);
    TestDevice device(d.options);
    const PlaneImage before = BandImage(device);
    const DRAWMODE mode = MakeDrawMode();
    const uint8_t bits[4] = {};
    EXPECT_EQ(
        0u, QNVDevSetDIBitsToDevice(device.handle(), 3, 5, 0, 1, &kEverywhere, &mode, bits, nullptr, nullptr) & 0xFFFF);
    EXPECT_TRUE(BandShows(device, before));
  }
}

}  // namespace
}  // namespace qnv::test
