#include "raster/rows/byte_windows.h"
#include "raster/rows/row_tables.h"
#include "raster/rows/rows_bits.h"
#include "raster/rows/rows_bits_wide.h"
#include "raster/rows/rows_vector.h"
#include "raster/rows/vector16.h"
#include "raster/rows/vector32.h"

namespace qnv {
namespace {

// Beyond a few pages the processor's own copy loop is the fastest: it need not read the lines that it overwrites.
void CopyRow(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  constexpr std::size_t kLong = 16384;
  if (bytes < kLong) return CopyRowOf<Vector32, Vector16>(dst, source, bytes);
  __asm__ volatile("rep movsb" : "+D"(dst), "+S"(source), "+c"(bytes) : : "memory");
}

// What does not fill a block is left to the level below.

void SwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kFewestRearranged) return kSsse3RowKernels.SwapRow24(dst, source, pixels);
  RearrangeRow<SwapMap>(dst, source, pixels, [=](std::size_t i) { plain::SwapRow24(dst + 3 * i, source + 3 * i, 1); });
}

void ExpandBitsRow24(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                     uint32_t clear) {
  if (pixels < kBlockPixels) return kSsse3RowKernels.ExpandBitsRow24(dst, bits, offset, pixels, set, clear);
  ExpandBlocks<3>(dst, bits, offset, pixels, set, clear);
}

void ExpandBitsRow8(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                    uint32_t clear) {
  if (pixels < kBlockPixels) return kSsse3RowKernels.ExpandBitsRow8(dst, bits, offset, pixels, set, clear);
  ExpandBlocks<1>(dst, bits, offset, pixels, set, clear);
}

}  // namespace

constinit const RowKernels kAvx2RowKernels = {
    .FillTileRow = FillTileRowOf<Vector32, Vector16>,
    .RopTileRow = RopTileRowOf<Vector32, Vector16>,
    .RopSourceRow = RopSourceRowOf<Vector32, Vector16>,
    .RopSourceTileRow = RopSourceTileRowOf<Vector32, Vector16>,
    .CopyRow = CopyRow,
    .MinimumRow = MinimumRowOf<Vector32>,
    .SwapRow24 = SwapRow24,
    .ExpandBitsRow24 = ExpandBitsRow24,
    .ExpandBitsRow8 = ExpandBitsRow8,
    .ExpandGlyph24 = ExpandGlyphOf<Eight24>,
    .ExpandGlyph8 = ExpandGlyphOf<Eight8>,
    .PaintGlyph24 = PaintGlyphOf<Eight24>,
    .PaintGlyph8 = PaintGlyphOf<Eight8>,
    .PaintBitsRow24 = PaintBitsRowOf<Eight24>,
    .PaintBitsRow8 = PaintBitsRowOf<Eight8>,
    .image = &kAvx2PixelRows,
};

}  // namespace qnv
