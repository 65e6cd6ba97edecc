#include "raster/rows/row_tables.h"
#include "raster/rows/rows_bits.h"
#include "raster/rows/rows_vector.h"
#include "raster/rows/vector16.h"

namespace qnv {

constinit const RowKernels kSsse3RowKernels = {
    FillTileRowOf<Vector16, Vector16>,
    RopTileRowOf<Vector16, Vector16>,
    RopSourceRowOf<Vector16, Vector16>,
    RopSourceTileRowOf<Vector16, Vector16>,
    MinimumRowOf<Vector16>,
    SwapRow24Of<Vector16>,
    ExpandBitsRowOf<Eight24>,
    ExpandBitsRowOf<Eight8>,
    ExpandGlyphOf<Eight24>,
    ExpandGlyphOf<Eight8>,
    PaintGlyphOf<Eight24>,
    PaintGlyphOf<Eight8>,
    PaintBitsRowOf<Eight24>,
    PaintBitsRowOf<Eight8>,
    plain::RegrayRow24,
    &kSsse3PixelRows,
};

}  // namespace qnv
