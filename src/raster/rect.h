// Half-open rectangles of signed 32-bit coordinates: clips, destinations, and the place of the band.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"
#include "raster/wrap.h"

namespace qnv {

using Rect = BandRect;

// std::min and std::max take references, which must not be bound to fields of packed records of the host.
constexpr int32_t MaxOf(int32_t a, int32_t b) { return a > b ? a : b; }
constexpr int32_t MinOf(int32_t a, int32_t b) { return a < b ? a : b; }

constexpr void RectSet(Rect& out, int32_t left, int32_t top, int32_t right, int32_t bottom) {
  out = {left, top, right, bottom};
}

// Sets out to the intersection of a and b; out may be one of them. False, with out set to four zeros, when the
// intersection is empty, which includes rectangles that only touch and rectangles that are inverted.
constexpr bool RectIntersect(Rect& out, const Rect& a, const Rect& b) {
  const Rect both{MaxOf(a.left, b.left), MaxOf(a.top, b.top), MinOf(a.right, b.right), MinOf(a.bottom, b.bottom)};
  const bool some = both.top < both.bottom && both.left < both.right;
  out = some ? both : Rect{0, 0, 0, 0};
  return some;
}

constexpr bool IsAllZero(const Rect& r) { return r.left == 0 && r.top == 0 && r.right == 0 && r.bottom == 0; }

// The rectangle moved by (dx, dy); the sums wrap.
constexpr Rect Shifted(const Rect& r, int32_t dx, int32_t dy) {
  return {WrapAdd(r.left, dx), WrapAdd(r.top, dy), WrapAdd(r.right, dx), WrapAdd(r.bottom, dy)};
}

// Whether the rectangle contains the pixel (x, y).
constexpr bool Contains(const Rect& r, int32_t x, int32_t y) {
  return r.top <= y && y < r.bottom && r.left <= x && x < r.right;
}

}  // namespace qnv
