// Loops over a row in blocks of 32 pixels: three 32-byte vectors of 24-bit pixels or one of 8-bit pixels. Blocks of a
// row may overlap, so computing a pixel again must give the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rows/vector32.h"

namespace qnv {
namespace {

// 32 pixels of three bytes are three vectors of 32 bytes.
inline constexpr std::size_t kBlockPixels = 32;

// The number of pixels from dst to an aligned address, 1..kBlock: 32 pixels are whole vectors of 32 bytes, 64 of 64
// bytes. The second block of a row begins there, so that it and the following ones do not straddle cache lines.
template <std::size_t kBytesPerPixel, std::size_t kBlock = kBlockPixels>
std::size_t PixelsToAlignment(const uint8_t* dst) {
  static_assert(kBytesPerPixel == 1 || kBytesPerPixel == 3);
  static_assert(kBlock == 32 || kBlock == 64);
  // Solves (dst + 3 * pixels) % 64 == 0 by the inverse of 3 modulo 64: 3 * 43 = 129. It holds modulo 32 too.
  constexpr std::size_t kInverse = kBytesPerPixel == 3 ? 43 : 1;
  return kBlock - reinterpret_cast<uintptr_t>(dst) * kInverse % kBlock;
}

// Calls block(i) for the first pixel i of each block until all of [0, pixels) is covered. second: the pixel where the
// second block begins, 1..32.
// Requires: at least one block.
template <class Block>
void CoverWithBlocks(std::size_t pixels, std::size_t second, Block block) {
  block(0);
  for (std::size_t i = second; i + kBlockPixels < pixels; i += kBlockPixels) block(i);
  block(pixels - kBlockPixels);
}

// The same for blocks of much code, which is not copied for the first and the last block.
template <class Block>
void CoverWithLargeBlocks(std::size_t pixels, std::size_t second, Block block) {
  const std::size_t last = pixels - kBlockPixels;
  for (std::size_t i = 0, next = second;; next = i + kBlockPixels) {
    block(i);
    if (i == last) return;
    i = next < last ? next : last;
  }
}

// Stores 32 pixels as 96 bytes. Each vector holds eight of them, a pixel in the lower three bytes of every four.
inline void StoreBlock(uint8_t* dst, __m256i a, __m256i b, __m256i c, __m256i d) {
  const __m256i pack = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1,  //
                                        0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
  // Each vector now holds six 32-bit words, in two groups of three, and moves them to their places in the block.
  a = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(a, pack), _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 3));
  b = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(b, pack), _mm256_setr_epi32(2, 4, 5, 6, 3, 3, 0, 1));
  c = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(c, pack), _mm256_setr_epi32(5, 6, 3, 3, 0, 1, 2, 4));
  d = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(d, pack), _mm256_setr_epi32(3, 3, 0, 1, 2, 4, 5, 6));
  Vector32{_mm256_blend_epi32(a, b, 0xC0)}.Store(dst);
  Vector32{_mm256_blend_epi32(b, c, 0xF0)}.Store(dst + 32);
  Vector32{_mm256_blend_epi32(c, d, 0xFC)}.Store(dst + 64);
}

}  // namespace
}  // namespace qnv
