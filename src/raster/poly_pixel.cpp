// Searches the points of one axis that can be seen.
#include "raster/poly_pixel.h"

#include <algorithm>

namespace qnv {
namespace {

constexpr int64_t kTurn = int64_t{1} << 32;

// Binary search in [from, end) for the first point for which isPast is true, given that it is true for all points after
// that one; `end` when there is none.
template <class IsPast>
int64_t FirstPast(int64_t from, int64_t end, IsPast isPast) {
  while (from < end) {
    const int64_t middle = from + (end - from) / 2;
    if (isPast(middle)) {
      end = middle;
    } else {
      from = middle + 1;
    }
  }
  return from;
}

}  // namespace

SeenPoints::SeenPoints(const PixelAxis& axis, int32_t low, int32_t high, int32_t origin)
    : axis_(axis), first_(int64_t{low} + origin), last_(int64_t{high} + origin), turn_(-kTurn) {
  SetRange();
}

// The limits are numbers of 32 bits, so that cutting to them leaves of each turn what wraps to such numbers.
void SeenPoints::SetRange() {
  next_ = std::max(first_ + turn_, int64_t{axis_.low});
  end_ = std::min(last_ + turn_ + 1, int64_t{axis_.high});
}

// The first point after v, below `end`, that falls on another band pixel than v's, `pixel`: with steps that double,
// then within the last step.
int64_t SeenPoints::EndOfBandPixel(int64_t v, int32_t pixel, int64_t end) const {
  int64_t step = 1;
  while (v + step < end && BandOf(v + step) == pixel) step *= 2;
  return FirstPast(v + step / 2 + 1, std::min(v + step, end), [&](int64_t point) { return BandOf(point) > pixel; });
}

bool SeenPoints::Search(int32_t* point, int64_t* count) {
  for (;;) {
    while (next_ >= end_) {
      if (turn_ == kTurn) return false;
      turn_ += kTurn;
      SetRange();
    }
    if (axis_.map == nullptr) return Next(point, count);
    const int64_t v = next_;
    // Within this magnitude the mapping never falls from one point to the next. Beyond it the product overflows, and
    // every point is mapped to band pixel -1.
    const int64_t farthest = axis_.map->FarthestMapped();
    const bool before = v<-farthest, behind = v> farthest;
    const int64_t end = behind ? end_ : std::min(end_, before ? -farthest : farthest + 1);
    const int32_t pixel = BandOf(v);
    if (before || behind || pixel >= axis_.bandHigh) {
      next_ = end;
    } else if (pixel < axis_.bandLow) {
      next_ = FirstPast(v, end, [&](int64_t other) { return BandOf(other) >= axis_.bandLow; });
    } else {
      next_ = EndOfBandPixel(v, pixel, end);
    }
    if (pixel < axis_.bandLow || pixel >= axis_.bandHigh) continue;
    *point = static_cast<int32_t>(v);
    *count = next_ - v;
    return true;
  }
}

}  // namespace qnv
