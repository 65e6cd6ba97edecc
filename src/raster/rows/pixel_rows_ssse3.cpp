// Level ssse3: image kernels with byte shuffles, mostly sixteen pixels at a time. The rest of a row is passed to the
// plain kernels.
#include <tmmintrin.h>

#include "raster/rows/gray_weights.h"
#include "raster/rows/nibble_rows.h"
#include "raster/rows/repeated_rows.h"
#include "raster/rows/row_tables.h"

namespace qnv::ssse3 {
namespace {

__m128i Load16(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
void Store16(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

// Shuffles that pack four pixels of four bytes into twelve bytes; the upper four bytes become 0.
struct PackShuffle {
  static __m128i InOrder() { return _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1); }
  static __m128i Swapped() { return _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1); }
};

// Stores sixteen pixels as 48 bytes. Each vector holds four of them in its lower twelve bytes; the others are 0.
void Store48(uint8_t* dst, __m128i a, __m128i b, __m128i c, __m128i d) {
  Store16(dst, _mm_or_si128(a, _mm_slli_si128(b, 12)));
  Store16(dst + 16, _mm_or_si128(_mm_srli_si128(b, 4), _mm_slli_si128(c, 8)));
  Store16(dst + 32, _mm_or_si128(_mm_srli_si128(c, 8), _mm_slli_si128(d, 4)));
}

template <auto Plain>
void PackRow(uint8_t* dst, const uint8_t* source, std::size_t pixels, __m128i shuffle) {
  std::size_t i = 0;
  for (; i + 16 <= pixels; i += 16, source += 64, dst += 48) {
    Store48(dst, _mm_shuffle_epi8(Load16(source), shuffle), _mm_shuffle_epi8(Load16(source + 16), shuffle),
            _mm_shuffle_epi8(Load16(source + 32), shuffle), _mm_shuffle_epi8(Load16(source + 48), shuffle));
  }
  Plain(dst, source, pixels - i);
}

// Stores sixteen pixels from three vectors that hold their first, second and third bytes.
void StorePlanes(uint8_t* dst, __m128i first, __m128i second, __m128i third) {
  const __m128i zero = _mm_setzero_si128();
  const __m128i lowPairs = _mm_unpacklo_epi8(first, second), highPairs = _mm_unpackhi_epi8(first, second);
  const __m128i lowThird = _mm_unpacklo_epi8(third, zero), highThird = _mm_unpackhi_epi8(third, zero);
  const __m128i pack = PackShuffle::InOrder();
  Store48(dst, _mm_shuffle_epi8(_mm_unpacklo_epi16(lowPairs, lowThird), pack),
          _mm_shuffle_epi8(_mm_unpackhi_epi16(lowPairs, lowThird), pack),
          _mm_shuffle_epi8(_mm_unpacklo_epi16(highPairs, highThird), pack),
          _mm_shuffle_epi8(_mm_unpackhi_epi16(highPairs, highThird), pack));
}

// One byte of each of sixteen colors of a table.
__m128i TablePlane(const uint32_t* table, int byte) {
  uint8_t plane[16];
  for (int i = 0; i < 16; ++i) plane[i] = static_cast<uint8_t>(table[i] >> 8 * byte);
  return Load16(plane);
}

// Sixteen palette indices from eight bytes.
__m128i SixteenNibbles(const uint8_t* source) {
  const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(source));
  const __m128i low = _mm_set1_epi8(0x0F);
  return _mm_unpacklo_epi8(_mm_and_si128(_mm_srli_epi16(bytes, 4), low), _mm_and_si128(bytes, low));
}

// Shorter rows are converted faster without the planes of the table, which take as long to set up as dozens of pixels.
constexpr std::size_t kMinNibbles = 64;

// Extracts one component of eight 16-bit pixels. Lanes of 16 bits suffice for the left shift, because a mask shifted up
// ends at bit 15. A mask of one bit does not, but its component is 0 in any case.
struct VectorMask {
  __m128i mask, up, fill;

  explicit VectorMask(const ComponentMask& m)
      : mask(_mm_set1_epi16(static_cast<int16_t>(m.mask))),
        up(_mm_cvtsi32_si128(static_cast<int>(m.up))),
        fill(_mm_cvtsi32_si128(static_cast<int>(m.fill))) {}

  __m128i Extract(__m128i pixels) const {
    const __m128i v = _mm_srli_epi16(_mm_sll_epi16(_mm_and_si128(pixels, mask), up), 8);
    return _mm_and_si128(_mm_add_epi16(v, _mm_srl_epi16(v, fill)), _mm_set1_epi16(0xFF));
  }
};

__m128i GrayWeights() { return _mm_set1_epi32(static_cast<int>(kBandWeights)); }
__m128i RegrayWeights() { return _mm_set1_epi32(static_cast<int>(kRegrayWeights)); }

// The gray levels of sixteen pixels. Reads four bytes of the two pixels behind them.
__m128i SixteenGrays(const uint8_t* source, __m128i weights) {
  const __m128i spread = _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
  const auto sums = [=](const uint8_t* p) {  // of four pixels, in pairs of 16 bits
    return _mm_maddubs_epi16(_mm_shuffle_epi8(Load16(p), spread), weights);
  };
  const auto hundredth = [](__m128i v) {  // exact for sums up to 25500
    return _mm_srli_epi16(_mm_mulhi_epu16(v, _mm_set1_epi16(5243)), 3);
  };
  const __m128i a = _mm_hadd_epi16(sums(source), sums(source + 12));
  const __m128i b = _mm_hadd_epi16(sums(source + 24), sums(source + 36));
  return _mm_packus_epi16(hundredth(a), hundredth(b));
}

// Gray levels by way of three-byte pixels, in pieces that stay in the cache. convert(colors, source, pixels)
template <std::size_t kSourceBytes, class Convert>
void GrayByPieces(uint8_t* dst, const uint8_t* source, std::size_t pixels, Convert convert) {
  constexpr std::size_t kPiece = 256;
  uint8_t colors[3 * kPiece];
  for (std::size_t done = 0; done < pixels; done += kPiece) {
    const std::size_t piece = pixels - done < kPiece ? pixels - done : kPiece;
    convert(colors, source + kSourceBytes * done, piece);
    ssse3::GrayRow24(dst + done, colors, piece);
  }
}

// Stores each of sixteen bytes three times.
void StoreTriples(uint8_t* dst, __m128i sixteen) {
  Store16(dst, _mm_shuffle_epi8(sixteen, _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5)));
  Store16(dst + 16, _mm_shuffle_epi8(sixteen, _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10)));
  Store16(dst + 32,
          _mm_shuffle_epi8(sixteen, _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15)));
}

// One of the vectors that hold sixteen destination pixels in which source pixels are repeated: the offset of its load
// in bytes, and its shuffle.
struct RepeatVector {
  std::ptrdiff_t from = 0;
  alignas(16) uint8_t bytes[16] = {};
};

template <std::size_t kBytesPerPixel>
constexpr RepeatVector MakeRepeatVector(std::size_t factor, std::size_t vector) {
  const auto sourceOf = [=](std::size_t i) {
    const std::size_t byte = 16 * vector + i;
    return byte / kBytesPerPixel / factor * kBytesPerPixel + byte % kBytesPerPixel;
  };
  // Where the pixel of the first byte begins.
  const std::size_t from = 16 * vector / kBytesPerPixel / factor * kBytesPerPixel;
  RepeatVector result;
  result.from = static_cast<std::ptrdiff_t>(from);
  for (std::size_t i = 0; i < 16; ++i) result.bytes[i] = static_cast<uint8_t>(sourceOf(i) - from);
  return result;
}

// Blocks of sixteen destination pixels.
template <std::size_t kBytesPerPixel, std::size_t kFactor>
void Repeat(uint8_t* dst, const uint8_t* source, std::size_t blocks) {
  static constexpr RepeatVector kVectors[3] = {MakeRepeatVector<kBytesPerPixel>(kFactor, 0),
                                               MakeRepeatVector<kBytesPerPixel>(kFactor, 1),
                                               MakeRepeatVector<kBytesPerPixel>(kFactor, 2)};
  for (; blocks != 0; --blocks, source += 16 / kFactor * kBytesPerPixel, dst += 16 * kBytesPerPixel) {
    for (std::size_t v = 0; v < kBytesPerPixel; ++v) {
      Store16(dst + 16 * v, _mm_shuffle_epi8(Load16(source + kVectors[v].from), Load16(kVectors[v].bytes)));
    }
  }
}

template <std::size_t kBytesPerPixel, auto Plain>
void RepeatRow(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor) {
  RepeatInBlocks<kBytesPerPixel, 16, Plain>(dst, source, pixels, factor, [=](auto constant, std::size_t blocks) {
    Repeat<kBytesPerPixel, constant>(dst, source, blocks);
  });
}

}  // namespace

void PackRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  PackRow<plain::PackRow32>(dst, source, pixels, PackShuffle::InOrder());
}

void PackSwapRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  PackRow<plain::PackSwapRow32>(dst, source, pixels, PackShuffle::Swapped());
}

void ExpandNibblesRow24(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table) {
  if (pixels < kMinNibbles) return plain::ExpandNibblesRow24(dst, source, odd, pixels, table);
  auto [out, bytes, left] = PaintHalfBytes<3, plain::ExpandNibblesRow24>(dst, source, odd, pixels, table);
  const __m128i planes[3] = {TablePlane(table, 0), TablePlane(table, 1), TablePlane(table, 2)};
  for (; left >= 16; left -= 16, bytes += 8, out += 48) {
    const __m128i indices = SixteenNibbles(bytes);
    StorePlanes(out, _mm_shuffle_epi8(planes[0], indices), _mm_shuffle_epi8(planes[1], indices),
                _mm_shuffle_epi8(planes[2], indices));
  }
  plain::ExpandNibblesRow24(out, bytes, false, left, table);
}

void ExpandNibblesRow8(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table) {
  if (pixels < kMinNibbles) return plain::ExpandNibblesRow8(dst, source, odd, pixels, table);
  auto [out, bytes, left] = PaintHalfBytes<1, plain::ExpandNibblesRow8>(dst, source, odd, pixels, table);
  const __m128i plane = TablePlane(table, 0);
  for (; left >= 16; left -= 16, bytes += 8, out += 16) {
    Store16(out, _mm_shuffle_epi8(plane, SixteenNibbles(bytes)));
  }
  plain::ExpandNibblesRow8(out, bytes, false, left, table);
}

// Sixteen pixels at a time, component by component.
void UnpackRow16(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks) {
  const VectorMask component[3] = {VectorMask(masks.component[0]), VectorMask(masks.component[1]),
                                   VectorMask(masks.component[2])};
  for (; pixels >= 16; pixels -= 16, source += 32, dst += 48) {
    const __m128i low = Load16(source), high = Load16(source + 16);
    __m128i plane[3];
    for (int c = 0; c < 3; ++c) {
      plane[c] = _mm_packus_epi16(component[c].Extract(low), component[c].Extract(high));
    }
    StorePlanes(dst, plane[0], plane[1], plane[2]);
  }
  plain::UnpackRow16(dst, source, pixels, masks);
}

// Eighteen pixels must be left, because the loads reach two pixels beyond the sixteen.
void GrayRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  for (; pixels >= 18; pixels -= 16, source += 48, dst += 16) Store16(dst, SixteenGrays(source, GrayWeights()));
  plain::GrayRow24(dst, source, pixels);
}

void GrayRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  GrayByPieces<4>(dst, source, pixels, ssse3::PackRow32);
}

void GrayRow16(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks) {
  GrayByPieces<2>(dst, source, pixels, [&masks](uint8_t* colors, const uint8_t* piece, std::size_t count) {
    ssse3::UnpackRow16(colors, piece, count, masks);
  });
}

void RegrayRow24(uint8_t* dst, std::size_t pixels) {
  for (; pixels >= 18; pixels -= 16, dst += 48) StoreTriples(dst, SixteenGrays(dst, RegrayWeights()));
  plain::RegrayRow24(dst, pixels);
}

void TripleRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  for (; pixels >= 16; pixels -= 16, source += 16, dst += 48) StoreTriples(dst, Load16(source));
  plain::TripleRow24(dst, source, pixels);
}

// Sixteen pixels at a time. skipped(p) compares at every byte whether it and the two bytes after it are all `skip`.
// Only every third byte begins a pixel; the shuffles collect the results for those. Reads two bytes of the next pixel.
void MarkRow24(uint8_t* marks, const uint8_t* source, std::size_t pixels, uint8_t skip, uint8_t mark) {
  const __m128i skips = _mm_set1_epi8(static_cast<char>(skip)), marked = _mm_set1_epi8(static_cast<char>(mark));
  const auto skipped = [=](const uint8_t* p) {
    const auto equal = [=](const uint8_t* q) { return _mm_cmpeq_epi8(Load16(q), skips); };
    return _mm_and_si128(_mm_and_si128(equal(p), equal(p + 1)), equal(p + 2));
  };
  const __m128i first = _mm_setr_epi8(0, 3, 6, 9, 12, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
  const __m128i second = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 2, 5, 8, 11, 14, -1, -1, -1, -1, -1);
  const __m128i third = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 1, 4, 7, 10, 13);
  for (; pixels >= 17; pixels -= 16, source += 48, marks += 16) {
    const __m128i keep = _mm_or_si128(
        _mm_or_si128(_mm_shuffle_epi8(skipped(source), first), _mm_shuffle_epi8(skipped(source + 16), second)),
        _mm_shuffle_epi8(skipped(source + 32), third));
    Store16(marks, _mm_or_si128(_mm_and_si128(keep, Load16(marks)), _mm_andnot_si128(keep, marked)));
  }
  plain::MarkRow24(marks, source, pixels, skip, mark);
}

void ReverseRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  const __m128i reverse = _mm_setr_epi8(12, 13, 14, 9, 10, 11, 6, 7, 8, 3, 4, 5, 0, 1, 2, -1);
  // Five pixels at a time. A store writes sixteen bytes, and the next store overwrites the last of them.
  for (; pixels >= 6; pixels -= 5, dst += 15) {
    Store16(dst, _mm_shuffle_epi8(_mm_srli_si128(Load16(source + 3 * pixels - 16), 1), reverse));
  }
  plain::ReverseRow24(dst, source, pixels);
}

void ReverseRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  const __m128i reverse = _mm_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
  for (; pixels >= 16; pixels -= 16, dst += 16) {
    Store16(dst, _mm_shuffle_epi8(Load16(source + pixels - 16), reverse));
  }
  plain::ReverseRow8(dst, source, pixels);
}

// A group is stored with all sixteen bytes; the next group overwrites those beyond its stride.
void ShuffleRow(uint8_t* dst, const uint8_t* source, const ShuffleGroup* groups, std::size_t stride,
                std::size_t total) {
  std::size_t done = 0;
  for (; done + kGroupBytes <= total; done += stride, ++groups) {
    Store16(dst + done, _mm_shuffle_epi8(Load16(source + groups->from), Load16(groups->bytes)));
  }
  plain::ShuffleRow(dst + done, source, groups, stride, total - done);
}

void RepeatRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor) {
  RepeatRow<3, plain::RepeatRow24>(dst, source, pixels, factor);
}

void RepeatRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor) {
  RepeatRow<1, plain::RepeatRow8>(dst, source, pixels, factor);
}

// Tables of 256 colors are looked up by the plain kernels.
constinit const PixelRows kPixelRows = {
    .ExpandBytesRow24 = plain::ExpandBytesRow24,
    .ExpandBytesRow8 = plain::ExpandBytesRow8,
    .ExpandNibblesRow24 = ssse3::ExpandNibblesRow24,
    .ExpandNibblesRow8 = ssse3::ExpandNibblesRow8,
    .UnpackRow16 = ssse3::UnpackRow16,
    .PackRow32 = ssse3::PackRow32,
    .PackSwapRow32 = ssse3::PackSwapRow32,
    .GrayRow24 = ssse3::GrayRow24,
    .GrayRow32 = ssse3::GrayRow32,
    .GrayRow16 = ssse3::GrayRow16,
    .RegrayRow24 = ssse3::RegrayRow24,
    .TripleRow24 = ssse3::TripleRow24,
    .MarkRow24 = ssse3::MarkRow24,
    .ReverseRow24 = ssse3::ReverseRow24,
    .ReverseRow8 = ssse3::ReverseRow8,
    .RepeatRow24 = ssse3::RepeatRow24,
    .RepeatRow8 = ssse3::RepeatRow8,
    .ShuffleRow = ssse3::ShuffleRow,
};

}  // namespace qnv::ssse3
