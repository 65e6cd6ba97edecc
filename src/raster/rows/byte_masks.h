// What the eight bits of a byte select: a mask of eight pixels, most significant bit leftmost.
#pragma once

#include <array>
#include <cstdint>

namespace qnv {

// One entry more than bytes: wide loads reach behind the last mask.
template <std::size_t kBytesPerPixel>
using PixelMaskTable = std::array<std::array<uint8_t, 8 * kBytesPerPixel>, 257>;

template <std::size_t kBytesPerPixel>
constexpr PixelMaskTable<kBytesPerPixel> MakePixelMasks() {
  PixelMaskTable<kBytesPerPixel> table{};
  for (std::size_t bits = 0; bits < 256; ++bits) {
    for (std::size_t i = 0; i < 8 * kBytesPerPixel; ++i) {
      table[bits][i] = (bits >> (7 - i / kBytesPerPixel) & 1) != 0 ? 0xFF : 0;
    }
  }
  return table;
}

alignas(32) inline constexpr PixelMaskTable<3> kPixelMasks24 = MakePixelMasks<3>();
alignas(32) inline constexpr PixelMaskTable<1> kPixelMasks8 = MakePixelMasks<1>();

}  // namespace qnv
