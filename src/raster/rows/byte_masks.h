// Tables that turn eight bits into a mask of eight pixels: for each value of a byte, 0xFF in every byte of the pixels
// whose bits are set, the most significant bit leftmost. They are data, so the levels of all instruction sets share
// them.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv {

template <std::size_t kBytesPerPixel>
struct PixelMaskTable {
  // One entry more than a byte has values, because vector loads read past the last mask.
  uint8_t mask[257][8 * kBytesPerPixel];
};

template <std::size_t kBytesPerPixel>
constexpr PixelMaskTable<kBytesPerPixel> MakePixelMasks() {
  PixelMaskTable<kBytesPerPixel> table{};
  for (std::size_t bits = 0; bits < 256; ++bits) {
    for (std::size_t i = 0; i < 8 * kBytesPerPixel; ++i) {
      table.mask[bits][i] = (bits >> (7 - i / kBytesPerPixel) & 1) != 0 ? 0xFF : 0;
    }
  }
  return table;
}

alignas(32) inline constexpr PixelMaskTable<3> kPixelMasks24 = MakePixelMasks<3>();
alignas(32) inline constexpr PixelMaskTable<1> kPixelMasks8 = MakePixelMasks<1>();

}  // namespace qnv
