// Figures on the dual-plane device: where a figure puts ink the tag plane takes 1, elsewhere it keeps its tags.
#include <gtest/gtest.h>

#include "output/output_call.h"
#include "support/tag_plane.h"
#include "support/tag_rules.h"

namespace qnv::test {
namespace {

constexpr uint32_t kWhite = 0x00FFFFFF;

DeviceOptions DualOptions(uint32_t width = 9, uint32_t height = 2) {
  return {.width = width, .height = height, .tagPlane = true};
}

// The color plane is that of a plain device in every case.
PlaneImage PlainResult(const DeviceOptions& dual, uint32_t (*paint)(const TestDevice&, const OutputSetup&),
                       const OutputSetup& setup) {
  DeviceOptions options = dual;
  options.tagPlane = false;
  TestDevice plain(options);
  paint(plain, setup);
  return BandImage(plain);
}

uint32_t PaintMiddle(const TestDevice& device, const OutputSetup& setup) { return PaintRow(device, 2, 6, 1, setup); }

TEST(OutputDualPlane, SolidFiguresByCodeAndColor) {
  // Colors count with all their 32 bits.
  const uint32_t colors[] = {kWhite, 0, 0x0000FF, 0x01FFFFFF, 0x01000000, 0x00FFFFFE};
  for (const Rop2Marking& code : kRop2Markings) {
    for (uint32_t color : colors) {
      for (bool withPen : {true, false}) {
        TestDevice device(DualOptions());
        MixTags(&device);
        const PhysicalPen pen{PS_SOLID, 1, 1, color};
        PhysicalBrush brush{};
        brush.colour = color;
        DRAWMODE mode = MakeDrawMode();
        mode.Rop2 = code.code;
        const OutputSetup setup{
            .pen = withPen ? &pen : nullptr, .brush = withPen ? nullptr : &brush, .drawMode = &mode};
        EXPECT_EQ(1u, PaintMiddle(device, setup));
        EXPECT_TRUE(TagsMarked(device, Marks(code.marking, color) ? "...........1111..." : ""))
            << code.name << ", color " << std::hex << color << (withPen ? ", pen" : ", brush");
        EXPECT_TRUE(SameImage(PlainResult(DualOptions(), PaintMiddle, setup), BandImage(device))) << code.name;
      }
    }
  }
}

// Right after creation and after a clear the plane is known to hold only 1 and is not touched.
TEST(OutputDualPlane, UniformPlaneIsLeftAlone) {
  TestDevice device(DualOptions());
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x0000FF};
  const DRAWMODE mode = MakeDrawMode();
  EXPECT_EQ(1u, PaintMiddle(device, {.pen = &pen, .drawMode = &mode}));
  EXPECT_TRUE(SameImage(UntouchedTags(device), TagImage(device)));
  EXPECT_EQ(0xFFFFu, CallOutput(device, 6, 1, SpanListBytes({0, 0, 0, 0}), {.pen = &pen, .drawMode = &mode}))
      << "the result is the color plane's";

  MixTags(&device);
  device.Clear();
  device.tags()->Fill(0x77);
  EXPECT_EQ(1u, PaintMiddle(device, {.pen = &pen, .drawMode = &mode}));
  EXPECT_EQ(0x77, TagImage(device).bytes()[device.tagStride() + 3]);
}

TEST(OutputDualPlane, UnknownStylesAndMarkers) {
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x0000FF};
  PhysicalBrush hollow{};
  hollow.style = BS_HOLLOW;
  const DRAWMODE mode = MakeDrawMode();
  struct Case {
    const char* name;
    uint32_t style;
    uint32_t result;
  };
  const Case cases[] = {
      {"unknown 6", 6, 0}, {"unknown 0", 0, 0}, {"unknown 65535", 65535, 0}, {"begin", 80, 1}, {"end", 81, 1},
  };
  for (const Case& c : cases) {
    TestDevice device(DualOptions());
    MixTags(&device);
    EXPECT_EQ(c.result, CallOutput(device, c.style, 2, SpanListBytes({0, 1, 2, 6}), {.pen = &pen, .drawMode = &mode}))
        << c.name;
    EXPECT_EQ(c.result,
              CallOutput(device, c.style, 2, SpanListBytes({0, 1, 2, 6}), {.brush = &hollow, .drawMode = &mode}))
        << c.name << ", hollow brush";
    EXPECT_TRUE(TagsMarked(device, "")) << c.name;
    EXPECT_TRUE(BandUntouched(device)) << c.name;
  }
}

// A null pen marks nothing even when the figure is painted.
TEST(OutputDualPlane, NullPen) {
  const PhysicalPen pen{PS_NULL, 1, 1, 0x0000FF};
  PhysicalBrush brush{};
  brush.colour = 0x00FF00;
  const DRAWMODE mode = MakeDrawMode();
  TestDevice device(DualOptions());
  MixTags(&device);
  EXPECT_EQ(1u, PaintMiddle(device, {.pen = &pen, .brush = &brush, .drawMode = &mode}));
  EXPECT_TRUE(TagsMarked(device, ""));
  EXPECT_TRUE(BandIs(device, {{'g', 0x00FF00}},
                     "........."
                     "..gggg..."));
}

struct BrushCase {
  const char* name;
  int16_t rop2;
  uint16_t style;
  uint16_t patternDepth;
  std::vector<uint32_t> cells;  // of the first row; every row is alike
  uint32_t color;
  int16_t bkMode;
  uint32_t bkColor;
  uint32_t textColor;
  uint32_t result;
  const char* marks;  // of one row of eight cells
};

constexpr uint32_t kRed = 0x0000FF;

// A hatch of two line cells and six gaps, and patterns of four cells repeated.
std::vector<uint32_t> HatchCells(uint32_t color) {
  return {0xFF000000 | color, 0xFF000000 | color, 0, 0x00FFFFFF, 0x00123456, 0, 0, 0};
}

std::vector<uint32_t> ColorCells() {
  return {0xFFFFFFFF, 0xFF000000, 0xFF0000FF, 0xFFFFFFFF, 0xFF000000, 0xFF0000FF, 0xFFFFFFFF, 0xFF000000};
}

std::vector<uint32_t> OneBitCells() {
  return {0x00FFFFFF, 0xFF000000, 0x00FFFFFF, 0xFF000000, 0x00FFFFFF, 0xFF000000, 0xFF000000, 0xFF000000};
}

const BrushCase kBrushCases[] = {
    {"hatch, copied, opaque: all of it", R2_COPYPEN, BS_HATCHED, 0, HatchCells(kRed), kRed, OPAQUE, kWhite, 0, 1,
     "11111111"},
    {"hatch, copied, transparent: the lines", R2_COPYPEN, BS_HATCHED, 0, HatchCells(kRed), kRed, TRANSPARENT, kWhite, 0,
     1, "11......"},
    {"white hatch, copied, transparent: the lines", R2_COPYPEN, BS_HATCHED, 0, HatchCells(kWhite), kWhite, TRANSPARENT,
     kWhite, 0, 1, "11......"},
    {"hatch, black code, transparent: the lines", R2_BLACK, BS_HATCHED, 0, HatchCells(kRed), kRed, TRANSPARENT, kWhite,
     0, 1, "11......"},
    {"hatch, exclusive or", R2_XORPEN, BS_HATCHED, 0, HatchCells(kRed), kRed, OPAQUE, 0, 0, 1, "........"},
    {"hatch, masked, opaque on white: the lines", R2_MASKPEN, BS_HATCHED, 0, HatchCells(kRed), kRed, OPAQUE, kWhite, 0,
     1, "11......"},
    {"hatch, masked, opaque on a color: all of it", R2_MASKPEN, BS_HATCHED, 0, HatchCells(kRed), kRed, OPAQUE, 0x00FF00,
     0, 1, "11111111"},
    {"white hatch, masked, opaque on a color: the gaps", R2_MASKPEN, BS_HATCHED, 0, HatchCells(kWhite), kWhite, OPAQUE,
     0x00FF00, 0, 1, "..111111"},
    {"white hatch, masked, opaque on white: nothing", R2_MASKPEN, BS_HATCHED, 0, HatchCells(kWhite), kWhite, OPAQUE,
     kWhite, 0, 1, "........"},
    {"hatch, masked, transparent: the lines", R2_MASKPEN, BS_HATCHED, 0, HatchCells(kRed), kRed, TRANSPARENT, 0x00FF00,
     0, 1, "11......"},
    {"white hatch, masked, transparent: nothing", R2_MASKPEN, BS_HATCHED, 0, HatchCells(kWhite), kWhite, TRANSPARENT,
     0x00FF00, 0, 1, "........"},
    {"black hatch, merged, opaque on a color: the gaps", R2_MERGEPEN, BS_HATCHED, 0, HatchCells(0), 0, OPAQUE, kRed, 0,
     1, "..111111"},
    {"black hatch, merged, opaque on black: nothing", R2_MERGEPEN, BS_HATCHED, 0, HatchCells(0), 0, OPAQUE, 0, 0, 1,
     "........"},
    {"hatch, merged, opaque on black: the lines", R2_MERGEPEN, BS_HATCHED, 0, HatchCells(kRed), kRed, OPAQUE, 0, 0, 1,
     "11......"},
    {"color pattern, copied: all of it", R2_COPYPEN, BS_PATTERN, 24, ColorCells(), 0, TRANSPARENT, kWhite, 0, 1,
     "11111111"},
    {"color pattern, masked: but for white", R2_MASKPEN, BS_PATTERN, 24, ColorCells(), 0, OPAQUE, 0, 0, 1, ".11.11.1"},
    {"color pattern, merged: but for black", R2_MERGEPEN, BS_PATTERN, 24, ColorCells(), 0, OPAQUE, 0, 0, 1, "1.11.11."},
    {"gray pattern, masked: but for white", R2_MASKPEN, BS_PATTERN, 8, ColorCells(), 0, OPAQUE, 0, 0, 1, ".11.11.1"},
    {"color pattern, inverted: nothing", R2_NOT, BS_PATTERN, 24, ColorCells(), 0, OPAQUE, 0, 0, 1, "........"},
    {"one-bit pattern, copied: all of it", R2_COPYPEN, BS_PATTERN, 1, OneBitCells(), 0, TRANSPARENT, kWhite, kWhite, 1,
     "11111111"},
    {"one-bit pattern, masked, white background", R2_MASKPEN, BS_PATTERN, 1, OneBitCells(), 0, OPAQUE, kWhite, kRed, 1,
     ".1.1.111"},
    {"one-bit pattern, masked, white text", R2_MASKPEN, BS_PATTERN, 1, OneBitCells(), 0, OPAQUE, kRed, kWhite, 1,
     "1.1.1..."},
    {"one-bit pattern, masked, both white", R2_MASKPEN, BS_PATTERN, 1, OneBitCells(), 0, OPAQUE, kWhite, kWhite, 1,
     "........"},
    {"one-bit pattern, masked, neither white", R2_MASKPEN, BS_PATTERN, 1, OneBitCells(), 0, OPAQUE, kRed, 0, 1,
     "11111111"},
    {"one-bit pattern, merged, black text", R2_MERGEPEN, BS_PATTERN, 1, OneBitCells(), 0, OPAQUE, kWhite, 0, 1,
     "1.1.1..."},
    {"hollow, copied", R2_COPYPEN, BS_HOLLOW, 0, {}, kRed, OPAQUE, kWhite, 0, 1, "........"},
    {"hollow, masked", R2_MASKPEN, BS_HOLLOW, 0, {}, kRed, OPAQUE, kWhite, 0, 1, "........"},
    {"unknown brush, copied: refused", R2_COPYPEN, 4, 0, {}, kRed, OPAQUE, kWhite, 0, 0, "........"},
    {"unknown brush, masked: refused", R2_MASKPEN, 9, 0, {}, kRed, OPAQUE, kWhite, 0, 0, "........"},
    {"unknown brush, exclusive or: not marked, nothing to paint",
     R2_XORPEN,
     4,
     0,
     {},
     kRed,
     OPAQUE,
     kWhite,
     0,
     1,
     "........"},
};

TEST(OutputDualPlane, HatchesAndPatterns) {
  for (const BrushCase& c : kBrushCases) {
    // Replicated cells are marked as they are painted.
    for (uint8_t factor : {uint8_t{1}, uint8_t{2}}) {
      SCOPED_TRACE(std::string(c.name) + ", factor " + std::to_string(factor));
      const DeviceOptions options = DualOptions(19, 3);
      TestDevice device(options);
      MixTags(&device);
      PhysicalBrush brush{};
      brush.style = c.style;
      brush.patternDepth = c.patternDepth;
      brush.hatchScale[0] = brush.hatchScale[1] = factor;
      brush.colour = c.color;
      for (std::size_t i = 0; i < 64 && !c.cells.empty(); ++i) brush.cells[i] = c.cells[i % 8];
      DRAWMODE mode = MakeDrawMode();
      mode.Rop2 = c.rop2;
      mode.bkMode = c.bkMode;
      mode.bkColor = c.bkColor;
      mode.TextColor = c.textColor;
      const OutputSetup setup{.brush = &brush, .drawMode = &mode};
      const auto paint = [](const TestDevice& target, const OutputSetup& how) {
        return PaintRectangle(target, 1, 1, 18, 2, how);
      };
      EXPECT_EQ(c.result, paint(device, setup));
      PlaneImage tags = MixedTags(device);
      for (uint32_t column = 1; column < 18; ++column) {
        if (c.marks[column / factor % 8] == '1') tags.SetColor(column, 1, Gray(QNV_TAG_GRAPHICS));
      }
      EXPECT_TRUE(SameImage(tags, TagImage(device))) << "tag plane";
      EXPECT_TRUE(SameImage(PlainResult(options, paint, setup), BandImage(device))) << "color plane";
      EXPECT_TRUE(device.FencesIntact());
    }
  }
}

// Marks follow clip, band and origin as the color does, in every encoding.
TEST(OutputDualPlane, MarksFollowTheFigure) {
  struct Case {
    const char* name;
    uint32_t style;
    uint32_t count;
    std::vector<int16_t> words;
    std::vector<int> deltas;
    const char* marks;
  };
  const Case cases[] = {
      {"scanlines",
       OS_SCANLINES,
       3,
       {0, -2, -8, -5, -4, -3},
       {},
       "........."
       "..111.1.."},
      {"banded spans",
       OS_BANDED_SPANS,
       1,
       {2, -50, 50, -8, -5, 2},
       {},
       "........."
       "..111...."
       "..111...."},
      {"row records",
       OS_ROW_RECORDS,
       2,
       {-2, 2, -8, -7, 2, -7, -5},
       {},
       "........."
       "..1......"
       "...11...."},
      {"row spans",
       OS_ROW_SPANS,
       3,
       {-3, -9, 9, -8, -7, -100, 100},
       {},
       "........."
       "..1......"
       "..111111."},
      {"byte deltas",
       OS_BYTE_DELTAS,
       3,
       {-3, -8, -7},
       {1, 1, 1, 2},
       "........."
       "...1....."
       "....11..."},
      {"nibble deltas",
       OS_NIBBLE_DELTAS,
       3,
       {-3, -8, -7},
       {0x11, 0x21},
       "........."
       "...1....."
       "....11..."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    DualPlaneDevice device({.width = 9, .height = 3, .left = 20, .top = 7});
    MixTags(&device);
    device.SetOrigin(30, 10);
    const PhysicalPen pen{PS_SOLID, 1, 1, 0x112233};
    const DRAWMODE mode = MakeDrawMode();
    const BandRect clip{-8, -2, -2, 40};
    EXPECT_EQ(1u, CallOutput(device, c.style, c.count, SpanListBytes(c.words, c.deltas),
                             {.pen = &pen, .drawMode = &mode, .clip = clip}));
    EXPECT_TRUE(TagsMarked(device, c.marks));
    std::string colors = c.marks;
    for (char& letter : colors) letter = letter == '1' ? '#' : '.';
    EXPECT_TRUE(BandIs(device, {{'#', 0x112233}}, colors));
  }
}

// A device described with one byte a pixel has a color plane of that size, and nothing goes past it.
TEST(OutputDualPlane, DescribedWithAnotherDepth) {
  for (uint16_t depth : {uint16_t{8}, uint16_t{16}, uint16_t{0}}) {
    DualPlaneDevice device({.bitsPerPixel = depth, .width = 19, .height = 5});
    const PhysicalPen pen{PS_SOLID, 1, 1, 0x112233};
    const DRAWMODE mode = MakeDrawMode();
    for (bool mixed : {false, true}) {
      if (mixed) MixTags(&device);
      for (int16_t row = -1; row < 6; ++row) PaintRow(device, -50, 50, row, {.pen = &pen, .drawMode = &mode});
      EXPECT_EQ(1u, PaintRectangle(device, -50, -50, 50, 50, {.pen = &pen, .drawMode = &mode}));
      EXPECT_TRUE(device.FencesIntact()) << depth << " bits";
    }
  }
}

// The plane's pass works on copies.
TEST(OutputDualPlane, DrawModeIsOnlyRead) {
  TestDevice device(DualOptions());
  MixTags(&device);
  const PhysicalBrush brush = HatchBrush(device.handle(), HS_CROSS, kRed);
  DRAWMODE mode = MakeDrawMode();
  mode.bkColor = 0x445566;
  const DRAWMODE before = mode;
  const PhysicalBrush brushBefore = brush;
  EXPECT_EQ(1u, PaintMiddle(device, {.brush = &brush, .drawMode = &mode}));
  EXPECT_EQ(0, std::memcmp(&mode, &before, sizeof mode));
  EXPECT_EQ(0, std::memcmp(&brush, &brushBefore, sizeof brush));
}

}  // namespace
}  // namespace qnv::test
