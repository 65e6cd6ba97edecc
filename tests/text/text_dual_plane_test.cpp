// Text on the dual-plane device: glyph pixels and the opaque rectangle take tag 1, opaque cell gaps tag 0.
#include <gtest/gtest.h>

#include "support/tag_plane.h"
#include "text/font_builder.h"

namespace qnv::test {
namespace {

constexpr uint32_t kColumns = 13;
constexpr uint32_t kRows = 6;

struct DualCase {
  const char* name = "";
  std::string text = "a";
  int32_t count = 1;
  int32_t x = 4;
  int32_t y = 1;
  int16_t bkMode = TRANSPARENT;
  bool withClip = true;
  BandRect clip = kEverywhere;
  bool withRect = false;
  BandRect rect{};
  uint32_t options = 0;
  const char* tags = "";  // '1' graphics, '0' background, '.' still image
};

const char* const kNoTags = ".............";

const DualCase kCases[] = {
    {.name = "transparent",
     .tags = "............."
             "....111......"
             "....1.1......"
             "....1.1......"
             "....111......"},
    {.name = "opaque",
     .bkMode = OPAQUE,
     .tags = "............."
             "....111......"
             "....101......"
             "....101......"
             "....111......"},
    {.name = "clipped",
     .bkMode = OPAQUE,
     .clip = {5, 0, 13, 4},
     .tags = "............."
             ".....11......"
             ".....01......"
             ".....01......"},
    {.name = "opaque rectangle below opaque text",
     .bkMode = OPAQUE,
     .withRect = true,
     .rect = {2, 0, 9, 6},
     .options = ETO_OPAQUE,
     .tags = "..1111111...."
             "..1111111...."
             "..1110111...."
             "..1110111...."
             "..1111111...."
             "..1111111...."},
    {.name = "opaque rectangle below transparent text",
     .withRect = true,
     .rect = {2, 0, 9, 3},
     .options = ETO_OPAQUE,
     .tags = "..1111111...."
             "..1111111...."
             "..1111111...."
             "....1.1......"
             "....111......"},
    {.name = "the rectangle is cut to the clip",
     .clip = {0, 1, 6, 3},
     .withRect = true,
     .rect = {2, 0, 9, 6},
     .options = ETO_OPAQUE,
     .tags = "............."
             "..1111......."
             "..1111......."},
    {.name = "the rectangle misses the clip",
     .clip = {0, 0, 2, 6},
     .withRect = true,
     .rect = {2, 0, 9, 6},
     .options = ETO_OPAQUE,
     .tags = kNoTags},
    {.name = "a rectangle without the option",
     .withRect = true,
     .rect = {2, 0, 9, 6},
     .tags = "............."
             "....111......"
             "....1.1......"
             "....1.1......"
             "....111......"},
    {.name = "clipped to the rectangle",
     .bkMode = OPAQUE,
     .withRect = true,
     .rect = {4, 2, 6, 6},
     .options = ETO_CLIPPED,
     .tags = "............."
             "............."
             "....10......."
             "....10......."
             "....11......."},
    {.name = "clipped to and filled",
     .bkMode = OPAQUE,
     .withClip = false,
     .withRect = true,
     .rect = {4, 2, 6, 6},
     .options = ETO_CLIPPED | ETO_OPAQUE,
     .tags = "............."
             "............."
             "....10......."
             "....10......."
             "....11......."
             "....11......."},
    {.name = "measuring marks nothing",
     .count = -1,
     .bkMode = OPAQUE,
     .withRect = true,
     .rect = {2, 0, 9, 6},
     .options = ETO_OPAQUE,
     .tags = kNoTags},
    {.name = "no characters: the rectangle alone",
     .count = 0,
     .bkMode = OPAQUE,
     .withRect = true,
     .rect = {2, 0, 5, 2},
     .options = ETO_OPAQUE,
     .tags = "..111........"
             "..111........"},
};

int32_t Draw(const TestDevice& device, const DualCase& c, const Font& font, DRAWMODE& mode) {
  return QNVDevExtTextOut(device.handle(), c.x, c.y, c.withClip ? &c.clip : nullptr, c.text.data(), c.count,
                          font.base(), font.offset(), &mode, nullptr, nullptr, c.withRect ? &c.rect : nullptr,
                          c.options);
}

TEST(TextDualPlane, Cases) {
  const Font font = SmallFont().Build();
  for (const DualCase& c : kCases) {
    SCOPED_TRACE(c.name);
    DualPlaneDevice device({.width = kColumns, .height = kRows});
    TestDevice plain({.width = kColumns, .height = kRows});
    MixTags(&device);
    DRAWMODE mode = TextMode(c.bkMode);
    DRAWMODE plainMode = mode;
    EXPECT_EQ(Draw(plain, c, font, plainMode), Draw(device, c, font, mode));
    EXPECT_EQ(0, std::memcmp(&plainMode, &mode, sizeof mode)) << "the draw mode";
    EXPECT_TRUE(TagsMarked(device, c.tags));
    EXPECT_TRUE(SameImage(BandImage(plain), BandImage(device))) << "color plane";
  }
}

TEST(TextDualPlane, UniformPlaneIsLeftAlone) {
  const Font font = SmallFont().Build();
  for (const DualCase& c : kCases) {
    SCOPED_TRACE(c.name);
    DualPlaneDevice device({.width = kColumns, .height = kRows});
    TestDevice plain({.width = kColumns, .height = kRows});
    DRAWMODE mode = TextMode(c.bkMode);
    DRAWMODE plainMode = mode;
    EXPECT_EQ(Draw(plain, c, font, plainMode), Draw(device, c, font, mode));
    EXPECT_TRUE(SameImage(UntouchedTags(device), TagImage(device)));
    EXPECT_TRUE(SameImage(BandImage(plain), BandImage(device)));
  }
}

// Position, band and origin are those of the color plane; the rectangle's origin too.
TEST(TextDualPlane, BandAndOrigin) {
  const Font font = SmallFont().Build();
  DualPlaneDevice device({.width = kColumns, .height = kRows, .left = 40, .top = 10});
  MixTags(&device);
  device.SetOrigin(38, 9);
  DRAWMODE mode = TextMode(OPAQUE);
  const BandRect rect{3, 2, 12, 5};
  EXPECT_EQ(3, DrawTextAt(device, 6, 3, "a", font, mode, {.opaqueRect = &rect, .options = ETO_OPAQUE}));
  EXPECT_TRUE(TagsMarked(device,
                         "............."
                         ".111111111..."
                         ".111111111..."
                         ".111101111..."
                         "....101......"
                         "....111......"));
}

// The color fill starts at the caller's 0, the marks do not.
TEST(TextDualPlane, RectangleLeftOfTheCallersZero) {
  const Font font = SmallFont().Build();
  DualPlaneDevice device({.width = kColumns, .height = 2});
  MixTags(&device);
  device.SetOrigin(4, 0);
  DRAWMODE mode = TextMode();
  const BandRect rect{-3, 0, 2, 1};
  DrawTextAt(device, 0, 0, "", font, mode, {.opaqueRect = &rect, .options = ETO_OPAQUE});
  EXPECT_TRUE(TagsMarked(device, ".11111......."));
  EXPECT_TRUE(BandIs(device, {{'O', kBackColor}}, "....OO......."));
}

// A device described with one byte a pixel has a color plane of that size, and nothing goes past it.
TEST(TextDualPlane, DescribedWithAnotherDepth) {
  const Font font = SmallFont().Build();
  const BandRect rect{-50, -50, 50, 50};
  for (uint16_t depth : {uint16_t{8}, uint16_t{16}}) {
    DualPlaneDevice device({.bitsPerPixel = depth, .width = 19, .height = 5});
    DRAWMODE mode = TextMode(OPAQUE);
    for (bool mixed : {false, true}) {
      if (mixed) MixTags(&device);
      for (int32_t y = -4; y < 6; ++y) {
        DrawTextAt(device, -5, y, "acacac", font, mode, {.opaqueRect = &rect, .options = ETO_OPAQUE});
      }
      EXPECT_TRUE(device.FencesIntact()) << depth << " bits";
    }
  }
}

TEST(TextDualPlane, WidthsAndTwoByteFonts) {
  const Font wide = FontBuilder({.height = 1, .twoByte = true}).Glyph(7, 3, "#.#").Build();
  DualPlaneDevice device({.width = kColumns, .height = 1});
  MixTags(&device);
  DRAWMODE mode = TextMode(OPAQUE);
  const int16_t widths[2] = {6, 0};
  EXPECT_EQ(9, TwoByteText(device, 1, 0, {7, 7}, 2, wide, mode, {.charWidths = widths}));
  EXPECT_TRUE(TagsMarked(device, ".101...101..."));
}

}  // namespace
}  // namespace qnv::test
