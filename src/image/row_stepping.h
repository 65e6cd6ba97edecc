// How source rows and columns step across the destination: forward mapping in 16.16 fixed point, rounded at
// one half, nothing averaged. Values of documents may wrap; what is stored stays inside the destination.
#pragma once

#include <cstdint>

#include "image/source_mapping.h"
#include "raster/wrap.h"

namespace qnv {

constexpr uint32_t Magnitude(int32_t v) { return v < 0 ? 0u - static_cast<uint32_t>(v) : static_cast<uint32_t>(v); }

// Destination pixels reached by a position, rounded at one half and cut to 16 bits.
constexpr uint16_t ReachedBy(int32_t position) { return static_cast<uint16_t>(position / 65536); }

// The step of one direction and the position before the first source row or column.
struct Stepping {
  uint32_t step;  // destination pixels per source pixel, 16.16
  int32_t start;  // a little below 0 up to 0, rarely above
  int32_t sourcePixels;
  uint16_t dstPixels;
};

// dst: destination of the source rectangle, 16.16, signed extent; clipStart: first visible pixel; both
// relative to the band.
constexpr Stepping MakeStepping(int32_t dst, int32_t dstExtent, int32_t sourcePixels, int32_t clipStart,
                                int32_t clipPixels) {
  const uint32_t extent = Magnitude(dstExtent);
  int32_t start = WrapSubtract(dst, WrapMultiply(clipStart, 65536));
  if (dstExtent < 0) start = WrapSubtract(start, static_cast<int32_t>(extent));
  return {extent / static_cast<uint32_t>(sourcePixels), start, sourcePixels, static_cast<uint16_t>(clipPixels)};
}

// Destination rows of one source row, from the clip's top.
struct CoveredRows {
  int32_t first;
  int32_t count;  // 0: the source row falls between destination rows
};

// Walks the source rows in painting order.
class RowWalk {
 public:
  explicit RowWalk(const Stepping& stepping) : stepping_(stepping), position_(stepping.start) {}

  // False when the source or the destination is at its end.
  bool Next(CoveredRows* rows) {
    if (walked_ == stepping_.sourcePixels || done_ >= stepping_.dstPixels) return false;
    ++walked_;
    position_ = WrapAdd(position_, static_cast<int32_t>(stepping_.step));
    const uint16_t reached = ReachedBy(WrapAdd(position_, 32768));
    const uint16_t end = reached < stepping_.dstPixels ? reached : stepping_.dstPixels;
    *rows = {done_, end > done_ ? end - done_ : 0};
    done_ = end;
    return true;
  }

  // Of the row that Next gave last.
  int32_t Index() const { return walked_ - 1; }
  bool IsLast() const { return walked_ == stepping_.sourcePixels; }

 private:
  Stepping stepping_;
  int32_t position_;
  int32_t walked_ = 0;
  uint16_t done_ = 0;
};

// True when every source pixel covers the destination pixel of its own number, as far as there is one.
constexpr bool IsOneToOne(const Stepping& stepping) {
  const int64_t first = int64_t{stepping.start} + 32768;
  return stepping.step == 65536 && first >= 0 && first < 65536 && stepping.sourcePixels < INT16_MAX;
}

// Calls cover(sourcePixel, begin, end) for every source column that covers destination columns; returns how
// many columns, counted from the first, are covered in all.
template <class Cover>
int32_t WalkColumns(const Stepping& stepping, Cover cover) {
  int32_t position = WrapAdd(stepping.start, 32768);
  int32_t previous = 0;
  int32_t farthest = 0;
  for (int32_t i = 0; i < stepping.sourcePixels; ++i) {
    position = WrapAdd(position, static_cast<int32_t>(stepping.step));
    const uint16_t reached = ReachedBy(position);
    const int32_t end = reached < stepping.dstPixels ? reached : stepping.dstPixels;
    if (end > previous) {
      cover(i, previous, end);
      if (end > farthest) farthest = end;
    }
    previous = end;
  }
  return farthest;
}

}  // namespace qnv
