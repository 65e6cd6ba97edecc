// Figures on the dual-plane device: where a figure puts ink the tag plane takes 1, elsewhere it keeps its tags. The
// color plane is that of a plain device in every case.
#include <gtest/gtest.h>

#include "output/output_call.h"
#include "support/tag_plane.h"
#include "support/tag_rules.h"
#include "support/transfer_model.h"

namespace qnv::test {
namespace {

constexpr uint32_t kWhite = 0x00FFFFFF;
constexpr uint32_t kRed = 0x000000FF;
constexpr DeviceOptions kDualBand{.width = 9, .height = 2, .tagPlane = true};

TEST(OutputDualPlane, SolidFiguresByCodeAndColor) {
  for (const Rop2Marking& code : kRop2Markings) {
    // Colors count with all their 32 bits.
    for (uint32_t color : {kWhite, 0u, kRed, 0x01FFFFFFu, 0x01000000u, 0x00FFFFFEu}) {
      for (bool withPen : {true, false}) {
        SCOPED_TRACE(Text(code.name, ", color ", color, withPen ? ", pen" : ", brush"));
        TestDevice device(kDualBand);
        MixTags(&device);
        const PhysicalPen pen{PS_SOLID, 1, 1, color};
        const PhysicalBrush brush = BrushRecord(BS_SOLID, color);
        const DRAWMODE mode = MakeDrawMode({.rop2 = code.code});
        PlaneImage expected = BandImage(device);
        FillExpected(&expected, {2, 1, 6, 2}, brush, mode);
        EXPECT_EQ(1u,
                  PaintRow(device, 2, 6, 1,
                           {.pen = withPen ? &pen : nullptr, .brush = withPen ? nullptr : &brush, .drawMode = &mode}));
        EXPECT_TRUE(TagsMarked(device, Marks(code.marking, color) ? "......... ..1111..." : ""));
        EXPECT_TRUE(BandShows(device, expected));
      }
    }
  }
}

// Right after creation and after a clear the plane is known to hold only 1 and is not touched.
TEST(OutputDualPlane, UniformPlaneIsLeftAlone) {
  TestDevice device(kDualBand);
  EXPECT_EQ(1u, PaintList(device, OS_SCANLINES, 2, {0, 1, 2, 6}));
  EXPECT_TRUE(TagsShow(device, UntouchedTags(device)));
  EXPECT_EQ(0xFFFFu, PaintList(device, 6, 1, {0, 0, 0, 0})) << "the result is the color plane's";

  MixTags(&device);
  device.Clear();
  device.tags()->Fill(0x77);
  const PlaneImage tags = TagImage(device);
  EXPECT_EQ(1u, PaintList(device, OS_SCANLINES, 2, {0, 1, 2, 6}));
  EXPECT_TRUE(TagsShow(device, tags));
}

// What marks nothing: styles without a figure, brushes without ink, and null pens even where the brush paints.
TEST(OutputDualPlane, CallsThatMarkNothing) {
  constexpr int kNoBrush = -1;
  struct Case {
    const char* name;
    uint32_t style;
    uint16_t penStyle;
    int brushStyle;
    int rop2;
    uint32_t result;
    bool painted;
  };
  constexpr Case kCases[] = {
      {"unknown 6", 6, PS_SOLID, kNoBrush, R2_COPYPEN, 0, false},
      {"unknown 0", 0, PS_SOLID, kNoBrush, R2_COPYPEN, 0, false},
      {"unknown 65535", 65535, PS_SOLID, kNoBrush, R2_COPYPEN, 0, false},
      {"begin", 80, PS_SOLID, kNoBrush, R2_COPYPEN, 1, false},
      {"end", 81, PS_SOLID, kNoBrush, R2_COPYPEN, 1, false},
      {"unknown 6, hollow brush", 6, PS_SOLID, BS_HOLLOW, R2_COPYPEN, 0, false},
      {"unknown 65535, hollow brush", 65535, PS_SOLID, BS_HOLLOW, R2_COPYPEN, 0, false},
      {"begin, hollow brush", 80, PS_SOLID, BS_HOLLOW, R2_COPYPEN, 1, false},
      {"hollow brush, copied", OS_SCANLINES, PS_SOLID, BS_HOLLOW, R2_COPYPEN, 1, false},
      {"hollow brush, masked", OS_SCANLINES, PS_SOLID, BS_HOLLOW, R2_MASKPEN, 1, false},
      {"unknown brush, copied: refused", OS_SCANLINES, PS_SOLID, 4, R2_COPYPEN, 0, false},
      {"unknown brush, masked: refused", OS_SCANLINES, PS_SOLID, 9, R2_MASKPEN, 0, false},
      {"unknown brush, exclusive or: nothing to mark or paint", OS_SCANLINES, PS_SOLID, 4, R2_XORPEN, 1, false},
      {"null pen beside a brush", OS_SCANLINES, PS_NULL, BS_SOLID, R2_COPYPEN, 1, true},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    TestDevice device(kDualBand);
    MixTags(&device);
    const PhysicalPen pen{c.penStyle, 1, 1, kRed};
    const PhysicalBrush brush = BrushRecord(c.brushStyle, 0x00FF00);
    const DRAWMODE mode = MakeDrawMode({.rop2 = c.rop2});
    const OutputSetup setup{.pen = c.penStyle == PS_SOLID && c.brushStyle != kNoBrush ? nullptr : &pen,
                            .brush = c.brushStyle == kNoBrush ? nullptr : &brush,
                            .drawMode = &mode};
    EXPECT_EQ(c.result, CallOutput(device, c.style, 2, SpanListBytes({0, 1, 2, 6}), setup));
    EXPECT_TRUE(TagsMarked(device, ""));
    EXPECT_TRUE(BandIs(device, {{'g', 0x00FF00}}, c.painted ? "......... ..gggg..." : ""));
  }
}

// Rows of eight cells; every row is alike. A hatch has two line cells and six gaps.
PhysicalBrush RowBrush(int style, uint16_t depth, uint32_t lineColor) {
  PhysicalBrush brush = BrushRecord(style, style == BS_HATCHED ? lineColor : 0);
  brush.patternDepth = depth;
  const uint32_t line = 0xFF000000 | lineColor;
  const uint32_t hatch[8] = {line, line, 0, 0x00FFFFFF, 0x00123456, 0, 0, 0};
  const uint32_t colors[8] = {0xFFFFFFFF, 0xFF000000, 0xFF0000FF, 0xFFFFFFFF,
                              0xFF000000, 0xFF0000FF, 0xFFFFFFFF, 0xFF000000};
  const uint32_t bits[8] = {0x00FFFFFF, 0xFF000000, 0x00FFFFFF, 0xFF000000,
                            0x00FFFFFF, 0xFF000000, 0xFF000000, 0xFF000000};
  const uint32_t* row = style == BS_HATCHED ? hatch : depth == 1 ? bits : colors;
  for (std::size_t i = 0; i < 64; ++i) brush.cells[i] = row[i % 8];
  return brush;
}

// A cell marks where a solid figure of its color would; replicated cells are marked as they are painted.
TEST(OutputDualPlane, EveryCellMarksByItsColor) {
  const PhysicalBrush brushes[] = {RowBrush(BS_HATCHED, 0, kRed), RowBrush(BS_HATCHED, 0, kWhite),
                                   RowBrush(BS_HATCHED, 0, 0),    RowBrush(BS_PATTERN, 24, 0),
                                   RowBrush(BS_PATTERN, 8, 0),    RowBrush(BS_PATTERN, 1, 0)};
  DualPlaneDevice device({.width = 19, .height = 3});
  for (const Rop2Marking& code : kRop2Markings) {
    for (PhysicalBrush brush : brushes) {
      for (uint32_t background : {kWhite, 0u, kRed, 0x00FF00u}) {
        for (uint32_t text : {kWhite, 0u, kRed}) {
          if (text != 0 && brush.patternDepth != 1) continue;  // nothing else reads it
          for (int n = 0; n < 4; ++n) {
            const int bkMode = n % 2 == 0 ? OPAQUE : TRANSPARENT;
            const uint8_t factor = static_cast<uint8_t>(1 + n / 2);
            SCOPED_TRACE(Text(code.name, ", brush style ", brush.style, ", depth ", brush.patternDepth, ", color ",
                              brush.colour, ", background ", background, ", text ", text, ", mode ", bkMode,
                              ", factor ", factor));
            MixTags(&device);
            brush.hatchScale[0] = brush.hatchScale[1] = factor;
            const DRAWMODE mode =
                MakeDrawMode({.rop2 = code.code, .bkMode = bkMode, .background = background, .text = text});
            PlaneImage band = BandImage(device);
            PlaneImage tags = TagImage(device);
            FillExpected(&band, {1, 1, 18, 2}, brush, mode);
            for (int32_t column = 1; column < 18; ++column) {
              const std::optional<uint32_t> color = FillColor(brush, mode, column, 1);
              if (color && Marks(code.marking, *color & 0xFFFFFF)) tags.Set(column, 1, {QNV_TAG_GRAPHICS});
            }
            EXPECT_EQ(1u, PaintRectangle(device, 1, 1, 18, 2, {.brush = &brush, .drawMode = &mode}));
            EXPECT_TRUE(BandShows(device, band));
            ASSERT_TRUE(TagsShow(device, tags));
          }
        }
      }
    }
  }
}

TEST(OutputDualPlane, CellsByHand) {
  struct Case {
    const char* name;
    int rop2;
    PhysicalBrush brush;
    int bkMode;
    uint32_t background;
    uint32_t text;
    const char* marks;
  };
  const PhysicalBrush red = RowBrush(BS_HATCHED, 0, kRed);
  const PhysicalBrush white = RowBrush(BS_HATCHED, 0, kWhite);
  const PhysicalBrush colors = RowBrush(BS_PATTERN, 24, 0);
  const PhysicalBrush bits = RowBrush(BS_PATTERN, 1, 0);
  const Case cases[] = {
      {"hatch, copied, opaque: all of it", R2_COPYPEN, red, OPAQUE, kWhite, 0, "111111111"},
      {"white hatch, copied, transparent: the lines", R2_COPYPEN, white, TRANSPARENT, kWhite, 0, "11......1"},
      {"hatch, masked, opaque on white: the lines", R2_MASKPEN, red, OPAQUE, kWhite, 0, "11......1"},
      {"white hatch, masked, opaque on a color: the gaps", R2_MASKPEN, white, OPAQUE, 0x00FF00, 0, "..111111."},
      {"hatch, exclusive or: nothing", R2_XORPEN, red, OPAQUE, 0, 0, "........."},
      {"color pattern, masked: but for white", R2_MASKPEN, colors, OPAQUE, 0, 0, ".11.11.1."},
      {"color pattern, merged: but for black", R2_MERGEPEN, colors, OPAQUE, 0, 0, "1.11.11.1"},
      {"one-bit pattern, masked, white background", R2_MASKPEN, bits, OPAQUE, kWhite, kRed, ".1.1.111."},
      {"one-bit pattern, merged, black text", R2_MERGEPEN, bits, OPAQUE, kWhite, 0, "1.1.1...1"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    TestDevice device(kDualBand);
    MixTags(&device);
    const DRAWMODE mode =
        MakeDrawMode({.rop2 = c.rop2, .bkMode = c.bkMode, .background = c.background, .text = c.text});
    EXPECT_EQ(1u, PaintRow(device, 0, 9, 0, {.brush = &c.brush, .drawMode = &mode}));
    EXPECT_TRUE(TagsMarked(device, c.marks));
  }
}

// Marks follow clip, band and origin as the color does, in every encoding.
TEST(OutputDualPlane, MarksFollowTheFigure) {
  struct Case {
    uint32_t style;
    uint32_t count;
    std::vector<int16_t> words;
    std::vector<int> deltas;
    const char* marks;
  };
  const Case cases[] = {
      {OS_SCANLINES, 3, {0, -2, -8, -5, -4, -3}, {}, "......... ..111.1.."},
      {OS_BANDED_SPANS, 1, {2, -50, 50, -8, -5, 2}, {}, "......... ..111.... ..111...."},
      {OS_ROW_RECORDS, 2, {-2, 2, -8, -7, 2, -7, -5}, {}, "......... ..1...... ...11...."},
      {OS_ROW_SPANS, 3, {-3, -9, 9, -8, -7, -100, 100}, {}, "......... ..1...... ..111111."},
      {OS_BYTE_DELTAS, 3, {-3, -8, -7}, {1, 1, 1, 2}, "......... ...1..... ....11..."},
      {OS_NIBBLE_DELTAS, 3, {-3, -8, -7}, {0x11, 0x21}, "......... ...1..... ....11..."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.style);
    DualPlaneDevice device({.width = 9, .height = 3, .left = 20, .top = 7});
    MixTags(&device);
    device.SetOrigin(30, 10);
    EXPECT_EQ(1u, PaintList(device, c.style, c.count, c.words, c.deltas, {-8, -2, -2, 40}));
    EXPECT_TRUE(TagsMarked(device, c.marks));
    EXPECT_TRUE(BandIs(device, {{'1', kPenColor}}, c.marks));
  }
}

}  // namespace
}  // namespace qnv::test
