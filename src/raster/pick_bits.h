#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qnv {

// Packs the bits at offset + picks[i] of a most-significant-first bit row into out, from its bit 0 on.
inline void PickBits(uint8_t* out, const uint8_t* bits, std::size_t offset, const uint16_t* picks, std::size_t count) {
  std::memset(out, 0, (count + 7) / 8);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t at = offset + picks[i];
    if ((bits[at / 8] >> (7 - at % 8) & 1) != 0) out[i / 8] = static_cast<uint8_t>(out[i / 8] | 0x80 >> i % 8);
  }
}

}  // namespace qnv
