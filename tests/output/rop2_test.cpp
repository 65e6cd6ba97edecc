// The sixteen binary raster operations, through solid, hatched and pattern fills on both depths.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

struct Rop2Case {
  const char* name;
  int16_t code;
  uint32_t (*apply)(uint32_t p, uint32_t d);
};

const Rop2Case kRop2Cases[] = {
    {"R2_BLACK", R2_BLACK, [](uint32_t, uint32_t) { return 0u; }},
    {"R2_NOTMERGEPEN", R2_NOTMERGEPEN, [](uint32_t p, uint32_t d) { return ~(p | d); }},
    {"R2_MASKNOTPEN", R2_MASKNOTPEN, [](uint32_t p, uint32_t d) { return ~p & d; }},
    {"R2_NOTCOPYPEN", R2_NOTCOPYPEN, [](uint32_t p, uint32_t) { return ~p; }},
    {"R2_MASKPENNOT", R2_MASKPENNOT, [](uint32_t p, uint32_t d) { return p & ~d; }},
    {"R2_NOT", R2_NOT, [](uint32_t, uint32_t d) { return ~d; }},
    {"R2_XORPEN", R2_XORPEN, [](uint32_t p, uint32_t d) { return p ^ d; }},
    {"R2_NOTMASKPEN", R2_NOTMASKPEN, [](uint32_t p, uint32_t d) { return ~(p & d); }},
    {"R2_MASKPEN", R2_MASKPEN, [](uint32_t p, uint32_t d) { return p & d; }},
    {"R2_NOTXORPEN", R2_NOTXORPEN, [](uint32_t p, uint32_t d) { return ~(p ^ d); }},
    {"R2_NOP", R2_NOP, [](uint32_t, uint32_t d) { return d; }},
    {"R2_MERGENOTPEN", R2_MERGENOTPEN, [](uint32_t p, uint32_t d) { return ~p | d; }},
    {"R2_COPYPEN", R2_COPYPEN, [](uint32_t p, uint32_t) { return p; }},
    {"R2_MERGEPENNOT", R2_MERGEPENNOT, [](uint32_t p, uint32_t d) { return p | ~d; }},
    {"R2_MERGEPEN", R2_MERGEPEN, [](uint32_t p, uint32_t d) { return p | d; }},
    {"R2_WHITE", R2_WHITE, [](uint32_t, uint32_t) { return 0xFFFFFFu; }},
};

// Each device class with the bytes a color takes there.
const DeviceOptions kDevices[] = {
    {.bitsPerPixel = 24, .width = 23, .height = 9},
    {.bitsPerPixel = 8, .width = 23, .height = 9},
    {.kind = QNV_KIND_SCALED, .bitsPerPixel = 24, .width = 23, .height = 9},
    {.bitsPerPixel = 24, .width = 23, .height = 9, .tagPlane = true},
};

void FillWithRamp(TestDevice& device) {
  for (std::size_t i = 0; i < device.band().size(); ++i) device.band().data()[i] = static_cast<uint8_t>(i * 29 + 3);
}

struct FillCase {
  const char* name;
  PhysicalPen pen;
  PhysicalBrush brush;
  bool withPen;
  int16_t bkMode;
  // The fill's color at a device pixel; painted = false where a transparent hatch has a gap.
  uint32_t (*colorAt)(const TestDevice& device, uint32_t x, uint32_t y, bool& painted);
};

const uint32_t kInk = 0x00C35A0F;
const uint32_t kBack = 0x00123456;

uint32_t SolidAt(const TestDevice& device, uint32_t, uint32_t, bool&) { return Physical(device, kInk); }

uint32_t TransparentVerticalAt(const TestDevice& device, uint32_t x, uint32_t, bool& painted) {
  painted = x % 8 == 0;
  return Physical(device, kInk);
}

uint32_t OpaqueVerticalAt(const TestDevice& device, uint32_t x, uint32_t, bool&) {
  return x % 8 == 0 ? Physical(device, kInk) : Physical(device, kBack);
}

// A pattern of gray pixels that differ in row and column.
uint8_t PatternByte(uint32_t x, uint32_t y) { return static_cast<uint8_t>((y % 8) * 24 + (x % 8) * 3 + 1); }

uint32_t PatternAt(const TestDevice&, uint32_t x, uint32_t y, bool&) { return Gray(PatternByte(x, y)); }

TEST(Rop2, EveryCodeFillAndDevice) {
  uint8_t patternBytes[64];
  for (uint32_t i = 0; i < 64; ++i) patternBytes[i] = PatternByte(i % 8, i / 8);
  const SourceBitmap pattern{0, 8, 8, 8, 1, 8, patternBytes};
  for (const DeviceOptions& options : kDevices) {
    TestDevice setup(options);
    const PhysicalBrush none{};
    const FillCase fills[] = {
        {"solid pen", SolidPen(setup.handle(), kInk), none, true, OPAQUE, SolidAt},
        {"solid brush", {}, SolidBrush(setup.handle(), kInk), false, TRANSPARENT, SolidAt},
        {"transparent hatch",
         {},
         HatchBrush(setup.handle(), HS_VERTICAL, kInk),
         false,
         TRANSPARENT,
         TransparentVerticalAt},
        {"opaque hatch", {}, HatchBrush(setup.handle(), HS_VERTICAL, kInk), false, OPAQUE, OpaqueVerticalAt},
        {"pattern", {}, PatternBrush(setup.handle(), pattern), false, TRANSPARENT, PatternAt},
    };
    for (const FillCase& fill : fills) {
      for (const Rop2Case& rop2 : kRop2Cases) {
        TestDevice device(options);
        FillWithRamp(device);
        DRAWMODE mode = MakeDrawMode();
        mode.Rop2 = rop2.code;
        mode.bkMode = fill.bkMode;
        mode.bkColor = Physical(device, kBack);
        PlaneImage expected = BandImage(device);
        for (uint32_t y = 1; y < 8; ++y) {
          for (uint32_t x = 2; x < 21; ++x) {
            bool painted = true;
            const uint32_t p = fill.colorAt(device, x, y, painted);
            if (painted) expected.SetColor(x, y, rop2.apply(p, expected.Color(x, y)));
          }
        }
        const OutputSetup setupCall{.pen = fill.withPen ? &fill.pen : nullptr,
                                    .brush = fill.withPen ? nullptr : &fill.brush,
                                    .drawMode = &mode};
        EXPECT_EQ(1u, PaintRectangle(device, 2, 1, 21, 8, setupCall));
        EXPECT_TRUE(SameImage(expected, BandImage(device)))
            << rop2.name << ", " << fill.name << ", kind " << options.kind << ", " << options.bitsPerPixel << " bits"
            << (options.tagPlane ? ", dual plane" : "");
        EXPECT_TRUE(device.FencesIntact());
      }
    }
  }
}

// On an 8-bit band the gray byte of a record that the host built itself is the byte that a 24-bit band stores first.
TEST(Rop2, TheByteThatAnEightBitBandTakes) {
  PhysicalPen pen{PS_SOLID, 1, 1, 0x00112233};
  const DRAWMODE mode = MakeDrawMode();
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    TestDevice device({.bitsPerPixel = depth, .width = 5, .height = 1});
    PaintRow(device, 1, 3, 0, {.pen = &pen, .drawMode = &mode});
    EXPECT_TRUE(BandIs(device, {{'#', 0x00112233}}, ".##..")) << depth << " bits";
  }
}

}  // namespace
}  // namespace qnv::test
