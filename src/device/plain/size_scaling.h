// The size of a page, in pixels, at another resolution, as the plain devices report it.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

// value x b / a, truncated. Computed with 32-bit numbers, whole units of a first; 0 on overflow or when a is 0.
constexpr uint32_t ScaledSize(uint32_t value, uint16_t a, uint16_t b) {
  if (a == 0) return 0;
  const uint32_t quotient = value / a;
  const uint32_t product = quotient * b;
  if (product < quotient) return 0;
  return product + value % a * b / a;
}

// The described size, scaled from resolution A to B.
constexpr DeviceSize ScaledDeviceSize(const DeviceDescription& d) {
  return {ScaledSize(d.width, d.resolutionA, d.resolutionB), ScaledSize(d.height, d.resolutionA, d.resolutionB)};
}

}  // namespace qnv
