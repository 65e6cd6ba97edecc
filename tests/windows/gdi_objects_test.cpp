// Where brushes, pens and pixels are promised to look different.

#include <gtest/gtest.h>
#include <windows.h>

#include <vector>

#include "windows/differences.h"

namespace qnv::test {
namespace {

// Fills one box with figures of both sides. The library may get no brush at all.
void PaintBox(const Witness& witness, const PhysicalBrush* library, HGDIOBJ platform, const DRAWMODE& mode) {
  constexpr int16_t kSpans[] = {2, 2, 14, 3, 33, 2};
  QNVOutput(witness.handle(), OS_BANDED_SPANS, 1, kSpans, nullptr, library, &mode, &kEverywhere);
  witness.Apply(mode);
  const Selected selected(witness.dc(), {GetStockObject(NULL_PEN), platform});
  Rectangle(witness.dc(), 3, 2, 34, 15);
}

void PaintBox(const Witness& witness, const BrushPair& brush, const DRAWMODE& mode = MakeDrawMode()) {
  PaintBox(witness, &brush.library, brush.platform.get(), mode);
}

// The same box by transfers.
void TransferBox(const Witness& witness, const BrushPair& brush, const DRAWMODE& mode = MakeDrawMode()) {
  witness.Apply(mode);
  PaintTransfer(witness, {.area = {3, 2, 0, 0, 30, 12}, .rop = PATCOPY, .brush = &brush, .mode = mode});
}

// Each side's own hatch.
BrushPair OwnHatches(const Witness& witness, int16_t hatch) {
  return {"own hatches", HatchBrush(witness.handle(), hatch, RGB(10, 20, 30), RGB(90, 80, 70)),
          GdiObject<HBRUSH>(CreateHatchBrush(hatch, RGB(10, 20, 30)))};
}

TEST(GdiObjects, DiagonalHatchesOfThePlatformHaveTheSameShape) {
  if (!RunsUnderWine()) GTEST_SKIP() << "the shapes are the platform's own business";
  for (int16_t hatch : {int16_t{HS_FDIAGONAL}, int16_t{HS_BDIAGONAL}}) {
    for (int16_t background : {int16_t{TRANSPARENT}, int16_t{OPAQUE}}) {
      for (int16_t rop2 = R2_BLACK; rop2 <= R2_WHITE; ++rop2) {
        const Witness witness;
        PaintBox(witness, OwnHatches(witness, hatch),
                 MakeDrawMode({.rop2 = rop2, .bkMode = background, .background = RGB(200, 100, 50)}));
        EXPECT_TRUE(witness.Same()) << "hatch " << hatch << ", background " << background << ", code " << rop2;
      }
    }
  }
}

TEST(GdiObjectsDifference, OtherHatchesHaveAShapeOfTheirOwn) {
  for (int16_t hatch : {int16_t{HS_HORIZONTAL}, int16_t{HS_VERTICAL}, int16_t{HS_CROSS}, int16_t{HS_DIAGCROSS}}) {
    const Witness witness;
    PaintBox(witness, OwnHatches(witness, hatch));
    ExpectDifference(kHatchShapes, witness);
  }
}

TEST(GdiObjectsDifference, HatchesGrowWithTheResolution) {
  const Witness fine({.resolution = 720});
  const DRAWMODE mode = MakeDrawMode({.text = RGB(10, 20, 30)});
  PaintBox(fine, HatchPair(fine, HS_DIAGCROSS, mode.TextColor), mode);
  ExpectDifference(kHatchScale, fine);
}

TEST(GdiObjectsDifference, FiguresCountPatternsFromThePageAndTransfersFromTheBand) {
  const Witness moved({.left = 3, .top = 2});
  PaintBox(moved, DeepPatternPair(moved, 3));
  ExpectDifference(kPatternOrigin, moved);

  const Witness witness;
  SetBrushOrgEx(witness.dc(), 1, 0, nullptr);
  TransferBox(witness, DeepPatternPair(witness, 3));
  ExpectDifference(kPatternOrigin, witness);
}

TEST(GdiObjectsDifference, OnlyTheCornerOfALargePatternCounts) {
  const Witness witness;
  std::vector<uint8_t> rows;
  for (int i = 0; i < 16; ++i) rows.insert(rows.end(), {static_cast<uint8_t>(i), static_cast<uint8_t>(0xF0 - i)});
  const SourceBitmap bitmap{0, 16, 16, 2, 1, 1, rows.data()};
  const GdiObject<HBITMAP> tile(CreateBitmap(16, 16, 1, 1, rows.data()));
  PaintBox(witness,
           {"large", PatternBrush(witness.handle(), bitmap), GdiObject<HBRUSH>(CreatePatternBrush(tile.get()))});
  ExpectDifference(kLargePattern, witness);
}

TEST(GdiObjectsDifference, TransfersFillTheGapsOfATransparentHatch) {
  const Witness witness;
  TransferBox(witness, OwnHatches(witness, HS_FDIAGONAL), MakeDrawMode({.bkMode = TRANSPARENT}));
  ExpectDifference(kTransparentHatch, witness);
}

TEST(GdiObjectsDifference, GrayBandsWeighTheComponentsOfAColor) {
  const Witness witness({.depth = 8});
  TransferBox(witness, SolidPair(witness, RGB(255, 0, 0)));
  EXPECT_EQ(76, *witness.device().Pixel(3, 2));
  ExpectDifference(kGrayOfColor, witness);
}

TEST(GdiObjectsDifference, WithoutBrushAndPenSpansAreBlack) {
  const Witness witness;
  PaintBox(witness, nullptr, GetStockObject(NULL_BRUSH), MakeDrawMode());
  ExpectDifference(kNoBrush, witness);
  PaintBox(witness, nullptr, GetStockObject(BLACK_BRUSH), MakeDrawMode());
  EXPECT_TRUE(witness.Same());
}

TEST(GdiObjectsDifference, EveryPenIsSolid) {
  const Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  const LogicalPen logical{PS_DASH, 1, 0, RGB(1, 2, 3)};
  PhysicalPen pen;
  ASSERT_EQ(0x8000u, QNVRealizeObject(witness.handle(), OBJ_PEN, &logical, &pen, nullptr));
  const int16_t line[] = {0, 5, 0, 43};
  QNVOutput(witness.handle(), OS_SCANLINES, 2, line, &pen, nullptr, &mode, &kEverywhere);
  SetBkMode(witness.dc(), TRANSPARENT);
  const auto draw = [&witness](int style) {
    const GdiObject<HPEN> platform(CreatePen(style, 1, RGB(1, 2, 3)));
    const Selected selected(witness.dc(), {platform.get()});
    MoveToEx(witness.dc(), 0, 5, nullptr);
    LineTo(witness.dc(), 43, 5);
  };
  draw(PS_DASH);
  ExpectDifference(kStyledPen, witness);
  draw(PS_SOLID);
  EXPECT_TRUE(witness.Same());
}

TEST(GdiObjectsDifference, APixelIsReadInTheOrderOfTheBandsBytes) {
  const Witness witness({.left = 37, .top = -11});
  for (int32_t x = 37; x < 80; ++x) {
    const COLORREF platform = GetPixel(witness.dc(), x, 0);
    const uint32_t exchanged = (platform & 0xFF) << 16 | (platform & 0xFF00) | platform >> 16;
    EXPECT_EQ(exchanged, QNVPixel(witness.handle(), x, 0, 0, nullptr, &kEverywhere)) << kPixelOrder.name;
  }
  const Witness gray({.depth = 8});
  for (int32_t x = 0; x < 43; ++x) {
    EXPECT_EQ(GetPixel(gray.dc(), x, 0), QNVPixel(gray.handle(), x, 0, 0, nullptr, &kEverywhere));
  }
}

TEST(GdiObjectsWine, APatternBesideASourceIsCountedFromElsewhere) {
  if (!RunsUnderWine()) GTEST_SKIP() << "known of Wine only";
  const Witness witness;
  const SourcePair source = DeepSourcePair(witness, 30, 12, 4);
  const BrushPair brush = DeepPatternPair(witness, 3);
  PaintTransfer(witness, {.area = {3, 2, 0, 0, 30, 12}, .rop = MERGECOPY, .source = &source, .brush = &brush});
  ExpectDifference(kPatternWithSource, witness);
}

}  // namespace
}  // namespace qnv::test
