// The page size at another resolution.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

// value x b / a, truncated, in 32-bit steps; 0 on overflow, and for a zero resolution a.
constexpr uint32_t ScaledSize(uint32_t value, uint16_t a, uint16_t b) {
  if (a == 0) return 0;
  const uint32_t quotient = value / a;
  const uint32_t product = quotient * b;
  if (product < quotient) return 0;
  return product + value % a * b / a;
}

constexpr DeviceSize ScaledDeviceSize(const DeviceDescription& d) {
  return {ScaledSize(d.width, d.resolutionA, d.resolutionB), ScaledSize(d.height, d.resolutionA, d.resolutionB)};
}

}  // namespace qnv
