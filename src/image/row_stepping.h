// Which destination rows and columns each source row and column of an image covers. Each source pixel advances a
// position in the destination by a fixed step in 16.16 fixed point and covers the pixels up to the rounded position;
// nothing is averaged. Numbers of hostile documents may wrap, but what is covered always lies inside the destination.
#pragma once

#include <cstdint>

#include "image/source_mapping.h"
#include "raster/wrap.h"

namespace qnv {

// The absolute value; unsigned, so that it exists for -2^31.
constexpr uint32_t Magnitude(int32_t v) { return v < 0 ? 0u - static_cast<uint32_t>(v) : static_cast<uint32_t>(v); }

// The integer part of a 16.16 position, cut to 16 bits. One half has been added to the position before, for rounding.
constexpr uint16_t ReachedBy(int32_t position) { return static_cast<uint16_t>(position / 65536); }

// The stepping of one direction, rows or columns.
struct Stepping {
  uint32_t step;  // destination pixels per source pixel, 16.16
  int32_t start;  // position before the first source pixel, 16.16, from the first visible destination pixel
  int32_t sourcePixels;
  uint16_t dstPixels;  // visible destination pixels

  bool operator==(const Stepping&) const = default;
};

// dst, dstExtent: destination of the source rectangle, 16.16; a negative extent is mirrored. clipStart: first visible
// pixel. dst and clipStart count from the edge of the band.
constexpr Stepping MakeStepping(int32_t dst, int32_t dstExtent, int32_t sourcePixels, int32_t clipStart,
                                int32_t clipPixels) {
  const uint32_t extent = Magnitude(dstExtent);
  int32_t start = WrapSubtract(dst, WrapMultiply(clipStart, 65536));
  if (dstExtent < 0) start = WrapSubtract(start, static_cast<int32_t>(extent));
  return {extent / static_cast<uint32_t>(sourcePixels), start, sourcePixels, static_cast<uint16_t>(clipPixels)};
}

// The destination rows that a source row covers, counted from the first visible one.
struct CoveredRows {
  int32_t first;
  int32_t count;  // 0: none
};

// Steps through the source rows in the order in which they are painted.
class RowWalk {
 public:
  explicit RowWalk(const Stepping& stepping) : stepping_(stepping), position_(stepping.start) {}

  // Steps to the next source row. False at the end of the source or of the destination.
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

  // The number of the current source row, and whether it is the last one.
  int32_t Index() const { return walked_ - 1; }
  bool IsLast() const { return walked_ == stepping_.sourcePixels; }

 private:
  Stepping stepping_;
  int32_t position_;    // 16.16
  int32_t walked_ = 0;  // source rows so far
  uint16_t done_ = 0;   // destination rows covered so far
};

// True when source pixel i covers destination pixel i and no other, for all that there are.
constexpr bool IsOneToOne(const Stepping& stepping) {
  const int64_t first = int64_t{stepping.start} + 32768;
  return stepping.step == 65536 && first >= 0 && first < 65536 && stepping.sourcePixels < INT16_MAX;
}

// Calls cover(i, begin, end) for every source column i that covers destination columns, [begin, end). Returns the end
// of the destination columns that are covered.
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
