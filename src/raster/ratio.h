// Multiplication by a fixed ratio with the results of MulDiv, but without a division for each value: mapping a
// coordinate is the innermost step of text and spans on the resolution-mapping device.
#pragma once

#include <cstdint>

#include "raster/mul_div.h"

namespace qnv {

// Exact division of numbers below 2^31 by a fixed divisor d: multiplies by ceil(2^(31 + l) / d), where 2^l >= d, and
// shifts right by 31 + l. Rounding the multiplier up makes the product too large by less than n / 2^(31 + l) < 1 / d,
// which is too little to reach the next quotient.
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

// value x numerator / denominator, rounded as MulDiv rounds.
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

  // Equal to MulDiv(value, numerator, denominator).
  int32_t Of(int32_t value) const {
    const uint32_t magnitude = value < 0 ? 0u - static_cast<uint32_t>(value) : static_cast<uint32_t>(value);
    if (magnitude >= limit_) return MulDiv(value, numerator_, denominator_);
    const int32_t rounded = static_cast<int32_t>(divider_.Divide(magnitude * numerator_ + half_));
    return value < 0 ? -rounded : rounded;
  }

 private:
  uint16_t numerator_, denominator_;
  uint32_t half_;   // added before dividing, to round
  uint32_t limit_;  // for magnitudes below it the product stays below 2^31, which the divider needs
  Divider divider_;
};

}  // namespace qnv
