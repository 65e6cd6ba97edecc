// Finds the points of a rectangle that can change the band, so that PolyPixel need not visit all of them: a rectangle
// may have 2^64. Points that fall on the same band pixel are visited once, with their number.
#pragma once

#include <cstdint>

#include "raster/coordinate_map.h"
#include "raster/rect.h"

namespace qnv {

// Where points of a device can be seen.
struct PixelReach {
  Rect limits;               // points, origin added, inside the clip and, without a map, inside the band
  Rect band;                 // the band in its own pixels; used with a map only
  const CoordinateMap* map;  // null: points are band pixels
};

// A PixelReach in one direction, horizontal or vertical.
struct PixelAxis {
  int32_t low, high;          // of the limits, half-open
  int32_t bandLow, bandHigh;  // of the band, half-open; used with a map only
  const CoordinateMap* map;
};

// Calls visit(point, count) for the points from first to last, both included and origin added, that can be seen. The
// `count` points from `point` on fall on the same band pixel.
template <class Visit>
void ForEachSeen(const PixelAxis& axis, int64_t first, int64_t last, Visit visit) {
  if (first < axis.low) first = axis.low;
  if (last > int64_t{axis.high} - 1) last = int64_t{axis.high} - 1;
  if (axis.map == nullptr) {
    for (int64_t v = first; v <= last; ++v) visit(static_cast<int32_t>(v), int64_t{1});
    return;
  }
  const auto bandOf = [&](int64_t v) { return axis.map->MapToBand(static_cast<int32_t>(v)); };
  // Binary search in [from, end) for the first point for which isPast is true, given that it is true for all points
  // after that one; `end` when there is none.
  const auto firstPast = [](int64_t from, int64_t end, auto isPast) {
    while (from < end) {
      const int64_t middle = from + (end - from) / 2;
      if (isPast(middle)) {
        end = middle;
      } else {
        from = middle + 1;
      }
    }
    return from;
  };
  // Within this magnitude the mapping never falls from one point to the next. Beyond it the product overflows, and
  // every point is mapped to band pixel -1.
  const int64_t farthest = axis.map->FarthestMapped();
  const auto visitOutside = [&](int64_t from, int64_t end) {
    if (from < end && axis.bandLow <= -1 && -1 < axis.bandHigh) visit(static_cast<int32_t>(from), end - from);
  };
  visitOutside(first, last + 1 < -farthest ? last + 1 : -farthest);
  const int64_t begin = first > -farthest ? first : -farthest;
  const int64_t end = (last < farthest ? last : farthest) + 1;
  int64_t v = firstPast(begin, end, [&](int64_t point) { return bandOf(point) >= axis.bandLow; });
  while (v < end) {
    const int32_t pixel = bandOf(v);
    if (pixel >= axis.bandHigh) break;
    // Find the end of the points on this band pixel with steps that double, then search within the last step.
    int64_t step = 1;
    while (v + step < end && bandOf(v + step) == pixel) step *= 2;
    const int64_t limit = v + step < end ? v + step : end;
    const int64_t next = firstPast(v + step / 2, limit, [&](int64_t point) { return bandOf(point) > pixel; });
    visit(static_cast<int32_t>(v), next - v);
    v = next;
  }
  visitOutside(first > farthest + 1 ? first : farthest + 1, last + 1);
}

// The same for points before the origin is added, from low to high, both included. The sums wrap at 32 bits, so the
// points may fall into two ranges.
template <class Visit>
void ForEachSeenOfCaller(const PixelAxis& axis, int32_t low, int32_t high, int32_t origin, Visit visit) {
  constexpr int64_t kTurns[] = {-(int64_t{1} << 32), 0, int64_t{1} << 32};
  const int64_t first = int64_t{low} + origin, last = int64_t{high} + origin;
  for (const int64_t turn : kTurns) {
    const int64_t from = first + turn > INT32_MIN ? first + turn : int64_t{INT32_MIN};
    const int64_t to = last + turn < INT32_MAX ? last + turn : int64_t{INT32_MAX};
    if (from <= to) ForEachSeen(axis, from, to, visit);
  }
}

}  // namespace qnv
