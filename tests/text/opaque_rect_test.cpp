// The opaque rectangle: ETO_OPAQUE fills it with the background color before the text is painted, ETO_CLIPPED cuts the
// text to it. And what text and rectangle leave in the tag plane of the dual-plane device: 1 on glyph pixels and on the
// rectangle, 0 on the clear pixels of opaque cells.
#include <gtest/gtest.h>

#include "support/tag_plane.h"
#include "text/text_cells.h"

namespace qnv::test {
namespace {

constexpr uint32_t kBoth = ETO_OPAQUE | ETO_CLIPPED;
constexpr BandRect kCell{4, 1, 7, 5};

// The text is an 'a' whose cell lies at column 4 and row 1 of a band of 13 x 6, wherever the origin is.
struct RectCase {
  const char* name;
  int16_t bkMode;
  std::optional<BandRect> clip;  // both in the caller's coordinates
  std::optional<BandRect> rect;
  uint32_t options;
  BandRect fill;  // both in columns and rows of the band
  BandRect text;
  int32_t count = 1;
  DrawingOrigin origin{};
  std::optional<BandRect> tags{};  // of the rectangle, where they are not below the fill
};

const RectCase kRectCases[] = {
    {"transparent text alone", TRANSPARENT, kEverywhere, {}, 0, {}, kCell},
    {"opaque text alone", OPAQUE, kEverywhere, {}, 0, {}, kCell},
    {"text alone, clipped", OPAQUE, {{5, 0, 13, 4}}, {}, 0, {}, {5, 1, 7, 4}},
    {"the options without a rectangle", TRANSPARENT, kEverywhere, {}, kBoth, {}, kCell},
    {"a rectangle without the options", OPAQUE, kEverywhere, {{4, 2, 6, 5}}, 0, {}, kCell},
    {"other options", OPAQUE, kEverywhere, {{4, 2, 6, 5}}, 0xFFF9, {}, kCell},

    {"below transparent text", TRANSPARENT, kEverywhere, {{3, 0, 9, 3}}, ETO_OPAQUE, {3, 0, 9, 3}, kCell},
    {"below opaque text", OPAQUE, kEverywhere, {{3, 0, 9, 3}}, ETO_OPAQUE, {3, 0, 9, 3}, kCell},
    {"larger than the text", OPAQUE, kEverywhere, {{2, 0, 9, 6}}, ETO_OPAQUE, {2, 0, 9, 6}, kCell},
    {"larger than the band", TRANSPARENT, kEverywhere, {{-9, -9, 99, 99}}, ETO_OPAQUE, {0, 0, 13, 6}, kCell},
    {"cut to the clip", TRANSPARENT, {{5, 0, 8, 6}}, {{3, 0, 9, 3}}, ETO_OPAQUE, {5, 0, 8, 3}, {5, 1, 7, 5}},
    {"outside the clip", TRANSPARENT, {{0, 0, 3, 6}}, {{3, 0, 9, 3}}, ETO_OPAQUE, {}, kNowhere},
    {"an empty rectangle", TRANSPARENT, kEverywhere, {{3, 2, 3, 5}}, ETO_OPAQUE, {}, kCell},
    {"an upside-down rectangle", TRANSPARENT, kEverywhere, {{9, 3, 3, 0}}, ETO_OPAQUE, {}, kCell},

    {"cutting alone", OPAQUE, {}, {{4, 2, 6, 5}}, ETO_CLIPPED, {}, {4, 2, 6, 5}},
    {"cutting with a clip: what both hold", OPAQUE, {{5, 0, 13, 4}}, {{0, 2, 7, 6}}, ETO_CLIPPED, {}, {5, 2, 7, 4}},
    {"cutting with a clip that it misses", OPAQUE, {{0, 0, 4, 6}}, {{4, 0, 13, 6}}, ETO_CLIPPED, {}, kNowhere},
    {"an empty rectangle cuts everything", OPAQUE, {}, {{4, 2, 4, 5}}, ETO_CLIPPED, {}, kNowhere},

    {"filled and cutting", TRANSPARENT, kEverywhere, {{3, 0, 6, 3}}, kBoth, {3, 0, 6, 3}, {4, 1, 6, 3}},
    {"filled and cutting without a clip", OPAQUE, {}, {{4, 2, 6, 6}}, kBoth, {4, 2, 6, 6}, {4, 2, 6, 5}},
    {"filled and cutting: both cut both",
     TRANSPARENT,
     {{5, 1, 13, 6}},
     {{3, 0, 9, 3}},
     kBoth,
     {5, 1, 9, 3},
     {5, 1, 7, 3}},

    {"the origin moves it", TRANSPARENT, kEverywhere, {{0, 2, 6, 5}}, ETO_OPAQUE, {3, 0, 9, 3}, kCell, 1, {3, -2}},
    // What lies left of or above the caller's 0 is not filled, wherever the origin puts it, but tagged.
    {"left of 0", OPAQUE, kEverywhere, {{-3, 0, 4, 3}}, ETO_OPAQUE, {4, 0, 8, 3}, kCell, 1, {4, 0}, {{1, 0, 8, 3}}},
    {"above 0", OPAQUE, kEverywhere, {{3, -1, 9, 2}}, ETO_OPAQUE, {3, 1, 9, 3}, kCell, 1, {0, 1}, {{3, 0, 9, 3}}},
    {"wholly left of 0", OPAQUE, kEverywhere, {{-3, 0, 0, 3}}, ETO_OPAQUE, {}, kCell, 1, {4, 0}, {{1, 0, 4, 3}}},

    // A measuring call fills without tagging.
    {"measuring", OPAQUE, kEverywhere, {{3, 0, 9, 3}}, ETO_OPAQUE, {3, 0, 9, 3}, kNowhere, -1, {0, 0}, kNowhere},
    {"no character", OPAQUE, kEverywhere, {{3, 0, 9, 3}}, ETO_OPAQUE, {3, 0, 9, 3}, kNowhere, 0},
};

// The band at the page's corner, and elsewhere with the origin moved along.
struct Corner {
  int32_t x = 0;
  int32_t y = 0;
};

// The call, and that it writes nothing but the planes.
void Show(TestDevice* device, const RectCase& c, const Corner& corner) {
  const Font font = SmallFont().Build();
  const BandRect clip = c.clip.value_or(kNowhere);
  const BandRect rect = c.rect.value_or(kNowhere);
  const BandRect given[2] = {clip, rect};
  DRAWMODE mode = TextMode(c.bkMode);
  const DRAWMODE before = mode;
  device->SetOrigin(corner.x + c.origin.x, corner.y + c.origin.y);
  const int32_t result = QNVDevExtTextOut(device->handle(), kCell.left - c.origin.x, kCell.top - c.origin.y,
                                          c.clip ? &given[0] : nullptr, "a", c.count, font.base(), font.offset(), &mode,
                                          nullptr, nullptr, c.rect ? &given[1] : nullptr, c.options);
  EXPECT_EQ(c.count > 0 ? 3 : Extent(4, c.count < 0 ? 3 : 0), result);
  EXPECT_EQ(0, std::memcmp(&before, &mode, sizeof mode)) << "the draw mode was written";
  EXPECT_EQ(0, std::memcmp(&given[0], &clip, sizeof clip)) << "the clip rectangle was written";
  EXPECT_EQ(0, std::memcmp(&given[1], &rect, sizeof rect)) << "the opaque rectangle was written";
}

TEST(OpaqueRect, FillAndText) {
  for (const RectCase& c : kRectCases) {
    for (const Corner& corner : {Corner{0, 0}, Corner{20, -9}}) {
      for (const DeviceOptions& kind :
           {DeviceOptions{.bitsPerPixel = 24}, DeviceOptions{.bitsPerPixel = 8}, DeviceOptions{.tagPlane = true}}) {
        SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(kind.bitsPerPixel) + " bits" +
                     (kind.tagPlane ? ", dual-plane" : "") + (corner.x != 0 ? ", moved" : ""));
        DeviceOptions options = kind;
        options.width = 13;
        options.height = 6;
        options.left = corner.x;
        options.top = corner.y;
        TestDevice device(options);
        Show(&device, c, corner);
        // The fill goes through a brush, so on a gray band its color is the gray level; the text's is one byte of it.
        PlaneImage expected = UntouchedBand(device);
        PutRect(&expected, c.fill, Physical(device, kBackColor));
        PutText(&expected, "a", kCell.left, kCell.top, c.text, ColorsOf(c.bkMode));
        EXPECT_TRUE(BandShows(device, expected));
        // A tag plane that holds nothing but graphics is left alone.
        if (options.tagPlane) {
          EXPECT_TRUE(TagsShow(device, UntouchedTags(device)));
        }
      }
    }
  }
}

TEST(OpaqueRect, Tags) {
  for (const RectCase& c : kRectCases) {
    for (const Corner& corner : {Corner{0, 0}, Corner{20, -9}}) {
      SCOPED_TRACE(std::string(c.name) + (corner.x != 0 ? ", moved" : ""));
      DualPlaneDevice device({.width = 13, .height = 6, .left = corner.x, .top = corner.y});
      TestDevice plain({.width = 13, .height = 6, .left = corner.x, .top = corner.y});
      MixTags(&device);
      Show(&device, c, corner);
      Show(&plain, c, corner);
      PlaneImage expected = MixedTags(device);
      PutRect(&expected, c.tags.value_or(c.fill), Gray(QNV_TAG_GRAPHICS));
      CellColors tags{.text = Gray(QNV_TAG_GRAPHICS), .background = 0};
      if (c.bkMode == TRANSPARENT) tags.background.reset();
      PutText(&expected, "a", kCell.left, kCell.top, c.text, tags);
      EXPECT_TRUE(TagsShow(device, expected));
      EXPECT_TRUE(BandShows(device, BandImage(plain)));
    }
  }
}

// The pixels and tags themselves, without the rectangles of the cases.
TEST(OpaqueRect, PicturesWrittenOut) {
  const Font font = SmallFont().Build();
  DualPlaneDevice device({.width = 13, .height = 6});
  MixTags(&device);
  DRAWMODE mode = TextMode(OPAQUE);
  const BandRect rect{2, 0, 9, 3};
  DrawTextAt(device, 4, 1, "a", font, mode, {.opaqueRect = &rect, .options = ETO_OPAQUE});
  EXPECT_TRUE(BandIs(device, TextInks(),
                     "..BBBBBBB...."
                     "..BBTTTBB...."
                     "..BBTBTBB...."
                     "....TBT......"
                     "....TTT......"));
  EXPECT_TRUE(TagsMarked(device,
                         "..1111111...."
                         "..1111111...."
                         "..1110111...."
                         "....101......"
                         "....111......"));
}

// The fill also runs when charWidths say that there is nothing to draw, and when the text cannot be seen.
TEST(OpaqueRect, FillsWithoutText) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 6, .height = 2});
  DRAWMODE mode = TextMode();
  const int16_t widths[1] = {5};
  const BandRect left{1, 0, 3, 1};
  EXPECT_EQ(
      0, DrawTextAt(device, 0, 0, "", font, mode, {.charWidths = widths, .opaqueRect = &left, .options = ETO_OPAQUE}));
  const BandRect right{4, 0, 5, 2};
  EXPECT_EQ(3, DrawTextAt(device, 0, 50, "a", font, mode, {.opaqueRect = &right, .options = ETO_OPAQUE}));
  EXPECT_TRUE(BandIs(device, TextInks(), ".BB.B. ....B."));
}

// The fill is a transfer: it prepares the device's fill pattern, which a figure without a draw mode then uses.
TEST(OpaqueRect, LeavesItsColorAsTheFillPattern) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 6, .height = 2});
  DRAWMODE mode = TextMode();
  const BandRect rect{0, 0, 1, 1};
  DrawTextAt(device, 0, 0, "", font, mode, {.opaqueRect = &rect, .options = ETO_OPAQUE});
  const int16_t points[4] = {0, 1, 2, 5};
  EXPECT_EQ(1u, QNVOutput(device.handle(), OS_SCANLINES, 2, points, nullptr, nullptr, nullptr, &kEverywhere) & 0xFFFF);
  EXPECT_TRUE(BandIs(device, TextInks(), "B..... ..BBB."));
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
  DualPlaneDevice device({.width = 13, .height = 1});
  MixTags(&device);
  DRAWMODE mode = TextMode(OPAQUE);
  const int16_t widths[2] = {6, 0};
  EXPECT_EQ(9, TwoByteText(device, 1, 0, {7, 7}, 2, wide, mode, {.charWidths = widths}));
  EXPECT_TRUE(TagsMarked(device, ".101...101..."));
}

}  // namespace
}  // namespace qnv::test
