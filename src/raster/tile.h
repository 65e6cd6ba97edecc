// One pattern row laid out for row kernels: bytes in band order, repeated far enough that a kernel may start
// at any cell and read a whole period from there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qnv {

// A multiple of every row length in bytes: 1, 8 or 16 cells of 1 or 3 bytes; three vectors of 32 bytes.
inline constexpr std::size_t kTilePeriod = 96;
inline constexpr std::size_t kMaxPhase = 48;    // the longest row: 16 cells of 3 bytes
inline constexpr std::size_t kMaxAdvance = 32;  // bytes that a kernel may pass over to reach an aligned address

struct alignas(16) Tile {
  uint8_t bytes[kTilePeriod + kMaxPhase + kMaxAdvance];
};

// Fills the tile from its first `length` bytes. Requires: length divides kTilePeriod.
inline void RepeatTile(Tile* tile, std::size_t length) {
  for (std::size_t filled = length; filled < sizeof tile->bytes;) {
    const std::size_t rest = sizeof tile->bytes - filled;
    const std::size_t part = filled < rest ? filled : rest;
    std::memcpy(tile->bytes + filled, tile->bytes, part);
    filled += part;
  }
}

// cells: `width` packed colours.
inline void MakeTile(Tile* tile, const uint32_t* cells, std::size_t width, std::size_t bytesPerPixel) {
  uint8_t* out = tile->bytes;
  for (std::size_t i = 0; i < width; ++i) {
    for (std::size_t byte = 0; byte < bytesPerPixel; ++byte) *out++ = static_cast<uint8_t>(cells[i] >> 8 * byte);
  }
  RepeatTile(tile, width * bytesPerPixel);
}

}  // namespace qnv
