// Styles, results and the order in which a call is looked at.
#include <gtest/gtest.h>

#include "output/output_call.h"
#include "support/host_handle.h"
#include "support/tag_plane.h"

namespace qnv::test {
namespace {

const std::vector<uint32_t> kKnownStyles = {4, 5, 104, 105, 205, 305, 405, 505};
const std::vector<uint32_t> kMarkers = {80, 81};
const std::vector<uint32_t> kUnknownStyles = {0,   1,   2,   3,   6,   7,   8,   79,  82,   103,   106,  204,
                                              206, 304, 306, 404, 406, 504, 506, 605, 1000, 32767, 65535};
constexpr uint32_t kUnknownResult = 0xFFFF;  // -1 in 16 bits
constexpr uint32_t kDispatchPen = 0x010203;

// A list that every encoding can read: banded record of row 0, columns 0 and 1.
const std::vector<uint8_t> kSmallList = SpanListBytes({2, 0, 1, 0, 2, 2, 0, 0});

// The dual-plane device looks at more before it paints: output_dual_plane_test.cpp.
std::vector<DeviceOptions> PlainAndScaled() {
  constexpr DeviceOptions kBand{.width = 6, .height = 2};
  return {WithDepth(kBand, QNV_KIND_RASTER, 24), WithDepth(kBand, QNV_KIND_RASTER, 8),
          WithDepth(kBand, QNV_KIND_SCALED, 24)};
}

TEST(OutputDispatch, CallsThatPaintNothing) {
  struct Case {
    const char* name;
    std::vector<uint32_t> styles;
    bool hollow;
    bool points;
    uint32_t result;
  };
  const Case cases[] = {
      {"unknown style", kUnknownStyles, false, true, kUnknownResult},
      {"unknown style without points", {6}, false, false, kUnknownResult},
      {"marker", kMarkers, false, true, 1},
      {"marker without points", kMarkers, false, false, 1},
      {"known style without points", kKnownStyles, false, false, 1},
      // A fill that paints nothing is found before the style is looked at.
      {"hollow brush", {6, 80, 81, 4, 405, 505, 65535}, true, true, 1},
  };
  const PhysicalPen pen{PS_SOLID, 1, 1, kDispatchPen};
  const PhysicalBrush hollow = BrushRecord(BS_HOLLOW);
  const DRAWMODE mode = MakeDrawMode();
  const FencedInput list(kSmallList);
  for (const DeviceOptions& options : PlainAndScaled()) {
    for (const Case& c : cases) {
      for (uint32_t style : c.styles) {
        SCOPED_TRACE(Text(c.name, " ", style, ", ", Describe(options)));
        TestDevice device(options);
        const auto* points = c.points ? static_cast<const int16_t*>(list.data()) : nullptr;
        EXPECT_EQ(c.result, QNVOutput(device.handle(), style, 2, points, c.hollow ? nullptr : &pen,
                                      c.hollow ? &hollow : nullptr, &mode, &kEverywhere) &
                                0xFFFF);
        EXPECT_TRUE(BandUntouched(device));
      }
    }
  }
  EXPECT_TRUE(list.Unchanged());
}

TEST(OutputDispatch, OnlyTheLowSixteenBitsOfTheStyle) {
  TestDevice device({.width = 6, .height = 2});
  EXPECT_EQ(1u, PaintList(device, 0x00010000 + 305, 1, {0, 1, 3}));
  EXPECT_EQ(1u, PaintList(device, 0xFFFF0000 + 5, 1, {2, 1, 2, 4, 6, 2}));
  EXPECT_EQ(1u, PaintList(device, 0x80000000 + 81, 1, {2, 0, 1, 0, 2, 2}));
  EXPECT_EQ(kUnknownResult, PaintList(device, 0x00040000, 1, {2, 0, 1, 0, 2, 2}));
  EXPECT_TRUE(BandIs(device, {{'#', kPenColor}},
                     ".##..."
                     "....##"));
}

// Unknown styles and markers have prepared the fill all the same: a call without a draw mode then paints with it.
TEST(OutputDispatch, EveryCallPreparesTheFill) {
  const PhysicalPen pen{PS_SOLID, 1, 1, kDispatchPen};
  const DRAWMODE mode = MakeDrawMode({.rop2 = R2_NOTCOPYPEN});
  for (const DeviceOptions& options : PlainAndScaled()) {
    for (uint32_t style : {6u, 80u, 81u}) {
      SCOPED_TRACE(Text("style ", style, ", ", Describe(options)));
      TestDevice device(options);
      CallOutput(device, style, 2, kSmallList, {.pen = &pen, .drawMode = &mode});
      EXPECT_EQ(1u, PaintRow(device, 1, 3, 1, {}));
      EXPECT_TRUE(BandIs(device, {{'#', 0xFEFDFC}},
                         "......"
                         ".##..."));
    }
  }
}

// On the dual-plane device the tag plane's pass works on copies.
TEST(OutputDispatch, InputRecordsAreOnlyRead) {
  for (const DeviceOptions& options : DeviceClasses({.width = 6, .height = 2})) {
    SCOPED_TRACE(Describe(options));
    TestDevice device(options);
    if (options.tagPlane) MakeTagsMixed(&device, 1);
    device.SetOrigin(1, 1);
    const PhysicalPen pen = SolidPen(device.handle(), kDispatchPen);
    const PhysicalBrush brush = HatchBrush(device.handle(), HS_CROSS, 0x0000FF);
    const DRAWMODE mode = MakeDrawMode({.background = 0x445566});
    const BandRect clip{0, 0, 6, 2};
    const PhysicalPen penBefore = pen;
    const PhysicalBrush brushBefore = brush;
    const DRAWMODE modeBefore = mode;
    const int16_t points[] = {0, 0, 0, 4};
    for (const PhysicalBrush* fill : {&brush, static_cast<const PhysicalBrush*>(nullptr)}) {
      EXPECT_EQ(1u, QNVOutput(device.handle(), OS_SCANLINES, 2, points, &pen, fill, &mode, &clip) & 0xFFFF);
    }
    EXPECT_EQ(0, std::memcmp(&pen, &penBefore, sizeof pen));
    EXPECT_EQ(0, std::memcmp(&brush, &brushBefore, sizeof brush));
    EXPECT_EQ(0, std::memcmp(&mode, &modeBefore, sizeof mode));
    EXPECT_EQ("(0, 0, 6, 2)", Describe(clip));
  }
}

TEST(OutputDispatch, NoBandBufferPaintsNothing) {
  const HostHandle host({QNV_KIND_RASTER, 24, 360, 64, 32, 360}, {0, 0, 64, 32}, nullptr);
  const PhysicalPen pen{PS_SOLID, 1, 1, kDispatchPen};
  const DRAWMODE mode = MakeDrawMode();
  const FencedInput list(kSmallList);
  for (uint32_t style : kKnownStyles) {
    EXPECT_EQ(1u, QNVOutput(host.get(), style, 1, static_cast<const int16_t*>(list.data()), &pen, nullptr, &mode,
                            &kEverywhere) &
                      0xFFFF)
        << style;
  }
}

}  // namespace
}  // namespace qnv::test
