#include <tmmintrin.h>

#include "raster/rows/row_tables.h"
#include "raster/rows/rows_bits.h"
#include "raster/rows/rows_vector.h"
#include "raster/rows/vector16.h"

namespace qnv {
namespace {

// Five pixels a turn; the sixteenth byte stored is overwritten by the next ones.
void SwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  const __m128i swap = _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, -1);
  for (; pixels >= 6; pixels -= 5, source += 15, dst += 15) {
    const __m128i five = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), _mm_shuffle_epi8(five, swap));
  }
  plain::SwapRow24(dst, source, pixels);
}

}  // namespace

constinit const RowKernels kSsse3RowKernels = {
    .FillTileRow = FillTileRowOf<Vector16, Vector16>,
    .RopTileRow = RopTileRowOf<Vector16, Vector16>,
    .RopSourceRow = RopSourceRowOf<Vector16, Vector16>,
    .RopSourceTileRow = RopSourceTileRowOf<Vector16, Vector16>,
    .CopyRow = CopyRowOf<Vector16, Vector16>,
    .MinimumRow = MinimumRowOf<Vector16, Vector16>,
    .SwapRow24 = SwapRow24,
    .ExpandBitsRow24 = ExpandBitsRowOf<Eight24>,
    .ExpandBitsRow8 = ExpandBitsRowOf<Eight8>,
    .ExpandGlyph24 = ExpandGlyphOf<Eight24>,
    .ExpandGlyph8 = ExpandGlyphOf<Eight8>,
    .PaintGlyph24 = PaintGlyphOf<Eight24>,
    .PaintGlyph8 = PaintGlyphOf<Eight8>,
    .image = &kSsse3PixelRows,
};

}  // namespace qnv
