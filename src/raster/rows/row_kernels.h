// Row kernels: loops over one row of band bytes. They know pointers, counts and constants, no geometry, and
// for most of them no pixel depth either.
//
// Common to all: any alignment, any count including 0; exactly the named bytes are read and written; source
// and destination do not overlap; nothing can fail. A `tile` points at the phase byte of a Tile: kTilePeriod
// bytes from there are one period, and kMaxAdvance more may be read.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rows/cpu_level.h"
#include "raster/rows/pixel_rows.h"

namespace qnv {

// D' = (D & ((S & and1) ^ and2)) ^ ((S & xor1) ^ xor2), each mask 0x00 or 0xFF for every byte of the row ...
struct ByteMasks {
  uint8_t and1, and2, xor1, xor2;
};

// ... or a tile.
struct TileMasks {
  const uint8_t *and1, *and2, *xor1, *xor2;
};

// Up to eight pixels of a glyph in all its rows: one byte a row, most significant bit leftmost.
struct GlyphColumn {
  const uint8_t* bytes;
  std::size_t rows;
  std::size_t offset, pixels;  // the bits to paint; offset + pixels <= 8
};

// The two colours of text, prepared once per call: the bytes of eight pixels.
struct BitColours {
  uint32_t set, clear;  // packed
  alignas(16) uint8_t setBytes[24];
  alignas(16) uint8_t clearBytes[24];
  alignas(16) uint8_t changeBytes[24];  // set ^ clear
};

struct RowKernels {
  // D' = tile
  void (*FillTileRow)(uint8_t* dst, std::size_t bytes, const uint8_t* tile);
  // D' = (D & andTile) ^ xorTile
  void (*RopTileRow)(uint8_t* dst, std::size_t bytes, const uint8_t* andTile, const uint8_t* xorTile);
  // source: `bytes` bytes in band order
  void (*RopSourceRow)(uint8_t* dst, const uint8_t* source, std::size_t bytes, const ByteMasks& masks);
  void (*RopSourceTileRow)(uint8_t* dst, const uint8_t* source, std::size_t bytes, const TileMasks& masks);
  // D' = S
  void (*CopyRow)(uint8_t* dst, const uint8_t* source, std::size_t bytes);
  // D' = min(D, S)
  void (*MinimumRow)(uint8_t* dst, const uint8_t* source, std::size_t bytes);

  // Exchanges bytes 0 and 2 of each pixel: source 3 * pixels bytes red, green, blue.
  void (*SwapRow24)(uint8_t* dst, const uint8_t* source, std::size_t pixels);

  // One bit a pixel, most significant first, starting at bit `offset` (0..7) of *bits: set and clear bits
  // become packed colours (the low byte alone in 8-bit bands).
  void (*ExpandBitsRow24)(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                          uint32_t clear);
  void (*ExpandBitsRow8)(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                         uint32_t clear);
  // A column of a glyph into the rows of a band that lie `stride` bytes apart: both colours, or only set bits.
  void (*ExpandGlyph24)(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColours& colours);
  void (*ExpandGlyph8)(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColours& colours);
  void (*PaintGlyph24)(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColours& colours);
  void (*PaintGlyph8)(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColours& colours);

  // Rows of images at the same level.
  const PixelRows* image;
};

// The kernels of a level; what a level does not improve is that of the level below. The plain ones are the
// readable reference of all. Requires: a level that the processor has.
const RowKernels& KernelsFor(CpuLevel level);

}  // namespace qnv
