// Computes regions row by row from the pixel centres that lie inside, and combines regions.
#include "qnvtool/layout/span_region.h"

#include <algorithm>
#include <cmath>

namespace qnv::tool {
namespace {

// Larger than any page. Coordinates are limited to it, so that their conversion to int is always defined.
constexpr double kFar = 1e6;

// First pixel whose centre is at or beyond `edge`.
int FirstPixel(double edge) { return static_cast<int>(std::ceil(std::clamp(edge, -kFar, kFar) - 0.5)); }

// Removes empty rows at the top and the bottom.
void Trim(SpanRegion& region) {
  while (!region.rows.empty() && region.rows.back().empty()) region.rows.pop_back();
  std::size_t first = 0;
  while (first < region.rows.size() && region.rows[first].empty()) ++first;
  region.rows.erase(region.rows.begin(), region.rows.begin() + static_cast<std::ptrdiff_t>(first));
  region.top += static_cast<int>(first);
}

// Calls spansAt(yCentre, row) for every pixel row whose centre lies in [top, bottom).
template <class SpansAt>
SpanRegion ByRows(double top, double bottom, SpansAt spansAt) {
  SpanRegion region;
  region.top = FirstPixel(top);
  const int end = FirstPixel(bottom);
  for (int y = region.top; y < end; ++y) {
    region.rows.emplace_back();
    spansAt(y + 0.5, region.rows.back());
  }
  Trim(region);
  return region;
}

// Appends a span to a row and joins it with the last one where they touch. Requires: spans in ascending order.
void AddSpan(SpanRow& row, double left, double right) {
  const Span span{FirstPixel(left), FirstPixel(right)};
  if (span.left >= span.right) return;
  if (!row.empty() && span.left <= row.back().right) {
    row.back().right = std::max(row.back().right, span.right);
  } else {
    row.push_back(span);
  }
}

// Row y of a region; an empty row outside.
const SpanRow& RowAt(const SpanRegion& region, int y) {
  static const SpanRow kNone;
  const int i = y - region.top;
  return i < 0 || i >= static_cast<int>(region.rows.size()) ? kNone : region.rows[static_cast<std::size_t>(i)];
}

// The pixels of a row for which keep(is in a, is in b) is true.
template <class Keep>
SpanRow Combine(const SpanRow& a, const SpanRow& b, Keep keep) {
  std::vector<int> edges;
  for (const SpanRow* row : {&a, &b}) {
    for (const Span& span : *row) edges.insert(edges.end(), {span.left, span.right});
  }
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  const auto covers = [](const SpanRow& row, int x) {
    return std::any_of(row.begin(), row.end(), [x](const Span& s) { return s.left <= x && x < s.right; });
  };
  SpanRow result;
  for (std::size_t i = 0; i + 1 < edges.size(); ++i) {
    if (!keep(covers(a, edges[i]), covers(b, edges[i]))) continue;
    if (!result.empty() && result.back().right == edges[i]) {
      result.back().right = edges[i + 1];
    } else {
      result.push_back({edges[i], edges[i + 1]});
    }
  }
  return result;
}

template <class Keep>
SpanRegion CombineRegions(const SpanRegion& a, const SpanRegion& b, Keep keep) {
  SpanRegion result;
  result.top = std::min(a.top, b.top);
  const int end = std::max(a.bottom(), b.bottom());
  for (int y = result.top; y < end; ++y) result.rows.push_back(Combine(RowAt(a, y), RowAt(b, y), keep));
  Trim(result);
  return result;
}

}  // namespace

SpanRegion RectRegion(double left, double top, double right, double bottom) {
  return ByRows(top, bottom, [&](double, SpanRow& row) { AddSpan(row, left, right); });
}

SpanRegion EllipseRegion(double left, double top, double right, double bottom) {
  const double rx = (right - left) / 2;
  const double ry = (bottom - top) / 2;
  const double x0 = (left + right) / 2;
  const double y0 = (top + bottom) / 2;
  if (rx <= 0 || ry <= 0) return {};
  return ByRows(top, bottom, [&](double y, SpanRow& row) {
    const double t = (y - y0) / ry;
    const double half = rx * std::sqrt(std::max(0.0, 1 - t * t));
    AddSpan(row, x0 - half, x0 + half);
  });
}

// The edges that cross a row, sorted, are alternately left and right ends of spans.
SpanRegion PolygonRegion(const std::vector<Point>& points) {
  if (points.size() < 3) return {};
  const auto [low, high] =
      std::minmax_element(points.begin(), points.end(), [](const Point& a, const Point& b) { return a.y < b.y; });
  std::vector<double> crossings;
  return ByRows(low->y, high->y, [&](double y, SpanRow& row) {
    crossings.clear();
    for (std::size_t i = 0; i < points.size(); ++i) {
      const Point& a = points[i];
      const Point& b = points[(i + 1) % points.size()];
      if ((a.y <= y) == (b.y <= y)) continue;
      crossings.push_back(a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y));
    }
    std::sort(crossings.begin(), crossings.end());
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) AddSpan(row, crossings[i], crossings[i + 1]);
  });
}

// Each part of the line is a rectangle between two discs.
SpanRegion StrokeRegion(const std::vector<Point>& points, double width, bool closed) {
  const double half = std::max(width, 1.0) / 2;  // narrower lines could pass between pixel centres
  SpanRegion result;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Point& a = points[i];
    result = Unite(result, EllipseRegion(a.x - half, a.y - half, a.x + half, a.y + half));
    if (i + 1 == points.size() && !closed) break;
    const Point& b = points[(i + 1) % points.size()];
    const double length = std::hypot(b.x - a.x, b.y - a.y);
    if (length == 0) continue;
    const double dx = (b.x - a.x) / length * half;
    const double dy = (b.y - a.y) / length * half;
    result =
        Unite(result,
              PolygonRegion({{a.x - dy, a.y + dx}, {b.x - dy, b.y + dx}, {b.x + dy, b.y - dx}, {a.x + dy, a.y - dx}}));
  }
  return result;
}

SpanRegion Unite(const SpanRegion& a, const SpanRegion& b) {
  if (a.empty()) return b;
  if (b.empty()) return a;
  return CombineRegions(a, b, [](bool inA, bool inB) { return inA || inB; });
}

SpanRegion Subtract(const SpanRegion& a, const SpanRegion& b) {
  if (a.empty() || b.empty()) return a;
  return CombineRegions(a, b, [](bool inA, bool inB) { return inA && !inB; });
}

SpanRegion Clip(const SpanRegion& region, const Rect& clip) {
  SpanRegion result;
  result.top = std::max(region.top, clip.top);
  const int end = std::min(region.bottom(), clip.bottom);
  for (int y = result.top; y < end; ++y) {
    SpanRow row;
    for (const Span& span : RowAt(region, y)) {
      const Span cut{std::max(span.left, clip.left), std::min(span.right, clip.right)};
      if (cut.left < cut.right) row.push_back(cut);
    }
    result.rows.push_back(std::move(row));
  }
  Trim(result);
  return result;
}

}  // namespace qnv::tool
