// QNVDevSetDIBitsToDevice is one particular QNVStretchDIBits: unscaled, a source copy, the whole width, stored rows
// from the first scan on.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <vector>

#include "laws/twin_devices.h"

namespace qnv::test {
namespace {

constexpr std::array<uint16_t, 7> kImageDepths = {1, 4, 8, 16, 24, 32, 5};  // the last one is refused

TEST(SetDIBits, EqualsItsStretchDIBits) {
  constexpr int32_t kRows = 20;
  constexpr int32_t kMaxWidth = 40;
  std::vector<uint8_t> bits(kMaxWidth * 4 * kRows);
  RandomBytes random(1);
  for (uint8_t& byte : bits) byte = random.Byte();
  std::vector<uint8_t> info(40 + 1024);
  for (uint8_t& byte : info) byte = random.Byte();
  uint32_t painted = 0;
  for (const DeviceOptions& options : LawDevices()) {
    TwinDevices twins(options);
    for (uint32_t n = 0; n < 700; ++n) {
      SCOPED_TRACE(Text(Describe(options), ", case ", n));
      if (options.tagPlane) twins.FillWith(n);
      BITMAPINFOHEADER header{};
      header.biSize = sizeof header;
      header.biWidth = 1 + static_cast<int32_t>(random.Below(kMaxWidth));
      header.biHeight = n % 3 == 0 ? -kRows : kRows;
      header.biPlanes = n % 50 == 49 ? 2 : 1;
      header.biBitCount = kImageDepths[n % kImageDepths.size()];
      header.biClrUsed = n % 4 == 0 ? 2 : 0;
      std::memcpy(info.data(), &header, sizeof header);
      const uint32_t startScan = random.Below(kRows);
      const uint32_t numScans = random.Below(kRows + 4);
      const int32_t x = static_cast<int32_t>(random.Below(60)) - 15;
      const int32_t y = static_cast<int32_t>(random.Below(40)) - 15;
      const int32_t originX = static_cast<int32_t>(random.Below(9)) - 4;
      twins.SetOrigin(originX, static_cast<int32_t>(random.Below(9)) - 4);
      const DRAWMODE mode = MakeDrawMode();
      const BandRect narrow{5, 7, 25, 19};
      const BandRect& clip = n % 2 == 0 ? kEverywhere : narrow;
      const int32_t rows = static_cast<int32_t>(numScans);
      const uint32_t result = QNVDevSetDIBitsToDevice(twins.first.handle(), x, y, startScan, numScans, &clip, &mode,
                                                      bits.data(), info.data(), nullptr) &
                              0xFFFF;
      EXPECT_EQ(result, QNVStretchDIBits(twins.second.handle(), 0, x, y, header.biWidth, rows, 0,
                                         static_cast<int32_t>(startScan), header.biWidth, rows, bits.data(),
                                         info.data(), nullptr, SRCCOPY, nullptr, &mode, &clip) &
                            0xFFFF);
      painted += result;
      ASSERT_TRUE(twins.AreEqual());
    }
  }
  EXPECT_GT(painted, 1000u) << "the cases hardly paint anything";
}

TEST(SetDIBits, NullBitmapInfoIsRefused) {
  for (const DeviceOptions& options : LawDevices()) {
    SCOPED_TRACE(Describe(options));
    TestDevice device(options);
    const DRAWMODE mode = MakeDrawMode();
    const uint8_t bits[4] = {};
    EXPECT_EQ(
        0u, QNVDevSetDIBitsToDevice(device.handle(), 3, 5, 0, 1, &kEverywhere, &mode, bits, nullptr, nullptr) & 0xFFFF);
    EXPECT_TRUE(BandUntouched(device));
  }
}

}  // namespace
}  // namespace qnv::test
