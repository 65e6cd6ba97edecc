// Reads a band pixel, or combines it with a color by a binary raster operation.
#pragma once

#include <cstdint>

#include "color/color_forms.h"
#include "qnvdrv10.h"
#include "raster/rop3.h"

namespace qnv {

// The bytes of a band pixel as one number, the first byte in bits 0..7. A gray byte is repeated in all three.
inline uint32_t ReadPixel(const uint8_t* pixel, uint32_t bytesPerPixel) {
  if (bytesPerPixel == 1) return Replicated(pixel[0]);
  return static_cast<uint32_t>(pixel[0] | pixel[1] << 8 | pixel[2] << 16);
}

// Combines a band pixel with a color reference. Intended: bits 16..23 of the color (blue) become the first byte of a
// 24-bit pixel, the reverse of what ReadPixel returns. An 8-bit band takes bits 0..7.
inline void WritePixel(uint8_t* pixel, uint32_t bytesPerPixel, uint32_t color, uint16_t rop2) {
  const uint32_t pen = bytesPerPixel == 1 ? color : ExchangeRedBlue(color);
  const uint32_t result = CombineWithPattern(IndexOfRop2(rop2), pen, ReadPixel(pixel, bytesPerPixel));
  for (uint32_t i = 0; i < bytesPerPixel; ++i) pixel[i] = static_cast<uint8_t>(result >> 8 * i);
}

}  // namespace qnv
