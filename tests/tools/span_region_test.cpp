// Figures as spans, and spans in the encodings of QNVOutput.
#include "qnvtool/layout/span_region.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <set>
#include <string>

#include "qnvtool/paint/span_list.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

using tool::CanEncode;
using tool::EncodeSpans;
using tool::Point;
using tool::Span;
using tool::SpanList;
using tool::SpanRegion;
using tool::SpanRow;

constexpr int kSide = 48;

using PixelSet = std::set<std::pair<int, int>>;  // y, x

PixelSet PixelsOf(const SpanRegion& region) {
  PixelSet pixels;
  for (std::size_t i = 0; i < region.rows.size(); ++i) {
    int end = INT32_MIN;
    for (const Span& span : region.rows[i]) {
      EXPECT_LT(span.left, span.right);
      EXPECT_GT(span.left, end) << "spans must be sorted and apart";
      end = span.right;
      for (int x = span.left; x < span.right; ++x) pixels.emplace(region.top + static_cast<int>(i), x);
    }
  }
  return pixels;
}

// The region holds the pixels whose centres satisfy `inside`.
template <class Inside>
void ExpectCentres(const SpanRegion& region, Inside inside) {
  PixelSet expected;
  for (int y = -kSide; y < 2 * kSide; ++y) {
    for (int x = -kSide; x < 2 * kSide; ++x) {
      if (inside(x + 0.5, y + 0.5)) expected.emplace(y, x);
    }
  }
  EXPECT_EQ(PixelsOf(region), expected);
}

bool InsideEvenOdd(const std::vector<Point>& points, double x, double y) {
  bool inside = false;
  for (std::size_t i = 0, j = points.size() - 1; i < points.size(); j = i++) {
    if ((points[i].y <= y) == (points[j].y <= y)) continue;
    const double at = points[i].x + (y - points[i].y) * (points[j].x - points[i].x) / (points[j].y - points[i].y);
    if (x >= at) inside = !inside;
  }
  return inside;
}

TEST(SpanRegion, RectanglesTakeCentresInside) {
  for (const double left : {3.0, 3.4, 3.6, -2.5}) {
    for (const double width : {0.0, 0.3, 1.0, 7.5}) {
      SCOPED_TRACE(testing::Message() << left << ' ' << width);
      ExpectCentres(tool::RectRegion(left, 2.2, left + width, 9.7),
                    [&](double x, double y) { return x >= left && x < left + width && y >= 2.2 && y < 9.7; });
    }
  }
  EXPECT_TRUE(tool::RectRegion(5, 5, 4, 9).empty());
}

TEST(SpanRegion, EllipsesTakeCentresInside) {
  for (const double width : {1.0, 6.0, 21.3, 40.0}) {
    for (const double height : {1.0, 9.0, 33.7}) {
      SCOPED_TRACE(testing::Message() << width << ' ' << height);
      ExpectCentres(tool::EllipseRegion(3.25, 1.5, 3.25 + width, 1.5 + height), [&](double x, double y) {
        return std::pow((x - 3.25) * 2 / width - 1, 2) + std::pow((y - 1.5) * 2 / height - 1, 2) < 1;
      });
    }
  }
  EXPECT_TRUE(tool::EllipseRegion(5, 5, 5, 9).empty());
}

TEST(SpanRegion, PolygonsFollowTheEvenOddRule) {
  const std::vector<std::vector<Point>> polygons{
      {{2.1, 3.2}, {30.7, 8.3}, {12.4, 40.9}},
      {{20.3, 1.1}, {33.9, 41.2}, {1.2, 16.7}, {39.8, 16.4}, {7.7, 41.3}},  // a star: its middle is outside
      {{5, 5}, {25, 5}, {25, 25}, {5, 25}},
      {{5.1, 5.1}, {40.3, 9.2}, {5.1, 13.3}, {40.3, 17.4}, {5.1, 21.5}},
  };
  for (const auto& polygon : polygons) {
    const SpanRegion region = tool::PolygonRegion(polygon);
    EXPECT_FALSE(region.empty());
    ExpectCentres(region, [&](double x, double y) { return InsideEvenOdd(polygon, x, y); });
  }
  EXPECT_TRUE(tool::PolygonRegion({{1, 1}, {9, 9}}).empty());
}

TEST(SpanRegion, PolygonsSideBySideShareNoPixelAndLeaveNone) {
  const Point a{3, 2}, b{41, 11}, c{29, 44}, d{1, 30};
  const PixelSet whole = PixelsOf(tool::PolygonRegion({a, b, c, d}));
  PixelSet parts = PixelsOf(tool::PolygonRegion({a, b, c}));
  const PixelSet other = PixelsOf(tool::PolygonRegion({a, c, d}));
  const std::size_t sum = parts.size() + other.size();
  parts.insert(other.begin(), other.end());
  EXPECT_EQ(parts, whole);
  EXPECT_EQ(sum, whole.size());
}

TEST(SpanRegion, StrokesTakeCentresNearTheLineAndThinOnesHaveNoGaps) {
  const Point a{6, 7};
  const Point b{35, 22};
  ExpectCentres(tool::StrokeRegion({a, b}, 5, false), [&](double x, double y) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double t = std::clamp(((x - a.x) * dx + (y - a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
    return std::hypot(x - a.x - t * dx, y - a.y - t * dy) < 2.5;
  });
  EXPECT_GE(PixelsOf(tool::StrokeRegion({{3, 3.5}, {40, 30.2}}, 0.01, false)).size(), 37u);
}

TEST(SpanRegion, SetOperations) {
  const SpanRegion a = tool::EllipseRegion(2, 3, 30, 28);
  const SpanRegion b = tool::PolygonRegion({{10, 0}, {44, 20}, {6, 40}});
  PixelSet unite = PixelsOf(a);
  PixelSet subtract = unite;
  const PixelSet inB = PixelsOf(b);
  unite.insert(inB.begin(), inB.end());
  for (const auto& pixel : inB) subtract.erase(pixel);
  EXPECT_EQ(PixelsOf(tool::Unite(a, b)), unite);
  EXPECT_EQ(PixelsOf(tool::Subtract(a, b)), subtract);
  EXPECT_TRUE(tool::Subtract(a, a).empty());

  PixelSet clipped;
  for (const auto& [y, x] : unite) {
    if (x >= 5 && x < 20 && y >= 8 && y < 26) clipped.emplace(y, x);
  }
  EXPECT_EQ(PixelsOf(tool::Clip(tool::Unite(a, b), {5, 8, 20, 26})), clipped);
  EXPECT_TRUE(tool::Clip(a, {100, 100, 200, 200}).empty());
}

// Regions that between them fit every encoding and none.
std::vector<std::pair<const char*, SpanRegion>> Regions() {
  return {{"rectangle", tool::RectRegion(3, 5, 29, 31)},
          {"row", tool::RectRegion(3, 5, 29, 6)},
          {"ellipse", tool::EllipseRegion(1, 2, 33, 46)},
          {"flat ellipse", tool::EllipseRegion(1, 2, 47, 9)},
          {"ring", tool::Subtract(tool::EllipseRegion(2, 2, 42, 42), tool::EllipseRegion(9, 9, 33, 33))},
          {"empty rows", tool::Subtract(tool::EllipseRegion(4, 4, 40, 40), tool::RectRegion(0, 14, 48, 17))},
          {"triangle", tool::PolygonRegion({{4, 4}, {44, 20}, {9, 44}})}};
}

TEST(SpanList, EveryEncodingPaintsTheRegion) {
  constexpr uint16_t kStyles[] = {OS_SCANLINES, OS_BANDED_SPANS, OS_ROW_RECORDS,
                                  OS_ROW_SPANS, OS_BYTE_DELTAS,  OS_NIBBLE_DELTAS};
  std::set<uint16_t> tried;
  for (const auto& [name, region] : Regions()) {
    const PixelSet expected = PixelsOf(region);
    for (const uint16_t style : kStyles) {
      if (!CanEncode(region, style)) continue;
      tried.insert(style);
      TestDevice device({.bitsPerPixel = 8, .width = kSide, .height = kSide, .fill = 0xFF});
      const PhysicalPen pen = SolidPen(device.handle(), 0);
      const DRAWMODE mode = MakeDrawMode();
      for (const SpanList& list : EncodeSpans(region, style)) {
        EXPECT_EQ(list.style, style);
        EXPECT_EQ(
            QNVOutput(device.handle(), list.style, list.count, list.words.data(), &pen, nullptr, &mode, &kEverywhere) &
                0xFFFF,
            1u);
      }
      PixelSet painted;
      for (uint32_t y = 0; y < kSide; ++y) {
        for (uint32_t x = 0; x < kSide; ++x) {
          if (*device.Pixel(x, y) == 0) painted.emplace(static_cast<int>(y), static_cast<int>(x));
        }
      }
      EXPECT_EQ(painted, expected) << name << ", style " << style;
    }
  }
  EXPECT_EQ(tried.size(), 6u);
}

TEST(SpanList, WhichEncodingsFit) {
  const SpanRegion ring = tool::Subtract(tool::EllipseRegion(2, 2, 42, 42), tool::EllipseRegion(9, 9, 33, 33));
  EXPECT_TRUE(CanEncode(ring, OS_ROW_RECORDS));
  EXPECT_FALSE(CanEncode(ring, OS_ROW_SPANS));
  EXPECT_FALSE(CanEncode(ring, OS_BYTE_DELTAS));

  const struct {
    int step;  // of one edge from row to row
    bool nibbles, bytes;
  } cases[] = {{7, true, true},   {-8, true, true},    {8, false, true},
               {-9, false, true}, {-128, false, true}, {-129, false, false}};
  for (const auto& c : cases) {
    SpanRegion region;
    region.rows = {{{500, 600}}, {{500 + c.step, 600}}};
    EXPECT_EQ(CanEncode(region, OS_NIBBLE_DELTAS), c.nibbles) << c.step;
    EXPECT_EQ(CanEncode(region, OS_BYTE_DELTAS), c.bytes) << c.step;
  }
  EXPECT_TRUE(EncodeSpans({}, OS_BANDED_SPANS).empty());
}

TEST(SpanList, ShortestStyleFollowsTheShape) {
  EXPECT_EQ(tool::ShortestStyle(tool::RectRegion(3, 5, 29, 6)), OS_SCANLINES);
  EXPECT_EQ(tool::ShortestStyle(tool::RectRegion(3, 5, 29, 31)), OS_BANDED_SPANS);
  EXPECT_EQ(tool::ShortestStyle(tool::PolygonRegion({{4, 4}, {44, 20}, {9, 44}})), OS_NIBBLE_DELTAS);
}

}  // namespace
}  // namespace qnv::test
