// Level plain: row kernels, one byte or pixel at a time. They define the results that the kernels of all other levels
// must have.
#include <algorithm>

#include "raster/rows/row_tables.h"
#include "raster/rows/rows_in_pieces.h"
#include "raster/rows/store_pixel.h"
#include "raster/rows/tile.h"

namespace qnv::plain {
namespace {

// Calls piece(offset, bytes) for consecutive parts of a row, each at most one tile period long.
template <class Piece>
void ForEachPeriod(std::size_t bytes, Piece piece) {
  for (std::size_t at = 0; at < bytes; at += kTilePeriod) piece(at, std::min(kTilePeriod, bytes - at));
}

// The raster operation on one byte.
uint8_t Rop(uint8_t d, uint8_t s, uint8_t and1, uint8_t and2, uint8_t xor1, uint8_t xor2) {
  return static_cast<uint8_t>((d & ((s & and1) ^ and2)) ^ ((s & xor1) ^ xor2));
}

// Bit `at` of a row, the most significant bit of each byte first.
bool Bit(const uint8_t* bits, std::size_t at) { return (bits[at / 8] >> (7 - at % 8) & 1) != 0; }

template <std::size_t kBytes>
void ExpandBits(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                uint32_t clear) {
  for (std::size_t i = 0; i < pixels; ++i, dst += kBytes) StorePixel<kBytes>(dst, Bit(bits, offset + i) ? set : clear);
}

template <std::size_t kBytes>
void PaintBits(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set) {
  for (std::size_t i = 0; i < pixels; ++i, dst += kBytes) {
    if (Bit(bits, offset + i)) StorePixel<kBytes>(dst, set);
  }
}

template <std::size_t kBytes>
void ExpandGlyph(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  for (std::size_t row = 0; row < column.rows; ++row, dst += stride) {
    ExpandBits<kBytes>(dst, column.bytes + row, column.offset, column.pixels, colors.set, colors.clear);
  }
}

template <std::size_t kBytes>
void PaintGlyph(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  for (std::size_t row = 0; row < column.rows; ++row, dst += stride) {
    PaintBits<kBytes>(dst, column.bytes + row, column.offset, column.pixels, colors.set);
  }
}

}  // namespace

void FillTileRow(uint8_t* dst, std::size_t bytes, const uint8_t* tile) {
  ForEachPeriod(bytes, [=](std::size_t at, std::size_t count) { std::copy_n(tile, count, dst + at); });
}

void RopTileRow(uint8_t* dst, std::size_t bytes, const uint8_t* andTile, const uint8_t* xorTile) {
  ForEachPeriod(bytes, [=](std::size_t at, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      dst[at + i] = static_cast<uint8_t>((dst[at + i] & andTile[i]) ^ xorTile[i]);
    }
  });
}

void RopSourceRow(uint8_t* dst, const uint8_t* source, std::size_t bytes, const ByteMasks& masks) {
  const ByteMasks m = masks;
  for (std::size_t i = 0; i < bytes; ++i) dst[i] = Rop(dst[i], source[i], m.and1, m.and2, m.xor1, m.xor2);
}

void RopSourceTileRow(uint8_t* dst, const uint8_t* source, std::size_t bytes, const TileMasks& masks) {
  const TileMasks m = masks;
  ForEachPeriod(bytes, [=](std::size_t at, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      dst[at + i] = Rop(dst[at + i], source[at + i], m.and1[i], m.and2[i], m.xor1[i], m.xor2[i]);
    }
  });
}

void MinimumRow(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  for (std::size_t i = 0; i < bytes; ++i) dst[i] = std::min(dst[i], source[i]);
}

void CopyRow(uint8_t* dst, const uint8_t* source, std::size_t bytes) { std::copy_n(source, bytes, dst); }

void SwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i, dst += 3, source += 3) {
    const uint8_t red = source[0], green = source[1], blue = source[2];
    dst[0] = blue;
    dst[1] = green;
    dst[2] = red;
  }
}

void RopSwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, const ByteMasks& masks) {
  RopSwapInPieces<plain::SwapRow24, plain::RopSourceRow>(dst, source, pixels, masks);
}

void ExpandBitsRow24(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                     uint32_t clear) {
  ExpandBits<3>(dst, bits, offset, pixels, set, clear);
}

void ExpandBitsRow8(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                    uint32_t clear) {
  ExpandBits<1>(dst, bits, offset, pixels, set, clear);
}

void ExpandGlyph24(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  ExpandGlyph<3>(dst, stride, column, colors);
}

void ExpandGlyph8(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  ExpandGlyph<1>(dst, stride, column, colors);
}

void PaintGlyph24(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  PaintGlyph<3>(dst, stride, column, colors);
}

void PaintGlyph8(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  PaintGlyph<1>(dst, stride, column, colors);
}

// Every entry has a plain kernel.
constinit const RowKernels kRowKernels = {
    .FillTileRow = plain::FillTileRow,
    .RopTileRow = plain::RopTileRow,
    .RopSourceRow = plain::RopSourceRow,
    .RopSourceTileRow = plain::RopSourceTileRow,
    .CopyRow = plain::CopyRow,
    .MinimumRow = plain::MinimumRow,
    .SwapRow24 = plain::SwapRow24,
    .RopSwapRow24 = plain::RopSwapRow24,
    .ExpandBitsRow24 = plain::ExpandBitsRow24,
    .ExpandBitsRow8 = plain::ExpandBitsRow8,
    .ExpandGlyph24 = plain::ExpandGlyph24,
    .ExpandGlyph8 = plain::ExpandGlyph8,
    .PaintGlyph24 = plain::PaintGlyph24,
    .PaintGlyph8 = plain::PaintGlyph8,
    .image = &kPixelRows,
};

}  // namespace qnv::plain
