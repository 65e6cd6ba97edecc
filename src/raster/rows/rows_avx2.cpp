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

}  // namespace

constinit const RowKernels kAvx2RowKernels = {
    FillTileRowOf<Vector32, Vector16>,
    RopTileRowOf<Vector32, Vector16>,
    RopSourceRowOf<Vector32, Vector16>,
    RopSourceTileRowOf<Vector32, Vector16>,
    MinimumRowOf<Vector32>,
    SwapRow24Of<Vector32>,
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
