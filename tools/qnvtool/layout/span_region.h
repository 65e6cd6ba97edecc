// Figures as sets of pixels: for every row the spans that the figure covers. A pixel belongs to a figure when its
// centre lies inside.
#pragma once

#include <vector>

#include "qnvtool/base/geometry.h"

namespace qnv::tool {

// Half-open run of pixels on a row.
struct Span {
  int left = 0;
  int right = 0;
  bool operator==(const Span&) const = default;
};

using SpanRow = std::vector<Span>;  // sorted, not empty, not touching each other

struct SpanRegion {
  int top = 0;
  std::vector<SpanRow> rows;  // row i lies at top + i; the first and the last are not empty

  bool empty() const { return rows.empty(); }
  int bottom() const { return top + static_cast<int>(rows.size()); }
};

struct Point {
  double x = 0;  // pixels; whole numbers are pixel corners
  double y = 0;
};

// A rectangle.
SpanRegion RectRegion(double left, double top, double right, double bottom);

// The ellipse inscribed in a rectangle.
SpanRegion EllipseRegion(double left, double top, double right, double bottom);

// Inside by the even-odd rule. Fewer than three points cover nothing.
SpanRegion PolygonRegion(const std::vector<Point>& points);

// A line of the given width along the points, with round ends and joints; `closed` joins the last point to the first.
SpanRegion StrokeRegion(const std::vector<Point>& points, double width, bool closed);

// The pixels of either region, of a but not b, and of the region inside a rectangle.
SpanRegion Unite(const SpanRegion& a, const SpanRegion& b);
SpanRegion Subtract(const SpanRegion& a, const SpanRegion& b);
SpanRegion Clip(const SpanRegion& region, const Rect& clip);

}  // namespace qnv::tool
