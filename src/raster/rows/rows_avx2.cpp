// Level avx2: row kernels with vectors of 32 bytes, or blocks of 32 pixels.
#include "raster/rows/byte_windows.h"
#include "raster/rows/row_tables.h"
#include "raster/rows/rows_bits.h"
#include "raster/rows/rows_bits_wide.h"
#include "raster/rows/rows_vector.h"
#include "raster/rows/vector16.h"
#include "raster/rows/vector32.h"

namespace qnv::avx2 {
namespace {

// Eight 24-bit pixels, 24 bytes, in one register.
struct Eight24Wide {
  static constexpr std::size_t kBytesPerPixel = 3;
  __m256i v;

  static Eight24Wide Load(const uint8_t* p) {
    const __m128i tail = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p + 16));
    return {_mm256_inserti128_si256(_mm256_castsi128_si256(Vector16::Load(p).v), tail, 1)};
  }
  static Eight24Wide Mask(uint8_t bits) { return {Vector32::Load(kPixelMasks24.mask[bits]).v}; }
  void Store(uint8_t* p) const {
    Vector16{_mm256_castsi256_si128(v)}.Store(p);
    Vector8{_mm256_extracti128_si256(v, 1)}.Store(p + 16);
  }
  friend Eight24Wide operator&(Eight24Wide a, Eight24Wide b) { return {_mm256_and_si256(a.v, b.v)}; }
  friend Eight24Wide operator^(Eight24Wide a, Eight24Wide b) { return {_mm256_xor_si256(a.v, b.v)}; }
};

}  // namespace

void FillTileRow(uint8_t* dst, std::size_t bytes, const uint8_t* tile) {
  FillTileRowOf<Vector32, Vector16>(dst, bytes, tile);
}

void RopTileRow(uint8_t* dst, std::size_t bytes, const uint8_t* andTile, const uint8_t* xorTile) {
  RopTileRowOf<Vector32, Vector16>(dst, bytes, andTile, xorTile);
}

void RopSourceRow(uint8_t* dst, const uint8_t* source, std::size_t bytes, const ByteMasks& masks) {
  RopSourceRowOf<Vector32, Vector16>(dst, source, bytes, masks);
}

void RopSourceTileRow(uint8_t* dst, const uint8_t* source, std::size_t bytes, const TileMasks& masks) {
  RopSourceTileRowOf<Vector32, Vector16>(dst, source, bytes, masks);
}

void MinimumRow(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  MinimumRowOf<Vector32, Vector16>(dst, source, bytes);
}

// For long rows the copy instruction of the processor is fastest, because it does not read the cache lines that it
// overwrites.
void CopyRow(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  constexpr std::size_t kLong = 16384;
  if (bytes < kLong) return CopyRowOf<Vector32, Vector16>(dst, source, bytes);
  __asm__ volatile("rep movsb" : "+D"(dst), "+S"(source), "+c"(bytes) : : "memory");
}

// In the kernels that follow rows shorter than a block are passed to the levels below.

void SwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kMinRearranged) return ssse3::SwapRow24(dst, source, pixels);
  RearrangeRow<SwapMap>(dst, source, pixels, [=](std::size_t i) { plain::SwapRow24(dst + 3 * i, source + 3 * i, 1); });
}

void ExpandBitsRow24(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                     uint32_t clear) {
  if (pixels < kBlockPixels) return sse2::ExpandBitsRow24(dst, bits, offset, pixels, set, clear);
  ExpandBlocks<3>(dst, bits, offset, pixels, set, clear);
}

void ExpandBitsRow8(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                    uint32_t clear) {
  if (pixels < kBlockPixels) return sse2::ExpandBitsRow8(dst, bits, offset, pixels, set, clear);
  ExpandBlocks<1>(dst, bits, offset, pixels, set, clear);
}

void PaintGlyph24(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  PaintGlyphOf<Eight24Wide>(dst, stride, column, colors);
}

// The glyph kernels that this level does not specialise are those of sse2.
constinit const RowKernels kRowKernels = {
    .FillTileRow = avx2::FillTileRow,
    .RopTileRow = avx2::RopTileRow,
    .RopSourceRow = avx2::RopSourceRow,
    .RopSourceTileRow = avx2::RopSourceTileRow,
    .CopyRow = avx2::CopyRow,
    .MinimumRow = avx2::MinimumRow,
    .SwapRow24 = avx2::SwapRow24,
    .ExpandBitsRow24 = avx2::ExpandBitsRow24,
    .ExpandBitsRow8 = avx2::ExpandBitsRow8,
    .ExpandGlyph24 = sse2::ExpandGlyph24,
    .ExpandGlyph8 = sse2::ExpandGlyph8,
    .PaintGlyph24 = avx2::PaintGlyph24,
    .PaintGlyph8 = sse2::PaintGlyph8,
    .image = &kPixelRows,
};

}  // namespace qnv::avx2
