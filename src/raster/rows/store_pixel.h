// Stores packed pixels of one or three bytes in memory.
//
// Always inlined: files of different instruction sets include this and must not share a copy of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qnv {

// Stores one pixel.
template <std::size_t kBytes>
[[gnu::always_inline]] inline void StorePixel(uint8_t* dst, uint32_t packed) {
  for (std::size_t i = 0; i < kBytes; ++i) dst[i] = static_cast<uint8_t>(packed >> 8 * i);
}

// Stores pixelOf(0) .. pixelOf(pixels - 1) one after another. A three-byte pixel is stored as four bytes: the next
// pixel overwrites the fourth.
template <std::size_t kBytes, class PixelOf>
[[gnu::always_inline]] inline void StorePixels(uint8_t* dst, std::size_t pixels, PixelOf pixelOf) {
  if (pixels == 0) return;
  const std::size_t last = pixels - 1;
  for (std::size_t i = 0; i < last; ++i, dst += kBytes) {
    const uint32_t packed = pixelOf(i);
    if constexpr (kBytes == 3) {
      std::memcpy(dst, &packed, 4);
    } else {
      *dst = static_cast<uint8_t>(packed);
    }
  }
  StorePixel<kBytes>(dst, pixelOf(last));
}

}  // namespace qnv
