// Half-open rectangles of signed 32-bit pixels, the form that every call and the band itself use.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"
#include "raster/wrap.h"

namespace qnv {

using Rect = BandRect;

// By value: the host's rectangles are packed, nothing may refer to their fields.
constexpr int32_t MaxOf(int32_t a, int32_t b) { return a > b ? a : b; }
constexpr int32_t MinOf(int32_t a, int32_t b) { return a < b ? a : b; }

constexpr void RectSet(Rect& out, int32_t left, int32_t top, int32_t right, int32_t bottom) {
  out = {left, top, right, bottom};
}

// out := a and b; out may be either of them. False, with out all zeros, when nothing is left: also for two
// rectangles that touch, and for one turned inside out.
constexpr bool RectIntersect(Rect& out, const Rect& a, const Rect& b) {
  const Rect both{MaxOf(a.left, b.left), MaxOf(a.top, b.top), MinOf(a.right, b.right), MinOf(a.bottom, b.bottom)};
  const bool some = both.top < both.bottom && both.left < both.right;
  out = some ? both : Rect{0, 0, 0, 0};
  return some;
}

constexpr bool IsAllZero(const Rect& r) { return r.left == 0 && r.top == 0 && r.right == 0 && r.bottom == 0; }

constexpr Rect Shifted(const Rect& r, int32_t dx, int32_t dy) {
  return {WrapAdd(r.left, dx), WrapAdd(r.top, dy), WrapAdd(r.right, dx), WrapAdd(r.bottom, dy)};
}

constexpr bool Contains(const Rect& r, int32_t x, int32_t y) {
  return r.top <= y && y < r.bottom && r.left <= x && x < r.right;
}

}  // namespace qnv
