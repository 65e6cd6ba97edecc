// Which pixels of the tag plane a transfer marks on the dual-plane device: by the class of its index, its source and
// its brush. The color plane gets what a plain device would get, or nothing where the tagging is refused.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "support/random_bytes.h"
#include "support/tag_plane.h"
#include "support/tag_rules.h"
#include "support/transfer_call.h"
#include "support/transfer_model.h"

namespace qnv::test {
namespace {

constexpr uint32_t kWhite = 0x00FFFFFF;
constexpr uint32_t kBlack = 0;
constexpr uint32_t kRed = 0x000000FF;
constexpr uint32_t kDPa = 0x00A000C9;      // destination and pattern
constexpr uint32_t kDPo = 0x00FA0089;      // destination or pattern
constexpr uint32_t kPSDPxax = 0x00B8074A;  // where the source is 1 the destination, elsewhere the pattern
constexpr uint32_t kDSPDxax = 0x00E20746;  // where the source is 1 the pattern, elsewhere the destination

DRAWMODE Mode() {
  DRAWMODE mode = MakeDrawMode();
  mode.TextColor = 0x00C3A50F;
  mode.bkColor = 0x005A3CF0;
  return mode;
}

PhysicalBrush Solid(uint32_t color) {
  PhysicalBrush brush{};
  brush.hatchScale[0] = brush.hatchScale[1] = 1;
  brush.colour = color;
  return brush;
}

// One row of pixels: the paper colors, their nearest neighbours, and one that is neither.
constexpr std::array<uint32_t, 7> kSourceColors = {kWhite,     kBlack,     0x00FFFFFE, 0x007FFFFF,
                                                   0x00000001, 0x00800000, 0x00402010};

void StoreColors(SourceImage* source) {
  for (std::size_t i = 0; i < kSourceColors.size(); ++i) {
    uint8_t* pixel = source->Row(0) + 3 * i;
    pixel[0] = static_cast<uint8_t>(kSourceColors[i]);
    pixel[1] = static_cast<uint8_t>(kSourceColors[i] >> 8);
    pixel[2] = static_cast<uint8_t>(kSourceColors[i] >> 16);
  }
  source->Seal();
}

TEST(BitBltDualPlane, EveryIndexWithAColorSourceAndASolidBrush) {
  const int32_t width = static_cast<int32_t>(kSourceColors.size());
  SourceImage source(kColorSource, width, 1, 1);
  StoreColors(&source);
  for (uint32_t brushColor : {kWhite, kBlack, kRed, 0x00FFFFFEu, 0x01FFFFFFu, 0x01000000u}) {
    const PhysicalBrush brush = Solid(brushColor);
    for (uint32_t index = 0; index < 256; ++index) {
      SCOPED_TRACE("index " + std::to_string(index) + ", brush " + std::to_string(brushColor));
      DualPlaneDevice device({.width = 13, .height = 3});
      MakeTagsMixed(&device, index);
      const DRAWMODE mode = Mode();
      PlaneImage band = BandImage(device);
      PlaneImage tags = TagImage(device);
      EXPECT_EQ(1u, Transfer(device.handle(), {.at = {4, 1},
                                               .source = source.record(),
                                               .size = {width, 1},
                                               .rop = index << 16,
                                               .brush = &brush,
                                               .drawMode = &mode}));
      PaintExpected(&band, {4, 1, 4 + width, 2}, 0, 0, {index << 16, &source, &brush, &mode});
      for (int32_t x = 0; x < width; ++x) {
        if (TransferMarks(index, kSourceColors[static_cast<std::size_t>(x)], brushColor)) {
          tags.Set(4 + x, 1, {1, 0, 0});
        }
      }
      EXPECT_TRUE(BandShows(device, band));
      ASSERT_TRUE(TagsShow(device, tags));
    }
  }
  EXPECT_TRUE(source.Unchanged());
}

// The class is that of bits 16..23 alone.
TEST(BitBltDualPlane, UpperByteOfTheCodeDoesNotCount) {
  DualPlaneDevice device({.width = 8, .height = 1});
  MakeTagsMixed(&device, 2);
  const DRAWMODE mode = Mode();
  const PhysicalBrush brush = Solid(kRed);
  const PlaneImage tags = TagImage(device);
  EXPECT_EQ(1u, Transfer(device.handle(), {.size = {8, 1}, .rop = 0x01550009, .brush = &brush, .drawMode = &mode}));
  EXPECT_TRUE(TagsShow(device, tags));
}

// A one-bit source paints where the color that its bit stands for is not the paper's.
TEST(BitBltDualPlane, EveryIndexWithAOneBitSource) {
  struct Colors {
    const char* name;
    uint32_t background;
    uint32_t text;
  };
  constexpr Colors kColors[] = {
      {"black on white", kWhite, kBlack},
      {"white on black", kBlack, kWhite},
      {"white on white", kWhite, kWhite},
      {"black on black", kBlack, kBlack},
      {"red on white", kWhite, kRed},
      {"white on red", kRed, kWhite},
      {"red on black", kBlack, kRed},
      {"black on red", kRed, kBlack},
      {"two colors", kRed, 0x00123456},
      // Compared whole: a top byte makes another color of it.
      {"top bytes", 0x01FFFFFF, 0x02000000},
  };
  constexpr int32_t kWidth = 21;
  for (const Colors& c : kColors) {
    for (uint32_t index = 0; index < 256; ++index) {
      SCOPED_TRACE(std::string(c.name) + ", index " + std::to_string(index));
      DualPlaneDevice device({.width = 26, .height = 4});
      MakeTagsMixed(&device, index);
      const SourceImage source(kOneBitSource, 30, 3, index);
      const PhysicalBrush brush = Solid(kRed);
      DRAWMODE mode = MakeDrawMode();
      mode.bkColor = c.background;
      mode.TextColor = c.text;
      PlaneImage band = BandImage(device);
      PlaneImage tags = TagImage(device);
      EXPECT_EQ(1u, Transfer(device.handle(), {.at = {3, 1},
                                               .source = source.record(),
                                               .from = {5, 1},
                                               .size = {kWidth, 2},
                                               .rop = index << 16,
                                               .brush = &brush,
                                               .drawMode = &mode}));
      PaintExpected(&band, {3, 1, 3 + kWidth, 3}, 5, 1, {index << 16, &source, &brush, &mode});
      for (int32_t row = 1; row < 3; ++row) {
        for (int32_t x = 0; x < kWidth; ++x) {
          const uint32_t color = source.Bit(5 + x, row) ? c.background : c.text;
          if (TransferMarks(index, color, kRed)) tags.Set(3 + x, row, {1, 0, 0});
        }
      }
      EXPECT_TRUE(BandShows(device, band));
      ASSERT_TRUE(TagsShow(device, tags));
      EXPECT_TRUE(source.Unchanged());
      EXPECT_EQ(c.background, uint32_t{mode.bkColor}) << "the draw mode was written";
      EXPECT_EQ(c.text, uint32_t{mode.TextColor}) << "the draw mode was written";
    }
  }
}

struct BrushCase {
  const char* name;
  uint16_t style;
  uint16_t depth;
  int16_t bkMode;
  uint32_t background;
  uint32_t foreground;  // color of the marked cells
  // Whether marked and unmarked cells paint where white, where black is skipped.
  bool markedPaintsOnWhite;
  bool gapPaintsOnWhite;
  bool markedPaintsOnBlack;
  bool gapPaintsOnBlack;
};

constexpr BrushCase kBrushes[] = {
    {"red hatch on white", BS_HATCHED, 0, OPAQUE, kWhite, kRed, true, false, true, true},
    {"red hatch on black", BS_HATCHED, 0, OPAQUE, kBlack, kRed, true, true, true, false},
    {"red hatch on blue", BS_HATCHED, 0, OPAQUE, 0x00FF0000, kRed, true, true, true, true},
    // What the gaps of a transparent hatch show is settled by the background color all the same.
    {"red hatch on blue, transparent", BS_HATCHED, 0, TRANSPARENT, 0x00FF0000, kRed, true, true, true, true},
    {"red hatch on white, transparent", BS_HATCHED, 0, TRANSPARENT, kWhite, kRed, true, false, true, true},
    {"white hatch on white", BS_HATCHED, 0, OPAQUE, kWhite, kWhite, false, false, true, true},
    {"white hatch on red", BS_HATCHED, 0, OPAQUE, kRed, kWhite, false, true, true, true},
    {"black hatch on black", BS_HATCHED, 0, OPAQUE, kBlack, kBlack, true, true, false, false},
    {"black hatch on white", BS_HATCHED, 0, OPAQUE, kWhite, kBlack, true, false, false, true},
    {"white hatch on black, transparent", BS_HATCHED, 0, TRANSPARENT, kBlack, kWhite, false, true, true, false},
    // The background is compared whole, a cell by its color alone.
    {"background with a top byte", BS_HATCHED, 0, OPAQUE, 0x01FFFFFF, kRed, true, true, true, true},
    // A pattern paints all of its cells. Of a one-bit pattern the marked ones count as black, whatever the text
    // color, the others as the background color.
    {"one-bit pattern on white", BS_PATTERN, 1, OPAQUE, kWhite, kBlack, true, false, false, true},
    {"one-bit pattern on black", BS_PATTERN, 1, OPAQUE, kBlack, kBlack, true, true, false, false},
    {"one-bit pattern on red", BS_PATTERN, 1, TRANSPARENT, kRed, kBlack, true, true, false, true},
};

PhysicalBrush BrushOf(const BrushCase& c, uint8_t fx, uint8_t fy) {
  PhysicalBrush brush{};
  brush.style = c.style;
  brush.patternDepth = c.depth;
  brush.hatchScale[0] = fx;
  brush.hatchScale[1] = fy;
  brush.colour = c.depth == 1 ? 0 : c.foreground;
  RandomBytes random(c.style + 3u);
  const uint32_t gap = c.depth == 1 ? kWhite : 0x00778899u;
  for (uint32_t& cell : brush.cells) cell = random.Below(2) == 0 ? gap : c.foreground | 0xFF000000u;
  return brush;
}

TEST(BitBltDualPlane, HatchedAndOneBitPatternBrushes) {
  struct Scale {
    uint8_t fx;
    uint8_t fy;
  };
  for (const BrushCase& c : kBrushes) {
    for (uint32_t index : {0xA0u, 0x5Fu, 0xAFu, 0x50u, 0xF5u, 0x0Au, 0xFAu, 0x05u}) {
      for (const Scale& scale : {Scale{1, 1}, Scale{2, 2}, Scale{2, 1}, Scale{3, 1}}) {
        SCOPED_TRACE(std::string(c.name) + ", index " + std::to_string(index) + ", scale " + std::to_string(scale.fx) +
                     " x " + std::to_string(scale.fy));
        // A moved band: cells are counted from its corner on both planes.
        DualPlaneDevice device({.width = 37, .height = 19, .left = 5, .top = 3});
        MakeTagsMixed(&device, index);
        const PhysicalBrush brush = BrushOf(c, scale.fx, scale.fy);
        DRAWMODE mode = MakeDrawMode();
        mode.bkMode = c.bkMode;
        mode.bkColor = c.background;
        mode.TextColor = 0x00123456;
        PlaneImage band = BandImage(device);
        PlaneImage tags = TagImage(device);
        EXPECT_EQ(1u,
                  Transfer(device.handle(),
                           {.at = {7, 4}, .size = {100, 15}, .rop = index << 16, .brush = &brush, .drawMode = &mode}));
        PaintExpected(&band, {2, 1, 37, 16}, 0, 0, {index << 16, nullptr, &brush, &mode});
        const bool skipsWhite = TagRuleOf(index) == TagRule::kBrushUnlessWhite;
        const int32_t fx = scale.fx > 2 ? 2 : scale.fx;
        for (int32_t row = 1; row < 16; ++row) {
          for (int32_t column = 2; column < 37; ++column) {
            const bool marked = brush.cells[row / scale.fy % 8 * 8 + column / fx % 8] >= 0x1000000;
            const bool paints = skipsWhite ? (marked ? c.markedPaintsOnWhite : c.gapPaintsOnWhite)
                                           : (marked ? c.markedPaintsOnBlack : c.gapPaintsOnBlack);
            if (paints) tags.Set(column, row, {1, 0, 0});
          }
        }
        EXPECT_TRUE(BandShows(device, band));
        ASSERT_TRUE(TagsShow(device, tags));
      }
    }
  }
}

TEST(BitBltDualPlane, ColorPatternBrushesGoByTheirCells) {
  for (uint8_t depth : {uint8_t{24}, uint8_t{8}}) {
    for (uint32_t rop : {kDPa, kDPo}) {
      SCOPED_TRACE(std::to_string(depth) + " bits, code " + std::to_string(rop));
      DualPlaneDevice device({.width = 20, .height = 11});
      const SourceImage bitmap(depth == 24 ? kColorSource : kGraySource, 8, 8, 17);
      PhysicalBrush brush = PatternBrush(device.handle(), *bitmap.record());
      brush.cells[3] = 0xFFFFFFFF;
      brush.cells[12] = 0xFF000000;
      MakeTagsMixed(&device, depth);
      DRAWMODE mode = Mode();
      mode.bkMode = TRANSPARENT;
      mode.bkColor = rop == kDPa ? kWhite : kBlack;
      PlaneImage band = BandImage(device);
      PlaneImage tags = TagImage(device);
      EXPECT_EQ(1u, Transfer(device.handle(), {.size = {20, 11}, .rop = rop, .brush = &brush, .drawMode = &mode}));
      PaintExpected(&band, {0, 0, 20, 11}, 0, 0, {rop, nullptr, &brush, &mode});
      const uint32_t paper = rop == kDPa ? kWhite : kBlack;
      for (int32_t row = 0; row < 11; ++row) {
        for (int32_t column = 0; column < 20; ++column) {
          const uint32_t color = brush.cells[row % 8 * 8 + column % 8] & 0xFFFFFF;
          if (color != paper) tags.Set(column, row, {1, 0, 0});
        }
      }
      EXPECT_TRUE(BandShows(device, band));
      EXPECT_TRUE(TagsShow(device, tags));
    }
  }
}

TEST(BitBltDualPlane, HollowBrushes) {
  struct Case {
    const char* name;
    uint32_t rop;
    bool tagged;
  };
  // The classes that go by the brush find nothing that paints; the others do not look at it.
  for (const Case& c : {Case{"destination and pattern", kDPa, false}, Case{"destination or pattern", kDPo, false},
                        Case{"PATCOPY", PATCOPY, true}, Case{"BLACKNESS", BLACKNESS, true}}) {
    SCOPED_TRACE(c.name);
    DualPlaneDevice device({.width = 9, .height = 3});
    MakeTagsMixed(&device, 3);
    PhysicalBrush hollow{};
    hollow.style = BS_HOLLOW;
    const DRAWMODE mode = Mode();
    PlaneImage band = BandImage(device);
    PlaneImage tags = TagImage(device);
    EXPECT_EQ(1u, Transfer(device.handle(), {.size = {9, 3}, .rop = c.rop, .brush = &hollow, .drawMode = &mode}));
    if (c.rop == BLACKNESS) band.Fill({0, 0, 9, 3}, {0, 0, 0});
    if (c.tagged) tags.Fill({0, 0, 9, 3}, {1, 0, 0});
    EXPECT_TRUE(BandShows(device, band));
    EXPECT_TRUE(TagsShow(device, tags));
  }
}

struct RefusalCase {
  const char* name;
  uint32_t rop;
  uint8_t planes;
  uint8_t bitsPixel;
  uint16_t brushStyle;
  bool refused;
};

constexpr RefusalCase kRefusals[] = {
    {"SRCAND from 8 bits", SRCAND, 1, 8, BS_SOLID, true},
    {"SRCAND from 4 bits", SRCAND, 1, 4, BS_SOLID, true},
    {"SRCAND from 32 bits", SRCAND, 1, 32, BS_SOLID, true},
    {"SRCAND from 24 bits in three planes", SRCAND, 3, 24, BS_SOLID, true},
    {"SRCAND from one bit in three planes", SRCAND, 3, 1, BS_SOLID, true},
    {"SRCPAINT from 8 bits", SRCPAINT, 1, 8, BS_SOLID, true},
    {"MERGEPAINT from 8 bits", MERGEPAINT, 1, 8, BS_SOLID, true},
    {"source picks the pattern, 8 bits", kDSPDxax, 1, 8, BS_SOLID, true},
    {"source picks the destination, 8 bits", kPSDPxax, 1, 8, BS_SOLID, true},
    {"SRCCOPY from 8 bits needs no test", SRCCOPY, 1, 8, BS_SOLID, false},
    {"SRCINVERT from 8 bits tags nothing", SRCINVERT, 1, 8, BS_SOLID, false},
    {"MERGECOPY from 8 bits", MERGECOPY, 1, 8, BS_SOLID, false},
    {"unknown brush", kDPa, 1, 24, 4, true},
    {"unknown brush, other class", kDPo, 1, 24, 0xFFFF, true},
    {"PATPAINT with an unknown brush", PATPAINT, 1, 24, 4, true},
    {"PATCOPY does not look at its brush", PATCOPY, 1, 24, 4, false},
};

TEST(BitBltDualPlane, RefusedTagsRefuseTheTransfer) {
  for (const RefusalCase& c : kRefusals) {
    for (bool uniform : {false, true}) {
      SCOPED_TRACE(std::string(c.name) + (uniform ? ", uniform plane" : ""));
      DualPlaneDevice device({.width = 9, .height = 3});
      if (uniform) {
        device.tags()->Fill(kOldTag);
      } else {
        MakeTagsMixed(&device, 4);
      }
      PhysicalBrush brush = Solid(kRed);
      brush.style = c.brushStyle;
      const DRAWMODE mode = Mode();
      const SourceImage source({"", c.planes, c.bitsPixel, 4}, 9, 3, 5);
      PlaneImage band = BandImage(device);
      PlaneImage tags = TagImage(device);
      const bool refused = c.refused && !uniform;
      EXPECT_EQ(
          refused ? 0u : 1u,
          Transfer(device.handle(),
                   {.source = source.record(), .size = {9, 3}, .rop = c.rop, .brush = &brush, .drawMode = &mode}));
      const uint8_t index = static_cast<uint8_t>(c.rop >> 16);
      if (!refused && (c.brushStyle == BS_SOLID || !IndexUsesPattern(index))) {
        PaintExpected(&band, {0, 0, 9, 3}, 0, 0, {c.rop, &source, &brush, &mode});
      }
      if (!refused && !uniform && FillsTags(index)) tags.Fill({0, 0, 9, 3}, {1, 0, 0});
      EXPECT_TRUE(BandShows(device, band));
      EXPECT_TRUE(TagsShow(device, tags));
    }
  }
}

// The brush's half of the tags is written before the source turns out to be of no use.
TEST(BitBltDualPlane, PatPaintTagsByBrushBeforeItsSourceIsRefused) {
  DualPlaneDevice device({.width = 9, .height = 3});
  MakeTagsMixed(&device, 6);
  const PhysicalBrush brush = Solid(kRed);
  const DRAWMODE mode = Mode();
  const SourceImage source({"", 1, 8, 3}, 9, 3, 5);
  const PlaneImage band = BandImage(device);
  PlaneImage tags = TagImage(device);
  EXPECT_EQ(0u,
            Transfer(device.handle(),
                     {.source = source.record(), .size = {5, 2}, .rop = PATPAINT, .brush = &brush, .drawMode = &mode}));
  tags.Fill({0, 0, 5, 2}, {1, 0, 0});
  EXPECT_TRUE(BandShows(device, band));
  EXPECT_TRUE(TagsShow(device, tags));
}

// Rows of tags at every width and phase.
TEST(BitBltDualPlane, FillsEveryWidth) {
  DualPlaneDevice device({.width = 79, .height = 4});
  MakeTagsMixed(&device, 7);
  for (int32_t width = 0; width <= 70; ++width) {
    for (int32_t left = 0; left < 5; ++left) {
      SCOPED_TRACE(std::to_string(width) + " at " + std::to_string(left));
      device.tags()->Fill(kOldTag);
      PlaneImage tags = TagImage(device);
      EXPECT_EQ(1u, Transfer(device.handle(), {.at = {left, 1}, .size = {width, 2}, .rop = BLACKNESS}));
      tags.Fill({left, 1, left + width, 3}, {1, 0, 0});
      ASSERT_TRUE(TagsShow(device, tags));
    }
  }
}

}  // namespace
}  // namespace qnv::test
