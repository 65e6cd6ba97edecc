// Kernels for one-bit sources, 32 pixels at a time: a shuffle brings to each destination byte the source byte that
// holds its bit, and a comparison turns the bit into a mask that selects between two colors.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "raster/rows/pixel_blocks.h"
#include "raster/rows/pixel_words.h"
#include "raster/rows/vector32.h"

namespace qnv {
namespace {

// 32 bits starting at bit `offset` of *bits, the leftmost one most significant; reads the fifth byte only when some
// of them lie in it.
inline uint32_t ThirtyTwoBits(const uint8_t* bits, std::size_t offset) {
  uint32_t word;
  std::memcpy(&word, bits, 4);
  word = __builtin_bswap32(word);
  return offset == 0 ? word : word << offset | static_cast<uint32_t>(bits[4] >> (8 - offset));
}

// For each destination byte of a block: which byte of the 32-bit word holds its bit, and the bit within that byte.
template <std::size_t kBytesPerPixel>
struct BitPlaces {
  alignas(32) uint8_t byte[kBytesPerPixel * kBlockPixels] = {};
  alignas(32) uint8_t bit[kBytesPerPixel * kBlockPixels] = {};

  constexpr BitPlaces() {
    for (std::size_t i = 0; i < kBytesPerPixel * kBlockPixels; ++i) {
      const std::size_t pixel = i / kBytesPerPixel;
      byte[i] = static_cast<uint8_t>(3 - pixel / 8);
      bit[i] = static_cast<uint8_t>(0x80 >> pixel % 8);
    }
  }
};

template <std::size_t kBytesPerPixel>
inline constexpr BitPlaces<kBytesPerPixel> kBitPlaces;

// A block of pixels of one color.
template <std::size_t kBytesPerPixel>
struct ColorBlock;

template <>
struct ColorBlock<1> {
  Vector32 vector[1];

  explicit ColorBlock(uint32_t packed) : vector{Vector32::Fill(static_cast<uint8_t>(packed))} {}
};

// Three vectors, which begin at different bytes of a pixel.
template <>
struct ColorBlock<3> {
  Vector32 vector[3];

  explicit ColorBlock(uint32_t packed) : ColorBlock(PixelWords(packed)) {}

 private:
  explicit ColorBlock(const PixelWords& w)
      : vector{From(w.first, w.second, w.third), From(w.third, w.first, w.second), From(w.second, w.third, w.first)} {}

  static Vector32 From(uint32_t first, uint32_t second, uint32_t third) {
    const int a = static_cast<int>(first), b = static_cast<int>(second), c = static_cast<int>(third);
    return {_mm256_setr_epi32(a, b, c, a, b, c, a, b)};
  }
};

// Stores a row in blocks. Requires: at least one block of pixels.
template <std::size_t kBytesPerPixel>
void ExpandBlocks(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                  uint32_t clear) {
  const ColorBlock<kBytesPerPixel> setBlock(set), changeBlock(set ^ clear);
  const BitPlaces<kBytesPerPixel>& places = kBitPlaces<kBytesPerPixel>;
  CoverWithBlocks(pixels, PixelsToAlignment<kBytesPerPixel>(dst), [&](std::size_t i) {
    const std::size_t at = offset + i;
    const uint32_t word = ThirtyTwoBits(bits + at / 8, at % 8);
    const Vector32 words{_mm256_set1_epi32(static_cast<int>(word))};
    uint8_t* const out = dst + kBytesPerPixel * i;
    for (std::size_t v = 0; v < kBytesPerPixel; ++v) {
      // The analyzer does not follow the address of a table that is a template.
      // NOLINTNEXTLINE(clang-analyzer-core.UndefinedBinaryOperatorResult)
      const Vector32 own = Shuffle(words, Vector32::Load(places.byte + 32 * v)) & Vector32::Load(places.bit + 32 * v);
      const Vector32 isClear{_mm256_cmpeq_epi8(own.v, _mm256_setzero_si256())};
      (setBlock.vector[v] ^ (isClear & changeBlock.vector[v])).Store(out + 32 * v);
    }
  });
}

}  // namespace
}  // namespace qnv
