// A 24-bit pixel repeated four times as three 32-bit words, from which longer runs of one color are made.
#pragma once

#include <cstdint>

namespace qnv {

struct PixelWords {
  uint32_t first, second, third;

  // Always inlined: files of different instruction sets include this and must not share a copy of it.
  [[gnu::always_inline]] explicit constexpr PixelWords(uint32_t packed)
      : first((packed & 0xFFFFFF) | packed << 24),
        second((packed >> 8 & 0xFFFF) | packed << 16),
        third((packed >> 16 & 0xFF) | packed << 8) {}
};

}  // namespace qnv
