// Figures on the resolution-mapping device: every coordinate is carried from resolution A to B before it is clipped.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

struct ScaledCase {
  const char* name;
  struct {
    uint32_t style;
    uint32_t count;
    std::vector<int16_t> words;
    std::vector<int> deltas{};
  } list;
  std::vector<BandRect> painted;  // an odd number of times
  BandPlace place{};
  BandRect clip = kEverywhere;
};

// From resolution 360 to 720.
const std::vector<ScaledCase> kDoubledCases = {
    {"one row paints one band row, the span twice as wide", {OS_SCANLINES, 2, {0, 1, 1, 3}}, {{2, 2, 6, 3}}},
    {"row 10 is band row 20 only", {OS_SCANLINES, 2, {0, 10, 0, 6}}, {{0, 2, 12, 3}}, {.top = 18}},
    {"row spans leave every other row",
     {OS_ROW_SPANS, 3, {0, /**/ 0, 1, /**/ 0, 2, /**/ 1, 2}},
     {{0, 0, 2, 1}, {0, 2, 4, 3}, {2, 4, 4, 5}}},
    {"row records leave every other row",
     {OS_ROW_RECORDS, 3, {0, /**/ 2, 0, 1, /**/ 0, /**/ 4, 1, 2, 4, 5}},
     {{0, 0, 2, 1}, {2, 4, 4, 5}, {8, 4, 10, 5}}},
    {"a banded record paints every band row",
     {OS_BANDED_SPANS, 1, {4, 1, 3, 0, 1, 3, 5, 4}},
     {{0, 2, 2, 6}, {6, 2, 10, 6}}},
    {"byte deltas count in caller pixels",
     {OS_BYTE_DELTAS, 3, {0, 2, 4}, {-1, 1, -1, 1}},
     {{4, 0, 8, 1}, {2, 2, 10, 3}, {0, 4, 12, 5}}},
    {"nibble deltas", {OS_NIBBLE_DELTAS, 3, {0, 2, 4}, {0x1F, 0x1F}}, {{4, 0, 8, 1}, {2, 2, 10, 3}, {0, 4, 12, 5}}},
};

// From 720 to 360.
const std::vector<ScaledCase> kHalvedCases = {
    {"ends are mapped each on its own, halves away from zero",
     {OS_SCANLINES, 6, {0, 0, 0, 1, 5, 8, 11, 12, 13, 14, 17, 24}},
     {{0, 0, 1, 1}, {3, 0, 4, 1}, {9, 0, 12, 1}}},
    {"rows 19 and 20 are both band row 10 and cancel",
     {OS_ROW_SPANS, 2, {19, /**/ 0, 8, /**/ 0, 4}},
     {{2, 0, 4, 1}},
     {.top = 10}},
    {"row records",
     {OS_ROW_RECORDS, 4, {0, /**/ 2, 0, 2, /**/ 2, 0, 4, /**/ 2, 0, 6, /**/ 2, 0, 8}},
     {{0, 0, 1, 1}, {2, 1, 3, 2}, {0, 2, 4, 3}}},
    {"byte deltas paint a band row twice",
     {OS_BYTE_DELTAS, 4, {0, 0, 2}, {0, 2, 0, 2, 0, 2}},
     {{0, 0, 1, 1}, {2, 1, 3, 2}, {0, 2, 4, 3}}},
    {"nibble deltas drop the odd rows, deltas included",
     {OS_NIBBLE_DELTAS, 6, {0, 0, 2}, {0x20, 0x20, 0x20, 0x20, 0x20}},
     {{0, 0, 1, 1}, {0, 1, 3, 2}, {0, 2, 5, 3}}},
    {"nibble deltas starting on a dropped row with count 0 paint nothing", {OS_NIBBLE_DELTAS, 0, {1, 0, 20}}, {}},
    {"byte deltas starting on that row with count 0 paint it", {OS_BYTE_DELTAS, 0, {1, 0, 20}}, {{0, 1, 10, 2}}},
    {"banded rows between the mapped ends", {105, 1, {2, 1, 8, 0, 2, 2}}, {{0, 1, 1, 4}}},
    {"the clip is mapped too", {OS_BANDED_SPANS, 1, {2, 0, 100, 0, 100, 2}}, {{1, 1, 3, 3}}, {}, {1, 1, 5, 5}},
    {"the origin is added before the mapping",
     {OS_SCANLINES, 2, {0, 1, 1, 5}},
     {{2, 2, 4, 3}},
     {.originX = 3, .originY = 2}},
    {"negative coordinates round away from zero too",
     {OS_ROW_SPANS, 3, {-5, /**/ -5, 0, /**/ -4, 0, /**/ -1, 1}},
     {{3, 0, 6, 1}, {4, 1, 5, 2}, {6, 1, 7, 2}},
     {.left = -6, .top = -3}},
};

// From 600 to 400.
const std::vector<ScaledCase> kTwoThirdsCases = {
    {"nibble deltas lose every third row",
     {OS_NIBBLE_DELTAS, 6, {0, 0, 3}, {0x30, 0x30, 0x30, 0x30, 0x30}},
     {{0, 0, 2, 1}, {0, 1, 4, 2}, {0, 2, 8, 3}, {0, 3, 10, 4}}},
    {"row spans paint some band rows twice",
     {OS_ROW_SPANS, 6, {0, /**/ 0, 3, /**/ 0, 3, /**/ 0, 9, /**/ 0, 3, /**/ 0, 3, /**/ 0, 9}},
     {{0, 0, 2, 1}, {2, 1, 6, 2}, {0, 2, 2, 3}, {2, 3, 6, 4}}},
};

// From 360 to 360.
const std::vector<ScaledCase> kEqualCases = {
    {"nibble deltas drop rows above the page's top",
     {OS_NIBBLE_DELTAS, 4, {-2, 0, 1}, {0x10, 0x10, 0x10}},
     {{0, 3, 3, 4}, {0, 4, 4, 5}},
     {.top = -3}},
};

// Painting by exclusive-or shows how often a pixel was painted.
void RunScaledCases(uint16_t resolutionA, uint16_t resolutionB, const std::vector<ScaledCase>& cases) {
  for (const ScaledCase& c : cases) {
    DeviceOptions options = WithDepth(kSpanBand, QNV_KIND_SCALED, 24);
    options.resolutionA = resolutionA;
    options.resolutionB = resolutionB;
    SCOPED_TRACE(Text(Describe(options), ": ", c.name));
    PlacedDevice device(options, c.place);
    const PhysicalPen pen = SolidPen(device.handle(), kPenColor ^ Gray(options.fill));
    const DRAWMODE mode = MakeDrawMode({.rop2 = R2_XORPEN});
    EXPECT_EQ(1u, CallOutput(device, c.list.style, c.list.count, SpanListBytes(c.list.words, c.list.deltas),
                             {.pen = &pen, .drawMode = &mode, .clip = c.clip}));
    EXPECT_TRUE(PenPainted(device, c.painted));
  }
}

TEST(OutputScaled, Lists) {
  RunScaledCases(360, 720, kDoubledCases);
  RunScaledCases(720, 360, kHalvedCases);
  RunScaledCases(600, 400, kTwoThirdsCases);
  RunScaledCases(360, 360, kEqualCases);
}

// Pattern cells count from band coordinates, not from the caller's.
TEST(OutputScaled, HatchCellsAreBandPixels) {
  ScaledDevice device({.width = 13, .height = 6, .resolutionB = 720, .left = 4, .top = 6});
  const PhysicalBrush brush = HatchBrush(device.handle(), HS_CROSS, 0x0000FF);
  const DRAWMODE mode = MakeDrawMode({.bkMode = TRANSPARENT});
  EXPECT_EQ(1u, PaintRectangle(device, 0, 0, 100, 100, {.brush = &brush, .drawMode = &mode}));
  EXPECT_TRUE(BandIs(device, {{'#', 0x0000FF}},
                     "....#.......#"
                     "....#.......#"
                     "#############"
                     "....#.......#"
                     "....#.......#"
                     "....#.......#"));
}

// In gray mode every pixel that is written is grayed where it lies, its first byte weighing 30; other pixels stay.
TEST(OutputScaled, GrayModeGraysWhatItWrites) {
  struct Case {
    int rop2;
    uint32_t (*result)(uint32_t p, uint32_t d);
  };
  const Case cases[] = {
      {R2_COPYPEN, [](uint32_t p, uint32_t) { return p; }},
      {R2_XORPEN, [](uint32_t p, uint32_t d) { return p ^ d; }},
      {R2_NOT, [](uint32_t, uint32_t d) { return ~d & 0xFFFFFF; }},
      {R2_MERGEPEN, [](uint32_t p, uint32_t d) { return p | d; }},
  };
  // Records of the host's own making, so that the color is not gray before it is written.
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x00FF8001};
  PhysicalBrush hatch = BrushRecord(BS_HATCHED);
  for (uint32_t i = 0; i < 64; ++i) hatch.cells[i] = i % 2 == 0 ? 0xFF0180FF : 0;  // even columns
  for (const Case& c : cases) {
    for (bool solid : {true, false}) {
      for (uint32_t width : {9u, 700u}) {  // a row in one piece, and in several
        SCOPED_TRACE(Text(c.rop2, solid ? ", solid, " : ", hatched, ", width));
        ScaledDevice device({.bitsPerPixel = 0, .width = static_cast<uint16_t>(width), .height = 2});
        PlaneImage expected = BandImage(device);
        for (int32_t row = 0; row < 2; ++row) {
          for (uint32_t column = 0; column < width; ++column) {
            expected.SetColor(column, row, (0x102030 + column * 0x070503) & 0xFFFFFF);
          }
        }
        LoadBand(&device, expected);
        const DRAWMODE mode = MakeDrawMode({.rop2 = c.rop2, .bkMode = TRANSPARENT});
        for (uint32_t column = 2; column < width - 2; ++column) {
          if (!solid && column % 2 != 0) continue;
          const uint32_t result = c.result(solid ? 0xFF8001u : 0x0180FFu, expected.Color(column, 1));
          expected.SetColor(column, 1, Regrayed(result));
        }
        PaintRow(device, 2, static_cast<int16_t>(width - 2), 1,
                 {.pen = solid ? &pen : nullptr, .brush = solid ? nullptr : &hatch, .drawMode = &mode});
        EXPECT_TRUE(BandShows(device, expected));
      }
    }
  }
}

}  // namespace
}  // namespace qnv::test
