// Level ssse3: exchanges red and blue with byte shuffles. The other row kernels are those of sse2; image kernels are in
// pixel_rows_ssse3.cpp.
#include <tmmintrin.h>

#include "raster/rows/row_tables.h"
#include "raster/rows/rows_in_pieces.h"

namespace qnv::ssse3 {

// Five pixels at a time. A store writes sixteen bytes, and the next store overwrites the last of them.
void SwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  const __m128i swap = _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, -1);
  for (; pixels >= 6; pixels -= 5, source += 15, dst += 15) {
    const __m128i five = _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), _mm_shuffle_epi8(five, swap));
  }
  plain::SwapRow24(dst, source, pixels);
}

void RopSwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, const ByteMasks& masks) {
  RopSwapInPieces<ssse3::SwapRow24, sse2::RopSourceRow>(dst, source, pixels, masks);
}

// All but the exchange of red and blue are those of sse2.
constinit const RowKernels kRowKernels = {
    .FillTileRow = sse2::FillTileRow,
    .RopTileRow = sse2::RopTileRow,
    .RopSourceRow = sse2::RopSourceRow,
    .RopSourceTileRow = sse2::RopSourceTileRow,
    .CopyRow = sse2::CopyRow,
    .MinimumRow = sse2::MinimumRow,
    .SwapRow24 = ssse3::SwapRow24,
    .RopSwapRow24 = ssse3::RopSwapRow24,
    .ExpandBitsRow24 = sse2::ExpandBitsRow24,
    .ExpandBitsRow8 = sse2::ExpandBitsRow8,
    .ExpandGlyph24 = sse2::ExpandGlyph24,
    .ExpandGlyph8 = sse2::ExpandGlyph8,
    .PaintGlyph24 = sse2::PaintGlyph24,
    .PaintGlyph8 = sse2::PaintGlyph8,
    .image = &kPixelRows,
};

}  // namespace qnv::ssse3
