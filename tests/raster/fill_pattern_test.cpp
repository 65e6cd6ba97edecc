// How pen, brush and draw mode become the pattern that transfers and spans paint with. Colors show through pattern
// copies, the cells that paint nothing through spans: only those honour them.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "support/plane_image.h"
#include "support/random_bytes.h"
#include "support/transfer_call.h"
#include "support/transfer_model.h"

namespace qnv::test {
namespace {

constexpr int32_t kSize = 35;  // more than two periods of 16 cells

PhysicalBrush CraftedBrush(uint16_t style, uint16_t depth, uint8_t fx, uint8_t fy) {
  RandomBytes random(style * 7u + depth);
  PhysicalBrush brush{};
  brush.style = style;
  brush.patternDepth = depth;
  brush.hatchScale[0] = fx;
  brush.hatchScale[1] = fy;
  brush.colour = 0x00204060;
  for (uint32_t& cell : brush.cells) {
    cell = (random.Next() & 0xFFFFFF) | (random.Below(3) == 0 ? 0u : 0xFF000000u);
  }
  return brush;
}

void PaintPattern(const TestDevice& device, const PhysicalBrush* brush, const DRAWMODE* mode) {
  EXPECT_EQ(1u, Transfer(device.handle(), {.at = {device.options().left, device.options().top},
                                           .size = {kSize, kSize},
                                           .rop = PATCOPY,
                                           .brush = brush,
                                           .drawMode = mode}));
}

// All rows of the band by spans; gives the 16-bit result.
uint32_t PaintSpans(const TestDevice& device, const PhysicalPen* pen, const PhysicalBrush* brush,
                    const DRAWMODE* mode) {
  const int16_t points[] = {2, 0, kSize, 0, kSize, 2};
  return QNVOutput(device.handle(), OS_BANDED_SPANS, 1, points, pen, brush, mode, &kEverywhere) & 0xFFFF;
}

struct ScaleCase {
  uint8_t fx;
  uint8_t fy;
};

TEST(FillPattern, CellsAreReplicated) {
  struct Style {
    const char* name;
    uint16_t style;
    uint16_t depth;
    int16_t bkMode;
  };
  constexpr Style kStyles[] = {
      {"hatched, opaque", BS_HATCHED, 0, OPAQUE},     {"hatched, transparent", BS_HATCHED, 0, TRANSPARENT},
      {"pattern of 24 bits", BS_PATTERN, 24, OPAQUE}, {"pattern of 8 bits", BS_PATTERN, 8, TRANSPARENT},
      {"pattern of one bit", BS_PATTERN, 1, OPAQUE},
  };
  // Above 2 there is no room in the pattern: such factors count as 2.
  constexpr ScaleCase kScales[] = {{1, 1}, {2, 2}, {2, 1}, {1, 2}, {3, 3}, {92, 1}, {255, 255}};
  for (uint16_t bits : {uint16_t{24}, uint16_t{8}}) {
    for (const Style& s : kStyles) {
      for (const ScaleCase& scale : kScales) {
        SCOPED_TRACE(std::string(s.name) + ", " + std::to_string(scale.fx) + " x " + std::to_string(scale.fy) + ", " +
                     std::to_string(bits) + " bits");
        TestDevice device({.bitsPerPixel = bits, .width = kSize, .height = kSize});
        const PhysicalBrush brush = CraftedBrush(s.style, s.depth, scale.fx, scale.fy);
        DRAWMODE mode = MakeDrawMode();
        mode.bkMode = s.bkMode;
        mode.bkColor = 0x00FEDCBA;
        mode.TextColor = 0x00123456;
        PlaneImage expected = BandImage(device);
        PaintPattern(device, &brush, &mode);
        for (int32_t row = 0; row < kSize; ++row) {
          for (int32_t column = 0; column < kSize; ++column) {
            expected.Set(column, row, BandBytesOf(PatternColor(&brush, mode, column, row)));
          }
        }
        EXPECT_TRUE(BandShows(device, expected));
      }
    }
  }
}

// A period of 0 has no cell to paint with.
TEST(FillPattern, FactorOfZeroPaintsNothing) {
  for (uint16_t style : {uint16_t{BS_HATCHED}, uint16_t{BS_PATTERN}}) {
    for (const ScaleCase& scale : {ScaleCase{0, 1}, ScaleCase{1, 0}, ScaleCase{0, 0}, ScaleCase{0, 2}}) {
      for (uint16_t bits : {uint16_t{24}, uint16_t{8}}) {
        SCOPED_TRACE(std::to_string(style) + ": " + std::to_string(scale.fx) + " x " + std::to_string(scale.fy));
        TestDevice device({.bitsPerPixel = bits, .width = kSize, .height = kSize});
        const PhysicalBrush brush = CraftedBrush(style, 24, scale.fx, scale.fy);
        const DRAWMODE mode = MakeDrawMode();
        const SourceImage source(bits == 24 ? kColorSource : kGraySource, kSize, kSize, 3);
        const PlaneImage before = BandImage(device);
        for (uint32_t rop : {PATCOPY, PATINVERT, MERGECOPY, PATPAINT, 0x00E20746u, 0x00B8074Au, 0x000F0001u}) {
          EXPECT_EQ(
              1u,
              Transfer(
                  device.handle(),
                  {.source = source.record(), .size = {kSize, kSize}, .rop = rop, .brush = &brush, .drawMode = &mode}));
          EXPECT_TRUE(BandShows(device, before)) << rop;
        }
        EXPECT_EQ(1u, PaintSpans(device, nullptr, &brush, &mode));
        EXPECT_TRUE(BandShows(device, before));
      }
    }
  }
}

// A solid brush needs no scale at all.
TEST(FillPattern, SolidBrushIgnoresItsScale) {
  TestDevice device({.width = kSize, .height = kSize});
  PhysicalBrush brush = CraftedBrush(BS_SOLID, 0, 0, 0);
  brush.colour = 0x00010203;
  const DRAWMODE mode = MakeDrawMode();
  PlaneImage expected = BandImage(device);
  PaintPattern(device, &brush, &mode);
  expected.Fill({0, 0, kSize, kSize}, {1, 2, 3});
  EXPECT_TRUE(BandShows(device, expected));
  device.band().Fill(0);
  EXPECT_EQ(1u, PaintSpans(device, nullptr, &brush, &mode));
  for (int32_t column : {0, 17, kSize - 1}) {
    EXPECT_EQ(0x01, device.Pixel(static_cast<uint32_t>(column), kSize - 1)[0]);
  }
}

struct CellCase {
  const char* name;
  uint16_t style;
  uint16_t depth;
  int16_t bkMode;
  uint32_t cell;
  bool painted;         // by a span; a transfer paints every cell
  PixelBytes expected;  // of a 24-bit band
};

// bkColor 0x00A0B0C0, TextColor 0x00102030.
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
    {"one bit, nearly white", BS_PATTERN, 1, OPAQUE, 0x00FFFFFE, true, {0x10, 0x20, 0x30}},
    {"one bit, black", BS_PATTERN, 1, OPAQUE, 0xFF000000, true, {0x10, 0x20, 0x30}},
    {"a depth of one means nothing to a hatch", BS_HATCHED, 1, OPAQUE, 0xFFFFFFFF, true, {0xFF, 0xFF, 0xFF}},
    {"depth 2 is no one-bit pattern", BS_PATTERN, 2, OPAQUE, 0xFFFFFFFF, true, {0xFF, 0xFF, 0xFF}},
};

TEST(FillPattern, ColorAndMaskOfACell) {
  for (const CellCase& c : kCells) {
    SCOPED_TRACE(c.name);
    TestDevice device({.width = 8, .height = 8});
    PhysicalBrush brush = CraftedBrush(c.style, c.depth, 1, 1);
    for (uint32_t& cell : brush.cells) cell = c.cell;
    DRAWMODE mode = MakeDrawMode();
    mode.bkMode = c.bkMode;
    mode.bkColor = 0x00A0B0C0;
    mode.TextColor = 0x00102030;
    const PlaneImage before = BandImage(device);
    PlaneImage filled = before;
    filled.Fill({0, 0, 8, 8}, c.expected);
    PaintPattern(device, &brush, &mode);
    EXPECT_TRUE(BandShows(device, filled)) << "transfer";
    LoadBand(&device, before);
    EXPECT_EQ(1u, PaintSpans(device, nullptr, &brush, &mode));
    EXPECT_TRUE(BandShows(device, c.painted ? filled : before)) << "spans";
  }
}

struct PenCase {
  const char* name;
  bool pen;
  bool brush;
  PixelBytes expected;
};

// A brush comes first; the pen is what is left without one, and black without either.
constexpr PenCase kPens[] = {
    {"neither", false, false, {0, 0, 0}},
    {"pen", true, false, {0x10, 0x20, 0x30}},
    {"brush", false, true, {0x40, 0x50, 0x60}},
    {"both", true, true, {0x40, 0x50, 0x60}},
};

TEST(FillPattern, PenOrBrush) {
  for (uint16_t penStyle : {uint16_t{PS_SOLID}, uint16_t{PS_NULL}, uint16_t{9}}) {
    for (const PenCase& c : kPens) {
      SCOPED_TRACE(std::string(c.name) + ", pen style " + std::to_string(penStyle));
      TestDevice device({.width = kSize, .height = kSize});
      PlaneImage expected = BandImage(device);
      const PhysicalPen pen{penStyle, 1, 1, 0x00102030};
      const PhysicalBrush brush = SolidBrush(device.handle(), 0x00405060);
      const DRAWMODE mode = MakeDrawMode();
      EXPECT_EQ(1u, PaintSpans(device, c.pen ? &pen : nullptr, c.brush ? &brush : nullptr, &mode));
      expected.Fill({0, 0, kSize, kSize}, c.expected);
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

// Transfers have no pen: without a brush the three operations that never look at it paint with black.
TEST(FillPattern, NoBrushIsBlackForPreparedPatterns) {
  for (uint16_t bits : {uint16_t{24}, uint16_t{8}}) {
    for (uint32_t rop : {MERGECOPY, PATPAINT, 0x00E20746u}) {
      SCOPED_TRACE(std::to_string(rop) + ", " + std::to_string(bits) + " bits");
      TestDevice device({.bitsPerPixel = bits, .width = kSize, .height = 3});
      FillWithNoise(&device.band(), 4);
      const SourceImage source(bits == 24 ? kColorSource : kGraySource, kSize, 3, 5);
      const DRAWMODE mode = MakeDrawMode();
      PlaneImage expected = BandImage(device);
      EXPECT_EQ(1u, Transfer(device.handle(),
                             {.source = source.record(), .size = {kSize, 3}, .rop = rop, .drawMode = &mode}));
      PaintExpected(&expected, {0, 0, kSize, 3}, 0, 0, {rop, &source, nullptr, &mode});
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

TEST(FillPattern, HollowAndUnknownBrushesPaintNothing) {
  for (uint16_t style : {uint16_t{1}, uint16_t{4}, uint16_t{0x0100}, uint16_t{0xFFFF}}) {
    SCOPED_TRACE(style);
    TestDevice device({.width = kSize, .height = kSize});
    const PhysicalBrush brush = CraftedBrush(style, 24, 1, 1);
    const DRAWMODE mode = MakeDrawMode();
    const PlaneImage before = BandImage(device);
    PaintPattern(device, &brush, &mode);
    EXPECT_EQ(1u, PaintSpans(device, nullptr, &brush, &mode));
    EXPECT_TRUE(BandShows(device, before));
  }
}

// Transfers count cells from the band's first pixel, spans by position on the page, below zero too.
TEST(FillPattern, Alignment) {
  struct Case {
    const char* name;
    int32_t left;
    int32_t top;
    int32_t phaseX;  // of the band's first pixel, for spans
    int32_t phaseY;
  };
  constexpr Case kCases[] = {
      {"at zero", 0, 0, 0, 0},       {"at a period", 8, 16, 0, 0},     {"inside a period", 3, 13, 3, 5},
      {"below zero", -3, -13, 5, 3}, {"one below zero", -1, -1, 7, 7}, {"a period below zero", -8, -16, 0, 0},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    TestDevice device({.width = kSize, .height = kSize, .left = c.left, .top = c.top});
    const PhysicalBrush brush = CraftedBrush(BS_PATTERN, 24, 1, 1);
    const DRAWMODE mode = MakeDrawMode();
    const auto filled = [&](int32_t phaseX, int32_t phaseY) {
      PlaneImage expected = BandImage(device);
      for (int32_t row = 0; row < kSize; ++row) {
        for (int32_t column = 0; column < kSize; ++column) {
          expected.Set(column, row, BandBytesOf(PatternColor(&brush, mode, column + phaseX, row + phaseY)));
        }
      }
      return expected;
    };
    PaintPattern(device, &brush, &mode);
    EXPECT_TRUE(BandShows(device, filled(0, 0))) << "transfer";
    const int16_t left = static_cast<int16_t>(c.left);
    const int16_t top = static_cast<int16_t>(c.top);
    const int16_t points[] = {2, top, static_cast<int16_t>(top + kSize), left, static_cast<int16_t>(left + kSize), 2};
    EXPECT_EQ(1u,
              QNVOutput(device.handle(), OS_BANDED_SPANS, 1, points, nullptr, &brush, &mode, &kEverywhere) & 0xFFFF);
    EXPECT_TRUE(BandShows(device, filled(c.phaseX, c.phaseY))) << "spans";
  }
}

}  // namespace
}  // namespace qnv::test
