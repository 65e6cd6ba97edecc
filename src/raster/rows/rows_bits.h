// Kernels for one-bit sources, eight pixels at a time: eight bits select a mask of eight pixels (byte_masks.h), which
// then selects between two colors, or between a color and the band.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "raster/rows/byte_masks.h"
#include "raster/rows/pixel_words.h"
#include "raster/rows/rows_vector.h"
#include "raster/rows/store_pixel.h"
#include "raster/rows/vector16.h"

namespace qnv {
namespace {

// Eight bits starting at bit `offset` of *bits; reads the next byte only when some of them lie in it.
inline uint8_t EightBits(const uint8_t* bits, std::size_t offset) {
  if (offset == 0) return bits[0];
  return static_cast<uint8_t>(bits[0] << offset | bits[1] >> (8 - offset));
}

// Bit `at` of a row.
inline bool OneBit(const uint8_t* bits, std::size_t at) { return (bits[at / 8] >> (7 - at % 8) & 1) != 0; }

// Eight 24-bit pixels, or the mask of eight pixels, in registers: 24 bytes in a vector and a half.
struct Eight24 {
  static constexpr std::size_t kBytes = 24;
  static constexpr std::size_t kBytesPerPixel = 3;
  using Tail = Vector8;

  Vector16 head;
  Tail tail;

  static Eight24 Load(const uint8_t* p) { return {Vector16::Load(p), Tail::Load(p + 16)}; }
  static Eight24 Mask(uint8_t bits) { return Load(kPixelMasks24.mask[bits]); }
  static Eight24 Color(uint32_t packed) {
    const PixelWords w(packed);
    const auto words = [](uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
      return _mm_setr_epi32(static_cast<int>(a), static_cast<int>(b), static_cast<int>(c), static_cast<int>(d));
    };
    return {{words(w.first, w.second, w.third, w.first)}, {words(w.second, w.third, 0, 0)}};
  }
  void Store(uint8_t* p) const {
    head.Store(p);
    tail.Store(p + 16);
  }
  friend Eight24 operator&(Eight24 a, Eight24 b) { return {a.head & b.head, a.tail & b.tail}; }
  friend Eight24 operator^(Eight24 a, Eight24 b) { return {a.head ^ b.head, a.tail ^ b.tail}; }
};

// Eight 8-bit pixels.
struct Eight8 : Vector8 {
  static constexpr std::size_t kBytesPerPixel = 1;
  static Eight8 Load(const uint8_t* p) { return {Vector8::Load(p)}; }
  static Eight8 Mask(uint8_t bits) { return Load(kPixelMasks8.mask[bits]); }
  static Eight8 Color(uint32_t packed) { return {{_mm_set1_epi8(static_cast<char>(packed))}}; }
  friend Eight8 operator&(Eight8 a, Eight8 b) { return {{_mm_and_si128(a.v, b.v)}}; }
  friend Eight8 operator^(Eight8 a, Eight8 b) { return {{_mm_xor_si128(a.v, b.v)}}; }
};

// Eight pixels at a time as clear ^ (mask & (set ^ clear)), the rest one by one.
template <class Eight>
void ExpandBitsRowOf(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                     uint32_t clear) {
  const Eight clearEight = Eight::Color(clear);
  const Eight change = Eight::Color(set ^ clear);
  for (; pixels >= 8; pixels -= 8, ++bits, dst += Eight::kBytes) {
    (clearEight ^ (Eight::Mask(EightBits(bits, offset)) & change)).Store(dst);
  }
  for (std::size_t i = 0; i < pixels; ++i, dst += Eight::kBytesPerPixel) {
    StorePixel<Eight::kBytesPerPixel>(dst, OneBit(bits, offset + i) ? set : clear);
  }
}

// Operations for glyph rows of fewer than eight pixels (see rows_vector.h). `mask` points into the mask of the row's
// byte, to the first pixel that is painted. Paint is D' = D ^ ((D ^ set) & mask); Expand paints both colors and does
// not read D.

struct PaintOperation {
  const uint8_t* mask;
  const uint8_t* set;

  template <class Vector>
  Vector At(Vector band, std::size_t offset) const {
    return band ^ ((band ^ Vector::Load(set + offset)) & Vector::Load(mask + offset));
  }
};

struct ExpandOperation {
  const uint8_t* mask;
  const uint8_t* clear;
  const uint8_t* change;

  template <class Vector>
  Vector At(Vector, std::size_t offset) const {
    return Vector::Load(clear + offset) ^ (Vector::Load(change + offset) & Vector::Load(mask + offset));
  }
};

// Applies an operation to fewer than eight pixels, 0..23 bytes.
template <class Operation>
void PartialEight(uint8_t* dst, std::size_t bytes, const Operation& operation) {
  if (bytes < 16) return ShortRow(dst, bytes, operation);
  using Tail = Vector8;
  const std::size_t last = bytes - Tail::kBytes;
  const Vector16 head = operation.template At<Vector16>(Vector16::Load(dst), 0);
  const Tail tail = operation.template At<Tail>(Tail::Load(dst + last), last);
  head.Store(dst);
  tail.Store(dst + last);
}

template <class Eight>
const uint8_t* MaskBytes(uint8_t bits) {
  if constexpr (Eight::kBytesPerPixel == 3) {
    return kPixelMasks24.mask[bits];
  } else {
    return kPixelMasks8.mask[bits];
  }
}

// A column of a glyph, set bits only. Whole columns of eight pixels take a shorter loop than clipped ones.
template <class Eight>
void PaintGlyphOf(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  const uint8_t* const end = column.bytes + column.rows;
  if (column.pixels == 8) {
    const Eight set = Eight::Load(colors.setBytes);
    for (const uint8_t* bits = column.bytes; bits != end; ++bits, dst += stride) {
      const Eight band = Eight::Load(dst);
      (band ^ ((band ^ set) & Eight::Mask(*bits))).Store(dst);
    }
    return;
  }
  const std::size_t skipped = column.offset * Eight::kBytesPerPixel;
  for (const uint8_t* bits = column.bytes; bits != end; ++bits, dst += stride) {
    PartialEight(dst, column.pixels * Eight::kBytesPerPixel,
                 PaintOperation{MaskBytes<Eight>(*bits) + skipped, colors.setBytes});
  }
}

// A column of a glyph in both colors.
template <class Eight>
void ExpandGlyphOf(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  const uint8_t* const end = column.bytes + column.rows;
  if (column.pixels == 8) {
    const Eight clear = Eight::Load(colors.clearBytes);
    const Eight change = Eight::Load(colors.changeBytes);
    for (const uint8_t* bits = column.bytes; bits != end; ++bits, dst += stride) {
      (clear ^ (Eight::Mask(*bits) & change)).Store(dst);
    }
    return;
  }
  const std::size_t skipped = column.offset * Eight::kBytesPerPixel;
  for (const uint8_t* bits = column.bytes; bits != end; ++bits, dst += stride) {
    PartialEight(dst, column.pixels * Eight::kBytesPerPixel,
                 ExpandOperation{MaskBytes<Eight>(*bits) + skipped, colors.clearBytes, colors.changeBytes});
  }
}

}  // namespace
}  // namespace qnv
