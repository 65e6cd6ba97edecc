// Two kernels one after the other, for rows that a level does not convert and combine at once.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rows/row_kernels.h"

namespace qnv {
namespace {

// RopSwapRow24 as an exchange into a piece of memory and a combination. A piece is so short that it stays in the
// first-level cache, and so long that its first bytes have left the store buffer when they are read back.
template <auto Swap, auto Rop>
void RopSwapInPieces(uint8_t* dst, const uint8_t* source, std::size_t pixels, const ByteMasks& masks) {
  constexpr std::size_t kPiece = 2048;
  uint8_t swapped[3 * kPiece];
  for (std::size_t done = 0; done < pixels; done += kPiece) {
    const std::size_t piece = pixels - done < kPiece ? pixels - done : kPiece;
    Swap(swapped, source + 3 * done, piece);
    Rop(dst + 3 * done, swapped, 3 * piece, masks);
  }
}

}  // namespace
}  // namespace qnv
