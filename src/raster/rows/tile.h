// Tiles: rows of a pattern laid out for row kernels. A tile holds the bytes of the row in band order, repeated so often
// that a kernel can start at any cell and read a whole period from there. Sizes and offsets are in bytes; `width`
// counts cells, the pixels of a pattern.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "raster/rows/pixel_words.h"

namespace qnv {

// A multiple of the length of every pattern row (1, 8 or 16 cells of 1 or 3 bytes), and three vectors of 32 bytes.
inline constexpr std::size_t kTilePeriod = 96;
inline constexpr std::size_t kMaxPhase = 48;    // offsets where a kernel starts are less than this: 16 cells of 3 bytes
inline constexpr std::size_t kMaxAdvance = 32;  // bytes that a kernel may skip to reach an aligned address

struct alignas(16) Tile {
  uint8_t bytes[kTilePeriod + kMaxPhase + kMaxAdvance];
};
static_assert(sizeof(Tile) % 4 == 0);

// Fills a tile with 8 or 16 cells: makes a row of 16 cells, four at a time as whole words, and repeats it.
template <std::size_t kBytesPerPixel>
void MakeTileOf(Tile* tile, const uint32_t* cells, std::size_t width) {
  constexpr std::size_t kRow = kMaxPhase / 3 * kBytesPerPixel;  // 16 cells
  uint32_t row[kRow / 4];
  for (std::size_t i = 0, word = 0; i < 16; i += 4, word += kBytesPerPixel) {
    const uint32_t* const four = cells + (i & (width - 1));
    if constexpr (kBytesPerPixel == 3) {
      row[word] = (four[0] & 0xFFFFFF) | four[1] << 24;
      row[word + 1] = (four[1] >> 8 & 0xFFFF) | four[2] << 16;
      row[word + 2] = (four[2] >> 16 & 0xFF) | four[3] << 8;
    } else {
      row[word] = (four[0] & 0xFF) | (four[1] & 0xFF) << 8 | (four[2] & 0xFF) << 16 | four[3] << 24;
    }
  }
  std::size_t at = 0;
  for (; at + kRow <= sizeof tile->bytes; at += kRow) std::memcpy(tile->bytes + at, row, kRow);
  std::memcpy(tile->bytes + at, row, sizeof tile->bytes % kRow);
}

// Fills a tile with one packed color.
inline void MakeSolidTile(Tile* tile, uint32_t color, std::size_t bytesPerPixel) {
  if (bytesPerPixel == 1) {
    std::memset(tile->bytes, static_cast<uint8_t>(color), sizeof tile->bytes);
    return;
  }
  const PixelWords pixels(color);
  const uint32_t words[4] = {pixels.first, pixels.second, pixels.third, pixels.first};
  std::size_t at = 0;
  for (; at + 12 <= sizeof tile->bytes; at += 12) std::memcpy(tile->bytes + at, words, 12);
  std::memcpy(tile->bytes + at, words, sizeof tile->bytes - at);
}

// Fills a tile from `width` packed colors, 1, 8 or 16 of them.
inline void MakeTile(Tile* tile, const uint32_t* cells, std::size_t width, std::size_t bytesPerPixel) {
  if (width == 1) return MakeSolidTile(tile, cells[0], bytesPerPixel);
  bytesPerPixel == 3 ? MakeTileOf<3>(tile, cells, width) : MakeTileOf<1>(tile, cells, width);
}

}  // namespace qnv
