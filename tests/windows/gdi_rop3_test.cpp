// All 256 ternary operations beside the platform's BitBlt, in every combination of source and brush.

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "support/random_bytes.h"
#include "support/transfer_model.h"
#include "windows/differences.h"
#include "windows/transfer_pair.h"

namespace qnv::test {
namespace {

constexpr BitRows kTile = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF1};

DRAWMODE TwoColors(const Witness& witness) {
  DRAWMODE mode = MakeDrawMode();
  mode.TextColor = ExactColor(witness, 0x00123456);
  mode.bkColor = ExactColor(witness, 0x00E0C0A1);
  return mode;
}

// The platform's one-bit patterns show a hatch in the text color.
std::vector<BrushPair> AllBrushes(const Witness& witness, const DRAWMODE& mode) {
  std::vector<BrushPair> brushes;
  brushes.push_back(SolidPair(witness, ExactColor(witness, 0x00407090)));
  brushes.push_back(DeepPatternPair(witness, 3));
  brushes.push_back(BitPatternPair(witness, kTile));
  for (int16_t hatch = HS_HORIZONTAL; hatch <= HS_DIAGCROSS; ++hatch) {
    brushes.push_back(HatchPair(witness, hatch, mode.TextColor));
  }
  return brushes;
}

// Wine puts the pattern of some operations of three operands together with the source in a bitmap of its own and
// counts the cells from there: the pictures agree only where every corner falls on a corner of the pattern.
bool NeedsAlignedCorners(uint8_t index, bool tiled) {
  return tiled && IndexUsesPattern(index) && IndexUsesSource(index) && RunsUnderWine();
}

// A rectangle that often reaches over the band's edges, and stays inside the source.
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

constexpr int32_t kSourceWidth = 60;
constexpr int32_t kSourceHeight = 30;

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
  const SourcePair source = GetParam().bitSource ? BitSourcePair(kSourceWidth, kSourceHeight, 6)
                                                 : DeepSourcePair(witness, kSourceWidth, kSourceHeight, 5);
  RandomBytes random(11);
  for (const BrushPair& brush : AllBrushes(witness, mode)) {
    for (uint32_t i = 0; i < 256; ++i) {
      const uint8_t index = static_cast<uint8_t>(i);
      SCOPED_TRACE(brush.name + ", index " + std::to_string(index));
      const bool tiled = brush.library.style != BS_SOLID;
      const TransferArea area = RandomArea(witness, &random, NeedsAlignedCorners(index, tiled));
      witness.Reset(index + 77u);
      PaintBoth(witness, {.area = area, .rop = CodeOf(index), .source = &source, .brush = &brush}, mode);
      ASSERT_TRUE(witness.Same());
    }
  }
  EXPECT_TRUE(source.library->Unchanged());
}

INSTANTIATE_TEST_SUITE_P(AllSources, GdiRop3,
                         testing::Values(Rop3Case{"24-bit source, 24-bit band", 24, false},
                                         Rop3Case{"one-bit source, 24-bit band", 24, true},
                                         Rop3Case{"8-bit source, 8-bit band", 8, false},
                                         Rop3Case{"one-bit source, 8-bit band", 8, true}));

TEST(GdiRop3Text, ColorsOfOneBitSources) {
  // A red text on a blue ground, told apart from an exchange of colors or of their bytes.
  Witness witness;
  DRAWMODE mode = MakeDrawMode();
  mode.TextColor = RGB(255, 0, 0);
  mode.bkColor = RGB(0, 0, 128);
  witness.Apply(mode);
  const SourcePair source = BitSourcePair(16, 2, 6);
  PaintBoth(witness, {.area = {.width = 16, .height = 2}, .source = &source}, mode);
  EXPECT_TRUE(witness.Same());
  const bool first = source.library->Bit(0, 0);
  EXPECT_EQ(first ? mode.bkColor : mode.TextColor, GetPixel(witness.dc(), 0, 0));
}

TEST(GdiRop3Pattern, CellsAreCountedFromTheBandsCorner) {
  for (int32_t left : {0, 1, 5, 8, 13, -3}) {
    for (int32_t top : {0, 2, 7, -9}) {
      Witness witness({.left = left, .top = top});
      const DRAWMODE mode = TwoColors(witness);
      witness.Apply(mode);
      const BrushPair brush = ColorPatternPair(witness, 3);
      for (uint32_t rop : {PATCOPY, PATINVERT, DWORD{0x00050325}}) {
        PaintBoth(
            witness,
            {.area = {.destX = left + 3, .destY = top + 2, .width = 30, .height = 12}, .rop = rop, .brush = &brush},
            mode);
        EXPECT_TRUE(witness.Same()) << left << ", " << top;
      }
    }
  }
}

TEST(GdiRop3Pattern, GrayPatternOnAColorBand) {
  Witness witness;
  const DRAWMODE mode = TwoColors(witness);
  const BrushPair brush = GrayPatternPair(witness, 9);
  PaintBoth(witness, {.area = {.destX = 3, .destY = 2, .width = 30, .height = 12}, .rop = PATCOPY, .brush = &brush},
            mode);
  EXPECT_TRUE(witness.Same());
}

TEST(GdiRop3Flags, TheMirroringFlagChangesNothing) {
  // Codes with bits above the index take the library's general way.
  Witness witness;
  const DRAWMODE mode = TwoColors(witness);
  const SourcePair source = ColorSourcePair(30, 12, 4);
  for (uint32_t rop : {SRCCOPY, SRCINVERT, NOTSRCERASE}) {
    PaintBoth(
        witness,
        {.area = {.destX = 3, .destY = 2, .width = 30, .height = 12}, .rop = rop | 0x80000000u, .source = &source},
        mode);
    EXPECT_TRUE(witness.Same()) << std::hex << rop;
  }
}

}  // namespace
}  // namespace qnv::test
