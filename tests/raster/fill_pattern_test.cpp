// How pen, brush and draw mode become the pattern that transfers and spans paint with. Colors show through pattern
// copies, the cells that paint nothing through spans: only those honor them.
#include <gtest/gtest.h>

#include "output/output_call.h"
#include "support/random_bytes.h"
#include "support/transfer_check.h"

namespace qnv::test {
namespace {

constexpr int32_t kPatternSize = 35;  // more than two periods of 16 cells
constexpr BandRect kWholePattern{0, 0, kPatternSize, kPatternSize};
constexpr DeviceOptions kPatternBand{.width = kPatternSize, .height = kPatternSize};

PhysicalBrush CraftedBrush(int style, uint16_t depth, uint8_t fx, uint8_t fy) {
  RandomBytes random(static_cast<uint64_t>(style) * 7u + depth);
  PhysicalBrush brush = BrushRecord(style, 0x00204060);
  brush.patternDepth = depth;
  brush.hatchScale[0] = fx;
  brush.hatchScale[1] = fy;
  for (uint32_t& cell : brush.cells) {
    cell = (random.Next() & 0xFFFFFF) | (random.Below(3) == 0 ? 0u : 0xFF000000u);
  }
  return brush;
}

// PATCOPY over the whole band.
TransferCall PatternCopy(const TestDevice& device, const PhysicalBrush& brush, const DRAWMODE& mode) {
  return {.at = {device.options().left, device.options().top},
          .size = {kPatternSize, kPatternSize},
          .rop = PATCOPY,
          .brush = &brush,
          .drawMode = &mode};
}

// The whole band by spans.
testing::AssertionResult SpansPaint(const TestDevice& device, const OutputSetup& setup, const PlaneImage& expected) {
  const int16_t left = static_cast<int16_t>(device.options().left);
  const int16_t top = static_cast<int16_t>(device.options().top);
  const int16_t right = static_cast<int16_t>(left + kPatternSize);
  const int16_t bottom = static_cast<int16_t>(top + kPatternSize);
  const uint32_t result = PaintRectangle(device, left, top, right, bottom, setup);
  if (result != 1) return testing::AssertionFailure() << "result " << result;
  return BandShows(device, expected);
}

struct ScaleCase {
  uint8_t fx;
  uint8_t fy;
};

TEST(FillPattern, CellsAreReplicated) {
  struct Style {
    const char* name;
    int style;
    uint16_t depth;
    int bkMode;
  };
  constexpr Style kStyles[] = {
      {"hatched, opaque", BS_HATCHED, 0, OPAQUE},     {"hatched, transparent", BS_HATCHED, 0, TRANSPARENT},
      {"pattern of 24 bits", BS_PATTERN, 24, OPAQUE}, {"pattern of 8 bits", BS_PATTERN, 8, TRANSPARENT},
      {"pattern of one bit", BS_PATTERN, 1, OPAQUE},
  };
  // Above 2 there is no room in the pattern: such factors count as 2.
  constexpr ScaleCase kScales[] = {{1, 1}, {2, 2}, {2, 1}, {1, 2}, {3, 3}, {7, 200}, {92, 1}, {255, 255}};
  for (uint16_t bits : kBandDepths) {
    for (const Style& s : kStyles) {
      for (const ScaleCase& scale : kScales) {
        SCOPED_TRACE(Text(s.name, ", ", scale.fx, " x ", scale.fy, ", ", bits, " bits"));
        TestDevice device(WithDepth(kPatternBand, QNV_KIND_RASTER, bits));
        const PhysicalBrush brush = CraftedBrush(s.style, s.depth, scale.fx, scale.fy);
        const DRAWMODE mode = MakeDrawMode({.bkMode = s.bkMode, .background = 0x00FEDCBA, .text = 0x00123456});
        PlaneImage filled = BandImage(device);
        FillExpected(&filled, kWholePattern, brush, mode);
        EXPECT_TRUE(SpansPaint(device, {.brush = &brush, .drawMode = &mode}, filled)) << "spans";
        EXPECT_TRUE(TransferPaints(device, PatternCopy(device, brush, mode), nullptr, kWholePattern)) << "transfer";
      }
    }
  }
}

// A period of 0 has no cell to paint with.
TEST(FillPattern, FactorOfZeroPaintsNothing) {
  for (int style : {BS_HATCHED, BS_PATTERN}) {
    for (const ScaleCase& scale : {ScaleCase{0, 1}, ScaleCase{1, 0}, ScaleCase{0, 0}, ScaleCase{0, 2}}) {
      for (uint16_t bits : kBandDepths) {
        SCOPED_TRACE(Text(style, ": ", scale.fx, " x ", scale.fy));
        TestDevice device(WithDepth(kPatternBand, QNV_KIND_RASTER, bits));
        const PhysicalBrush brush = CraftedBrush(style, 24, scale.fx, scale.fy);
        const DRAWMODE mode = MakeDrawMode();
        const SourceImage source(bits == 24 ? kColorSource : kGraySource, kPatternSize, kPatternSize, 3);
        TransferCall call = PatternCopy(device, brush, mode);
        call.source = source.record();
        for (uint32_t rop : {PATCOPY, PATINVERT, MERGECOPY, PATPAINT, 0x00E20746u, 0x00B8074Au, 0x000F0001u}) {
          call.rop = rop;
          EXPECT_TRUE(TransferPaintsNothing(device, call)) << rop;
        }
        EXPECT_TRUE(SpansPaint(device, {.brush = &brush, .drawMode = &mode}, UntouchedBand(device)));
      }
    }
  }
}

struct CellCase {
  const char* name;
  int style;
  uint16_t depth;
  int bkMode;
  uint32_t cell;
  bool painted;         // by a span; a transfer paints every cell
  PixelBytes expected;  // of a 24-bit band
};

// bkColor 0x00A0B0C0, TextColor 0x00102030. Of a one-bit pattern exactly 0xFFFFFF is background.
constexpr CellCase kCells[] = {
    {"hatch line", BS_HATCHED, 0, OPAQUE, 0xFF010203, true, {1, 2, 3}},
    {"hatch line, transparent", BS_HATCHED, 0, TRANSPARENT, 0xFF010203, true, {1, 2, 3}},
    {"hatch gap", BS_HATCHED, 0, OPAQUE, 0x00010203, true, {0xA0, 0xB0, 0xC0}},
    {"hatch gap, transparent", BS_HATCHED, 0, TRANSPARENT, 0x00010203, false, {1, 2, 3}},
    {"hatch gap, mode 0", BS_HATCHED, 0, 0, 0x00010203, false, {1, 2, 3}},
    {"hatch gap, mode 3", BS_HATCHED, 0, 3, 0x00010203, false, {1, 2, 3}},
    {"largest gap value", BS_HATCHED, 0, OPAQUE, 0x00FFFFFF, true, {0xA0, 0xB0, 0xC0}},
    {"any top byte marks a line", BS_HATCHED, 0, OPAQUE, 0x01010203, true, {1, 2, 3}},
    {"any top byte paints", BS_HATCHED, 0, TRANSPARENT, 0x80010203, true, {1, 2, 3}},
    {"pattern of 24 bits", BS_PATTERN, 24, TRANSPARENT, 0xFF010203, true, {1, 2, 3}},
    {"pattern cell without a mark", BS_PATTERN, 24, TRANSPARENT, 0x00010203, true, {1, 2, 3}},
    {"white in a color pattern", BS_PATTERN, 24, OPAQUE, 0x00FFFFFF, true, {0xFF, 0xFF, 0xFF}},
    {"pattern of 8 bits", BS_PATTERN, 8, OPAQUE, 0xFF070707, true, {7, 7, 7}},
    {"one bit, white", BS_PATTERN, 1, OPAQUE, 0x00FFFFFF, true, {0xA0, 0xB0, 0xC0}},
    {"one bit, white, transparent", BS_PATTERN, 1, TRANSPARENT, 0x00FFFFFF, true, {0xA0, 0xB0, 0xC0}},
    {"one bit, white with a mark", BS_PATTERN, 1, OPAQUE, 0xFFFFFFFF, true, {0xA0, 0xB0, 0xC0}},
    {"one bit, white with another top byte", BS_PATTERN, 1, OPAQUE, 0x12FFFFFF, true, {0xA0, 0xB0, 0xC0}},
    {"one bit, nearly white", BS_PATTERN, 1, OPAQUE, 0x00FFFFFE, true, {0x10, 0x20, 0x30}},
    {"one bit, black", BS_PATTERN, 1, OPAQUE, 0xFF000000, true, {0x10, 0x20, 0x30}},
    {"a depth of one means nothing to a hatch", BS_HATCHED, 1, OPAQUE, 0xFFFFFFFF, true, {0xFF, 0xFF, 0xFF}},
    {"depth 2 is no one-bit pattern", BS_PATTERN, 2, OPAQUE, 0xFFFFFFFF, true, {0xFF, 0xFF, 0xFF}},
};

TEST(FillPattern, ColorAndMaskOfACell) {
  for (const CellCase& c : kCells) {
    SCOPED_TRACE(c.name);
    TestDevice device(kPatternBand);
    PhysicalBrush brush = CraftedBrush(c.style, c.depth, 1, 1);
    for (uint32_t& cell : brush.cells) cell = c.cell;
    const DRAWMODE mode = MakeDrawMode({.bkMode = c.bkMode, .background = 0x00A0B0C0, .text = 0x00102030});
    const PlaneImage before = BandImage(device);
    PlaneImage filled = before;
    filled.Fill(kWholePattern, c.expected);
    EXPECT_EQ(1u, Transfer(device.handle(), PatternCopy(device, brush, mode)));
    EXPECT_TRUE(BandShows(device, filled)) << "transfer";
    LoadBand(&device, before);
    EXPECT_TRUE(SpansPaint(device, {.brush = &brush, .drawMode = &mode}, c.painted ? filled : before)) << "spans";
  }
}

// A brush comes first; the pen is what is left without one, and black without either. Only the pen's color is read,
// and of a solid brush neither scale nor cells.
TEST(FillPattern, PenBrushOrNeither) {
  struct Case {
    const char* name;
    bool pen;
    int brushStyle;  // -1: no brush
    bool painted;
    uint32_t color;
  };
  constexpr Case kCases[] = {
      {"neither", false, -1, true, 0},
      {"pen", true, -1, true, 0x102030},
      {"brush", false, BS_SOLID, true, 0x204060},
      {"both", true, BS_SOLID, true, 0x204060},
      {"hollow brush", false, BS_HOLLOW, false, 0},
      {"hollow brush beside a pen", true, BS_HOLLOW, false, 0},
      {"unknown brush", false, 4, false, 0},
      {"unknown brush beside a pen", true, 4, false, 0},
      {"unknown brush, a high byte alone", true, 0x0100, false, 0},
      {"unknown brush, all ones", true, 0xFFFF, false, 0},
  };
  for (uint16_t bits : kBandDepths) {
    for (uint16_t penStyle : {uint16_t{PS_SOLID}, uint16_t{PS_NULL}, uint16_t{9}}) {
      for (const Case& c : kCases) {
        SCOPED_TRACE(Text(c.name, ", pen style ", penStyle));
        TestDevice device(WithDepth(kPatternBand, QNV_KIND_RASTER, bits));
        const PhysicalPen pen{penStyle, 0, 0, 0x00102030};
        const PhysicalBrush brush = CraftedBrush(c.brushStyle, 24, c.painted ? 0 : 1, c.painted ? 0 : 1);
        const DRAWMODE mode = MakeDrawMode();
        PlaneImage expected = BandImage(device);
        if (c.painted) expected.Fill(kWholePattern, BandBytesOf(c.color));
        const OutputSetup setup{
            .pen = c.pen ? &pen : nullptr, .brush = c.brushStyle < 0 ? nullptr : &brush, .drawMode = &mode};
        EXPECT_TRUE(SpansPaint(device, setup, expected));
        device.band().Fill(0x77);
        const BandRect copied = c.brushStyle == BS_SOLID ? kWholePattern : BandRect{0, 0, 0, 0};
        if (c.brushStyle >= 0) {
          EXPECT_TRUE(TransferPaints(device, PatternCopy(device, brush, mode), nullptr, copied));
        }
      }
    }
  }
}

// Transfers count cells from the band's first pixel; spans count from page coordinate 0 wherever band and origin lie,
// also to the left of it.
TEST(FillPattern, Alignment) {
  struct Case {
    const char* name;
    int32_t left;
    int32_t top;
    int32_t phaseX;  // of the band's first pixel, for spans with single and with doubled cells
    int32_t phaseY;
  };
  constexpr Case kCases[] = {
      {"at zero", 0, 0, 0, 0},
      {"at a period", 16, 32, 0, 0},
      {"inside a period", 3, 13, 3, 13},
      {"below zero", -3, -13, 13, 3},
      {"far off", 100, 43, 4, 11},
      {"one below zero", -1, -1, 15, 15},
      {"a period below zero", -16, -32, 0, 0},
  };
  for (const Case& c : kCases) {
    for (uint8_t factor : {uint8_t{1}, uint8_t{2}}) {
      for (int style : {BS_PATTERN, BS_HATCHED}) {
        SCOPED_TRACE(Text(c.name, ", factor ", factor, ", style ", style));
        TestDevice device({.width = kPatternSize, .height = kPatternSize, .left = c.left, .top = c.top});
        const PhysicalBrush brush = CraftedBrush(style, 24, factor, factor);
        const DRAWMODE mode = MakeDrawMode({.bkMode = TRANSPARENT});
        PlaneImage filled = BandImage(device);
        FillExpected(&filled, kWholePattern, brush, mode, c.phaseX, c.phaseY);
        EXPECT_TRUE(SpansPaint(device, {.brush = &brush, .drawMode = &mode}, filled)) << "spans";
        device.band().Fill(device.options().fill);
        device.SetOrigin(3, -6);
        EXPECT_EQ(1u, PaintRectangle(device, -1000, -1000, 1000, 1000, {.brush = &brush, .drawMode = &mode}));
        EXPECT_TRUE(BandShows(device, filled)) << "spans with an origin";
        device.SetOrigin(0, 0);
        EXPECT_TRUE(TransferPaints(device, PatternCopy(device, brush, mode), nullptr, kWholePattern)) << "transfer";
      }
    }
  }
}

// From the logical brush to the band, on the page's first pixels. The cross of diagonals has one pixel in its last row.
TEST(FillPattern, HatchesByHand) {
  struct Case {
    const char* name;
    uint16_t kind;
    uint16_t resolution;
    const char* picture;  // 18 x 9
  };
  constexpr const char* kSingle =
      "#.....#.#.....#.#."
      ".#...#...#...#...#"
      "..#.#.....#.#....."
      "...#.......#......"
      "..#.#.....#.#....."
      ".#...#...#...#...#"
      "#.....#.#.....#.#."
      ".......#.......#.."
      "#.....#.#.....#.#.";
  constexpr const char* kDoubled =
      "##..........##..##"
      "##..........##..##"
      "..##......##......"
      "..##......##......"
      "....##..##........"
      "....##..##........"
      "......##.........."
      "......##.........."
      "....##..##........";
  constexpr Case kCases[] = {
      {"360 dots", QNV_KIND_RASTER, 360, kSingle},
      {"719 dots", QNV_KIND_RASTER, 719, kSingle},
      {"720 dots", QNV_KIND_RASTER, 720, kDoubled},
      {"5760 dots: 9 counts as 2", QNV_KIND_RASTER, 5760, kDoubled},
      {"scaled devices never double", QNV_KIND_SCALED, 720, kSingle},
  };
  for (const Case& c : kCases) {
    for (int bkMode : {TRANSPARENT, OPAQUE}) {
      SCOPED_TRACE(Text(c.name, ", mode ", bkMode));
      TestDevice device({.kind = c.kind,
                         .width = 18,
                         .height = 9,
                         .resolutionA = c.resolution,
                         .resolutionB = c.resolution,
                         .fill = static_cast<uint8_t>(bkMode == OPAQUE ? 0xCC : 0x77)});
      const PhysicalBrush brush = HatchBrush(device.handle(), HS_DIAGCROSS, 0x0000FF, 0x123456);
      const DRAWMODE mode = MakeDrawMode({.bkMode = bkMode, .background = 0x00777777});
      EXPECT_EQ(1u, PaintRectangle(device, 0, 0, 18, 9, {.brush = &brush, .drawMode = &mode}));
      PlaneImage gaps = UntouchedBand(device);
      gaps.Fill({0, 0, 18, 9}, {0x77, 0x77, 0x77});
      EXPECT_TRUE(PlaneIs(BandImage(device), gaps, {{'#', 0x0000FF}}, c.picture));
    }
  }
}

}  // namespace
}  // namespace qnv::test
