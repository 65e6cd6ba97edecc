// Level avx2: row kernels with vectors of 32 bytes, or blocks of 32 pixels.
#include <cstring>
#include <iterator>

#include "raster/rows/byte_windows.h"
#include "raster/rows/row_tables.h"
#include "raster/rows/rows_bits.h"
#include "raster/rows/rows_bits_wide.h"
#include "raster/rows/rows_in_pieces.h"
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

// Blocks of 32 pixels that follow one another. out: the band or other memory.
struct SwapBlocks {
  uint8_t* out;
  const uint8_t* band;
  const uint8_t* source;
  std::size_t count;
};

// Exchanges red and blue of the source pixels and combines them with the band, part by part. kAnds, kXors: whether the
// source takes part in the and mask and in the xor mask.
template <bool kAnds, bool kXors>
void RopSwapBlocks(const SwapBlocks* part, const SwapBlocks* end, const ByteMasks& masks) {
  const Vector32 and2 = Vector32::Fill(masks.and2), xor2 = Vector32::Fill(masks.xor2);
  const auto combined = [=](Vector32 d, Vector32 s) {
    return (d & (kAnds ? s ^ and2 : and2)) ^ (kXors ? s ^ xor2 : xor2);
  };
  for (; part != end; ++part) {
    uint8_t* out = part->out;
    const uint8_t *band = part->band, *source = part->source;
    for (std::size_t left = part->count; left != 0; --left, out += 96, band += 96, source += 96) {
      combined(Vector32::Load(band), RearrangedVector<SwapMap, 0>(source)).Store(out);
      combined(Vector32::Load(band + 32), RearrangedVector<SwapMap, 1>(source)).Store(out + 32);
      combined(Vector32::Load(band + 64), RearrangedVector<SwapMap, 2>(source)).Store(out + 64);
    }
  }
}

// In shorter rows stores across cache lines cost less than computing a block twice.
constexpr std::size_t kMinAligned = 512;

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

void CopyRow(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  CopyRowOf<Vector32, Vector16>(dst, source, bytes);
}

// For long rows the copy instruction is fastest where it is fast at all, because it does not read the cache lines that
// it overwrites.
void CopyByString(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  constexpr std::size_t kLong = 16384;
  if (bytes < kLong) return CopyRowOf<Vector32, Vector16>(dst, source, bytes);
  __asm__ volatile("rep movsb" : "+D"(dst), "+S"(source), "+c"(bytes) : : "memory");
}

// In the kernels that follow rows shorter than a block are passed to the levels below.

void SwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kMinRearranged) return ssse3::SwapRow24(dst, source, pixels);
  RearrangeRow<SwapMap>(dst, source, pixels, [=](std::size_t i) { plain::SwapRow24(dst + 3 * i, source + 3 * i, 1); });
}

// Both in one pass. The first and the last pixel are left to the plain kernels, because the loads of a block reach
// beyond it. The first and the last block overlap others, so they are computed from the old bytes of the band before
// anything is stored.
void RopSwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, const ByteMasks& masks) {
  const bool readsSource = masks.and1 != 0 || masks.xor1 != 0;
  if (pixels < kMinRearranged || !readsSource) {
    return RopSwapInPieces<avx2::SwapRow24, avx2::RopSourceRow>(dst, source, pixels, masks);
  }
  const auto edge = [&](std::size_t pixel) {
    uint8_t* const d = dst + 3 * pixel;
    const uint8_t* const p = source + 3 * pixel;
    for (std::size_t i = 0; i < 3; ++i) {
      const uint32_t s = p[2 - i];
      d[i] = static_cast<uint8_t>((d[i] & ((s & masks.and1) ^ masks.and2)) ^ ((s & masks.xor1) ^ masks.xor2));
    }
  };
  edge(0);
  edge(pixels - 1);
  uint8_t* const band = dst + 3;
  source += 3;
  const std::size_t last = pixels - 2 - kBlockPixels;
  const std::size_t second = pixels < kMinAligned ? 0 : PixelsToAlignment<3>(band);
  alignas(32) uint8_t firstBlock[96], lastBlock[96];
  const SwapBlocks parts[] = {
      {lastBlock, band + 3 * last, source + 3 * last, 1},
      {firstBlock, band, source, second == 0 ? 0u : 1u},
      {band + 3 * second, band + 3 * second, source + 3 * second, (last - second + kBlockPixels - 1) / kBlockPixels}};
  const auto blocks = masks.and1 == 0   ? RopSwapBlocks<false, true>
                      : masks.xor1 == 0 ? RopSwapBlocks<true, false>
                                        : RopSwapBlocks<true, true>;
  blocks(parts, std::end(parts), masks);
  if (second != 0) std::memcpy(band, firstBlock, sizeof firstBlock);
  std::memcpy(band + 3 * last, lastBlock, sizeof lastBlock);
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

namespace {

// The glyph kernels that this level does not specialise are those of sse2.
constexpr RowKernels TableWith(kernel::CopyRow* copy, const RowKernels* withStrings) {
  return {
      .FillTileRow = avx2::FillTileRow,
      .RopTileRow = avx2::RopTileRow,
      .RopSourceRow = avx2::RopSourceRow,
      .RopSourceTileRow = avx2::RopSourceTileRow,
      .CopyRow = copy,
      .MinimumRow = avx2::MinimumRow,
      .SwapRow24 = avx2::SwapRow24,
      .RopSwapRow24 = avx2::RopSwapRow24,
      .ExpandBitsRow24 = avx2::ExpandBitsRow24,
      .ExpandBitsRow8 = avx2::ExpandBitsRow8,
      .ExpandGlyph24 = sse2::ExpandGlyph24,
      .ExpandGlyph8 = sse2::ExpandGlyph8,
      .PaintGlyph24 = avx2::PaintGlyph24,
      .PaintGlyph8 = sse2::PaintGlyph8,
      .image = &kPixelRows,
      .withStrings = withStrings,
  };
}

constinit const RowKernels kFastStringKernels = TableWith(avx2::CopyByString, nullptr);

}  // namespace

constinit const RowKernels kRowKernels = TableWith(avx2::CopyRow, &kFastStringKernels);

}  // namespace qnv::avx2
