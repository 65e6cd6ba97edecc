// Clips, edges and extents of transfers beside the platform's.

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>

#include "support/random_bytes.h"
#include "windows/differences.h"
#include "windows/transfer_pair.h"

namespace qnv::test {
namespace {

constexpr TransferArea kArea = {.destX = 4, .destY = 3, .srcX = 2, .srcY = 1, .width = 30, .height = 12};

TEST(GdiClipping, WithoutASourceEveryClipAgrees) {
  Witness witness({.left = 10, .top = -4});
  const DRAWMODE mode = MakeDrawMode();
  const BrushPair brush = ColorPatternPair(witness, 3);
  RandomBytes random(5);
  const auto below = [&random](uint32_t limit) { return static_cast<int32_t>(random.Below(limit)); };
  for (int i = 0; i < 300; ++i) {
    BandRect clip{4 + below(50), -8 + below(26), 0, 0};
    clip.right = clip.left + 1 + below(40);
    clip.bottom = clip.top + 1 + below(20);
    const TransferArea area{
        .destX = 4 + below(40), .destY = -8 + below(20), .width = 1 + below(40), .height = 1 + below(20)};
    for (uint32_t rop : {BLACKNESS, WHITENESS, DSTINVERT, PATCOPY, PATINVERT, DWORD{0x00A000C9}}) {
      PaintBoth(witness, {.area = area, .rop = rop, .brush = &brush, .clip = clip}, mode);
      ASSERT_TRUE(witness.Same()) << Describe(clip) << std::hex << rop;
    }
  }
}

TEST(GdiClipping, WithASourceClipsAtTheRightAndTheBottomAgree) {
  Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  const SourcePair sources[] = {ColorSourcePair(40, 20, 4), BitSourcePair(40, 20, 4)};
  for (const SourcePair& source : sources) {
    for (int32_t right = 5; right < 40; right += 3) {
      for (int32_t bottom = 4; bottom < 18; bottom += 3) {
        const BandRect clip{-5, -5, right, bottom};
        PaintBoth(witness, {.area = kArea, .rop = SRCINVERT, .source = &source, .clip = clip}, mode);
        ASSERT_TRUE(witness.Same()) << Describe(clip);
      }
    }
  }
}

// The band's own edges do move the source along.
TEST(GdiClipping, WithASourceTheBandsEdgesAgree) {
  Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  const SourcePair sources[] = {ColorSourcePair(60, 40, 4), BitSourcePair(60, 40, 4)};
  for (const SourcePair& source : sources) {
    for (int32_t x = -25; x < 45; x += 7) {
      for (int32_t y = -17; y < 20; y += 5) {
        const TransferArea area{.destX = x, .destY = y, .srcX = 3, .srcY = 2, .width = 33, .height = 21};
        PaintBoth(witness, {.area = area, .rop = SRCINVERT, .source = &source}, mode);
        ASSERT_TRUE(witness.Same()) << x << ", " << y;
      }
    }
  }
}

TEST(GdiClipping, WhereTheSourceEndsNothingIsPainted) {
  Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  const SourcePair sources[] = {ColorSourcePair(20, 9, 4), BitSourcePair(20, 9, 4)};
  for (const SourcePair& source : sources) {
    for (int32_t x = -12; x < 24; x += 3) {
      for (int32_t y = -7; y < 12; y += 2) {
        TransferArea area = kArea;
        area.srcX = x;
        area.srcY = y;
        PaintBoth(witness, {.area = area, .rop = SRCINVERT, .source = &source}, mode);
        ASSERT_TRUE(witness.Same()) << x << ", " << y;
      }
    }
  }
}

TEST(GdiClippingDifference, AClipAtTheLeftOrTheTopKeepsTheSourcesCorner) {
  Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  const SourcePair source = ColorSourcePair(40, 20, 4);
  for (const BandRect& clip : {BandRect{9, 0, 40, 19}, BandRect{0, 7, 40, 19}}) {
    witness.Reset(3);
    PaintBoth(witness, {.area = kArea, .source = &source, .clip = clip}, mode);
    ExpectDifference(kClippedSource, witness);

    // The library paints what the platform paints when it is asked for the clipped rectangle from the same corner.
    witness.Reset(3);
    const TransferArea cut{.destX = std::max(kArea.destX, clip.left),
                           .destY = std::max(kArea.destY, clip.top),
                           .srcX = kArea.srcX,
                           .srcY = kArea.srcY,
                           .width = kArea.width - std::max(0, clip.left - kArea.destX),
                           .height = kArea.height - std::max(0, clip.top - kArea.destY)};
    PaintBoth(witness, {.area = kArea, .source = &source, .clip = clip}, mode);
    Witness expected;
    expected.Reset(3);
    PaintBoth(expected, {.area = cut, .source = &source}, mode);
    EXPECT_TRUE(expected.Same());
    EXPECT_TRUE(BandShows(witness.device(), BandImage(expected.device())));
  }
}

TEST(GdiClippingDifference, TurnedExtentsPaintNothing) {
  Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  const SourcePair source = ColorSourcePair(40, 20, 4);
  const BrushPair brush = SolidPair(witness, RGB(1, 2, 3));
  for (uint32_t rop : {SRCCOPY, PATCOPY}) {
    for (const TransferArea& area : {TransferArea{.destX = 34, .destY = 3, .srcX = 34, .width = -20, .height = 5},
                                     TransferArea{.destX = 3, .destY = 14, .srcY = 14, .width = 20, .height = -5}}) {
      witness.Reset(3);
      PaintBoth(witness, {.area = area, .rop = rop, .source = &source, .brush = &brush}, mode);
      EXPECT_TRUE(witness.Untouched());
      ExpectDifference(kTurnedExtents, witness);
    }
  }
}

TEST(GdiClippingDifference, AClipOfZerosIsNoClip) {
  Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  const BrushPair brush = SolidPair(witness, RGB(1, 2, 3));
  PaintBoth(witness, {.area = kArea, .rop = PATCOPY, .brush = &brush, .clip = {0, 0, 0, 0}}, mode);
  ExpectDifference(kZeroClip, witness);
  EXPECT_FALSE(witness.Untouched());
}

TEST(GdiClippingDifference, ATurnedClipIsEmpty) {
  Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  const BrushPair brush = SolidPair(witness, RGB(1, 2, 3));
  PaintBoth(witness, {.area = kArea, .rop = PATCOPY, .brush = &brush, .clip = {20, 10, 8, 5}}, mode);
  EXPECT_TRUE(witness.Untouched());
  ExpectDifference(kTurnedClip, witness);
}

}  // namespace
}  // namespace qnv::test
