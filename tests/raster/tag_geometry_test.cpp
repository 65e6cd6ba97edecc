// Where the tags of a transfer lie. Three ways to mark have three geometries: whole rectangles, color sources and
// one-bit sources; only the last one's is that of the color plane.
#include <gtest/gtest.h>

#include <climits>
#include <string>

#include "support/random_bytes.h"
#include "support/tag_plane.h"
#include "support/transfer_call.h"
#include "support/transfer_model.h"

namespace qnv::test {
namespace {

constexpr BandRect kPage{0, 0, 1000, 1000};
constexpr BandRect kNoClip{0, 0, 0, 0};
constexpr BandRect kNothing{0, 0, 0, 0};

struct Place {
  int32_t bandLeft = 0;
  int32_t bandTop = 0;
  int32_t originX = 0;
  int32_t originY = 0;
};

struct Device {
  explicit Device(const Place& place)
      : device({.width = 24, .height = 12, .left = place.bandLeft, .top = place.bandTop, .tagPlane = true}) {
    MakeTagsMixed(&device, 1);
    device.SetOrigin(place.originX, place.originY);
  }
  TestDevice device;
};

struct FillCase {
  const char* name;
  Place place;
  int32_t destX;
  int32_t destY;
  int32_t width;
  int32_t height;
  BandRect clip;
  BandRect tagged;   // columns and rows
  BandRect painted;  // of the color plane
};

// BLACKNESS on a band of 24 x 12.
constexpr FillCase kFills[] = {
    {"inside", {}, 3, 2, 5, 4, kPage, {3, 2, 8, 6}, {3, 2, 8, 6}},
    {"past every edge", {}, -3, -2, 50, 40, {-100, -100, 100, 100}, {0, 0, 24, 12}, {0, 0, 24, 12}},
    {"clip cuts all round", {}, 3, 2, 9, 8, {5, 4, 9, 7}, {5, 4, 9, 7}, {5, 4, 9, 7}},
    {"no clip", {}, 3, 2, 5, 4, kNoClip, {3, 2, 8, 6}, {3, 2, 8, 6}},
    {"clip touches", {}, 3, 2, 5, 4, {8, 0, 100, 100}, kNothing, kNothing},
    {"right of the band", {}, 24, 2, 5, 4, kPage, kNothing, kNothing},
    {"below the band", {}, 3, 12, 5, 4, kPage, kNothing, kNothing},
    {"ends at the band's left edge", {100, 50, 0, 0}, 95, 52, 5, 4, kPage, kNothing, kNothing},
    {"ends at the band's top edge", {100, 50, 0, 0}, 105, 46, 5, 4, kPage, kNothing, kNothing},
    {"moved band", {100, 50, 0, 0}, 98, 48, 5, 4, kPage, {0, 0, 3, 2}, {0, 0, 3, 2}},
    {"origin", {100, 50, 90, 40}, 12, 11, 5, 4, {13, 12, 100, 100}, {3, 2, 7, 5}, {3, 2, 7, 5}},
    {"empty", {}, 3, 2, 0, 4, kPage, kNothing, kNothing},
    {"turned", {}, 9, 9, -5, -4, kPage, kNothing, kNothing},
    // A destination that begins below zero widens the clip of the tags, not that of the colors.
    {"below zero", {-10, -6, 0, 0}, -4, -3, 9, 8, kPage, {6, 3, 15, 11}, {10, 6, 15, 11}},
    {"below zero by the origin", {-10, -6, -8, -7}, 4, 4, 9, 8, {6, 5, 100, 100}, {6, 3, 15, 11}, {8, 4, 15, 11}},
    // The zeros of "no clip" are looked for before the origin is added here, after it on the color plane.
    {"zeros and an origin", {0, 0, 5, 5}, 0, 0, 4, 3, kNoClip, {5, 5, 9, 8}, kNothing},
    {"a clip that the origin turns into zeros", {0, 0, 5, 5}, 0, 0, 4, 3, {-5, -5, -5, -5}, kNothing, {5, 5, 9, 8}},
};

TEST(TagGeometry, WholeRectangles) {
  for (const FillCase& c : kFills) {
    SCOPED_TRACE(c.name);
    Device d(c.place);
    PlaneImage band = BandImage(d.device);
    PlaneImage tags = TagImage(d.device);
    EXPECT_EQ(1u, Transfer(d.device.handle(),
                           {.at = {c.destX, c.destY}, .size = {c.width, c.height}, .rop = BLACKNESS, .clip = &c.clip}));
    band.Fill(c.painted, {0, 0, 0});
    tags.Fill(c.tagged, {1, 0, 0});
    EXPECT_TRUE(BandShows(d.device, band));
    EXPECT_TRUE(TagsShow(d.device, tags));
  }
}

// A copy tags its whole destination, also where the source has no pixel to paint.
TEST(TagGeometry, CopyTagsPastItsSource) {
  Device d({});
  const SourceImage source(kColorSource, 4, 3, 2);
  const DRAWMODE mode = MakeDrawMode();
  PlaneImage band = BandImage(d.device);
  PlaneImage tags = TagImage(d.device);
  EXPECT_EQ(1u, Transfer(d.device.handle(), {.at = {2, 1},
                                             .source = source.record(),
                                             .from = {1, 0},
                                             .size = {10, 8},
                                             .rop = SRCCOPY,
                                             .drawMode = &mode}));
  PaintExpected(&band, {2, 1, 5, 4}, 1, 0, {SRCCOPY, &source, nullptr, &mode});
  tags.Fill({2, 1, 12, 9}, {1, 0, 0});
  EXPECT_TRUE(BandShows(d.device, band));
  EXPECT_TRUE(TagsShow(d.device, tags));
}

struct SourceCase {
  const char* name;
  Place place;
  int32_t destX;
  int32_t destY;
  int32_t srcX;
  int32_t srcY;
  int32_t width;
  int32_t height;
  BandRect clip;
  // Where source pixels decide about tags, and the source pixel of the first.
  BandRect tagged;
  int32_t tagFirstX;
  int32_t tagFirstY;
  // The same of the color plane, and of the tags of a one-bit source.
  BandRect painted;
  int32_t firstX;
  int32_t firstY;
};

// SRCAND of a source of 14 x 8.
constexpr SourceCase kSources[] = {
    {"inside", {}, 3, 2, 1, 1, 9, 5, kPage, {3, 2, 12, 7}, 1, 1, {3, 2, 12, 7}, 1, 1},
    // A clip on the left or top restarts the source of the colors. Tags of a color source stay where they were.
    {"clip left", {}, 3, 2, 1, 1, 9, 5, {6, 0, 100, 100}, {6, 2, 12, 7}, 4, 1, {6, 2, 12, 7}, 1, 1},
    {"clip top", {}, 3, 2, 1, 1, 9, 5, {1, 4, 100, 100}, {3, 4, 12, 7}, 1, 3, {3, 4, 12, 7}, 1, 1},
    {"clip right and bottom", {}, 3, 2, 1, 1, 9, 5, {1, 1, 8, 5}, {3, 2, 8, 5}, 1, 1, {3, 2, 8, 5}, 1, 1},
    {"no clip", {}, 3, 2, 1, 1, 9, 5, kNoClip, {3, 2, 12, 7}, 1, 1, {3, 2, 12, 7}, 1, 1},
    {"source ends", {}, 3, 2, 8, 5, 12, 9, kPage, {3, 2, 9, 5}, 8, 5, {3, 2, 9, 5}, 8, 5},
    {"source begins later", {}, 3, 2, -2, -1, 9, 5, kPage, {5, 3, 12, 7}, 0, 0, {5, 3, 12, 7}, 0, 0},
    {"band cuts", {100, 50, 0, 0}, 97, 48, 1, 1, 9, 5, kPage, {0, 0, 6, 3}, 4, 3, {0, 0, 6, 3}, 4, 3},
    {"band cuts far side", {}, 18, 9, 1, 1, 9, 5, kPage, {18, 9, 24, 12}, 1, 1, {18, 9, 24, 12}, 1, 1},
    {"origin", {100, 50, 90, 40}, 12, 11, 1, 1, 9, 5, {13, 12, 100, 100}, {3, 2, 11, 6}, 2, 2, {3, 2, 11, 6}, 1, 1},
    {"left of and above zero", {}, -3, -2, 1, 1, 9, 5, kPage, {0, 0, 6, 3}, 4, 3, {0, 0, 6, 3}, 4, 3},
    // A zero edge of a color source's clip is no limit on that side.
    {"clip on the left alone", {}, 3, 2, 1, 1, 9, 5, {6, 0, 0, 0}, {6, 2, 12, 7}, 4, 1, kNothing, 0, 0},
    {"clip on the right alone", {}, 3, 2, 1, 1, 9, 5, {0, 0, 8, 0}, {3, 2, 8, 7}, 1, 1, kNothing, 0, 0},
    {"clip above alone", {}, 3, 2, 1, 1, 9, 5, {0, 4, 0, 0}, {3, 4, 12, 7}, 1, 3, kNothing, 0, 0},
    {"clip below alone", {}, 3, 2, 1, 1, 9, 5, {0, 0, 0, 5}, {3, 2, 12, 5}, 1, 1, kNothing, 0, 0},
    {"zero edges, band below zero",
     {-10, -6, 0, 0},
     -4,
     -3,
     1,
     1,
     9,
     5,
     kPage,
     {6, 3, 15, 8},
     1,
     1,
     {6, 3, 15, 8},
     1,
     1},
    {"zero edges on the far side, band below zero",
     {-10, -6, 0, 0},
     -7,
     -4,
     1,
     1,
     9,
     5,
     {-8, -5, 0, 0},
     {3, 2, 12, 7},
     1,
     1,
     {3, 2, 10, 6},
     1,
     1},
    {"empty", {}, 3, 2, 1, 1, 0, 5, kPage, kNothing, 0, 0, kNothing, 0, 0},
    {"turned", {}, 12, 7, 1, 1, -9, -5, kPage, kNothing, 0, 0, kNothing, 0, 0},
};

TEST(TagGeometry, ColorSources) {
  for (const SourceCase& c : kSources) {
    SCOPED_TRACE(c.name);
    Device d(c.place);
    SourceImage source(kColorSource, 14, 8, 3);
    for (int32_t row = 0; row < 8; ++row) {
      for (int32_t column = 0; column < 14; ++column) {
        if ((column * 5 + row * 3) % 4 != 0) continue;
        for (int32_t i = 0; i < 3; ++i) source.Row(row)[3 * column + i] = 0xFF;
      }
    }
    source.Seal();
    const DRAWMODE mode = MakeDrawMode();
    PlaneImage band = BandImage(d.device);
    PlaneImage tags = TagImage(d.device);
    EXPECT_EQ(1u, Transfer(d.device.handle(), {.at = {c.destX, c.destY},
                                               .source = source.record(),
                                               .from = {c.srcX, c.srcY},
                                               .size = {c.width, c.height},
                                               .rop = SRCAND,
                                               .drawMode = &mode,
                                               .clip = &c.clip}));
    PaintExpected(&band, c.painted, c.firstX, c.firstY, {SRCAND, &source, nullptr, &mode});
    for (int32_t row = c.tagged.top; row < c.tagged.bottom; ++row) {
      for (int32_t column = c.tagged.left; column < c.tagged.right; ++column) {
        const uint8_t* p = source.Row(c.tagFirstY + row - c.tagged.top) + 3 * (c.tagFirstX + column - c.tagged.left);
        if (p[0] != 0xFF || p[1] != 0xFF || p[2] != 0xFF) tags.Set(column, row, {1, 0, 0});
      }
    }
    EXPECT_TRUE(BandShows(d.device, band));
    EXPECT_TRUE(TagsShow(d.device, tags));
    EXPECT_TRUE(source.Unchanged());
  }
}

TEST(TagGeometry, OneBitSources) {
  for (const SourceCase& c : kSources) {
    SCOPED_TRACE(c.name);
    Device d(c.place);
    const SourceImage source(kOneBitSource, 14, 8, 4);
    const DRAWMODE mode = MakeDrawMode();  // black on white
    PlaneImage band = BandImage(d.device);
    PlaneImage tags = TagImage(d.device);
    EXPECT_EQ(1u, Transfer(d.device.handle(), {.at = {c.destX, c.destY},
                                               .source = source.record(),
                                               .from = {c.srcX, c.srcY},
                                               .size = {c.width, c.height},
                                               .rop = SRCAND,
                                               .drawMode = &mode,
                                               .clip = &c.clip}));
    PaintExpected(&band, c.painted, c.firstX, c.firstY, {SRCAND, &source, nullptr, &mode});
    for (int32_t row = c.painted.top; row < c.painted.bottom; ++row) {
      for (int32_t column = c.painted.left; column < c.painted.right; ++column) {
        if (!source.Bit(c.firstX + column - c.painted.left, c.firstY + row - c.painted.top)) {
          tags.Set(column, row, {1, 0, 0});
        }
      }
    }
    EXPECT_TRUE(BandShows(d.device, band));
    EXPECT_TRUE(TagsShow(d.device, tags));
    EXPECT_TRUE(source.Unchanged());
  }
}

// Brush marks are clipped as transfers without a source are.
TEST(TagGeometry, Brushes) {
  struct Case {
    const char* name;
    Place place;
    int32_t destX;
    int32_t destY;
    BandRect clip;
    BandRect painted;
  };
  // 9 x 5 pixels, painted in every cell.
  constexpr Case kCases[] = {
      {"inside", {}, 3, 2, kPage, {3, 2, 12, 7}},
      {"clip cuts", {}, 3, 2, {5, 3, 10, 6}, {5, 3, 10, 6}},
      {"no clip", {}, 3, 2, kNoClip, {3, 2, 12, 7}},
      {"band cuts", {100, 50, 0, 0}, 97, 48, kPage, {0, 0, 6, 3}},
      {"origin", {100, 50, 90, 40}, 12, 11, {13, 12, 100, 100}, {3, 2, 11, 6}},
      {"below zero, clip at zero", {-10, -6, 0, 0}, -4, -3, kPage, {10, 6, 15, 8}},
      {"zeros and an origin", {0, 0, 5, 5}, 0, 0, kNoClip, kNothing},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    Device d(c.place);
    const PhysicalBrush brush = HatchBrush(d.device.handle(), HS_CROSS, 0x00123456);
    const DRAWMODE mode = [] {
      DRAWMODE m = MakeDrawMode();
      m.bkColor = 0x00ABCDEF;
      return m;
    }();
    PlaneImage band = BandImage(d.device);
    PlaneImage tags = TagImage(d.device);
    EXPECT_EQ(1u, Transfer(d.device.handle(), {.at = {c.destX, c.destY},
                                               .size = {9, 5},
                                               .rop = 0x00A000C9,
                                               .brush = &brush,
                                               .drawMode = &mode,
                                               .clip = &c.clip}));
    PaintExpected(&band, c.painted, 0, 0, {0x00A000C9, nullptr, &brush, &mode});
    tags.Fill(c.painted, {1, 0, 0});
    EXPECT_TRUE(BandShows(d.device, band));
    EXPECT_TRUE(TagsShow(d.device, tags));
  }
}

}  // namespace
}  // namespace qnv::test
