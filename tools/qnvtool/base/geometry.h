// Rectangles, and the rounding of coordinates that the resolution-mapping device uses.
#pragma once

#include <algorithm>
#include <cstdint>

namespace qnv::tool {

// Sheets and pictures are no wider and no higher, in pixels: the coordinates of spans have 16 bits.
inline constexpr int kMaxSide = 32767;

// Half-open: right and bottom are outside. Pixels unless a name says otherwise.
struct Rect {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;

  int width() const { return right - left; }
  int height() const { return bottom - top; }
  bool empty() const { return left >= right || top >= bottom; }
  bool operator==(const Rect&) const = default;
};

inline Rect Intersect(const Rect& a, const Rect& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

// value * numerator / denominator to the nearest integer, exact halves away from zero. The resolution-mapping
// device rounds in the same way.
inline int ScaleRounded(int value, int numerator, int denominator) {
  const int64_t product = int64_t{value} * numerator;
  const int64_t half = denominator / 2;
  return static_cast<int>((product < 0 ? product - half : product + half) / denominator);
}

}  // namespace qnv::tool
