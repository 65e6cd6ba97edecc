#include <immintrin.h>

#include "raster/rows/row_tables.h"
#include "raster/rows/rows_bits.h"
#include "raster/rows/rows_vector.h"
#include "raster/rows/vector16.h"

namespace qnv {
namespace {

struct Vector32 {
  static constexpr std::size_t kBytes = 32;
  __m256i v;

  static Vector32 Load(const uint8_t* p) { return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))}; }
  static Vector32 Fill(uint8_t byte) { return {_mm256_set1_epi8(static_cast<char>(byte))}; }
  void Store(uint8_t* p) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
  friend Vector32 operator&(Vector32 a, Vector32 b) { return {_mm256_and_si256(a.v, b.v)}; }
  friend Vector32 operator^(Vector32 a, Vector32 b) { return {_mm256_xor_si256(a.v, b.v)}; }
  friend Vector32 Min(Vector32 a, Vector32 b) { return {_mm256_min_epu8(a.v, b.v)}; }
};

// Ten pixels a turn, five in each half of a vector; the sixteenth bytes are overwritten by the next ones.
void SwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  const auto load = [](const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); };
  const auto store = [](uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); };
  const __m256i swap = _mm256_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, -1,  //
                                        2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, -1);
  for (; pixels >= 11; pixels -= 10, source += 30, dst += 30) {
    const __m256i both = _mm256_inserti128_si256(_mm256_castsi128_si256(load(source)), load(source + 15), 1);
    const __m256i swapped = _mm256_shuffle_epi8(both, swap);
    store(dst, _mm256_castsi256_si128(swapped));
    store(dst + 15, _mm256_extracti128_si256(swapped, 1));
  }
  plain::SwapRow24(dst, source, pixels);
}

}  // namespace

constinit const RowKernels kAvx2RowKernels = {
    .FillTileRow = FillTileRowOf<Vector32, Vector16>,
    .RopTileRow = RopTileRowOf<Vector32, Vector16>,
    .RopSourceRow = RopSourceRowOf<Vector32, Vector16>,
    .RopSourceTileRow = RopSourceTileRowOf<Vector32, Vector16>,
    .CopyRow = CopyRowOf<Vector32, Vector16>,
    .MinimumRow = MinimumRowOf<Vector32>,
    .SwapRow24 = SwapRow24,
    .ExpandBitsRow24 = ExpandBitsRowOf<Eight24>,
    .ExpandBitsRow8 = ExpandBitsRowOf<Eight8>,
    .ExpandGlyph24 = ExpandGlyphOf<Eight24>,
    .ExpandGlyph8 = ExpandGlyphOf<Eight8>,
    .PaintGlyph24 = PaintGlyphOf<Eight24>,
    .PaintGlyph8 = PaintGlyphOf<Eight8>,
    .PaintBitsRow24 = PaintBitsRowOf<Eight24>,
    .PaintBitsRow8 = PaintBitsRowOf<Eight8>,
    .RegrayRow24 = plain::RegrayRow24,
    .image = &kSsse3PixelRows,
};

}  // namespace qnv
