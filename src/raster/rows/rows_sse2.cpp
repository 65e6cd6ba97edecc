// Level sse2: row kernels with vectors of 16 bytes. Image kernels are the plain ones, because SSE2 has no byte shuffle.
#include "raster/rows/row_tables.h"
#include "raster/rows/rows_bits.h"
#include "raster/rows/rows_in_pieces.h"
#include "raster/rows/rows_swap.h"
#include "raster/rows/rows_vector.h"
#include "raster/rows/vector16.h"

namespace qnv::sse2 {

void FillTileRow(uint8_t* dst, std::size_t bytes, const uint8_t* tile) {
  FillTileRowOf<Vector16, Vector16>(dst, bytes, tile);
}

void RopTileRow(uint8_t* dst, std::size_t bytes, const uint8_t* andTile, const uint8_t* xorTile) {
  RopTileRowOf<Vector16, Vector16>(dst, bytes, andTile, xorTile);
}

void RopSourceRow(uint8_t* dst, const uint8_t* source, std::size_t bytes, const ByteMasks& masks) {
  RopSourceRowOf<Vector16, Vector16>(dst, source, bytes, masks);
}

void RopSourceTileRow(uint8_t* dst, const uint8_t* source, std::size_t bytes, const TileMasks& masks) {
  RopSourceTileRowOf<Vector16, Vector16>(dst, source, bytes, masks);
}

void CopyRow(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  CopyRowOf<Vector16, Vector16>(dst, source, bytes);
}

void MinimumRow(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  MinimumRowOf<Vector16, Vector16>(dst, source, bytes);
}

void SwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) { SwapRow24Of<Vector16>(dst, source, pixels); }

void RopSwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, const ByteMasks& masks) {
  RopSwapInPieces<sse2::SwapRow24, sse2::RopSourceRow>(dst, source, pixels, masks);
}

void ExpandBitsRow24(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                     uint32_t clear) {
  ExpandBitsRowOf<Eight24>(dst, bits, offset, pixels, set, clear);
}

void ExpandBitsRow8(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                    uint32_t clear) {
  ExpandBitsRowOf<Eight8>(dst, bits, offset, pixels, set, clear);
}

void ExpandGlyph24(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  ExpandGlyphOf<Eight24>(dst, stride, column, colors);
}

void ExpandGlyph8(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  ExpandGlyphOf<Eight8>(dst, stride, column, colors);
}

void PaintGlyph24(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  PaintGlyphOf<Eight24>(dst, stride, column, colors);
}

void PaintGlyph8(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  PaintGlyphOf<Eight8>(dst, stride, column, colors);
}

// Every kernel of rows is specialised, none of images.
constinit const RowKernels kRowKernels = {
    .FillTileRow = sse2::FillTileRow,
    .RopTileRow = sse2::RopTileRow,
    .RopSourceRow = sse2::RopSourceRow,
    .RopSourceTileRow = sse2::RopSourceTileRow,
    .CopyRow = sse2::CopyRow,
    .MinimumRow = sse2::MinimumRow,
    .SwapRow24 = sse2::SwapRow24,
    .RopSwapRow24 = sse2::RopSwapRow24,
    .ExpandBitsRow24 = sse2::ExpandBitsRow24,
    .ExpandBitsRow8 = sse2::ExpandBitsRow8,
    .ExpandGlyph24 = sse2::ExpandGlyph24,
    .ExpandGlyph8 = sse2::ExpandGlyph8,
    .PaintGlyph24 = sse2::PaintGlyph24,
    .PaintGlyph8 = sse2::PaintGlyph8,
    .image = &plain::kPixelRows,
};

}  // namespace qnv::sse2
