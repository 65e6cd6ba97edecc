// Figures under all sixteen binary operations: the platform's regions, rectangles and lines beside span lists.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "windows/differences.h"
#include "windows/paired_objects.h"
#include "windows/region_spans.h"

namespace qnv::test {
namespace {

constexpr BitRows kTile = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF1};

// The ternary code with the same function of pattern and destination.
DWORD TernaryOf(int16_t rop2) {
  const DWORD table = static_cast<DWORD>(rop2 - 1);
  return ((table & 3) * 5 | (table >> 2) * 0x50) << 16;
}

// Spans count the cells of a pattern from the page's corner, the platform from the band's unless it is told.
void AlignToPage(const Witness& witness) {
  SetBrushOrgEx(witness.dc(), -witness.shape().left, -witness.shape().top, nullptr);
}

struct Ink {
  const PhysicalPen* pen = nullptr;
  const PhysicalBrush* brush = nullptr;
};

void PaintSpans(const Witness& witness, uint32_t style, const SpanList& list, const Ink& ink, const DRAWMODE& mode) {
  EXPECT_EQ(1u,
            QNVOutput(witness.handle(), style, list.count, list.words.data(), ink.pen, ink.brush, &mode, &kEverywhere) &
                0xFFFF);
}

SpanList Box(const RECT& box) {
  const auto word = [](LONG value) { return static_cast<int16_t>(value); };
  return {1, {2, word(box.top), word(box.bottom), word(box.left), word(box.right), 2}};
}

DRAWMODE ModeOf(const Witness& witness, int16_t rop2) {
  DRAWMODE mode = MakeDrawMode();
  mode.Rop2 = rop2;
  mode.TextColor = ExactColor(witness, 0x00123456);
  mode.bkColor = ExactColor(witness, 0x00E0C0A1);
  return mode;
}

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

class GdiRop2 : public testing::TestWithParam<uint16_t> {};

// Three ways of the platform to fill the same box.
TEST_P(GdiRop2, BoxesAgreeUnderEveryCodeAndBrush) {
  Witness witness({.depth = GetParam(), .left = 37, .top = -11});
  AlignToPage(witness);
  const RECT box{40, -9, 71, 5};
  const GdiObject<HRGN> region(CreateRectRgn(box.left, box.top, box.right, box.bottom));
  for (int16_t rop2 = R2_BLACK; rop2 <= R2_WHITE; ++rop2) {
    const DRAWMODE mode = ModeOf(witness, rop2);
    witness.Apply(mode);
    for (const BrushPair& brush : AllBrushes(witness, mode)) {
      SCOPED_TRACE(brush.name + ", code " + std::to_string(rop2));
      const Selected pen(witness.dc(), GetStockObject(NULL_PEN));
      const Selected selected(witness.dc(), brush.platform.get());
      const auto check = [&](const char* way, auto paint) {
        witness.Reset(static_cast<uint64_t>(rop2));
        paint();
        PaintSpans(witness, OS_BANDED_SPANS, Box(box), {.brush = &brush.library}, mode);
        ASSERT_TRUE(witness.Same()) << way;
      };
      check("region", [&] { PaintRgn(witness.dc(), region.get()); });
      // Without a border a rectangle ends one pixel before its corner.
      check("rectangle", [&] { Rectangle(witness.dc(), box.left, box.top, box.right + 1, box.bottom + 1); });
      check("pattern transfer", [&] {
        PatBlt(witness.dc(), box.left, box.top, box.right - box.left, box.bottom - box.top, TernaryOf(rop2));
      });
    }
  }
}

// A transparent hatch leaves its gaps alone under every operation. The platform paints the opaque one, then puts
// the gaps back.
TEST_P(GdiRop2, TransparentHatchesAgreeUnderEveryCode) {
  Witness witness({.depth = GetParam(), .left = 37, .top = -11});
  GdiSurface saved(GetParam(), witness.shape().width, witness.shape().height, 37, -11);
  AlignToPage(witness);
  const RECT box{40, -9, 71, 5};
  const GdiObject<HRGN> region(CreateRectRgn(box.left, box.top, box.right, box.bottom));
  for (int16_t hatch = HS_HORIZONTAL; hatch <= HS_DIAGCROSS; ++hatch) {
    for (int16_t rop2 = R2_BLACK; rop2 <= R2_WHITE; ++rop2) {
      SCOPED_TRACE("hatch " + std::to_string(hatch) + ", code " + std::to_string(rop2));
      DRAWMODE mode = ModeOf(witness, rop2);
      witness.Reset(static_cast<uint64_t>(rop2));
      witness.Apply(mode);
      BitBlt(saved.dc(), 37, -11, 43, 19, witness.dc(), 37, -11, SRCCOPY);
      const BrushPair brush = HatchPair(witness, hatch, mode.TextColor);
      const Selected selected(witness.dc(), brush.platform.get());
      PaintRgn(witness.dc(), region.get());
      BitBlt(witness.dc(), 37, -11, 43, 19, saved.dc(), 37, -11, SRCINVERT);
      SetTextColor(witness.dc(), RGB(0, 0, 0));
      SetBkColor(witness.dc(), RGB(255, 255, 255));
      PatBlt(witness.dc(), 37, -11, 43, 19, 0x000A0329);  // destination and not pattern
      BitBlt(witness.dc(), 37, -11, 43, 19, saved.dc(), 37, -11, SRCINVERT);

      mode.bkMode = TRANSPARENT;
      PaintSpans(witness, OS_BANDED_SPANS, Box(box), {.brush = &brush.library}, mode);
      ASSERT_TRUE(witness.Same());
    }
  }
}

TEST_P(GdiRop2, HorizontalLinesAgreeWithSpansOfAPen) {
  Witness witness({.depth = GetParam(), .left = 37, .top = -11});
  const COLORREF color = ExactColor(witness, 0x00705030);
  const PhysicalPen pen = SolidPen(witness.handle(), color);
  const GdiObject<HPEN> platform(CreatePen(PS_SOLID, 1, color));
  const Selected selected(witness.dc(), platform.get());
  for (int16_t rop2 = R2_BLACK; rop2 <= R2_WHITE; ++rop2) {
    const DRAWMODE mode = ModeOf(witness, rop2);
    witness.Apply(mode);
    witness.Reset(static_cast<uint64_t>(rop2));
    for (int16_t i = 0; i < 12; ++i) {
      const int16_t left = static_cast<int16_t>(30 + i * 3);
      const int16_t right = static_cast<int16_t>(left + i * 5);
      const int16_t y = static_cast<int16_t>(-12 + i * 2);
      MoveToEx(witness.dc(), left, y, nullptr);
      LineTo(witness.dc(), right, y);
      PaintSpans(witness, OS_SCANLINES, {2, {0, y, left, right}}, {.pen = &pen}, mode);
      ASSERT_TRUE(witness.Same()) << "code " << rop2 << ", line " << i;
    }
  }
}

TEST_P(GdiRop2, PixelsAgree) {
  Witness witness({.depth = GetParam(), .left = 37, .top = -11});
  const COLORREF color = ExactColor(witness, 0x00705030);
  const BrushPair brush = SolidPair(witness, color);
  const Selected selected(witness.dc(), brush.platform.get());
  for (int16_t rop2 = R2_BLACK; rop2 <= R2_WHITE; ++rop2) {
    const DRAWMODE mode = ModeOf(witness, rop2);
    witness.Apply(mode);
    for (int32_t x = 35; x < 84; x += 3) {
      for (int32_t y = -13; y < 12; y += 4) {
        QNVPixel(witness.handle(), x, y, color, &mode, &kEverywhere);
        PatBlt(witness.dc(), x, y, 1, 1, TernaryOf(rop2));
      }
    }
    QNVPolyPixel(witness.handle(), 70, 6, 51, -20, color, &mode, &kEverywhere);  // both corners included
    PatBlt(witness.dc(), 51, -20, 20, 27, TernaryOf(rop2));
    ASSERT_TRUE(witness.Same()) << "code " << rop2;
  }
  const DRAWMODE copy = ModeOf(witness, R2_COPYPEN);
  witness.Apply(copy);
  QNVPixel(witness.handle(), 40, 0, color, &copy, &kEverywhere);
  SetPixel(witness.dc(), 40, 0, color);
  EXPECT_TRUE(witness.Same());
}

INSTANTIATE_TEST_SUITE_P(BothDepths, GdiRop2, testing::Values(uint16_t{24}, uint16_t{8}));

}  // namespace
}  // namespace qnv::test
