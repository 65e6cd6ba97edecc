// Each of the sixteen operations of its own, and the index that does nothing, equals the general operation on its
// index. The general one is reached by a bit in the upper byte of the code.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "support/plane_image.h"
#include "support/random_bytes.h"
#include "support/source_image.h"
#include "support/tag_plane.h"
#include "support/transfer_call.h"

namespace qnv::test {
namespace {

constexpr std::array<uint8_t, 17> kIndices = {0x00, 0x11, 0x33, 0x44, 0x55, 0x5A, 0x66, 0x88, 0xAA,
                                              0xBB, 0xC0, 0xCC, 0xE2, 0xEE, 0xF0, 0xFB, 0xFF};

struct DeviceCase {
  const char* name;
  DeviceOptions options;
};

const DeviceCase kDevices[] = {
    {"24 bits", {.width = 45, .height = 21, .left = 3, .top = 5}},
    {"8 bits", {.bitsPerPixel = 8, .width = 45, .height = 21, .left = 3, .top = 5}},
    {"24 bits, doubled cells", {.width = 45, .height = 21, .resolutionA = 720, .left = 3, .top = 5}},
    {"scaled down", {.kind = QNV_KIND_SCALED, .width = 45, .height = 21, .resolutionA = 600, .resolutionB = 400}},
    {"scaled up", {.kind = QNV_KIND_SCALED, .width = 45, .height = 21, .resolutionA = 300, .resolutionB = 400}},
    {"gray mode",
     {.kind = QNV_KIND_SCALED, .bitsPerPixel = 0, .width = 45, .height = 21, .resolutionA = 600, .resolutionB = 400}},
    {"dual-plane", {.width = 45, .height = 21, .left = 3, .top = 5, .tagPlane = true}},
};

bool IsGray(const DeviceOptions& options) { return options.bitsPerPixel == (options.kind == QNV_KIND_SCALED ? 0 : 8); }

PhysicalBrush BrushOf(DeviceHandle* handle, uint32_t kind, uint32_t color, const SourceBitmap& bitmap) {
  switch (kind) {
    case 0: return SolidBrush(handle, color);
    case 1: return PatternBrush(handle, bitmap);
    default: return HatchBrush(handle, static_cast<int16_t>(kind - 2), color, 0x00FEDCBA);
  }
}

TEST(GeneralOperation, EqualsTheOperationOfItsIndex) {
  for (const DeviceCase& d : kDevices) {
    TestDevice special(d.options);
    TestDevice general(d.options);
    const bool gray = IsGray(d.options);
    const SourceImage oneBit(kOneBitSource, 60, 40, 1);
    const SourceImage other(gray ? kGraySource : kColorSource, 60, 40, 2);
    RandomBytes random(3);
    for (uint32_t n = 0; n < 3400; ++n) {
      const uint8_t index = kIndices[n % kIndices.size()];
      // In gray mode doing nothing and writing everything back, grayed, are not the same.
      if (index == 0xAA && d.options.kind == QNV_KIND_SCALED && gray) continue;
      SCOPED_TRACE(std::string(d.name) + ", index " + std::to_string(index) + ", case " + std::to_string(n));
      if (d.options.tagPlane) {
        MakeTagsMixed(&special, n);
        MakeTagsMixed(&general, n);
      } else {
        FillWithNoise(&special.band(), n);
        FillWithNoise(&general.band(), n);
      }
      const DrawingOrigin origin{static_cast<int32_t>(random.Below(9)) - 4, static_cast<int32_t>(random.Below(9)) - 4};
      QNVControl(special.handle(), QNV_SET_ORIGIN, &origin, nullptr);
      QNVControl(general.handle(), QNV_SET_ORIGIN, &origin, nullptr);
      const PhysicalBrush brush =
          BrushOf(special.handle(), random.Below(8), random.Next() & 0xFFFFFF, *oneBit.record());
      DRAWMODE mode = MakeDrawMode();
      mode.bkMode = static_cast<int16_t>(1 + random.Below(2));
      mode.bkColor = QNVColorInfo(special.handle(), random.Next() & 0xFFFFFF, nullptr);
      mode.TextColor = QNVColorInfo(special.handle(), random.Next() & 0xFFFFFF, nullptr);
      const int32_t clipX = static_cast<int32_t>(random.Below(40)) - 8;
      const int32_t clipY = static_cast<int32_t>(random.Below(20)) - 8;
      const BandRect clip =
          random.Below(3) == 0 ? BandRect{0, 0, 0, 0} : BandRect{clipX, clipY, clipX + 25, clipY + 14};
      TransferCall call{
          .at = {static_cast<int32_t>(random.Below(60)) - 12, static_cast<int32_t>(random.Below(30)) - 8},
          .source = random.Below(2) == 0 ? oneBit.record() : other.record(),
          .from = {static_cast<int32_t>(random.Below(40)) - 6, static_cast<int32_t>(random.Below(30)) - 6},
          .size = {static_cast<int32_t>(random.Below(60)), static_cast<int32_t>(random.Below(25))},
          .rop = uint32_t{index} << 16,
          .brush = &brush,
          .drawMode = &mode,
          .clip = random.Below(4) == 0 ? &kEverywhere : &clip};
      const uint32_t result = Transfer(special.handle(), call);
      call.rop |= 0x01000000u << random.Below(8);
      ASSERT_EQ(result, Transfer(general.handle(), call));
      ASSERT_TRUE(SameImage(BandImage(special), BandImage(general)));
      if (d.options.tagPlane) {
        ASSERT_TRUE(SameImage(TagImage(special), TagImage(general)));
      }
    }
    EXPECT_TRUE(special.FencesIntact());
    EXPECT_TRUE(general.FencesIntact());
  }
}

}  // namespace
}  // namespace qnv::test
