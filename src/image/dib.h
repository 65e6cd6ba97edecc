// The header of a device-independent bitmap, checked. It comes from the author of a document and may hold any number;
// the numbers of a Dib are safe to compute with.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

struct Dib {
  int32_t width;         // pixels, 1..32767
  int32_t height;        // rows, 1..32767
  bool topDown;          // the top row is stored first
  uint16_t bitCount;     // 1, 4, 8, 16, 24, 32
  uint32_t compression;  // BI_...
  uint32_t colorsUsed;   // biClrUsed
  const uint8_t* info;   // the header in memory of the host
  uint32_t infoSize;     // biSize

  // Whether the data are run lengths instead of rows.
  bool IsRle() const { return compression == BI_RLE8 || compression == BI_RLE4; }
  bool HasPalette() const { return bitCount <= 8; }
};

// Bytes from one row of pixels to the next: padded to a multiple of four. Requires: width and depth of a Dib.
constexpr std::size_t DibRowBytes(int32_t width, uint32_t bitCount) {
  return ((static_cast<std::size_t>(width) * bitCount + 7) / 8 + 3) & ~std::size_t{3};
}

// Reads a header. False when it is refused: planes other than 1, a depth that is none of the six, a width below 1, a
// height of 0, either beyond 32767, run lengths at another depth than their own, a compression of 4, 5 or above 6, or,
// at 1, 4 and 8 bits, a biSize outside 40..4096.
bool ReadDib(const void* bitmapInfo, Dib* dib);

}  // namespace qnv
