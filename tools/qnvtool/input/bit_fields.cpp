// Converts pixels of 16 and 32 bits whose components the rasteriser cannot read at their places.
#include "qnvtool/input/bit_fields.h"

#include <bit>

namespace qnv::tool {
namespace {

// One component, scaled to 0..255 and rounded.
uint8_t Component(uint32_t pixel, uint32_t mask) {
  const int shift = std::countr_zero(mask);
  const uint64_t largest = mask >> shift;
  const uint64_t value = (pixel & mask) >> shift;
  return static_cast<uint8_t>((value * 255 + largest / 2) / largest);
}

// Reads a pixel and moves past it.
uint32_t NextPixel(const uint8_t*& from, int bitCount) {
  uint32_t pixel = 0;
  for (int shift = 0; shift < bitCount; shift += 8) pixel |= uint32_t{*from++} << shift;
  return pixel;
}

// Whether a mask has 2 to 8 bits.
bool Within2To8Bits(uint32_t mask) { return std::popcount(mask) >= 2 && std::popcount(mask) <= 8; }

}  // namespace

bool IsBitRun(uint32_t mask) {
  if (mask == 0) return false;
  const uint32_t low = mask >> std::countr_zero(mask);
  return (low & (low + 1)) == 0;
}

bool ReadDirectly16(const ColorMasks& masks) {
  return Within2To8Bits(masks.red) && Within2To8Bits(masks.green) && Within2To8Bits(masks.blue);
}

void ExpandRowTo32(const uint8_t* from, int width, int bitCount, const ColorMasks& masks, uint8_t* to) {
  for (int x = 0; x < width; ++x) {
    const uint32_t pixel = NextPixel(from, bitCount);
    *to++ = Component(pixel, masks.blue);
    *to++ = Component(pixel, masks.green);
    *to++ = Component(pixel, masks.red);
    *to++ = 0;
  }
}

void BlendRow(const uint8_t* from, int width, int bitCount, const ColorMasks& masks, uint32_t alphaMask, uint8_t* to) {
  for (int x = 0; x < width; ++x) {
    const uint32_t pixel = NextPixel(from, bitCount);
    const uint32_t alpha = Component(pixel, alphaMask);
    *to++ = OverWhite(Component(pixel, masks.blue), alpha);
    *to++ = OverWhite(Component(pixel, masks.green), alpha);
    *to++ = OverWhite(Component(pixel, masks.red), alpha);
  }
}

}  // namespace qnv::tool
