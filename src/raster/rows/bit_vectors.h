// Kernels for one-bit sources with mask registers: the bits of a source become a mask of bytes, and instructions under
// that mask choose between two colors, or between a color and the band.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rows/pixel_blocks.h"
#include "raster/rows/pixel_words.h"
#include "raster/rows/row_kernels.h"
#include "raster/rows/vector64.h"

namespace qnv {
namespace {

// The pixel to which each byte of a block of 64 pixels belongs.
template <std::size_t kBytesPerPixel>
struct PixelNumbers {
  alignas(64) uint8_t of[64 * kBytesPerPixel] = {};
  constexpr PixelNumbers() {
    for (std::size_t i = 0; i < sizeof of; ++i) of[i] = static_cast<uint8_t>(i / kBytesPerPixel);
  }
};

template <std::size_t kBytesPerPixel>
inline constexpr PixelNumbers<kBytesPerPixel> kPixelNumbers;

// A vector of a block of 64 pixels of one color, each pixel three bytes of a 32-bit word. Vectors begin at different
// bytes of a pixel.
inline Vector64 ColorVector(uint32_t packed, std::size_t vector) {
  const PixelWords w(packed);
  const uint32_t words[5] = {w.first, w.second, w.third, w.first, w.second};
  // 64 bytes are sixteen words: each vector begins one word later than the one before.
  const auto word = [&](std::size_t i) { return static_cast<int>(words[vector + i]); };
  return {_mm512_setr_epi32(word(0), word(1), word(2), word(0), word(1), word(2), word(0), word(1), word(2), word(0),
                            word(1), word(2), word(0), word(1), word(2), word(0))};
}

// What a row of one-bit pixels needs that begins at bit `offset`: for each byte of a block the byte that holds its bit,
// the bit in that byte, and the two colors.
template <std::size_t kBytesPerPixel>
struct BitVectors {
  Vector64 byte[kBytesPerPixel], bit[kBytesPerPixel], set[kBytesPerPixel], clear[kBytesPerPixel];

  BitVectors(uint32_t setColor, uint32_t clearColor) {
    for (std::size_t v = 0; v < kBytesPerPixel; ++v) {
      if constexpr (kBytesPerPixel == 3) {
        set[v] = ColorVector(setColor, v);
        clear[v] = ColorVector(clearColor, v);
      } else {
        set[v] = Vector64::Fill(static_cast<uint8_t>(setColor));
        clear[v] = Vector64::Fill(static_cast<uint8_t>(clearColor));
      }
    }
  }

  void BeginAt(std::size_t offset) {
    alignas(16) static constexpr uint8_t kBits[16] = {0x80, 0x40, 0x20, 0x10, 8, 4, 2, 1,
                                                      0x80, 0x40, 0x20, 0x10, 8, 4, 2, 1};
    const Vector64 bits = Vector64::FourTimes(kBits), start = Vector64::Fill(static_cast<uint8_t>(offset));
    const __m512i low = _mm512_set1_epi8(0x0F);
    for (std::size_t v = 0; v < kBytesPerPixel; ++v) {
      const __m512i at = _mm512_add_epi8(Vector64::Load(kPixelNumbers<kBytesPerPixel>.of + 64 * v).v, start.v);
      byte[v].v = _mm512_and_si512(_mm512_srli_epi16(at, 3), low);
      bit[v].v = _mm512_shuffle_epi8(bits.v, _mm512_and_si512(at, low));
    }
  }

  // The bytes of vector v whose bits are set; bits: the bytes of the source, from the one that holds the block's first.
  Vector64 Colors(std::size_t v, Vector64 bits) const {
    const __mmask64 isSet = _mm512_test_epi8_mask(Permute(bits, byte[v]).v, bit[v].v);
    return {_mm512_mask_blend_epi8(isSet, clear[v].v, set[v].v)};
  }
};

// The first `count` bytes, up to sixteen, at the beginning of a vector; no others are read.
inline Vector64 FewBytes(const uint8_t* p, std::size_t count) {
  const __mmask16 mask = static_cast<__mmask16>((1u << count) - 1);
  return {_mm512_castsi128_si512(_mm_maskz_loadu_epi8(mask, p))};
}

// Stores a row in blocks of 64 pixels. The first and the last one are stored under masks, so that those between are
// aligned.
template <std::size_t kBytesPerPixel>
void ExpandBitVectors(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                      uint32_t clear) {
  constexpr std::size_t kPixels = 64, kMinAligned = 256;
  BitVectors<kBytesPerPixel> vectors(set, clear);
  const auto part = [&](std::size_t count) {
    if (count == 0) return;
    const Vector64 block = FewBytes(bits, (offset + count + 7) / 8);
    for (std::size_t v = 0; v < kBytesPerPixel && 64 * v < kBytesPerPixel * count; ++v) {
      const std::size_t left = kBytesPerPixel * count - 64 * v;
      vectors.Colors(v, block).Store(dst + 64 * v, FirstBytes(left < 64 ? left : 64));
    }
  };
  vectors.BeginAt(offset);
  if (pixels >= kMinAligned) {
    const std::size_t head = PixelsToAlignment<kBytesPerPixel, kPixels>(dst);
    part(head);
    dst += kBytesPerPixel * head;
    bits += (offset + head) / 8;
    offset = (offset + head) % 8;
    pixels -= head;
    vectors.BeginAt(offset);
  }
  const __mmask16 mask = offset == 0 ? 0xFF : 0x1FF;
  for (; pixels >= kPixels; pixels -= kPixels, bits += kPixels / 8, dst += kPixels * kBytesPerPixel) {
    const Vector64 block{_mm512_castsi128_si512(_mm_maskz_loadu_epi8(mask, bits))};
    for (std::size_t v = 0; v < kBytesPerPixel; ++v) vectors.Colors(v, block).Store(dst + 64 * v);
  }
  part(pixels);
}

// For each value of a byte, the mask of the bytes of eight pixels: the most significant bit is the leftmost pixel and
// so the lowest bits of the mask.
template <std::size_t kBytesPerPixel>
struct ByteMaskTable {
  uint32_t mask[256] = {};
  constexpr ByteMaskTable() {
    for (uint32_t bits = 0; bits < 256; ++bits) {
      for (uint32_t i = 0; i < 8 * kBytesPerPixel; ++i) {
        mask[bits] |= (bits >> (7 - i / kBytesPerPixel) & 1) << i;
      }
    }
  }
};

template <std::size_t kBytesPerPixel>
inline constexpr ByteMaskTable<kBytesPerPixel> kByteMasks;

// Calls row(dst, mask, all) for each row of a glyph's column. mask: the bytes of the set pixels that are painted, the
// lowest bit for the byte at dst; all: those of all pixels that are painted. Whole columns of eight pixels take a
// shorter loop than clipped ones.
template <std::size_t kBytesPerPixel, class Row>
void ForEachGlyphRow(uint8_t* dst, std::size_t stride, const GlyphColumn& column, Row row) {
  const auto& masks = kByteMasks<kBytesPerPixel>.mask;
  const uint32_t all = (uint32_t{1} << kBytesPerPixel * column.pixels) - 1;
  const uint8_t* const end = column.bytes + column.rows;
  if (column.pixels == 8) {
    for (const uint8_t* bits = column.bytes; bits != end; ++bits, dst += stride) row(dst, masks[*bits], all);
    return;
  }
  const std::size_t skipped = kBytesPerPixel * column.offset;
  for (const uint8_t* bits = column.bytes; bits != end; ++bits, dst += stride) {
    row(dst, masks[*bits] >> skipped & all, all);
  }
}

inline __m256i GlyphColor(const uint8_t* bytes) { return _mm256_maskz_loadu_epi8(0xFFFFFF, bytes); }

// A column of a glyph, set bits only: the band is not read.
template <std::size_t kBytesPerPixel>
void PaintGlyphMasks(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  const __m256i set = GlyphColor(colors.setBytes);
  ForEachGlyphRow<kBytesPerPixel>(
      dst, stride, column, [=](uint8_t* out, uint32_t mask, uint32_t) { _mm256_mask_storeu_epi8(out, mask, set); });
}

// A column of a glyph in both colors.
template <std::size_t kBytesPerPixel>
void ExpandGlyphMasks(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  const __m256i set = GlyphColor(colors.setBytes), clear = GlyphColor(colors.clearBytes);
  ForEachGlyphRow<kBytesPerPixel>(dst, stride, column, [=](uint8_t* out, uint32_t mask, uint32_t all) {
    _mm256_mask_storeu_epi8(out, all, _mm256_mask_blend_epi8(mask, clear, set));
  });
}

}  // namespace
}  // namespace qnv
