// Figures beside the platform's: those that it scan-converts itself, painted from every span encoding that can hold
// them, then boxes, lines and pixels under all sixteen binary operations.

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "windows/witness.h"

namespace qnv::test {
namespace {

// The rows of a region from its top to its bottom: for each the left and right ends of its spans.
using RegionRows = std::vector<std::vector<int32_t>>;

RegionRows RowsOf(HRGN region, int32_t top, int32_t originX) {
  std::vector<uint8_t> data(GetRegionData(region, 0, nullptr));
  auto* record = reinterpret_cast<RGNDATA*>(data.data());
  if (data.empty() || GetRegionData(region, static_cast<DWORD>(data.size()), record) == 0) std::abort();
  std::vector<RECT> rectangles(record->rdh.nCount);
  if (rectangles.empty()) std::abort();
  std::memcpy(rectangles.data(), data.data() + record->rdh.dwSize, rectangles.size() * sizeof(RECT));
  RegionRows rows(static_cast<std::size_t>(rectangles.back().bottom - top));  // they come from top to bottom
  for (const RECT& rectangle : rectangles) {
    for (LONG y = rectangle.top; y < rectangle.bottom; ++y) {
      auto& row = rows[static_cast<std::size_t>(y - top)];
      row.insert(row.end(), {rectangle.left - originX, rectangle.right - originX});
    }
  }
  return rows;
}

struct SpanList {
  void Add(const std::vector<int32_t>& values) {
    for (int32_t value : values) {
      words.push_back(static_cast<int16_t>(value));
      if (words.back() != value) std::abort();
    }
  }

  uint32_t count = 0;
  std::vector<int16_t> words;
};

// The span list that a host would hand over for a region, counted from `origin`. All encodings but the first two need
// exactly one span in every row; nibble deltas also need edges that move by at most -8..7 from row to row.
SpanList SpansOf(HRGN region, uint32_t style, const POINT& origin) {
  RECT bounds;
  GetRgnBox(region, &bounds);
  const RegionRows rows = RowsOf(region, bounds.top, origin.x);
  const int32_t top = bounds.top - origin.y;
  SpanList list;
  if (style == OS_BANDED_SPANS) {
    // Rows with the same spans make one record, whatever the platform's own bands are.
    for (std::size_t first = 0, end = 0; first < rows.size(); first = end) {
      while (end < rows.size() && rows[end] == rows[first]) ++end;
      if (rows[first].empty()) continue;
      const int32_t values = static_cast<int32_t>(rows[first].size());
      list.Add({values, top + static_cast<int32_t>(first), top + static_cast<int32_t>(end)});
      list.Add(rows[first]);
      list.Add({values});
      ++list.count;
    }
    return list;
  }
  list.count = static_cast<uint32_t>(rows.size());
  list.Add({top});
  if (style == OS_BYTE_DELTAS || style == OS_NIBBLE_DELTAS) {
    const int32_t limit = style == OS_BYTE_DELTAS ? 128 : 8;
    std::vector<uint8_t> bytes;
    for (std::size_t i = 1; i < rows.size(); ++i) {
      const int32_t left = rows[i].at(0) - rows[i - 1].at(0);
      const int32_t right = rows[i].at(1) - rows[i - 1].at(1);
      if (rows[i].size() != 2 || left < -limit || left >= limit || right < -limit || right >= limit) std::abort();
      if (style == OS_NIBBLE_DELTAS) {
        bytes.push_back(static_cast<uint8_t>((left & 15) | (right & 15) << 4));
      } else {
        bytes.insert(bytes.end(), {static_cast<uint8_t>(left), static_cast<uint8_t>(right)});
      }
    }
    bytes.resize((bytes.size() + 1) & ~std::size_t{1});
    list.Add(rows[0]);
    for (std::size_t i = 0; i < bytes.size(); i += 2) list.Add({static_cast<int16_t>(bytes[i] | bytes[i + 1] << 8)});
    return list;
  }
  for (const std::vector<int32_t>& row : rows) {
    if (style == OS_ROW_RECORDS) list.Add({static_cast<int32_t>(row.size())});
    if (style == OS_ROW_SPANS && row.size() != 2) std::abort();
    list.Add(row);
  }
  return list;
}

struct PlatformFigure {
  const char* name;
  GdiObject<HRGN> region;
  std::vector<uint32_t> styles;  // the encodings that can hold it
};

GdiObject<HRGN> PolygonRegion(const std::vector<POINT>& points, int fill) {
  return GdiObject<HRGN>(CreatePolygonRgn(points.data(), static_cast<int>(points.size()), fill));
}

std::vector<PlatformFigure> AllFigures() {
  const std::vector<uint32_t> any = {OS_BANDED_SPANS, OS_ROW_RECORDS};
  const std::vector<uint32_t> oneSpan = {OS_BANDED_SPANS, OS_ROW_RECORDS, OS_ROW_SPANS, OS_BYTE_DELTAS};
  const std::vector<uint32_t> gentle = {OS_BANDED_SPANS, OS_ROW_RECORDS, OS_ROW_SPANS, OS_BYTE_DELTAS,
                                        OS_NIBBLE_DELTAS};
  const std::vector<POINT> star = {{100, 3}, {130, 76}, {52, 28}, {148, 28}, {70, 76}};
  std::vector<PlatformFigure> figures;
  figures.push_back({"ellipse", GdiObject<HRGN>(CreateEllipticRgn(60, 10, 150, 70)), oneSpan});
  figures.push_back({"circle beyond the band", GdiObject<HRGN>(CreateEllipticRgn(20, -30, 190, 130)), oneSpan});
  figures.push_back({"round rectangle", GdiObject<HRGN>(CreateRoundRectRgn(55, 5, 145, 75, 30, 24)), oneSpan});
  figures.push_back({"diamond", PolygonRegion({{100, 0}, {150, 40}, {100, 80}, {50, 40}}, ALTERNATE), gentle});
  figures.push_back({"leaning strip", PolygonRegion({{40, 2}, {60, 2}, {160, 77}, {140, 77}}, ALTERNATE), gentle});
  figures.push_back({"star with a hole", PolygonRegion(star, ALTERNATE), any});
  figures.push_back({"full star", PolygonRegion(star, WINDING), any});
  return figures;
}

class GdiFigures : public testing::TestWithParam<uint16_t> {
 protected:
  void PaintFigure(const PlatformFigure& figure, uint32_t style, const POINT& origin, const BrushPair& brush,
                   const DRAWMODE& mode, const BandRect& clip = kEverywhere) {
    const Selected selected(witness_.dc(), {brush.platform.get()}, clip);
    PaintRgn(witness_.dc(), figure.region.get());
    const SpanList list = SpansOf(figure.region.get(), style, origin);
    EXPECT_EQ(
        1u, QNVOutput(witness_.handle(), style, list.count, list.words.data(), nullptr, &brush.library, &mode, &clip) &
                0xFFFF);
  }

  Witness witness_{{.depth = GetParam(), .width = 101, .height = 67, .left = 50, .top = 5}};
};

TEST_P(GdiFigures, EveryEncodingAgreesWithTheRegion) {
  SetBrushOrgEx(witness_.dc(), -50, -5, nullptr);
  const DRAWMODE mode = MakeDrawMode({.rop2 = R2_XORPEN});
  witness_.Apply(mode);
  const BrushPair brush = DeepPatternPair(witness_, 3);
  for (const PlatformFigure& figure : AllFigures()) {
    for (const DrawingOrigin& origin : {DrawingOrigin{0, 0}, DrawingOrigin{13, -7}}) {
      QNVControl(witness_.handle(), QNV_SET_ORIGIN, &origin, nullptr);
      for (uint32_t style : figure.styles) {
        witness_.Reset(style);
        PaintFigure(figure, style, {origin.x, origin.y}, brush, mode);
        EXPECT_TRUE(witness_.Same()) << figure.name << ", style " << style << ", origin " << origin.x;
        EXPECT_FALSE(witness_.Untouched());
      }
    }
  }
}

TEST_P(GdiFigures, ClipsAgree) {
  const BrushPair brush = SolidPair(witness_, ExactColor(witness_, 0x00407090));
  for (const PlatformFigure& figure : AllFigures()) {
    for (const BandRect& clip : {BandRect{70, 20, 120, 60}, BandRect{0, 0, 100, 40}, BandRect{99, 39, 300, 300},
                                 BandRect{60, 30, 61, 31}, BandRect{0, 0, 20, 20}}) {
      witness_.Reset(5);
      PaintFigure(figure, OS_ROW_RECORDS, {0, 0}, brush, MakeDrawMode(), clip);
      EXPECT_TRUE(witness_.Same()) << figure.name << ", " << Describe(clip);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(BothDepths, GdiFigures, testing::Values(uint16_t{24}, uint16_t{8}));

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
