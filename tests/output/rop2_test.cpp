// The sixteen binary raster operations, through solid, hatched and pattern fills on every device class.
#include <gtest/gtest.h>

#include "output/output_call.h"
#include "support/random_bytes.h"
#include "support/transfer_model.h"

namespace qnv::test {
namespace {

constexpr uint32_t kRop2Ink = 0x00C35A0F;

TEST(Rop2, EveryCodeFillAndDevice) {
  uint8_t grays[64];
  for (uint32_t i = 0; i < 64; ++i) grays[i] = static_cast<uint8_t>(3 * i + 1);
  const SourceBitmap bitmap{0, 8, 8, 8, 1, 8, grays};
  for (const DeviceOptions& options : DeviceClasses({.width = 23, .height = 9})) {
    if (options.bitsPerPixel == 0) continue;  // gray mode grays the result: output_scaled_test.cpp
    TestDevice device(options);
    const PhysicalPen pen = SolidPen(device.handle(), kRop2Ink);
    const PhysicalBrush solid = SolidBrush(device.handle(), kRop2Ink);
    const PhysicalBrush hatch = HatchBrush(device.handle(), HS_VERTICAL, kRop2Ink);
    const PhysicalBrush pattern = PatternBrush(device.handle(), bitmap);
    struct Fill {
      const char* name;
      const PhysicalBrush* brush;
      int bkMode;
    };
    for (const Fill& fill : {Fill{"solid pen", nullptr, OPAQUE}, Fill{"solid brush", &solid, TRANSPARENT},
                             Fill{"transparent hatch", &hatch, TRANSPARENT}, Fill{"opaque hatch", &hatch, OPAQUE},
                             Fill{"pattern", &pattern, TRANSPARENT}}) {
      for (int code = 0; code <= 17; ++code) {
        SCOPED_TRACE(Text("code ", code, ", ", fill.name, ", ", Describe(options)));
        FillWithNoise(&device.band(), static_cast<uint64_t>(code));
        const DRAWMODE mode =
            MakeDrawMode({.rop2 = code, .bkMode = fill.bkMode, .background = Physical(device, 0x00123456)});
        PlaneImage expected = BandImage(device);
        FillExpected(&expected, {2, 1, 21, 8}, fill.brush == nullptr ? solid : *fill.brush, mode);
        EXPECT_EQ(1u, PaintRectangle(device, 2, 1, 21, 8, {.pen = &pen, .brush = fill.brush, .drawMode = &mode}));
        EXPECT_TRUE(BandShows(device, expected));
      }
    }
  }
}

// Band bytes 0x0F under a color of 0x33: by hand, and a gap of a transparent hatch stays under each of them.
TEST(Rop2, ByHand) {
  struct Case {
    int code;
    uint8_t result;
  };
  for (const Case& c : {Case{R2_COPYPEN, 0x33}, Case{R2_XORPEN, 0x3C}, Case{R2_NOT, 0xF0}, Case{R2_NOP, 0x0F},
                        Case{R2_WHITE, 0xFF}, Case{R2_MASKNOTPEN, 0x0C}, Case{R2_MERGEPENNOT, 0xF3}}) {
    SCOPED_TRACE(c.code);
    TestDevice device({.width = 10, .height = 1, .fill = 0x0F});
    const PhysicalBrush brush = HatchBrush(device.handle(), HS_VERTICAL, Gray(0x33));
    const DRAWMODE mode = MakeDrawMode({.rop2 = c.code, .bkMode = TRANSPARENT});
    PaintRow(device, 0, 10, 0, {.brush = &brush, .drawMode = &mode});
    EXPECT_TRUE(BandIs(device, {{'#', Gray(c.result)}}, "#.......#."));
  }
}

// On an 8-bit band the gray byte of a record that the host built itself is the byte that a 24-bit band stores first.
TEST(Rop2, TheByteThatAnEightBitBandTakes) {
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x00112233};
  const DRAWMODE mode = MakeDrawMode();
  for (uint16_t depth : kBandDepths) {
    TestDevice device({.bitsPerPixel = depth, .width = 5, .height = 1});
    PaintRow(device, 1, 3, 0, {.pen = &pen, .drawMode = &mode});
    EXPECT_TRUE(BandIs(device, {{'#', 0x00112233}}, ".##..")) << depth << " bits";
  }
}

}  // namespace
}  // namespace qnv::test
