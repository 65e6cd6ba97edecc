// The small rules of arithmetic that the models of the tests are written in.
#pragma once

#include <algorithm>
#include <cstdint>

#include "qnvdrv10.h"

namespace qnv::reference {

struct Rect {
  int left, top, right, bottom;  // right and bottom exclusive
};

struct Point {
  int x, y;
};

inline Rect ToRect(const BandRect& r) { return {r.left, r.top, r.right, r.bottom}; }

inline bool AllZero(const Rect& r) { return r.left == 0 && r.top == 0 && r.right == 0 && r.bottom == 0; }

inline bool IsEmpty(const Rect& r) { return r.left >= r.right || r.top >= r.bottom; }

// Sums of coordinates wrap at 32 bits.
inline int Sum(int a, int b) { return static_cast<int>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }

inline Rect Shift(const Rect& r, Point by) {
  return {Sum(r.left, by.x), Sum(r.top, by.y), Sum(r.right, by.x), Sum(r.bottom, by.y)};
}

inline bool Contains(const Rect& r, int x, int y) { return r.top <= y && y < r.bottom && r.left <= x && x < r.right; }

// The common part; four zeros where there is none.
inline Rect Intersect(const Rect& a, const Rect& b) {
  const Rect r{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
               std::min(a.bottom, b.bottom)};
  return IsEmpty(r) ? Rect{0, 0, 0, 0} : r;
}

// value * numerator / denominator, an exact half away from zero; -1 where that is impossible.
inline int MulDiv(int value, int numerator, int denominator) {
  if (denominator == 0) return -1;
  const int64_t product = int64_t{value} * numerator;
  const int64_t magnitude = product < 0 ? -product : product;
  const int64_t divisor = denominator < 0 ? -int64_t{denominator} : int64_t{denominator};
  const int64_t quotient = (magnitude + divisor / 2) / divisor;
  if (quotient > 0x7FFFFFFF) return -1;
  return static_cast<int>((product < 0) != (denominator < 0) ? -quotient : quotient);
}

inline int FloorDiv(int value, int divisor) {
  const int quotient = value / divisor;
  return quotient * divisor > value ? quotient - 1 : quotient;
}

// The non-negative remainder.
inline int FloorMod(int value, int divisor) { return value - FloorDiv(value, divisor) * divisor; }

inline uint32_t SwapRedBlue(uint32_t color) {
  return (color & 0x0000FF00u) | ((color & 0xFFu) << 16) | ((color >> 16) & 0xFFu);
}

// The gray level of a color whose low byte weighs 30, in all three bytes.
inline uint32_t GrayLevel(uint32_t color) {
  const uint32_t gray = ((color & 0xFF) * 30 + ((color >> 8) & 0xFF) * 59 + ((color >> 16) & 0xFF) * 11) / 100;
  return gray * 0x010101u;
}

// Which operands a ternary operation depends on.
inline bool IndexUsesPattern(uint32_t index) { return (index >> 4) != (index & 15); }
inline bool IndexUsesSource(uint32_t index) { return (index & 0x33) != (index >> 2 & 0x33); }

// All 256 ternary operations, minterm by minterm.
inline uint32_t EvaluateRop3(uint32_t index, uint32_t pattern, uint32_t source, uint32_t destination) {
  uint32_t result = 0;
  for (uint32_t k = 0; k < 8; ++k) {
    if ((index >> k & 1) == 0) continue;
    result |= ((k & 4) != 0 ? pattern : ~pattern) & ((k & 2) != 0 ? source : ~source) &
              ((k & 1) != 0 ? destination : ~destination);
  }
  return result;
}

// All binary operations; bits of the table above the fourth do not count.
inline uint32_t EvaluateRop2(uint32_t code, uint32_t pen, uint32_t destination) {
  return EvaluateRop3(((code - 1) & 15) * 0x11, 0, pen, destination);
}

}  // namespace qnv::reference
