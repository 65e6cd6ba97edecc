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

// The points from low to high, both included, that can be seen once the origin is added.
class SeenPoints {
 public:
  SeenPoints(const PixelAxis& axis, int32_t low, int32_t high, int32_t origin);

  // The next `count` points, from `point` on and origin added, which all fall on one band pixel. False after the last.
  bool Next(int32_t* point, int64_t* count) {
    if (axis_.map != nullptr || next_ >= end_) return Search(point, count);
    *point = static_cast<int32_t>(next_++);
    *count = 1;
    return true;
  }

 private:
  void SetRange();
  bool Search(int32_t* point, int64_t* count);
  int64_t EndOfBandPixel(int64_t v, int32_t pixel, int64_t end) const;
  int32_t BandOf(int64_t v) const { return axis_.map->MapToBand(static_cast<int32_t>(v)); }

  PixelAxis axis_;
  int64_t first_, last_;  // sums of 33 bits
  int64_t turn_;          // added to them, it wraps them to 32 bits: -2^32, 0, 2^32 one after the other
  int64_t next_, end_;    // what is left of this turn
};

}  // namespace qnv
