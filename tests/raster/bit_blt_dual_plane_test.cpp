// Which pixels of the tag plane a transfer marks on the dual-plane device: by the class of its index, its source and
// its brush. The color plane gets what a plain device would get, or nothing where the tagging is refused. At the end
// the same classes as images reach them.
#include <gtest/gtest.h>

#include <array>

#include "image/dib_builder.h"
#include "support/random_bytes.h"
#include "support/tag_plane.h"
#include "support/tag_rules.h"
#include "support/text.h"
#include "support/transfer_check.h"

namespace qnv::test {
namespace {

constexpr uint32_t kWhitePaper = 0x00FFFFFF;
constexpr uint32_t kBlackPaper = 0;
constexpr uint32_t kRedInk = 0x000000FF;
constexpr uint32_t kAndPattern = 0x00A000C9;  // destination and pattern
constexpr uint32_t kOrPattern = 0x00FA0089;   // destination or pattern

DRAWMODE TwoColors() { return MakeDrawMode({.background = 0x005A3CF0, .text = 0x00C3A50F}); }

// Paints `area` in color and marks those of its pixels for which `marks(column, row)` is true.
template <class Marks>
void ExpectTransfer(const TestDevice& device, const TransferCall& call, const SourceImage* source, const BandRect& area,
                    TransferPoint first, const Marks& marks) {
  PlaneImage tags = TagImage(device);
  for (int32_t row = area.top; row < area.bottom; ++row) {
    for (int32_t column = area.left; column < area.right; ++column) {
      if (marks(column, row)) tags.Set(column, row, {QNV_TAG_GRAPHICS});
    }
  }
  EXPECT_TRUE(TransferPaints(device, call, source, area, first));
  ASSERT_TRUE(TagsShow(device, tags));
}

// One row of pixels: the paper colors, their nearest neighbors, and one that is neither.
constexpr std::array<uint32_t, 7> kSourceColors = {kWhitePaper, kBlackPaper, 0x00FFFFFE, 0x007FFFFF,
                                                   0x00000001,  0x00800000,  0x00402010};

// The class is that of bits 16..23 alone.
TEST(BitBltDualPlane, EveryIndexWithAColorSourceAndASolidBrush) {
  constexpr int32_t kWidth = kSourceColors.size();
  SourceImage source(kColorSource, kWidth, 1, 1);
  for (std::size_t i = 0; i < kSourceColors.size(); ++i) {
    const PixelBytes bytes = BandBytesOf(kSourceColors[i]);  // a source holds them the other way round
    std::copy(bytes.rbegin(), bytes.rend(), source.Row(0) + 3 * i);
  }
  source.Seal();
  const DRAWMODE mode = TwoColors();
  for (uint32_t brushColor : {kWhitePaper, kBlackPaper, kRedInk, 0x00FFFFFEu, 0x01FFFFFFu, 0x01000000u}) {
    const PhysicalBrush brush = BrushRecord(BS_SOLID, brushColor);
    for (uint32_t code = 0; code < 512; ++code) {
      const uint32_t index = code & 0xFF;
      SCOPED_TRACE(Text("code ", code, ", brush ", brushColor));
      DualPlaneDevice device({.width = 13, .height = 3});
      MakeTagsMixed(&device, index);
      const TransferCall call{.at = {4, 1}, .size = {kWidth, 1}, .rop = code << 16, .brush = &brush, .drawMode = &mode};
      ExpectTransfer(device, call, &source, {4, 1, 4 + kWidth, 2}, {}, [&](int32_t column, int32_t) {
        return TransferMarks(index, kSourceColors[static_cast<std::size_t>(column - 4)], brushColor);
      });
      if (HasFatalFailure()) return;
    }
  }
}

// A one-bit source paints where the color that its bit stands for is not the paper's. Colors are compared whole: a top
// byte makes another color of it.
TEST(BitBltDualPlane, EveryIndexWithAOneBitSource) {
  constexpr uint32_t kColors[][2] = {{kWhitePaper, kBlackPaper}, {kBlackPaper, kWhitePaper}, {kWhitePaper, kWhitePaper},
                                     {kBlackPaper, kBlackPaper}, {kWhitePaper, kRedInk},     {kRedInk, kWhitePaper},
                                     {kBlackPaper, kRedInk},     {kRedInk, kBlackPaper},     {kRedInk, 0x00123456},
                                     {0x01FFFFFF, 0x02000000}};
  constexpr int32_t kWidth = 21;
  const PhysicalBrush brush = BrushRecord(BS_SOLID, kRedInk);
  for (const auto& [background, text] : kColors) {
    for (uint32_t index = 0; index < 256; ++index) {
      SCOPED_TRACE(Text("text ", text, " on ", background, ", index ", index));
      DualPlaneDevice device({.width = 26, .height = 4});
      MakeTagsMixed(&device, index);
      const SourceImage source(kOneBitSource, 30, 3, index);
      const DRAWMODE mode = MakeDrawMode({.background = background, .text = text});
      const DRAWMODE before = mode;
      const TransferCall call{
          .at = {3, 1}, .from = {5, 1}, .size = {kWidth, 2}, .rop = index << 16, .brush = &brush, .drawMode = &mode};
      ExpectTransfer(device, call, &source, {3, 1, 3 + kWidth, 3}, {5, 1}, [&](int32_t column, int32_t row) {
        return TransferMarks(index, source.Bit(5 + column - 3, row) ? mode.bkColor : mode.TextColor, kRedInk);
      });
      EXPECT_EQ(0, std::memcmp(&before, &mode, sizeof mode)) << "the draw mode was written";
      if (HasFatalFailure()) return;
    }
  }
}

// A hatch's lines paint by their color, its gaps by the background color, which is compared whole and settles them in
// transparent mode too. Of a one-bit pattern the marked cells count as black, whatever the text color, the others as
// the background color. Deeper patterns go by their cells.
TEST(BitBltDualPlane, HatchedAndPatternBrushes) {
  constexpr uint32_t kColors[][2] = {// background, lines of a hatch
                                     {kWhitePaper, kRedInk},     {kBlackPaper, kRedInk},     {0x00FF0000, kRedInk},
                                     {kWhitePaper, kWhitePaper}, {kRedInk, kWhitePaper},     {kBlackPaper, kBlackPaper},
                                     {kWhitePaper, kBlackPaper}, {kBlackPaper, kWhitePaper}, {0x01FFFFFF, kRedInk}};
  constexpr uint8_t kScales[][2] = {{1, 1}, {2, 2}, {2, 1}, {3, 1}};
  for (const auto& [background, line] : kColors) {
    for (uint16_t patternDepth : {uint16_t{0}, uint16_t{1}, uint16_t{8}, uint16_t{24}}) {  // 0: a hatch
      for (uint32_t index : {0xA0u, 0x5Fu, 0xAFu, 0x50u, 0xF5u, 0x0Au, 0xFAu, 0x05u}) {
        for (const auto& scale : kScales) {
          for (int bkMode : {OPAQUE, TRANSPARENT}) {
            SCOPED_TRACE(Text("pattern depth ", patternDepth, ", colors ", line, " on ", background, ", index ", index,
                              ", scale ", scale[0], " x ", scale[1]));
            // A moved band: cells are counted from its corner on both planes.
            DualPlaneDevice device({.width = 37, .height = 19, .left = 5, .top = 3});
            MakeTagsMixed(&device, index);
            PhysicalBrush brush = BrushRecord(patternDepth == 0 ? BS_HATCHED : BS_PATTERN, line);
            brush.patternDepth = patternDepth;
            brush.hatchScale[0] = scale[0];
            brush.hatchScale[1] = scale[1];
            RandomBytes random(7);
            const uint32_t gap = patternDepth == 0 ? 0x00778899 : patternDepth == 1 ? kWhitePaper : 0xFF778899;
            const uint32_t mark = 0xFF000000u | (patternDepth == 1 ? 0 : line);
            for (uint32_t& cell : brush.cells) cell = random.Below(2) == 0 ? gap : mark;
            const DRAWMODE mode = MakeDrawMode({.bkMode = bkMode, .background = background, .text = 0x00123456});
            const DRAWMODE tagging = MakeDrawMode({.background = background});
            const TransferCall call{
                .at = {7, 4}, .size = {100, 15}, .rop = index << 16, .brush = &brush, .drawMode = &mode};
            ExpectTransfer(device, call, nullptr, {2, 1, 37, 16}, {}, [&](int32_t column, int32_t row) {
              const uint32_t color = PatternColor(&brush, tagging, column, row);
              return TransferMarks(index, 0, color >= 0xFF000000u ? color & 0xFFFFFF : color);
            });
          }
        }
      }
    }
  }
}

// Some of these, by hand: the tags of eight cells, two lines and six gaps.
TEST(BitBltDualPlane, HatchesByHand) {
  struct Case {
    const char* name;
    uint32_t rop;
    uint32_t background;
    uint32_t foreground;
    const char* marks;
  };
  for (const Case& c : {Case{"red on white where white is skipped", kAndPattern, kWhitePaper, kRedInk, "11......"},
                        Case{"red on white where black is skipped", kOrPattern, kWhitePaper, kRedInk, "11111111"},
                        Case{"white on red where white is skipped", kAndPattern, kRedInk, kWhitePaper, "..111111"},
                        Case{"white on white", kAndPattern, kWhitePaper, kWhitePaper, "........"},
                        Case{"black on black", kOrPattern, kBlackPaper, kBlackPaper, "........"}}) {
    SCOPED_TRACE(c.name);
    DualPlaneDevice device({.width = 8, .height = 1});
    MixTags(&device);
    PhysicalBrush brush = BrushRecord(BS_HATCHED, c.foreground);
    brush.cells[0] = brush.cells[1] = 0xFF000000u | c.foreground;
    const DRAWMODE mode = MakeDrawMode({.bkMode = TRANSPARENT, .background = c.background});
    EXPECT_EQ(1u, Transfer(device.handle(), {.size = {8, 1}, .rop = c.rop, .brush = &brush, .drawMode = &mode}));
    EXPECT_TRUE(TagsMarked(device, c.marks));
  }
}

// The classes that go by the brush find nothing that paints in a hollow one; the others do not look at it.
TEST(BitBltDualPlane, HollowBrushes) {
  constexpr BandRect kBand{0, 0, 9, 3};
  for (uint32_t rop : {kAndPattern, kOrPattern, PATCOPY, BLACKNESS}) {
    SCOPED_TRACE(rop);
    DualPlaneDevice device({.width = kBand.right, .height = kBand.bottom});
    MixTags(&device);
    const PhysicalBrush hollow = BrushRecord(BS_HOLLOW);
    const DRAWMODE mode = TwoColors();
    PlaneImage tags = MixedTags(device);
    if (rop == PATCOPY || rop == BLACKNESS) tags.Fill(kBand, {QNV_TAG_GRAPHICS});
    const TransferCall call{.size = {kBand.right, kBand.bottom}, .rop = rop, .brush = &hollow, .drawMode = &mode};
    EXPECT_TRUE(TransferPaints(device, call, nullptr, rop == BLACKNESS ? kBand : BandRect{0, 0, 0, 0}));
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
    {"source picks the pattern, 8 bits", 0x00E20746, 1, 8, BS_SOLID, true},
    {"source picks the destination, 8 bits", 0x00B8074A, 1, 8, BS_SOLID, true},
    {"SRCCOPY from 8 bits needs no test", SRCCOPY, 1, 8, BS_SOLID, false},
    {"SRCINVERT from 8 bits tags nothing", SRCINVERT, 1, 8, BS_SOLID, false},
    {"MERGECOPY from 8 bits", MERGECOPY, 1, 8, BS_SOLID, false},
    {"PATPAINT from 8 bits", PATPAINT, 1, 8, BS_SOLID, true},
    {"unknown brush", kAndPattern, 1, 24, 4, true},
    {"unknown brush, other class", kOrPattern, 1, 24, 0xFFFF, true},
    {"PATPAINT with an unknown brush", PATPAINT, 1, 24, 4, true},
    {"PATCOPY does not look at its brush", PATCOPY, 1, 24, 4, false},
};

TEST(BitBltDualPlane, RefusedTagsRefuseTheTransfer) {
  for (const RefusalCase& c : kRefusals) {
    for (bool uniform : {false, true}) {
      SCOPED_TRACE(Text(c.name, uniform ? ", uniform plane" : ""));
      DualPlaneDevice device({.width = 9, .height = 3});
      if (!uniform) MakeTagsMixed(&device, 4);
      device.tags()->Fill(kOldTag);
      const PhysicalBrush brush = BrushRecord(c.brushStyle, kRedInk);
      const DRAWMODE mode = TwoColors();
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
      // The brush's half of PATPAINT's tags is written before the source turns out to be of no use.
      const bool halfTagged = c.rop == PATPAINT && c.brushStyle == BS_SOLID;
      if (!uniform && (refused ? halfTagged : FillsTags(index))) tags.Fill({0, 0, 9, 3}, {QNV_TAG_GRAPHICS});
      EXPECT_TRUE(BandShows(device, band));
      EXPECT_TRUE(TagsShow(device, tags));
    }
  }
}

// Rows of tags at every width and phase.
TEST(BitBltDualPlane, FillsEveryWidth) {
  DualPlaneDevice device({.width = 79, .height = 4});
  MakeTagsMixed(&device, 7);
  for (int32_t width = 0; width <= 70; ++width) {
    for (int32_t left = 0; left < 5; ++left) {
      SCOPED_TRACE(Text(width, " at ", left));
      device.tags()->Fill(kOldTag);
      PlaneImage tags = TagImage(device);
      EXPECT_EQ(1u, Transfer(device.handle(), {.at = {left, 1}, .size = {width, 2}, .rop = BLACKNESS}));
      tags.Fill({left, 1, left + width, 3}, {1, 0, 0});
      ASSERT_TRUE(TagsShow(device, tags));
    }
  }
}

// Where a class takes the caller's tag an image writes 3, elsewhere it writes 1. One operation of each class by hand;
// image/image_dual_plane_test.cpp compares all 256 with the rules.
struct TagImageCase {
  const char* name;
  uint32_t rop;
  uint32_t brush;
  std::array<uint8_t, 4> tags;  // of a white, a black, a red and a gray pixel
};

constexpr TagImageCase kTagImageCases[] = {
    {"SRCCOPY", SRCCOPY, 0xFF, {3, 3, 3, 3}},
    {"SRCCOPY's index in another code", 0x00CC0000, 0xFF, {3, 3, 3, 3}},
    {"SRCAND", SRCAND, 0xFF, {kOldTag, 3, 3, 3}},
    {"inverse of SRCAND", 0x007700E6, 0xFF, {kOldTag, 3, 3, 3}},
    {"SRCPAINT", SRCPAINT, 0xFF, {3, kOldTag, 3, 3}},
    {"SRCINVERT", SRCINVERT, 0xFF, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"PATCOPY", PATCOPY, 0xFF, {1, 1, 1, 1}},
    {"destination and pattern", 0x00A000C9, 0xFF, {1, 1, 1, 1}},
    {"destination and pattern, white", 0x00A000C9, 0xFFFFFF, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"destination or pattern, black", 0x00FA0089, 0, {kOldTag, kOldTag, kOldTag, kOldTag}},
    {"source picks the destination", 0x00B8074A, 0xFF, {kOldTag, 1, 1, 1}},
    {"source picks the pattern", 0x00E20746, 0xFF, {1, kOldTag, 1, 1}},
    {"PATPAINT", PATPAINT, 0xFF, {1, 3, 3, 3}},
    {"PATPAINT, black brush", PATPAINT, 0, {kOldTag, 3, 3, 3}},
    // Extended codes are tagged as SRCAND, whatever they paint.
    {"minimum", ROP_MINIMUM, 0xFF, {kOldTag, 3, 3, 3}},
    {"an extended code that paints nothing", 0x02000000, 0xFF, {kOldTag, 3, 3, 3}},
};

// White, black, red and gray, painted twice as high.
uint32_t PaintTaggedImage(const TestDevice& device, int32_t x, int32_t y, const ImageSetup& setup) {
  return Stretch(device, PictureDib(4, "deai", {}), {x, y, 4, 2, 0, 0, 4, 1}, setup);
}

TEST(TagImages, EveryClass) {
  for (bool uniform : {false, true}) {
    for (const TagImageCase& c : kTagImageCases) {
      SCOPED_TRACE(Text(c.name, uniform ? ", uniform plane" : ""));
      DualPlaneDevice device({.width = 9, .height = 5, .left = 20, .top = 10});
      if (!uniform) MakeTagsMixed(&device, 1);
      device.tags()->Fill(kOldTag);
      const PhysicalBrush brush = BrushRecord(BS_SOLID, c.brush);
      PlaneImage tags = TagImage(device);
      // An image ends the uniform state before any tag is decided on, so both starts give the same tags.
      EXPECT_EQ(1u, PaintTaggedImage(device, 23, 11, {.rop = c.rop, .brush = &brush}));
      for (int32_t i = 0; i < 4; ++i) tags.Fill({3 + i, 1, 4 + i, 3}, {c.tags[static_cast<std::size_t>(i)]});
      EXPECT_TRUE(TagsShow(device, tags));
      // The plane counts as mixed now, even where the class marked nothing.
      const DRAWMODE mode = MakeDrawMode();
      QNVPixel(device.handle(), 20, 10, 0x00123456, &mode, &kEverywhere);
      tags.Set(0, 0, {QNV_TAG_GRAPHICS});
      EXPECT_TRUE(TagsShow(device, tags));
    }
  }
}

// The clip is the image's own; tags follow it, and so do those of an image that the band cuts.
TEST(TagImages, ClippedWithTheImage) {
  for (uint32_t rop : {SRCCOPY, SRCAND, ROP_MINIMUM}) {
    SCOPED_TRACE(rop);
    DualPlaneDevice device({.width = 9, .height = 5, .left = 20, .top = 10});
    MakeTagsMixed(&device, 2);
    device.SetOrigin(2, 1);
    PlaneImage tags = TagImage(device);
    const BandRect clip{21, 8, 24, 12};  // (23, 9) .. (26, 13) on the page; the image is at (22, 9)
    EXPECT_EQ(1u, PaintTaggedImage(device, 20, 8, {.rop = rop, .clip = clip}));
    // Left: page columns 23, 24 and 25 hold the image's black, red and gray; page row 10 is the band's first.
    tags.Fill({3, 0, 6, 1}, {QNV_TAG_IMAGE});
    EXPECT_TRUE(TagsShow(device, tags));
  }
}

}  // namespace
}  // namespace qnv::test
