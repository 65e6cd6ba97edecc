// Converts pixels of 16 and 32 bits whose components the rasteriser cannot read at their places.
#include "qnvtool/input/bit_fields.h"

#include <bit>

#include "qnvtool/input/dib.h"

namespace qnv::tool {
namespace {

// One component, scaled to 0..255 and rounded.
uint8_t Component(uint32_t pixel, uint32_t mask) {
  const int shift = std::countr_zero(mask);
  const uint64_t largest = mask >> shift;
  const uint64_t value = (pixel & mask) >> shift;
  return static_cast<uint8_t>((value * 255 + largest / 2) / largest);
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

Bytes ExpandTo32(const Bytes& bits, int width, int height, int bitCount, const ColorMasks& masks) {
  const std::size_t stride = DibStride(width, bitCount);
  const std::size_t step = static_cast<std::size_t>(bitCount) / 8;
  Bytes result;
  result.reserve(DibStride(width, 32) * static_cast<std::size_t>(height));
  for (std::size_t row = 0; row < static_cast<std::size_t>(height); ++row) {
    for (std::size_t column = 0; column < static_cast<std::size_t>(width); ++column) {
      const std::size_t at = row * stride + column * step;
      const uint32_t pixel = step == 2 ? U16At(bits, at) : U32At(bits, at);
      result.push_back(Component(pixel, masks.blue));
      result.push_back(Component(pixel, masks.green));
      result.push_back(Component(pixel, masks.red));
      result.push_back(0);
    }
  }
  return result;
}

}  // namespace qnv::tool
