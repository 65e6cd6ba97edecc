// Multiplication by a ratio with rounding, as the platform defines it.
#pragma once

#include <cstdint>

namespace qnv {

// value x numerator / denominator with a 64-bit product, rounded to nearest, exact halves away from zero. -1 for a
// denominator of 0 and for a result beyond 2^31 - 1 in magnitude. On Windows this is the function of the system.
int32_t MulDiv(int32_t value, int32_t numerator, int32_t denominator);

// The same in portable code. Used where the system has no such function; tests compare the two on Windows.
constexpr int32_t PortableMulDiv(int32_t value, int32_t numerator, int32_t denominator) {
  if (denominator == 0) return -1;
  const int64_t product = int64_t{value} * numerator;
  const uint64_t magnitude =
      product < 0 ? uint64_t{0} - static_cast<uint64_t>(product) : static_cast<uint64_t>(product);
  const uint64_t divisor =
      denominator < 0 ? uint64_t{0} - static_cast<uint64_t>(int64_t{denominator}) : static_cast<uint64_t>(denominator);
  const uint64_t rounded = (magnitude + divisor / 2) / divisor;
  if (rounded > uint64_t{INT32_MAX}) return -1;
  const bool negative = (product < 0) != (denominator < 0);
  return static_cast<int32_t>(negative ? -static_cast<int64_t>(rounded) : static_cast<int64_t>(rounded));
}

}  // namespace qnv
