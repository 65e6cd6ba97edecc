// Figures under all sixteen binary operations: the platform's regions, rectangles, lines and pixels beside span lists.

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "windows/paired_calls.h"

namespace qnv::test {
namespace {

// The ternary code with the same function of pattern and destination.
DWORD TernaryOf(int16_t rop2) {
  const DWORD table = static_cast<DWORD>(rop2 - 1);
  return ((table & 3) * 5 | (table >> 2) * 0x50) << 16;
}

constexpr RECT kBox{40, -9, 71, 5};
constexpr int16_t kBoxSpans[] = {2, -9, 5, 40, 71, 2};

class GdiRop2 : public testing::TestWithParam<uint16_t> {
 protected:
  // Spans count the cells of a pattern from the page's corner, the platform from the band's unless it is told.
  GdiRop2() { SetBrushOrgEx(witness_.dc(), -37, 11, nullptr); }

  // Calls `paint` with every operation, over fresh noise; the platform has been told.
  template <class Paint>
  void UnderEveryCode(Paint paint) {
    for (int16_t rop2 = R2_BLACK; rop2 <= R2_WHITE && !HasFatalFailure(); ++rop2) {
      SCOPED_TRACE("code " + std::to_string(rop2));
      const DRAWMODE mode = TwoColors(witness_, rop2);
      witness_.Apply(mode);
      witness_.Reset(static_cast<uint64_t>(rop2));
      paint(mode);
    }
  }

  void PaintSpans(uint32_t style, const int16_t* words, uint32_t count, const PhysicalPen* pen,
                  const PhysicalBrush* brush, const DRAWMODE& mode) {
    EXPECT_EQ(1u, QNVOutput(witness_.handle(), style, count, words, pen, brush, &mode, &kEverywhere) & 0xFFFF);
  }

  Witness witness_{{.depth = GetParam(), .left = 37, .top = -11}};
  const HDC dc_ = witness_.dc();
  const GdiObject<HRGN> region_{CreateRectRgnIndirect(&kBox)};
  const COLORREF color_ = ExactColor(witness_, 0x00705030);
};

// Three ways of the platform to fill the same box.
TEST_P(GdiRop2, BoxesAgreeUnderEveryCodeAndBrush) {
  UnderEveryCode([&](const DRAWMODE& mode) {
    for (const BrushPair& brush : EveryBrush(witness_, mode)) {
      SCOPED_TRACE(brush.name);
      const Selected selected(dc_, {GetStockObject(NULL_PEN), brush.platform.get()});
      const auto check = [&](const char* way, auto paint) {
        witness_.Reset(static_cast<uint64_t>(mode.Rop2));
        paint();
        PaintSpans(OS_BANDED_SPANS, kBoxSpans, 1, nullptr, &brush.library, mode);
        ASSERT_TRUE(witness_.Same()) << way;
      };
      check("region", [&] { PaintRgn(dc_, region_.get()); });
      // Without a border a rectangle ends one pixel before its corner.
      check("rectangle", [&] { Rectangle(dc_, kBox.left, kBox.top, kBox.right + 1, kBox.bottom + 1); });
      check("pattern transfer", [&] {
        PatBlt(dc_, kBox.left, kBox.top, kBox.right - kBox.left, kBox.bottom - kBox.top, TernaryOf(mode.Rop2));
      });
    }
  });
}

// A transparent hatch leaves its gaps alone under every operation. The platform paints the opaque one, then puts
// the gaps back.
TEST_P(GdiRop2, TransparentHatchesAgreeUnderEveryCode) {
  const GdiBitmap saved(GetParam(), 43, 19);
  for (int16_t hatch = HS_HORIZONTAL; hatch <= HS_DIAGCROSS; ++hatch) {
    UnderEveryCode([&](DRAWMODE mode) {
      SCOPED_TRACE("hatch " + std::to_string(hatch));
      BitBlt(saved.dc(), 0, 0, 43, 19, dc_, 37, -11, SRCCOPY);
      const BrushPair brush = HatchPair(witness_, hatch, mode.TextColor);
      const Selected selected(dc_, {brush.platform.get()});
      PaintRgn(dc_, region_.get());
      BitBlt(dc_, 37, -11, 43, 19, saved.dc(), 0, 0, SRCINVERT);
      SetTextColor(dc_, RGB(0, 0, 0));
      SetBkColor(dc_, RGB(255, 255, 255));
      PatBlt(dc_, 37, -11, 43, 19, 0x000A0329);  // destination and not pattern
      BitBlt(dc_, 37, -11, 43, 19, saved.dc(), 0, 0, SRCINVERT);

      mode.bkMode = TRANSPARENT;
      PaintSpans(OS_BANDED_SPANS, kBoxSpans, 1, nullptr, &brush.library, mode);
      ASSERT_TRUE(witness_.Same());
    });
  }
}

TEST_P(GdiRop2, HorizontalLinesAgreeWithSpansOfAPen) {
  const PhysicalPen pen = SolidPen(witness_.handle(), color_);
  const GdiObject<HPEN> platform(CreatePen(PS_SOLID, 1, color_));
  UnderEveryCode([&](const DRAWMODE& mode) {
    const Selected selected(dc_, {platform.get()});
    for (int i = 0; i < 12; ++i) {
      const auto word = [](int value) { return static_cast<int16_t>(value); };
      const int16_t line[] = {0, word(-12 + i * 2), word(30 + i * 3), word(30 + i * 8)};
      MoveToEx(dc_, line[2], line[1], nullptr);
      LineTo(dc_, line[3], line[1]);
      PaintSpans(OS_SCANLINES, line, 2, &pen, nullptr, mode);
      ASSERT_TRUE(witness_.Same()) << "line " << i;
    }
  });
}

TEST_P(GdiRop2, PixelsAgree) {
  const GdiObject<HBRUSH> brush(CreateSolidBrush(color_));
  UnderEveryCode([&](const DRAWMODE& mode) {
    const Selected selected(dc_, {brush.get()});
    for (int32_t x = 35; x < 84; x += 3) {
      for (int32_t y = -13; y < 12; y += 4) {
        QNVPixel(witness_.handle(), x, y, color_, &mode, &kEverywhere);
        PatBlt(dc_, x, y, 1, 1, TernaryOf(mode.Rop2));
      }
    }
    QNVPolyPixel(witness_.handle(), 70, 6, 51, -20, color_, &mode, &kEverywhere);  // both corners included
    PatBlt(dc_, 51, -20, 20, 27, TernaryOf(mode.Rop2));
    ASSERT_TRUE(witness_.Same());
  });
  const DRAWMODE copy = TwoColors(witness_);
  witness_.Apply(copy);
  QNVPixel(witness_.handle(), 40, 0, color_, &copy, &kEverywhere);
  SetPixel(dc_, 40, 0, color_);
  EXPECT_TRUE(witness_.Same());
}

INSTANTIATE_TEST_SUITE_P(BothDepths, GdiRop2, testing::Values(uint16_t{24}, uint16_t{8}));

}  // namespace
}  // namespace qnv::test
