// How pen, brush and draw mode become the fill of a figure, and how the fill lies on the page.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

constexpr uint32_t kInk = 0x000000FF;
constexpr uint32_t kBack = 0x0000FF00;
constexpr uint32_t kUnusedBackground = 0x00777777;

struct HatchCase {
  const char* name;
  int16_t hatch;
  const char* rows;  // 8 x 8, '#' line, '.' gap
};

const HatchCase kHatches[] = {
    {"horizontal", HS_HORIZONTAL,
     "########"
     "........"
     "........"
     "........"
     "........"
     "........"
     "........"
     "........"},
    {"vertical", HS_VERTICAL,
     "#......."
     "#......."
     "#......."
     "#......."
     "#......."
     "#......."
     "#......."
     "#......."},
    {"forward diagonal", HS_FDIAGONAL,
     "#......."
     ".#......"
     "..#....."
     "...#...."
     "....#..."
     ".....#.."
     "......#."
     ".......#"},
    {"backward diagonal", HS_BDIAGONAL,
     ".......#"
     "......#."
     ".....#.."
     "....#..."
     "...#...."
     "..#....."
     ".#......"
     "#......."},
    {"cross", HS_CROSS,
     "########"
     "#......."
     "#......."
     "#......."
     "#......."
     "#......."
     "#......."
     "#......."},
    {"diagonal cross with its one-pixel last row", HS_DIAGCROSS,
     "#.....#."
     ".#...#.."
     "..#.#..."
     "...#...."
     "..#.#..."
     ".#...#.."
     "#.....#."
     ".......#"},
};

uint32_t Remainder(int32_t value, uint32_t period) {
  const int32_t p = static_cast<int32_t>(period);
  return static_cast<uint32_t>(((value % p) + p) % p);
}

struct ScaleCase {
  const char* name;
  uint16_t resolution;
  uint32_t factor;  // pattern pixels for a hatch cell
};

const ScaleCase kScales[] = {
    {"360 dots: single", 360, 1},
    {"719 dots: single", 719, 1},
    {"720 dots: doubled", 720, 2},
    {"1440 dots: a factor of 3 counts as 2", 1440, 2},
    {"5760 dots: a factor of 9 counts as 2", 5760, 2},
};

struct PlaceCase {
  const char* name;
  BandPlace place;
};

// Cells count from device coordinate 0, wherever band, origin and figure lie, also to the left of it.
const PlaceCase kPlaces[] = {
    {"band at the page's corner", {}},
    {"band at 100, 43", {.left = 100, .top = 43}},
    {"band at -21, -13", {.left = -21, .top = -13}},
    {"figure shifted by the origin", {.left = 5, .top = 3, .originX = 3, .originY = -6}},
};

TEST(Hatches, EveryHatchScalePlaceAndDepth) {
  for (const HatchCase& hatch : kHatches) {
    for (const ScaleCase& scale : kScales) {
      for (const PlaceCase& where : kPlaces) {
        for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
          for (int16_t bkMode : {int16_t{TRANSPARENT}, int16_t{OPAQUE}, int16_t{0}}) {
            TestDevice device({.bitsPerPixel = depth,
                               .width = 37,
                               .height = 35,
                               .resolutionA = scale.resolution,
                               .resolutionB = scale.resolution,
                               .left = where.place.left,
                               .top = where.place.top});
            device.SetOrigin(where.place.originX, where.place.originY);
            const PhysicalBrush brush = HatchBrush(device.handle(), hatch.hatch, kInk, kUnusedBackground);
            DRAWMODE mode = MakeDrawMode();
            mode.bkMode = bkMode;
            mode.bkColor = Physical(device, kBack);
            PlaneImage expected = UntouchedBand(device);
            for (uint32_t row = 0; row < 35; ++row) {
              for (uint32_t column = 0; column < 37; ++column) {
                const uint32_t cellX =
                    Remainder(where.place.left + static_cast<int32_t>(column), 8 * scale.factor) / scale.factor;
                const uint32_t cellY =
                    Remainder(where.place.top + static_cast<int32_t>(row), 8 * scale.factor) / scale.factor;
                if (hatch.rows[cellY * 8 + cellX] == '#') {
                  expected.SetColor(column, row, Physical(device, kInk));
                } else if (bkMode == OPAQUE) {
                  expected.SetColor(column, row, Physical(device, kBack));
                }
              }
            }
            EXPECT_EQ(1u, PaintRectangle(device, -1000, -1000, 1000, 1000, {.brush = &brush, .drawMode = &mode}));
            EXPECT_TRUE(SameImage(expected, BandImage(device)))
                << hatch.name << ", " << scale.name << ", " << where.name << ", " << depth << " bits, bkMode "
                << bkMode;
            EXPECT_TRUE(device.FencesIntact());
          }
        }
      }
    }
  }
}

TEST(Hatches, ScaleOfEachDevice) {
  struct Case {
    const char* name;
    DeviceOptions options;
    uint32_t factor;
  };
  const Case cases[] = {
      {"plain", {.width = 20, .height = 3, .resolutionA = 720, .resolutionB = 720}, 2},
      {"dual plane", {.width = 20, .height = 3, .resolutionA = 720, .resolutionB = 720, .tagPlane = true}, 2},
      {"mapped device never doubles",
       {.kind = QNV_KIND_SCALED, .width = 20, .height = 3, .resolutionA = 720, .resolutionB = 720},
       1},
  };
  for (const Case& c : cases) {
    TestDevice device(c.options);
    const PhysicalBrush brush = HatchBrush(device.handle(), HS_VERTICAL, kInk);
    DRAWMODE mode = MakeDrawMode();
    mode.bkMode = TRANSPARENT;
    PlaneImage expected = UntouchedBand(device);
    for (uint32_t column = 0; column < 20; ++column) {
      if (column / c.factor % 8 == 0) expected.SetColor(column, 1, kInk);
    }
    PaintRow(device, 0, 20, 1, {.brush = &brush, .drawMode = &mode});
    EXPECT_TRUE(SameImage(expected, BandImage(device))) << c.name;
  }
}

// A transparent gap leaves the pixel alone under every operation, the fast ones and the general one.
TEST(Hatches, GapsStayUnderExclusiveOrAndInvert) {
  for (int16_t rop2 : {int16_t{R2_XORPEN}, int16_t{R2_NOT}, int16_t{R2_COPYPEN}, int16_t{R2_WHITE}}) {
    TestDevice device({.width = 10, .height = 1, .fill = 0x0F});
    const PhysicalBrush brush = HatchBrush(device.handle(), HS_VERTICAL, kInk);
    DRAWMODE mode = MakeDrawMode();
    mode.bkMode = TRANSPARENT;
    mode.Rop2 = rop2;
    PaintRow(device, 0, 10, 0, {.brush = &brush, .drawMode = &mode});
    const uint32_t result = rop2 == R2_XORPEN  ? kInk ^ 0x0F0F0F
                            : rop2 == R2_NOT   ? 0xF0F0F0
                            : rop2 == R2_WHITE ? 0xFFFFFF
                                               : kInk;
    EXPECT_TRUE(BandIs(device, {{'#', result}}, "#.......#.")) << "rop2 " << rop2;
  }
}

// The records themselves decide: the top byte of a cell is the mark, whoever wrote it.
TEST(Hatches, CellsOfARecordBuiltByTheHost) {
  PhysicalBrush brush{};
  brush.style = BS_HATCHED;
  brush.hatchScale[0] = 1;
  brush.hatchScale[1] = 1;
  brush.cells[0] = 0xFF332211;  // foreground
  brush.cells[1] = 0x01665544;  // any mark paints
  brush.cells[2] = 0x00998877;  // background
  brush.cells[3] = 0x00000000;
  struct Case {
    const char* name;
    int16_t bkMode;
    const char* picture;
  };
  const Case cases[] = {
      {"transparent", TRANSPARENT, "fm......f"},
      {"opaque", OPAQUE, "fmbbbbbbf"},
      {"any other mode is transparent", 3, "fm......f"},
  };
  for (const Case& c : cases) {
    TestDevice device({.width = 9, .height = 1});
    DRAWMODE mode = MakeDrawMode();
    mode.bkMode = c.bkMode;
    mode.bkColor = 0x00ABCDEF;
    PaintRow(device, 0, 9, 0, {.brush = &brush, .drawMode = &mode});
    EXPECT_TRUE(BandIs(device, {{'f', 0x332211}, {'m', 0x665544}, {'b', 0xABCDEF}}, c.picture)) << c.name;
  }
}

TEST(Hatches, ScaleFactorsOfARecordBuiltByTheHost) {
  struct Case {
    const char* name;
    uint8_t scaleX, scaleY;
    const char* picture;  // 18 x 4, one marked cell at (0, 0)
  };
  const Case cases[] = {
      {"1 by 1", 1, 1, "#.......#.......#."},
      {"2 by 1", 2, 1, "##..............##"},
      {"1 by 2", 1, 2,
       "#.......#.......#."
       "#.......#.......#."},
      {"7 by 200 counts as 2 by 2", 7, 200,
       "##..............##"
       "##..............##"},
      {"0 across paints nothing", 0, 1, ".................."},
      {"0 down paints nothing", 1, 0, ".................."},
  };
  for (const Case& c : cases) {
    for (uint16_t style : {uint16_t{BS_HATCHED}, uint16_t{BS_PATTERN}}) {
      PhysicalBrush brush{};
      brush.style = style;
      brush.patternDepth = 24;
      brush.hatchScale[0] = c.scaleX;
      brush.hatchScale[1] = c.scaleY;
      brush.cells[0] = 0xFF0000FF;
      TestDevice device({.width = 18, .height = 4});
      DRAWMODE mode = MakeDrawMode();
      mode.bkMode = TRANSPARENT;
      mode.Rop2 = R2_XORPEN;  // the black cells of a pattern leave no trace
      EXPECT_EQ(1u, PaintRectangle(device, 0, 0, 18, 4, {.brush = &brush, .drawMode = &mode}));
      EXPECT_TRUE(BandIs(device, {{'#', 0x0000FF ^ 0xCCCCCC}}, c.picture)) << c.name << ", style " << style;
    }
  }
}

// Pattern brushes: every cell paints, whatever the background mode.
struct PatternCase {
  const char* name;
  uint8_t bitsPixel;
  uint16_t widthBytes;
  std::vector<uint8_t> bytes;  // 8 rows
  std::vector<PictureInk> inks;
  const char* firstRow;   // of a 10-pixel row at y = 0
  const char* secondRow;  // at y = 1
};

std::vector<uint8_t> Rows(std::vector<uint8_t> first, std::vector<uint8_t> second, std::size_t widthBytes) {
  std::vector<uint8_t> bytes(8 * widthBytes, 0);
  std::copy(first.begin(), first.end(), bytes.begin());
  std::copy(second.begin(), second.end(), bytes.begin() + static_cast<std::ptrdiff_t>(widthBytes));
  return bytes;
}

TEST(Patterns, DepthsOfTheBitmap) {
  // A cell takes its three bytes lowest first, so byte 0 lands last in the band.
  const PatternCase cases[] = {
      {"24 bits",
       24,
       26,
       Rows({1, 2, 3, 4, 5, 6}, {7, 8, 9}, 26),
       {{'a', 0x030201}, {'b', 0x060504}, {'c', 0x090807}, {'k', 0}},
       "abkkkkkkab",
       "ckkkkkkkck"},
      {"8 bits",
       8,
       8,
       Rows({10, 20, 30}, {40}, 8),
       {{'a', Gray(10)}, {'b', Gray(20)}, {'c', Gray(30)}, {'d', Gray(40)}, {'k', 0}},
       "abckkkkkab",
       "dkkkkkkkdk"},
      {"1 bit: set takes the background, clear the text color",
       1,
       2,
       Rows({0xA1}, {0x7F}, 2),
       {{'t', 0x0A0B0C}, {'b', 0x0D0E0F}},
       "btbttttbbt",
       "tbbbbbbbtb"},
      {"4 bits are read as one",
       4,
       4,
       Rows({0xA1}, {0x7F}, 4),
       {{'t', 0x0A0B0C}, {'b', 0x0D0E0F}},
       "btbttttbbt",
       "tbbbbbbbtb"},
  };
  for (const PatternCase& c : cases) {
    for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
      for (int16_t bkMode : {int16_t{TRANSPARENT}, int16_t{OPAQUE}}) {
        TestDevice device({.bitsPerPixel = depth, .width = 10, .height = 2});
        const SourceBitmap bitmap{0, 8, 8, c.widthBytes, 1, c.bitsPixel, c.bytes.data()};
        const PhysicalBrush brush = PatternBrush(device.handle(), bitmap);
        DRAWMODE mode = MakeDrawMode();
        mode.bkMode = bkMode;
        mode.TextColor = 0x0A0B0C;
        mode.bkColor = 0x0D0E0F;
        EXPECT_EQ(1u, PaintRectangle(device, 0, 0, 10, 2, {.brush = &brush, .drawMode = &mode}));
        const std::string picture = std::string(c.firstRow) + c.secondRow;
        EXPECT_TRUE(BandIs(device, c.inks, picture)) << c.name << ", " << depth << " bits, bkMode " << bkMode;
      }
    }
  }
}

// Of a one-bit pattern's cells exactly 0xFFFFFF is background; the top byte does not count.
TEST(Patterns, OneBitCellsOfARecordBuiltByTheHost) {
  PhysicalBrush brush{};
  brush.style = BS_PATTERN;
  brush.patternDepth = 1;
  brush.hatchScale[0] = brush.hatchScale[1] = 1;
  brush.cells[0] = 0x00FFFFFF;
  brush.cells[1] = 0x00FFFFFE;
  brush.cells[2] = 0xFFFFFFFF;
  brush.cells[3] = 0xFF000000;
  brush.cells[4] = 0x12FFFFFF;
  TestDevice device({.width = 8, .height = 1});
  DRAWMODE mode = MakeDrawMode();
  mode.TextColor = 0x0A0B0C;
  mode.bkColor = 0x0D0E0F;
  PaintRow(device, 0, 5, 0, {.brush = &brush, .drawMode = &mode});
  EXPECT_TRUE(BandIs(device, {{'t', 0x0A0B0C}, {'b', 0x0D0E0F}}, "btbtb..."));
}

struct ChoiceCase {
  const char* name;
  bool pen;
  int brushStyle;  // -1: no brush
  const char* picture;
};

TEST(FillChoice, PenBrushOrNeither) {
  const ChoiceCase cases[] = {
      {"pen alone", true, -1, ".pppp."},
      {"brush alone", false, BS_SOLID, ".bbbb."},
      {"a brush comes before a pen", true, BS_SOLID, ".bbbb."},
      {"neither: black", false, -1, ".kkkk."},
      {"hollow brush paints nothing", false, BS_HOLLOW, "......"},
      {"hollow brush beside a pen paints nothing", true, BS_HOLLOW, "......"},
      {"unknown brush paints nothing", true, 4, "......"},
      {"unknown brush with a high style", false, 0x7777, "......"},
  };
  for (const ChoiceCase& c : cases) {
    for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
      TestDevice device({.bitsPerPixel = depth, .width = 6, .height = 1});
      const PhysicalPen pen{PS_SOLID, 1, 1, Gray(0x11)};
      PhysicalBrush brush{};
      brush.style = static_cast<uint16_t>(c.brushStyle);
      brush.colour = Gray(0x22);
      const DRAWMODE mode = MakeDrawMode();
      const OutputSetup setup{
          .pen = c.pen ? &pen : nullptr, .brush = c.brushStyle < 0 ? nullptr : &brush, .drawMode = &mode};
      EXPECT_EQ(1u, PaintRow(device, 1, 5, 0, setup)) << c.name;
      EXPECT_TRUE(BandIs(device, {{'p', Gray(0x11)}, {'b', Gray(0x22)}, {'k', 0}}, c.picture)) << c.name;
    }
  }
}

// A null-style pen is a pen like any other here: only its color is read.
TEST(FillChoice, PenStyleIsNotRead) {
  TestDevice device({.width = 4, .height = 1});
  const PhysicalPen pen{PS_NULL, 0, 0, 0x010203};
  const DRAWMODE mode = MakeDrawMode();
  PaintRow(device, 1, 3, 0, {.pen = &pen, .drawMode = &mode});
  EXPECT_TRUE(BandIs(device, {{'p', 0x010203}}, ".pp."));
}

// Without a draw mode the fill of the call before stays in force, whatever pen and brush say.
TEST(FillChoice, NullDrawModeKeepsTheFill) {
  const PhysicalPen red{PS_SOLID, 1, 1, 0x0000FF};
  const PhysicalPen green{PS_SOLID, 1, 1, 0x00FF00};
  PhysicalBrush hollow{};
  hollow.style = BS_HOLLOW;
  DRAWMODE mode = MakeDrawMode();

  TestDevice device({.width = 8, .height = 1});
  EXPECT_EQ(1u, PaintRow(device, 0, 1, 0, {.pen = &red})) << "nothing prepared yet";
  EXPECT_TRUE(BandUntouched(device));
  PaintRow(device, 1, 2, 0, {.pen = &red, .drawMode = &mode});
  PaintRow(device, 2, 3, 0, {.pen = &green});
  EXPECT_TRUE(BandIs(device, {{'r', 0x0000FF}}, ".rr.....")) << "color kept";
  PaintRow(device, 3, 4, 0, {.brush = &hollow, .drawMode = &mode});
  EXPECT_EQ(1u, PaintRow(device, 4, 5, 0, {.pen = &green})) << "a hollow fill is kept too";
  EXPECT_TRUE(BandIs(device, {{'r', 0x0000FF}}, ".rr....."));
  mode.Rop2 = R2_BLACK;
  PaintRow(device, 5, 6, 0, {.pen = &green, .drawMode = &mode});
  PaintRow(device, 6, 7, 0, {.pen = &red});
  EXPECT_TRUE(BandIs(device, {{'r', 0x0000FF}, {'k', 0}}, ".rr..kk.")) << "the operation is kept as well";
}

}  // namespace
}  // namespace qnv::test
