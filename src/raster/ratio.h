// Multiplication by a fixed ratio, as MulDiv does it, without a division a value.
#pragma once

#include <cstdint>

#include "raster/mul_div.h"

namespace qnv {

// Division of numbers below 2^31 by a fixed one, exact: with l bits of the divisor d, ceil(2^(31 + l) / d) is too large
// by less than d / 2^(31 + l), which no such number brings up to the next quotient.
class Divider {
 public:
  // divisor: not 0.
  explicit constexpr Divider(uint16_t divisor) {
    while ((1u << (shift_ - 31)) < divisor) ++shift_;
    multiplier_ = static_cast<uint32_t>(((uint64_t{1} << shift_) + divisor - 1) / divisor);
  }

  // Requires: n < 2^31.
  constexpr uint32_t Divide(uint32_t n) const { return static_cast<uint32_t>(uint64_t{n} * multiplier_ >> shift_); }

 private:
  uint32_t shift_ = 31;
  uint32_t multiplier_ = 0;
};

class Ratio {
 public:
  constexpr Ratio(uint16_t numerator, uint16_t denominator)
      : numerator_(numerator),
        denominator_(denominator),
        half_(denominator / 2u),
        limit_(numerator == 0 ? 0 : (INT32_MAX - denominator / 2u) / numerator),
        divider_(denominator != 0 ? denominator : uint16_t{1}) {
    if (denominator == 0) limit_ = 0;
  }

  // MulDiv(value, numerator, denominator)
  int32_t Of(int32_t value) const {
    const uint32_t magnitude = value < 0 ? 0u - static_cast<uint32_t>(value) : static_cast<uint32_t>(value);
    if (magnitude >= limit_) return MulDiv(value, numerator_, denominator_);
    const int32_t rounded = static_cast<int32_t>(divider_.Divide(magnitude * numerator_ + half_));
    return value < 0 ? -rounded : rounded;
  }

 private:
  uint16_t numerator_, denominator_;
  uint32_t half_;
  uint32_t limit_;  // magnitudes below it keep within the divider's numbers
  Divider divider_;
};

}  // namespace qnv
