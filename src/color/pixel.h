// One band pixel, read or written under a binary raster operation.
#pragma once

#include <cstdint>

#include "color/color_forms.h"
#include "qnvdrv10.h"

namespace qnv {

// The band bytes, first in bits 0..7; a gray byte in all three.
inline uint32_t ReadPixel(const uint8_t* pixel, uint32_t bytesPerPixel) {
  if (bytesPerPixel == 1) return pixel[0] * 0x010101u;
  return static_cast<uint32_t>(pixel[0] | pixel[1] << 8 | pixel[2] << 16);
}

// Intended: writes bits 16..23 of the colour first, the reverse of what ReadPixel returns. An 8-bit band
// takes bits 0..7.
inline void WritePixel(uint8_t* pixel, uint32_t bytesPerPixel, uint32_t colour, uint16_t rop2) {
  const uint32_t s = bytesPerPixel == 1 ? colour : ExchangeRedBlue(colour);
  uint32_t result = s;
  if (rop2 != R2_COPYPEN) {
    const uint32_t t = static_cast<uint32_t>(rop2) - 1;
    const uint32_t d = ReadPixel(pixel, bytesPerPixel);
    result = ((t & 1) != 0 ? ~(s | d) : 0) | ((t & 2) != 0 ? d & ~s : 0) | ((t & 4) != 0 ? s & ~d : 0) |
             ((t & 8) != 0 ? s & d : 0);
  }
  for (uint32_t i = 0; i < bytesPerPixel; ++i) pixel[i] = static_cast<uint8_t>(result >> 8 * i);
}

}  // namespace qnv
