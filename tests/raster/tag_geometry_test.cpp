// Where the tags of a transfer lie. Three ways to mark have three geometries: whole rectangles, color sources and
// one-bit sources; only the last one's is that of the color plane. Brush marks are clipped as transfers without a
// source are, by the common rule of laws/clipping_test.cpp.
#include <gtest/gtest.h>

#include "support/device_classes.h"
#include "support/tag_plane.h"
#include "support/transfer_check.h"

namespace qnv::test {
namespace {

constexpr BandRect kTagPage{0, 0, 1000, 1000};
constexpr BandRect kTagNoClip{0, 0, 0, 0};
constexpr BandRect kNoTags{0, 0, 0, 0};
constexpr BandPlace kFar{100, 50};
constexpr BandPlace kNegative{-10, -6};

class MixedDevice : public PlacedDevice {
 public:
  explicit MixedDevice(const BandPlace& place) : PlacedDevice({.width = 24, .height = 12, .tagPlane = true}, place) {
    MakeTagsMixed(this, 1);
    SetOrigin(place.originX, place.originY);
  }
};

struct FillCase {
  const char* name;
  BandPlace place;
  TransferPoint at;
  TransferSize size;
  BandRect clip;
  BandRect tagged;   // columns and rows
  BandRect painted;  // of the color plane
};

// On a band of 24 x 12.
constexpr FillCase kFills[] = {
    {"inside", {}, {3, 2}, {5, 4}, kTagPage, {3, 2, 8, 6}, {3, 2, 8, 6}},
    {"past every edge", {}, {-3, -2}, {50, 40}, {-100, -100, 100, 100}, {0, 0, 24, 12}, {0, 0, 24, 12}},
    {"clip cuts all round", {}, {3, 2}, {9, 8}, {5, 4, 9, 7}, {5, 4, 9, 7}, {5, 4, 9, 7}},
    {"no clip", {}, {3, 2}, {5, 4}, kTagNoClip, {3, 2, 8, 6}, {3, 2, 8, 6}},
    {"clip touches", {}, {3, 2}, {5, 4}, {8, 0, 100, 100}, kNoTags, kNoTags},
    {"right of the band", {}, {24, 2}, {5, 4}, kTagPage, kNoTags, kNoTags},
    {"below the band", {}, {3, 12}, {5, 4}, kTagPage, kNoTags, kNoTags},
    {"ends at the band's left edge", kFar, {95, 52}, {5, 4}, kTagPage, kNoTags, kNoTags},
    {"ends at the band's top edge", kFar, {105, 46}, {5, 4}, kTagPage, kNoTags, kNoTags},
    {"moved band", kFar, {98, 48}, {5, 4}, kTagPage, {0, 0, 3, 2}, {0, 0, 3, 2}},
    {"origin", {100, 50, 90, 40}, {12, 11}, {5, 4}, {13, 12, 100, 100}, {3, 2, 7, 5}, {3, 2, 7, 5}},
    {"empty", {}, {3, 2}, {0, 4}, kTagPage, kNoTags, kNoTags},
    {"turned", {}, {9, 9}, {-5, -4}, kTagPage, kNoTags, kNoTags},
    // A destination that begins below zero widens the clip of the tags, not that of the colors.
    {"below zero", kNegative, {-4, -3}, {9, 8}, kTagPage, {6, 3, 15, 11}, {10, 6, 15, 11}},
    {"below zero by the origin", {-10, -6, -8, -7}, {4, 4}, {9, 8}, {6, 5, 100, 100}, {6, 3, 15, 11}, {8, 4, 15, 11}},
    // The zeros of "no clip" are looked for before the origin is added here, after it on the color plane.
    {"zeros and an origin", {0, 0, 5, 5}, {0, 0}, {4, 3}, kTagNoClip, {5, 5, 9, 8}, kNoTags},
    {"a clip that the origin turns into zeros", {0, 0, 5, 5}, {0, 0}, {4, 3}, {-5, -5, -5, -5}, kNoTags, {5, 5, 9, 8}},
};

// Brush marks lie where the colors do.
TEST(TagGeometry, WholeRectanglesAndBrushes) {
  for (const FillCase& c : kFills) {
    for (uint32_t rop : {BLACKNESS, 0x00A000C9u}) {
      SCOPED_TRACE(Text(c.name, ", code ", rop));
      MixedDevice device(c.place);
      const PhysicalBrush brush = HatchBrush(device.handle(), HS_CROSS, 0x00123456);
      const DRAWMODE mode = MakeDrawMode({.background = 0x00ABCDEF});
      PlaneImage tags = TagImage(device);
      tags.Fill(rop == BLACKNESS ? c.tagged : c.painted, {QNV_TAG_GRAPHICS});
      const TransferCall call{
          .at = c.at, .size = c.size, .rop = rop, .brush = &brush, .drawMode = &mode, .clip = &c.clip};
      EXPECT_TRUE(TransferPaints(device, call, nullptr, c.painted));
      EXPECT_TRUE(TagsShow(device, tags));
    }
  }
}

// A copy tags its whole destination, also where the source has no pixel to paint.
TEST(TagGeometry, CopyTagsPastItsSource) {
  MixedDevice device({});
  const SourceImage source(kColorSource, 4, 3, 2);
  const DRAWMODE mode = MakeDrawMode();
  PlaneImage tags = TagImage(device);
  tags.Fill({2, 1, 12, 9}, {QNV_TAG_GRAPHICS});
  const TransferCall call{.at = {2, 1}, .from = {1, 0}, .size = {10, 8}, .rop = SRCCOPY, .drawMode = &mode};
  EXPECT_TRUE(TransferPaints(device, call, &source, {2, 1, 5, 4}, {1, 0}));
  EXPECT_TRUE(TagsShow(device, tags));
}

// Columns and rows of the band, and the source pixel of the first.
struct SourceArea {
  BandRect area;
  TransferPoint first;
};

struct TagSourceCase {
  const char* name;
  BandPlace place;
  TransferPoint at;
  BandRect clip;
  SourceArea tagged;   // where pixels of a color source decide about tags
  SourceArea painted;  // the color plane, and the tags of a one-bit source
  TransferSize size{9, 5};
  TransferPoint from{1, 1};
};

// SRCAND of a source of 14 x 8.
constexpr TagSourceCase kTagSources[] = {
    {"inside", {}, {3, 2}, kTagPage, {{3, 2, 12, 7}, {1, 1}}, {{3, 2, 12, 7}, {1, 1}}},
    // A clip on the left or top restarts the source of the colors. Tags of a color source stay where they were.
    {"clip left", {}, {3, 2}, {6, 0, 100, 100}, {{6, 2, 12, 7}, {4, 1}}, {{6, 2, 12, 7}, {1, 1}}},
    {"clip top", {}, {3, 2}, {1, 4, 100, 100}, {{3, 4, 12, 7}, {1, 3}}, {{3, 4, 12, 7}, {1, 1}}},
    {"clip right and bottom", {}, {3, 2}, {1, 1, 8, 5}, {{3, 2, 8, 5}, {1, 1}}, {{3, 2, 8, 5}, {1, 1}}},
    {"no clip", {}, {3, 2}, kTagNoClip, {{3, 2, 12, 7}, {1, 1}}, {{3, 2, 12, 7}, {1, 1}}},
    {"source ends", {}, {3, 2}, kTagPage, {{3, 2, 9, 5}, {8, 5}}, {{3, 2, 9, 5}, {8, 5}}, {12, 9}, {8, 5}},
    {"source begins later", {}, {3, 2}, kTagPage, {{5, 3, 12, 7}, {0, 0}}, {{5, 3, 12, 7}, {0, 0}}, {9, 5}, {-2, -1}},
    {"band cuts", kFar, {97, 48}, kTagPage, {{0, 0, 6, 3}, {4, 3}}, {{0, 0, 6, 3}, {4, 3}}},
    {"band cuts far side", {}, {18, 9}, kTagPage, {{18, 9, 24, 12}, {1, 1}}, {{18, 9, 24, 12}, {1, 1}}},
    {"origin", {100, 50, 90, 40}, {12, 11}, {13, 12, 100, 100}, {{3, 2, 11, 6}, {2, 2}}, {{3, 2, 11, 6}, {1, 1}}},
    {"left of and above zero", {}, {-3, -2}, kTagPage, {{0, 0, 6, 3}, {4, 3}}, {{0, 0, 6, 3}, {4, 3}}},
    // A zero edge of a color source's clip is no limit on that side.
    {"clip on the left alone", {}, {3, 2}, {6, 0, 0, 0}, {{6, 2, 12, 7}, {4, 1}}, {}},
    {"clip on the right alone", {}, {3, 2}, {0, 0, 8, 0}, {{3, 2, 8, 7}, {1, 1}}, {}},
    {"clip above alone", {}, {3, 2}, {0, 4, 0, 0}, {{3, 4, 12, 7}, {1, 3}}, {}},
    {"clip below alone", {}, {3, 2}, {0, 0, 0, 5}, {{3, 2, 12, 5}, {1, 1}}, {}},
    {"zero edges, band below zero", kNegative, {-4, -3}, kTagPage, {{6, 3, 15, 8}, {1, 1}}, {{6, 3, 15, 8}, {1, 1}}},
    {"zero edges, far side", kNegative, {-7, -4}, {-8, -5, 0, 0}, {{3, 2, 12, 7}, {1, 1}}, {{3, 2, 10, 6}, {1, 1}}},
    {"empty", {}, {3, 2}, kTagPage, {}, {}, {0, 5}},
    {"turned", {}, {12, 7}, kTagPage, {}, {}, {-9, -5}},
};

bool IsWhite(const SourceImage& source, int32_t x, int32_t y) {
  if (source.oneBit()) return source.Bit(x, y);
  const uint8_t* pixel = source.Row(y) + 3 * x;
  return pixel[0] == 0xFF && pixel[1] == 0xFF && pixel[2] == 0xFF;
}

// Black on white from one bit, or noise with some white pixels.
TEST(TagGeometry, Sources) {
  SourceImage color(kColorSource, 14, 8, 3);
  for (int32_t row = 0; row < 8; ++row) {
    for (int32_t column = row % 4; column < 14; column += 4) std::fill_n(color.Row(row) + 3 * column, 3, uint8_t{0xFF});
  }
  color.Seal();
  const SourceImage oneBit(kOneBitSource, 14, 8, 4);
  const DRAWMODE mode = MakeDrawMode();
  for (const TagSourceCase& c : kTagSources) {
    for (const SourceImage* source : {static_cast<const SourceImage*>(&color), &oneBit}) {
      SCOPED_TRACE(Text(c.name, source->oneBit() ? ", one bit" : ", color"));
      MixedDevice device(c.place);
      PlaneImage tags = TagImage(device);
      const auto& [area, first] = source->oneBit() ? c.painted : c.tagged;
      for (int32_t row = area.top; row < area.bottom; ++row) {
        for (int32_t column = area.left; column < area.right; ++column) {
          if (IsWhite(*source, first.x + column - area.left, first.y + row - area.top)) continue;
          tags.Set(column, row, {QNV_TAG_GRAPHICS});
        }
      }
      const TransferCall call{
          .at = c.at, .from = c.from, .size = c.size, .rop = SRCAND, .drawMode = &mode, .clip = &c.clip};
      EXPECT_TRUE(TransferPaints(device, call, source, c.painted.area, c.painted.first));
      EXPECT_TRUE(TagsShow(device, tags));
    }
  }
}

}  // namespace
}  // namespace qnv::test
