// Transfers beside the platform's BitBlt: all 256 ternary operations in every combination of source and brush, then
// patterns, clips, edges and extents.

#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <vector>

#include "support/random_bytes.h"
#include "support/transfer_model.h"
#include "windows/differences.h"

namespace qnv::test {
namespace {

// Wine puts the pattern of some operations of three operands together with the source in a bitmap of its own and
// counts the cells from there: the pictures agree only where every corner falls on a corner of the pattern.
bool NeedsAlignedCorners(uint8_t index, bool tiled) {
  return tiled && IndexUsesPattern(index) && IndexUsesSource(index) && RunsUnderWine();
}

// A rectangle that often reaches over the band's edges, and stays inside a source of 60 x 30 pixels.
TransferArea RandomArea(const Witness& witness, RandomBytes* random, bool aligned) {
  const WitnessShape& shape = witness.shape();
  const auto below = [random](uint32_t limit) { return static_cast<int32_t>(random->Below(limit)); };
  TransferArea area;
  area.destX = aligned ? 8 * below(4) : below(shape.width + 8) - 8;
  area.destY = aligned ? 8 * below(2) : below(shape.height + 8) - 8;
  area.srcX = aligned ? 8 * below(2) : below(12);
  area.srcY = aligned ? 8 * below(2) : below(9);
  area.width = 1 + below(44);
  area.height = 1 + below(19);
  area.destX += shape.left;
  area.destY += shape.top;
  return area;
}

struct Rop3Case {
  const char* name;
  uint16_t depth;
  bool bitSource;
};

void PrintTo(const Rop3Case& c, std::ostream* out) { *out << c.name; }

class GdiRop3 : public testing::TestWithParam<Rop3Case> {};

TEST_P(GdiRop3, EveryCodeAgreesWithEveryBrush) {
  Witness witness({.depth = GetParam().depth, .left = 100, .top = 50});
  const DRAWMODE mode = TwoColors(witness);
  witness.Apply(mode);
  const SourcePair source = GetParam().bitSource ? BitSourcePair(60, 30, 6) : DeepSourcePair(witness, 60, 30, 5);
  RandomBytes random(11);
  for (const BrushPair& brush : EveryBrush(witness, mode)) {
    for (uint32_t i = 0; i < 256; ++i) {
      const uint8_t index = static_cast<uint8_t>(i);
      const bool tiled = brush.library.style != BS_SOLID;
      const TransferArea area = RandomArea(witness, &random, NeedsAlignedCorners(index, tiled));
      witness.Reset(index + 77u);
      ASSERT_TRUE(TransferAgrees(
          witness, {.area = area, .rop = CodeOf(index), .source = &source, .brush = &brush, .mode = mode}));
    }
  }
  EXPECT_TRUE(source.library->Unchanged());
}

INSTANTIATE_TEST_SUITE_P(AllSources, GdiRop3,
                         testing::Values(Rop3Case{"24-bit source, 24-bit band", 24, false},
                                         Rop3Case{"one-bit source, 24-bit band", 24, true},
                                         Rop3Case{"8-bit source, 8-bit band", 8, false},
                                         Rop3Case{"one-bit source, 8-bit band", 8, true}));

TEST(GdiTransfers, PatternCellsAreCountedFromTheBandsCorner) {
  for (int32_t left : {0, 1, 5, 8, 13, -3}) {
    for (int32_t top : {0, 2, 7, -9}) {
      Witness witness({.left = left, .top = top});
      const BrushPair brush = DeepPatternPair(witness, 3);
      const TransferArea area{.destX = left + 3, .destY = top + 2, .width = 30, .height = 12};
      for (uint32_t rop : {PATCOPY, PATINVERT, DWORD{0x00050325}}) {
        EXPECT_TRUE(TransferAgrees(witness, {.area = area, .rop = rop, .brush = &brush}));
      }
    }
  }
}

TEST(GdiTransfers, GrayPatternsAgreeOnAColorBand) {
  const Witness witness;
  const BrushPair brush = GrayPatternPair(witness, 9);
  EXPECT_TRUE(TransferAgrees(witness, {.area = {3, 2, 0, 0, 30, 12}, .rop = PATCOPY, .brush = &brush}));
}

// Codes with bits above the index take the library's general way.
TEST(GdiTransfers, TheMirroringFlagChangesNothing) {
  const Witness witness;
  const SourcePair source = DeepSourcePair(witness, 30, 12, 4);
  for (uint32_t rop : {SRCCOPY, SRCINVERT, NOTSRCERASE}) {
    const TransferPair pair{.area = {3, 2, 0, 0, 30, 12}, .rop = rop | 0x80000000u, .source = &source};
    EXPECT_TRUE(TransferAgrees(witness, pair));
  }
}

constexpr TransferArea kArea = {.destX = 4, .destY = 3, .srcX = 2, .srcY = 1, .width = 30, .height = 12};

TEST(GdiClipping, WithoutASourceEveryClipAgrees) {
  Witness witness({.left = 10, .top = -4});
  const BrushPair brush = DeepPatternPair(witness, 3);
  RandomBytes random(5);
  const auto below = [&random](uint32_t limit) { return static_cast<int32_t>(random.Below(limit)); };
  for (int i = 0; i < 300; ++i) {
    BandRect clip{4 + below(50), -8 + below(26), 0, 0};
    clip.right = clip.left + 1 + below(40);
    clip.bottom = clip.top + 1 + below(20);
    const TransferArea area{
        .destX = 4 + below(40), .destY = -8 + below(20), .width = 1 + below(40), .height = 1 + below(20)};
    for (uint32_t rop : {BLACKNESS, WHITENESS, DSTINVERT, PATCOPY, PATINVERT, DWORD{0x00A000C9}}) {
      ASSERT_TRUE(TransferAgrees(witness, {.area = area, .rop = rop, .brush = &brush, .clip = clip}));
    }
  }
}

struct ClippedArea {
  TransferArea area = kArea;
  BandRect clip = kEverywhere;
};

void ExpectSourcesAgree(int32_t width, int32_t height, const std::vector<ClippedArea>& cases) {
  const Witness witness;
  const SourcePair sources[] = {DeepSourcePair(witness, width, height, 4), BitSourcePair(width, height, 4)};
  for (const SourcePair& source : sources) {
    for (const auto& [area, clip] : cases) {
      ASSERT_TRUE(TransferAgrees(witness, {.area = area, .rop = SRCINVERT, .source = &source, .clip = clip}));
    }
  }
}

TEST(GdiClipping, WithASourceClipsAtTheRightAndTheBottomAgree) {
  std::vector<ClippedArea> cases;
  for (int32_t right = 5; right < 40; right += 3) {
    for (int32_t bottom = 4; bottom < 18; bottom += 3) cases.push_back({.clip = {-5, -5, right, bottom}});
  }
  ExpectSourcesAgree(40, 20, cases);
}

// The band's own edges do move the source along.
TEST(GdiClipping, WithASourceTheBandsEdgesAgree) {
  std::vector<ClippedArea> cases;
  for (int32_t x = -25; x < 45; x += 7) {
    for (int32_t y = -17; y < 20; y += 5) cases.push_back({.area = {x, y, 3, 2, 33, 21}});
  }
  ExpectSourcesAgree(60, 40, cases);
}

TEST(GdiClipping, WhereTheSourceEndsNothingIsPainted) {
  std::vector<ClippedArea> cases;
  for (int32_t x = -12; x < 24; x += 3) {
    for (int32_t y = -7; y < 12; y += 2) cases.push_back({.area = {4, 3, x, y, 30, 12}});
  }
  ExpectSourcesAgree(20, 9, cases);
}

TEST(GdiTransferDifference, AClipAtTheLeftOrTheTopKeepsTheSourcesCorner) {
  for (const BandRect& clip : {BandRect{9, 0, 40, 19}, BandRect{0, 7, 40, 19}}) {
    Witness witness;
    witness.Reset(3);
    const SourcePair source = DeepSourcePair(witness, 40, 20, 4);
    PaintTransfer(witness, {.area = kArea, .source = &source, .clip = clip});
    ExpectDifference(kClippedSource, witness);

    // The library paints what the platform paints when it is asked for the clipped rectangle from the same corner.
    const TransferArea cut{.destX = std::max(kArea.destX, clip.left),
                           .destY = std::max(kArea.destY, clip.top),
                           .srcX = kArea.srcX,
                           .srcY = kArea.srcY,
                           .width = kArea.width - std::max(0, clip.left - kArea.destX),
                           .height = kArea.height - std::max(0, clip.top - kArea.destY)};
    Witness expected;
    expected.Reset(3);
    EXPECT_TRUE(TransferAgrees(expected, {.area = cut, .source = &source}));
    EXPECT_TRUE(BandShows(witness.device(), BandImage(expected.device())));
  }
}

TEST(GdiTransferDifference, TurnedExtentsPaintNothing) {
  Witness witness;
  const SourcePair source = DeepSourcePair(witness, 40, 20, 4);
  const BrushPair brush = SolidPair(witness, RGB(1, 2, 3));
  for (uint32_t rop : {SRCCOPY, PATCOPY}) {
    for (const TransferArea& area : {TransferArea{34, 3, 34, 0, -20, 5}, TransferArea{3, 14, 0, 14, 20, -5}}) {
      witness.Reset(3);
      PaintTransfer(witness, {.area = area, .rop = rop, .source = &source, .brush = &brush});
      EXPECT_TRUE(witness.Untouched());
      ExpectDifference(kTurnedExtents, witness);
    }
  }
}

TEST(GdiTransferDifference, AClipOfZerosIsNoClipAndATurnedOneIsEmpty) {
  struct ClipCase {
    BandRect clip;
    Difference why;
    bool paints;
  };
  for (const ClipCase& c : {ClipCase{{0, 0, 0, 0}, kZeroClip, true}, ClipCase{{20, 10, 8, 5}, kTurnedClip, false}}) {
    const Witness witness;
    const BrushPair brush = SolidPair(witness, RGB(1, 2, 3));
    PaintTransfer(witness, {.area = kArea, .rop = PATCOPY, .brush = &brush, .clip = c.clip});
    ExpectDifference(c.why, witness);
    EXPECT_NE(c.paints, static_cast<bool>(witness.Untouched())) << c.why.name;
  }
}

}  // namespace
}  // namespace qnv::test
