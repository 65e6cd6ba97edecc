// One-bit rows through colours, eight pixels a turn: the byte of eight bits selects a mask of whole pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "raster/rows/byte_masks.h"
#include "raster/rows/rows_vector.h"
#include "raster/rows/vector16.h"

namespace qnv {
namespace {

// Eight bits starting at bit `offset` of *bits; reads the next byte only when some of them stand there.
inline uint8_t EightBits(const uint8_t* bits, std::size_t offset) {
  if (offset == 0) return bits[0];
  return static_cast<uint8_t>(bits[0] << offset | bits[1] >> (8 - offset));
}

inline bool OneBit(const uint8_t* bits, std::size_t at) { return (bits[at / 8] >> (7 - at % 8) & 1) != 0; }

// Eight pixels of a band and their masks, in registers.
struct Eight24 {
  static constexpr std::size_t kBytes = 24;
  static constexpr std::size_t kBytesPerPixel = 3;
  using Tail = WordVector<uint64_t>;

  Vector16 head;
  Tail tail;

  static Eight24 Load(const uint8_t* p) { return {Vector16::Load(p), Tail::Load(p + 16)}; }
  static Eight24 Mask(uint8_t bits) { return Load(kPixelMasks24[bits].data()); }
  static Eight24 Colour(uint32_t packed) {
    uint8_t bytes[kBytes];
    for (std::size_t i = 0; i < kBytes; ++i) bytes[i] = static_cast<uint8_t>(packed >> i % 3 * 8);
    return Load(bytes);
  }
  void Store(uint8_t* p) const {
    head.Store(p);
    tail.Store(p + 16);
  }
  friend Eight24 operator&(Eight24 a, Eight24 b) { return {a.head & b.head, a.tail & b.tail}; }
  friend Eight24 operator^(Eight24 a, Eight24 b) { return {a.head ^ b.head, a.tail ^ b.tail}; }
};

struct Eight8 : WordVector<uint64_t> {
  static constexpr std::size_t kBytesPerPixel = 1;
  static Eight8 Load(const uint8_t* p) { return {WordVector<uint64_t>::Load(p)}; }
  static Eight8 Mask(uint8_t bits) { return Load(kPixelMasks8[bits].data()); }
  static Eight8 Colour(uint32_t packed) { return {{(packed & 0xFF) * 0x0101010101010101u}}; }
  friend Eight8 operator&(Eight8 a, Eight8 b) { return {{a.v & b.v}}; }
  friend Eight8 operator^(Eight8 a, Eight8 b) { return {{a.v ^ b.v}}; }
};

template <class Eight>
void StorePixel(uint8_t* dst, uint32_t packed) {
  for (std::size_t i = 0; i < Eight::kBytesPerPixel; ++i) dst[i] = static_cast<uint8_t>(packed >> 8 * i);
}

template <class Eight>
void ExpandBitsRowOf(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                     uint32_t clear) {
  const Eight clearEight = Eight::Colour(clear);
  const Eight change = Eight::Colour(set ^ clear);
  for (; pixels >= 8; pixels -= 8, ++bits, dst += Eight::kBytes) {
    (clearEight ^ (Eight::Mask(EightBits(bits, offset)) & change)).Store(dst);
  }
  for (std::size_t i = 0; i < pixels; ++i, dst += Eight::kBytesPerPixel) {
    StorePixel<Eight>(dst, OneBit(bits, offset + i) ? set : clear);
  }
}

template <class Eight>
void PaintBitsRowOf(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set) {
  const Eight colour = Eight::Colour(set);
  for (; pixels >= 8; pixels -= 8, ++bits, dst += Eight::kBytes) {
    const uint8_t eight = EightBits(bits, offset);
    if (eight == 0) continue;
    const Eight band = Eight::Load(dst);
    (band ^ ((band ^ colour) & Eight::Mask(eight))).Store(dst);
  }
  for (std::size_t i = 0; i < pixels; ++i, dst += Eight::kBytesPerPixel) {
    if (OneBit(bits, offset + i)) StorePixel<Eight>(dst, set);
  }
}

}  // namespace
}  // namespace qnv
