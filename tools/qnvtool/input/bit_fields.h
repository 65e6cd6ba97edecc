// Pixels of bit fields: masks say which bits of a pixel belong to red, green and blue.
#pragma once

#include <cstdint>

#include "qnvtool/base/file_bytes.h"

namespace qnv::tool {

struct ColorMasks {
  uint32_t red = 0;
  uint32_t green = 0;
  uint32_t blue = 0;
  bool operator==(const ColorMasks&) const = default;
};

// The layout that the rasteriser assumes of every 32-bit pixel.
inline constexpr ColorMasks kMasks888{0xFF0000, 0x00FF00, 0x0000FF};

// True when the set bits are contiguous and there is at least one.
bool IsBitRun(uint32_t mask);

// True when the rasteriser's own shifts give the right colors for these masks of 16-bit pixels: runs of 2 to 8
// bits. (It treats a single bit as the top bit of a wider field.) Requires: IsBitRun of each mask.
bool ReadDirectly16(const ColorMasks& masks);

// Rows of 16 or 32-bit pixels (4-byte aligned) to rows of 32-bit pixels in the 8-8-8 layout. Each component is
// stretched to 0..255. Requires: IsBitRun of each mask.
Bytes ExpandTo32(const Bytes& bits, int width, int height, int bitCount, const ColorMasks& masks);

}  // namespace qnv::tool
