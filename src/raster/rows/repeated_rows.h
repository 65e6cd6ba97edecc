// Rows in which every source pixel is repeated 2, 4 or 8 times.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace qnv {
namespace {

// Calls repeat(factor as a constant, blocks) for the whole blocks of kBlock destination pixels, and Below, a kernel of
// a lower level, for what remains.
template <std::size_t kBytesPerPixel, std::size_t kBlock, auto Below, class Repeat>
void RepeatInBlocks(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor, Repeat repeat) {
  const std::size_t blocks = pixels / kBlock;
  switch (factor) {
    case 2: repeat(std::integral_constant<std::size_t, 2>{}, blocks); break;
    case 4: repeat(std::integral_constant<std::size_t, 4>{}, blocks); break;
    default: repeat(std::integral_constant<std::size_t, 8>{}, blocks); break;
  }
  Below(dst + kBlock * kBytesPerPixel * blocks, source + kBlock / factor * kBytesPerPixel * blocks, pixels % kBlock,
        factor);
}

}  // namespace
}  // namespace qnv
