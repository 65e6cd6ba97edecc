// A device-independent bitmap as an image transfer reads it. The header comes from whoever wrote the
// document; what passes here is safe to compute with.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

struct Dib {
  int32_t width;   // 1..32767
  int32_t height;  // rows, 1..32767
  bool topDown;
  uint16_t bitCount;  // 1, 4, 8, 16, 24, 32
  uint32_t compression;
  uint32_t colorsUsed;  // biClrUsed
  const uint8_t* info;  // the header itself
  uint32_t infoSize;    // biSize

  bool IsRle() const { return compression == BI_RLE8 || compression == BI_RLE4; }
  bool HasPalette() const { return bitCount <= 8; }
};

// Bytes of a row of pixels, padded to 32 bits. Requires: width and bits of a Dib.
constexpr std::size_t DibRowBytes(int32_t width, uint32_t bitCount) {
  return ((static_cast<std::size_t>(width) * bitCount + 7) / 8 + 3) & ~std::size_t{3};
}

// False for a header that is refused: planes other than 1, a depth that is none of the six, a width or height
// of 0 or beyond 32767, run lengths at another depth than their own, a compression of 4, 5 or above 6, a color table
// at another place than 40 to 4096 bytes behind the header's begin (1, 4 and 8 bits; the others have none).
bool ReadDib(const void* bitmapInfo, Dib* dib);

}  // namespace qnv
