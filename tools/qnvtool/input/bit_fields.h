// Pixels of bit fields: masks say which bits of a pixel belong to red, green and blue.
#pragma once

#include <cstdint>

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

// A row of 16 or 32-bit pixels to one of 32-bit pixels in the 8-8-8 layout. Each component is stretched to 0..255.
// Requires: IsBitRun of each mask.
void ExpandRowTo32(const uint8_t* from, int width, int bitCount, const ColorMasks& masks, uint8_t* to);

// The same to 24-bit pixels, laid over white by their alpha.
void BlendRow(const uint8_t* from, int width, int bitCount, const ColorMasks& masks, uint32_t alphaMask, uint8_t* to);

// A component over white; alpha 0..255.
inline uint8_t OverWhite(uint32_t value, uint32_t alpha) {
  return static_cast<uint8_t>((value * alpha + 255 * (255 - alpha) + 127) / 255);
}

}  // namespace qnv::tool
