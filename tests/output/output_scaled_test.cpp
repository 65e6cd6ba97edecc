// Figures on the resolution-mapping device: every coordinate is carried from resolution A to B before it is clipped.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

struct ScaledCase {
  const char* name = "";
  uint16_t resolutionA = 360;
  uint16_t resolutionB = 360;
  uint32_t style = 0;
  uint32_t count = 0;
  std::vector<int16_t> words{};
  std::vector<int> deltas{};
  const char* picture = "";
  BandRect clip = kEverywhere;
  BandPlace place{};
};

constexpr uint32_t kStart = 0x00CCCCCC;

// Exclusive-or painting shows how often a pixel was painted: '#' an odd, '.' an even number of times.
const ScaledCase kCases[] = {
    {.name = "doubled: one row paints one band row, the span twice as wide",
     .resolutionB = 720,
     .style = OS_SCANLINES,
     .count = 2,
     .words = {0, 1, 1, 3},
     .picture = "............."
                "............."
                "..####......."},
    {.name = "doubled: row 10 is band row 20 only",
     .resolutionB = 720,
     .style = OS_SCANLINES,
     .count = 2,
     .words = {0, 10, 0, 6},
     .picture = "............."
                "............."
                "############.",
     .place = {.top = 18}},
    {.name = "doubled: row spans leave every other row",
     .resolutionB = 720,
     .style = OS_ROW_SPANS,
     .count = 3,
     .words = {0, /**/ 0, 1, /**/ 0, 2, /**/ 1, 2},
     .picture = "##..........."
                "............."
                "####........."
                "............."
                "..##........."},
    {.name = "doubled: row records leave every other row",
     .resolutionB = 720,
     .style = OS_ROW_RECORDS,
     .count = 3,
     .words = {0, /**/ 2, 0, 1, /**/ 0, /**/ 4, 1, 2, 4, 5},
     .picture = "##..........."
                "............."
                "............."
                "............."
                "..##....##..."},
    {.name = "doubled: a banded record paints every band row",
     .resolutionB = 720,
     .style = OS_BANDED_SPANS,
     .count = 1,
     .words = {4, 1, 3, 0, 1, 3, 5, 4},
     .picture = "............."
                "............."
                "##....####..."
                "##....####..."
                "##....####..."
                "##....####..."},
    {.name = "doubled: byte deltas count in caller pixels",
     .resolutionB = 720,
     .style = OS_BYTE_DELTAS,
     .count = 3,
     .words = {0, 2, 4},
     .deltas = {-1, 1, -1, 1},
     .picture = "....####....."
                "............."
                "..########..."
                "............."
                "############."},
    {.name = "doubled: nibble deltas",
     .resolutionB = 720,
     .style = OS_NIBBLE_DELTAS,
     .count = 3,
     .words = {0, 2, 4},
     .deltas = {0x1F, 0x1F},
     .picture = "....####....."
                "............."
                "..########..."
                "............."
                "############."},
    {.name = "halved: ends are mapped each on its own, halves away from zero",
     .resolutionA = 720,
     .style = OS_SCANLINES,
     .count = 6,
     .words = {0, 0, 0, 1, 5, 8, 11, 12, 13, 14, 17, 24},
     .picture = "#..#.....###."},
    {.name = "halved: rows 19 and 20 are both band row 10 and cancel",
     .resolutionA = 720,
     .style = OS_ROW_SPANS,
     .count = 2,
     .words = {19, /**/ 0, 8, /**/ 0, 4},
     .picture = "..##.........",
     .place = {.top = 10}},
    {.name = "halved: row records",
     .resolutionA = 720,
     .style = OS_ROW_RECORDS,
     .count = 4,
     .words = {0, /**/ 2, 0, 2, /**/ 2, 0, 4, /**/ 2, 0, 6, /**/ 2, 0, 8},
     .picture = "#............"
                "..#.........."
                "####........."},
    {.name = "halved: byte deltas paint a band row twice",
     .resolutionA = 720,
     .style = OS_BYTE_DELTAS,
     .count = 4,
     .words = {0, 0, 2},
     .deltas = {0, 2, 0, 2, 0, 2},
     .picture = "#............"
                "..#.........."
                "####........."},
    {.name = "halved: nibble deltas drop the odd rows, deltas included",
     .resolutionA = 720,
     .style = OS_NIBBLE_DELTAS,
     .count = 6,
     .words = {0, 0, 2},
     .deltas = {0x20, 0x20, 0x20, 0x20, 0x20},
     .picture = "#............"
                "###.........."
                "#####........"},
    {.name = "halved: nibble deltas starting on a dropped row with count 0 paint nothing",
     .resolutionA = 720,
     .style = OS_NIBBLE_DELTAS,
     .count = 0,
     .words = {1, 0, 20},
     .picture = kEmptySpanPicture},
    {.name = "halved: byte deltas starting on that row with count 0 paint one row",
     .resolutionA = 720,
     .style = OS_BYTE_DELTAS,
     .count = 0,
     .words = {1, 0, 20},
     .picture = "............."
                "##########..."},
    {.name = "halved: banded rows between the mapped ends",
     .resolutionA = 720,
     .style = 105,
     .count = 1,
     .words = {2, 1, 8, 0, 2, 2},
     .picture = "............."
                "#............"
                "#............"
                "#............"},
    {.name = "two thirds: nibble deltas lose every third row",
     .resolutionA = 600,
     .resolutionB = 400,
     .style = OS_NIBBLE_DELTAS,
     .count = 6,
     .words = {0, 0, 3},
     .deltas = {0x30, 0x30, 0x30, 0x30, 0x30},
     .picture = "##..........."
                "####........."
                "########....."
                "##########..."},
    {.name = "two thirds: row spans paint some band rows twice",
     .resolutionA = 600,
     .resolutionB = 400,
     .style = OS_ROW_SPANS,
     .count = 6,
     .words = {0, /**/ 0, 3, /**/ 0, 3, /**/ 0, 9, /**/ 0, 3, /**/ 0, 3, /**/ 0, 9},
     .picture = "##..........."
                "..####......."
                "##..........."
                "..####......."},
    {.name = "the clip is mapped as well",
     .resolutionA = 720,
     .style = OS_BANDED_SPANS,
     .count = 1,
     .words = {2, 0, 100, 0, 100, 2},
     .picture = "............."
                ".##.........."
                ".##..........",
     .clip = {1, 1, 5, 5}},
    {.name = "the origin is added before the mapping",
     .resolutionA = 720,
     .style = OS_SCANLINES,
     .count = 2,
     .words = {0, 1, 1, 5},
     .picture = "............."
                "............."
                "..##.........",
     .place = {.originX = 3, .originY = 2}},
    {.name = "negative coordinates round away from zero too",
     .resolutionA = 720,
     .style = OS_ROW_SPANS,
     .count = 3,
     .words = {-5, /**/ -5, 0, /**/ -4, 0, /**/ -1, 1},
     .picture = "...###......."
                "....#.#......",
     .place = {.left = -6, .top = -3}},
    {.name = "nibble deltas drop rows above the page's top",
     .resolutionA = 360,
     .style = OS_NIBBLE_DELTAS,
     .count = 4,
     .words = {-2, 0, 1},
     .deltas = {0x10, 0x10, 0x10},
     .picture = "............."
                "............."
                "............."
                "###.........."
                "####.........",
     .place = {.top = -3}},
};

TEST(OutputScaled, Lists) {
  for (const ScaledCase& c : kCases) {
    SCOPED_TRACE(c.name);
    ScaledDevice device({.bitsPerPixel = 24,
                         .width = kSpanColumns,
                         .height = kSpanRows,
                         .resolutionA = c.resolutionA,
                         .resolutionB = c.resolutionB,
                         .left = c.place.left,
                         .top = c.place.top});
    device.SetOrigin(c.place.originX, c.place.originY);
    const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
    DRAWMODE mode = MakeDrawMode();
    mode.Rop2 = R2_XORPEN;
    EXPECT_EQ(1u, CallOutput(device, c.style, c.count, SpanListBytes(c.words, c.deltas),
                             {.pen = &pen, .drawMode = &mode, .clip = c.clip}));
    EXPECT_TRUE(BandIs(device, {{'#', kStart ^ kPenColor}}, c.picture));
  }
}

// Pattern cells count from band coordinates, not from the caller's.
TEST(OutputScaled, HatchCellsAreBandPixels) {
  ScaledDevice device({.width = 13, .height = 6, .resolutionB = 720, .left = 4, .top = 6});
  const PhysicalBrush brush = HatchBrush(device.handle(), HS_CROSS, 0x0000FF);
  DRAWMODE mode = MakeDrawMode();
  mode.bkMode = TRANSPARENT;
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
    const char* name;
    int16_t rop2;
    uint32_t (*result)(uint32_t p, uint32_t d);
  };
  const Case cases[] = {
      {"copy", R2_COPYPEN, [](uint32_t p, uint32_t) { return Regrayed(p); }},
      {"exclusive or", R2_XORPEN, [](uint32_t p, uint32_t d) { return Regrayed(p ^ d); }},
      {"invert", R2_NOT, [](uint32_t, uint32_t d) { return Regrayed(~d & 0xFFFFFF); }},
      {"merge", R2_MERGEPEN, [](uint32_t p, uint32_t d) { return Regrayed(p | d); }},
  };
  for (const Case& c : cases) {
    for (int fill = 0; fill < 2; ++fill) {
      ScaledDevice device({.bitsPerPixel = 0, .width = 9, .height = 2});
      PlaneImage expected = BandImage(device);
      for (uint32_t row = 0; row < 2; ++row) {
        for (uint32_t column = 0; column < 9; ++column) expected.SetColor(column, row, 0x102030 + column * 0x070503);
      }
      std::memcpy(device.band().data(), expected.bytes().data(), expected.bytes().size());
      // Records of the host's own making, so that the color is not gray before it is written.
      const PhysicalPen pen{PS_SOLID, 1, 1, 0x00FF8001};
      PhysicalBrush hatch{};
      hatch.style = BS_HATCHED;
      hatch.hatchScale[0] = hatch.hatchScale[1] = 1;
      for (uint32_t i = 0; i < 64; ++i) hatch.cells[i] = i % 2 == 0 ? 0xFF0180FF : 0;  // even columns
      DRAWMODE mode = MakeDrawMode();
      mode.Rop2 = c.rop2;
      mode.bkMode = TRANSPARENT;
      const uint32_t ink = fill == 0 ? 0xFF8001u : 0x0180FFu;
      for (uint32_t column = 2; column < 7; ++column) {
        if (fill == 1 && column % 2 != 0) continue;
        expected.SetColor(column, 1, c.result(ink, expected.Color(column, 1)));
      }
      PaintRow(device, 2, 7, 1,
               {.pen = fill == 0 ? &pen : nullptr, .brush = fill == 0 ? nullptr : &hatch, .drawMode = &mode});
      EXPECT_TRUE(SameImage(expected, BandImage(device))) << c.name << (fill == 0 ? ", solid" : ", hatched");
    }
  }
}

}  // namespace
}  // namespace qnv::test
