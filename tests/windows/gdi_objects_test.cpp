// Where brushes, pens and pixels are promised to look different.

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

#include "windows/differences.h"
#include "windows/transfer_pair.h"

namespace qnv::test {
namespace {

constexpr TransferArea kArea = {.destX = 3, .destY = 2, .width = 30, .height = 12};
constexpr int16_t kAreaSpans[] = {2, 2, 14, 3, 33, 2};

// The same box as kArea.
void PaintAreaSpans(const Witness& witness, const PhysicalPen* pen, const PhysicalBrush* brush, const DRAWMODE& mode) {
  QNVOutput(witness.handle(), OS_BANDED_SPANS, 1, kAreaSpans, pen, brush, &mode, &kEverywhere);
}

void PaintAreaRectangle(const Witness& witness, HBRUSH brush) {
  const Selected pen(witness.dc(), GetStockObject(NULL_PEN));
  const Selected selected(witness.dc(), brush);
  Rectangle(witness.dc(), 3, 2, 34, 15);
}

TEST(GdiObjects, DiagonalHatchesOfThePlatformHaveTheSameShape) {
  if (!RunsUnderWine()) GTEST_SKIP() << "the shapes are the platform's own business";
  for (int16_t hatch : std::initializer_list<int16_t>{HS_FDIAGONAL, HS_BDIAGONAL}) {
    for (int16_t background : std::initializer_list<int16_t>{TRANSPARENT, OPAQUE}) {
      for (int16_t rop2 = R2_BLACK; rop2 <= R2_WHITE; ++rop2) {
        Witness witness;
        DRAWMODE mode = MakeDrawMode();
        mode.Rop2 = rop2;
        mode.bkMode = background;
        mode.bkColor = RGB(200, 100, 50);
        witness.Apply(mode);
        const PhysicalBrush brush = HatchBrush(witness.handle(), hatch, RGB(10, 20, 30));
        const GdiObject<HBRUSH> platform(CreateHatchBrush(hatch, RGB(10, 20, 30)));
        PaintAreaSpans(witness, nullptr, &brush, mode);
        PaintAreaRectangle(witness, platform.get());
        EXPECT_TRUE(witness.Same()) << "hatch " << hatch << ", background " << background << ", code " << rop2;
      }
    }
  }
}

TEST(GdiObjectsDifference, OtherHatchesHaveAShapeOfTheirOwn) {
  for (int16_t hatch : std::initializer_list<int16_t>{HS_HORIZONTAL, HS_VERTICAL, HS_CROSS, HS_DIAGCROSS}) {
    Witness witness;
    const DRAWMODE mode = MakeDrawMode();
    witness.Apply(mode);
    const PhysicalBrush brush = HatchBrush(witness.handle(), hatch, RGB(10, 20, 30));
    const GdiObject<HBRUSH> platform(CreateHatchBrush(hatch, RGB(10, 20, 30)));
    PaintAreaSpans(witness, nullptr, &brush, mode);
    PaintAreaRectangle(witness, platform.get());
    ExpectDifference(kHatchShapes, witness);
  }
}

TEST(GdiObjectsDifference, HatchesGrowWithTheResolution) {
  const Witness fine({.resolution = 720});
  DRAWMODE mode = MakeDrawMode();
  mode.TextColor = RGB(10, 20, 30);
  fine.Apply(mode);
  const BrushPair hatch = HatchPair(fine, HS_DIAGCROSS, mode.TextColor);
  PaintAreaSpans(fine, nullptr, &hatch.library, mode);
  PaintAreaRectangle(fine, hatch.platform.get());
  ExpectDifference(kHatchScale, fine);
}

TEST(GdiObjectsDifference, SpansCountPatternsFromThePage) {
  const Witness witness({.left = 3, .top = 2});
  const DRAWMODE mode = MakeDrawMode();
  const BrushPair brush = ColorPatternPair(witness, 3);
  PaintAreaSpans(witness, nullptr, &brush.library, mode);
  PaintAreaRectangle(witness, brush.platform.get());
  ExpectDifference(kPatternOrigin, witness);
}

TEST(GdiObjectsDifference, TransfersIgnoreTheBrushOrigin) {
  const Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  const BrushPair brush = ColorPatternPair(witness, 3);
  SetBrushOrgEx(witness.dc(), 1, 0, nullptr);
  PaintBoth(witness, {.area = kArea, .rop = PATCOPY, .brush = &brush}, mode);
  ExpectDifference(kPatternOrigin, witness);
}

TEST(GdiObjectsDifference, OnlyTheCornerOfALargePatternCounts) {
  const Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  witness.Apply(mode);
  std::vector<uint8_t> rows;
  for (int i = 0; i < 16; ++i) rows.insert(rows.end(), {static_cast<uint8_t>(i), static_cast<uint8_t>(0xF0 - i)});
  const SourceBitmap bitmap{0, 16, 16, 2, 1, 1, rows.data()};
  const PhysicalBrush brush = PatternBrush(witness.handle(), bitmap);
  const GdiObject<HBITMAP> tile(CreateBitmap(16, 16, 1, 1, rows.data()));
  const GdiObject<HBRUSH> platform(CreatePatternBrush(tile.get()));
  PaintAreaSpans(witness, nullptr, &brush, mode);
  PaintAreaRectangle(witness, platform.get());
  ExpectDifference(kLargePattern, witness);
}

TEST(GdiObjectsDifference, TransfersFillTheGapsOfATransparentHatch) {
  const Witness witness;
  DRAWMODE mode = MakeDrawMode();
  mode.bkMode = TRANSPARENT;
  witness.Apply(mode);
  const BrushPair brush{"hatch", HatchBrush(witness.handle(), HS_FDIAGONAL, RGB(10, 20, 30), RGB(90, 80, 70)),
                        GdiObject<HBRUSH>(CreateHatchBrush(HS_FDIAGONAL, RGB(10, 20, 30)))};
  PaintBoth(witness, {.area = kArea, .rop = PATCOPY, .brush = &brush}, mode);
  ExpectDifference(kTransparentHatch, witness);
}

TEST(GdiObjectsDifference, GrayBandsWeighTheComponentsOfAColor) {
  const Witness witness({.depth = 8});
  const DRAWMODE mode = MakeDrawMode();
  const BrushPair brush = SolidPair(witness, RGB(255, 0, 0));
  PaintBoth(witness, {.area = kArea, .rop = PATCOPY, .brush = &brush}, mode);
  EXPECT_EQ(76, *witness.device().Pixel(3, 2));
  ExpectDifference(kGrayOfColor, witness);
}

TEST(GdiObjectsDifference, WithoutBrushAndPenSpansAreBlack) {
  const Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  PaintAreaSpans(witness, nullptr, nullptr, mode);
  PaintAreaRectangle(witness, static_cast<HBRUSH>(GetStockObject(NULL_BRUSH)));
  ExpectDifference(kNoBrush, witness);
  PaintAreaRectangle(witness, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  EXPECT_TRUE(witness.Same());
}

TEST(GdiObjectsDifference, EveryPenIsSolid) {
  const Witness witness;
  const DRAWMODE mode = MakeDrawMode();
  const LogicalPen logical{PS_DASH, 1, 0, RGB(1, 2, 3)};
  PhysicalPen pen;
  ASSERT_EQ(0x8000u, QNVRealizeObject(witness.handle(), OBJ_PEN, &logical, &pen, nullptr));
  const GdiObject<HPEN> dashed(CreatePen(PS_DASH, 1, RGB(1, 2, 3)));
  const GdiObject<HPEN> solid(CreatePen(PS_SOLID, 1, RGB(1, 2, 3)));
  const int16_t line[] = {0, 5, 0, 43};
  QNVOutput(witness.handle(), OS_SCANLINES, 2, line, &pen, nullptr, &mode, &kEverywhere);
  SetBkMode(witness.dc(), TRANSPARENT);
  const auto draw = [&witness](HPEN platform) {
    const Selected selected(witness.dc(), platform);
    MoveToEx(witness.dc(), 0, 5, nullptr);
    LineTo(witness.dc(), 43, 5);
  };
  draw(dashed.get());
  ExpectDifference(kStyledPen, witness);
  draw(solid.get());
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
  const DRAWMODE mode = MakeDrawMode();
  const SourcePair source = ColorSourcePair(30, 12, 4);
  const BrushPair brush = ColorPatternPair(witness, 3);
  PaintBoth(witness, {.area = kArea, .rop = MERGECOPY, .source = &source, .brush = &brush}, mode);
  ExpectDifference(kPatternWithSource, witness);
}

}  // namespace
}  // namespace qnv::test
