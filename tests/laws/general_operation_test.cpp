// Each of the sixteen operations of its own, and the index that does nothing, equals the general operation on its
// index. The general one is reached by a bit in the upper byte of the code.
#include <gtest/gtest.h>

#include <array>

#include "laws/twin_devices.h"
#include "support/source_image.h"
#include "support/transfer_call.h"

namespace qnv::test {
namespace {

constexpr std::array<uint8_t, 17> kIndices = {0x00, 0x11, 0x33, 0x44, 0x55, 0x5A, 0x66, 0x88, 0xAA,
                                              0xBB, 0xC0, 0xCC, 0xE2, 0xEE, 0xF0, 0xFB, 0xFF};

PhysicalBrush BrushOfKind(DeviceHandle* handle, uint32_t kind, uint32_t color, const SourceBitmap& bitmap) {
  switch (kind) {
    case 0: return SolidBrush(handle, color);
    case 1: return PatternBrush(handle, bitmap);
    default: return HatchBrush(handle, static_cast<int16_t>(kind - 2), color, 0x00FEDCBA);
  }
}

TEST(GeneralOperation, EqualsTheOperationOfItsIndex) {
  std::vector<DeviceOptions> devices = LawDevices();
  devices.push_back({.width = 45, .height = 21, .resolutionA = 720, .left = 3, .top = 5});  // doubled cells
  for (const DeviceOptions& options : devices) {
    TwinDevices twins(options);
    DeviceHandle* special = twins.first.handle();
    const bool gray = IsGrayDevice(twins.first);
    const SourceImage oneBit(kOneBitSource, 60, 40, 1);
    const SourceImage other(gray ? kGraySource : kColorSource, 60, 40, 2);
    RandomBytes random(3);
    const auto between = [&](int32_t from, uint32_t count) { return from + static_cast<int32_t>(random.Below(count)); };
    for (uint32_t n = 0; n < 3400; ++n) {
      const uint8_t index = kIndices[n % kIndices.size()];
      // In gray mode doing nothing and writing everything back, grayed, are not the same.
      if (index == 0xAA && options.kind == QNV_KIND_SCALED && gray) continue;
      SCOPED_TRACE(Text(Describe(options), ", index ", index, ", case ", n));
      twins.FillWith(n);
      const int32_t originX = between(-4, 9);
      twins.SetOrigin(originX, between(-4, 9));
      const PhysicalBrush brush = BrushOfKind(special, random.Below(8), random.Next() & 0xFFFFFF, *oneBit.record());
      const DRAWMODE mode = MakeDrawMode({.bkMode = between(1, 2),
                                          .background = QNVColorInfo(special, random.Next() & 0xFFFFFF, nullptr),
                                          .text = QNVColorInfo(special, random.Next() & 0xFFFFFF, nullptr)});
      const int32_t clipX = between(-8, 40);
      const int32_t clipY = between(-8, 20);
      const BandRect clip =
          random.Below(3) == 0 ? BandRect{0, 0, 0, 0} : BandRect{clipX, clipY, clipX + 25, clipY + 14};
      TransferCall call{.at = {between(-12, 60), between(-8, 30)},
                        .source = random.Below(2) == 0 ? oneBit.record() : other.record(),
                        .from = {between(-6, 40), between(-6, 30)},
                        .size = {between(0, 60), between(0, 25)},
                        .rop = uint32_t{index} << 16,
                        .brush = &brush,
                        .drawMode = &mode,
                        .clip = random.Below(4) == 0 ? &kEverywhere : &clip};
      const uint32_t result = Transfer(special, call);
      call.rop |= 0x01000000u << random.Below(8);
      ASSERT_EQ(result, Transfer(twins.second.handle(), call));
      ASSERT_TRUE(twins.AreEqual());
    }
  }
}

}  // namespace
}  // namespace qnv::test
