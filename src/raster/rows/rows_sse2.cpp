#include "raster/rows/row_tables.h"
#include "raster/rows/rows_bits.h"
#include "raster/rows/rows_swap.h"
#include "raster/rows/rows_vector.h"
#include "raster/rows/vector16.h"

namespace qnv {

constinit const RowKernels kSse2RowKernels = {
    .FillTileRow = FillTileRowOf<Vector16, Vector16>,
    .RopTileRow = RopTileRowOf<Vector16, Vector16>,
    .RopSourceRow = RopSourceRowOf<Vector16, Vector16>,
    .RopSourceTileRow = RopSourceTileRowOf<Vector16, Vector16>,
    .CopyRow = CopyRowOf<Vector16, Vector16>,
    .MinimumRow = MinimumRowOf<Vector16, Vector16>,
    .SwapRow24 = SwapRow24Of<Vector16>,
    .ExpandBitsRow24 = ExpandBitsRowOf<Eight24>,
    .ExpandBitsRow8 = ExpandBitsRowOf<Eight8>,
    .ExpandGlyph24 = ExpandGlyphOf<Eight24>,
    .ExpandGlyph8 = ExpandGlyphOf<Eight8>,
    .PaintGlyph24 = PaintGlyphOf<Eight24>,
    .PaintGlyph8 = PaintGlyphOf<Eight8>,
    .image = &kPlainPixelRows,
};

}  // namespace qnv
