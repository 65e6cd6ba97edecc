// Row kernels: the loops that write band bytes, one row per call. They take pointers, counts and constants and know
// nothing of coordinates, clips or records, and most of them do not depend on the pixel depth. In the formulas D is a
// byte of the band, D' its new value, and S a byte of the source.
//
// Rules for all of them: any alignment and any count, including 0; exactly the named bytes are read and written; source
// and destination do not overlap; nothing can fail. Counts are in bytes or in pixels, as the name of the parameter
// says. A `tile` points to the byte of a Tile (tile.h) at which the row begins: kTilePeriod bytes from there are one
// period, and kMaxAdvance more may be read.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rows/cpu_level.h"
#include "raster/rows/pixel_rows.h"

namespace qnv {

// The masks of a raster operation without a pattern: D' = (D & ((S & and1) ^ and2)) ^ ((S & xor1) ^ xor2), each mask
// 0x00 or 0xFF for all bytes of the row.
struct ByteMasks {
  uint8_t and1, and2, xor1, xor2;
};

// The masks of a raster operation with a pattern: the same formula, each mask a tile.
struct TileMasks {
  const uint8_t *and1, *and2, *xor1, *xor2;
};

// A column of a glyph, up to eight pixels wide: one byte for each row, most significant bit leftmost.
struct GlyphColumn {
  const uint8_t* bytes;
  std::size_t rows;
  std::size_t offset, pixels;  // the bits to paint; offset + pixels <= 8
};

// The two colors of text, prepared once per call as the bytes of eight pixels.
struct BitColors {
  uint32_t set, clear;  // packed
  alignas(16) uint8_t setBytes[24];
  alignas(16) uint8_t clearBytes[24];
  alignas(16) uint8_t changeBytes[24];  // set ^ clear
};

// The type of each kernel, named like the kernel and its entry in the table.
namespace kernel {

// D' = tile
using FillTileRow = void(uint8_t* dst, std::size_t bytes, const uint8_t* tile);
// D' = (D & andTile) ^ xorTile
using RopTileRow = void(uint8_t* dst, std::size_t bytes, const uint8_t* andTile, const uint8_t* xorTile);
// source: `bytes` bytes in band order
using RopSourceRow = void(uint8_t* dst, const uint8_t* source, std::size_t bytes, const ByteMasks& masks);
using RopSourceTileRow = void(uint8_t* dst, const uint8_t* source, std::size_t bytes, const TileMasks& masks);
// D' = S
using CopyRow = void(uint8_t* dst, const uint8_t* source, std::size_t bytes);
// D' = min(D, S)
using MinimumRow = void(uint8_t* dst, const uint8_t* source, std::size_t bytes);

// Exchanges bytes 0 and 2 of each pixel: source 3 * pixels bytes red, green, blue.
using SwapRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels);

// RopSourceRow with a source whose red and blue are exchanged first: 3 * pixels bytes red, green, blue.
using RopSwapRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels, const ByteMasks& masks);

// Source of one bit a pixel, most significant bit first, starting at bit `offset` (0..7, 0 the most significant) of
// *bits. Set and clear bits become the packed colors `set` and `clear` (in 8-bit bands their low bytes).
using ExpandBitsRow24 = void(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                             uint32_t clear);
using ExpandBitsRow8 = ExpandBitsRow24;

// A column of a glyph into the rows of a band, which are `stride` bytes apart. Expand paints both colors, Paint only
// the set bits.
using ExpandGlyph24 = void(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors);
using ExpandGlyph8 = ExpandGlyph24;
using PaintGlyph24 = ExpandGlyph24;
using PaintGlyph8 = ExpandGlyph24;

}  // namespace kernel

// All kernels of this header by name. Declarations and tables are made from this list.
#define QNV_ROW_KERNELS(X) \
  X(FillTileRow)           \
  X(RopTileRow)            \
  X(RopSourceRow)          \
  X(RopSourceTileRow)      \
  X(CopyRow)               \
  X(MinimumRow)            \
  X(SwapRow24)             \
  X(RopSwapRow24)          \
  X(ExpandBitsRow24)       \
  X(ExpandBitsRow8)        \
  X(ExpandGlyph24)         \
  X(ExpandGlyph8)          \
  X(PaintGlyph24)          \
  X(PaintGlyph8)

// The table of a level.
struct RowKernels {
#define QNV_ENTRY(name) kernel::name* name;
  QNV_ROW_KERNELS(QNV_ENTRY)
#undef QNV_ENTRY

  // The kernels of images.
  const PixelRows* image;
  // This table with string instructions for long copies, or null for a level that never uses them.
  const RowKernels* withStrings = nullptr;
};

// The kernels of a level. Entries that a level does not specialise come from the levels below; the plain kernels
// define what each entry does. fastStrings: long rows may be copied by string instructions. Requires: a level that the
// processor has.
const RowKernels& KernelsFor(CpuLevel level, bool fastStrings = false);

}  // namespace qnv
