// Level avx2: image kernels in blocks of 32 pixels. Rows shorter than a block are passed to the levels below.
#include "raster/rows/byte_windows.h"
#include "raster/rows/gray_weights.h"
#include "raster/rows/nibble_rows.h"
#include "raster/rows/pixel_blocks.h"
#include "raster/rows/row_tables.h"
#include "raster/rows/vector16.h"
#include "raster/rows/vector32.h"

namespace qnv::avx2 {
namespace {

// Extracts one component of sixteen 16-bit pixels. The component is shifted to the upper byte v of its 16 bits and then
// multiplied by 256 + (256 >> fill); the upper half of the product is v + (v >> fill).
struct ComponentFactors {
  __m256i mask, shift, fill;

  explicit ComponentFactors(const ComponentMask& m) {
    const uint32_t topByte = m.mask << m.up & 0xFF00;
    mask = _mm256_set1_epi16(static_cast<int16_t>(topByte >> m.up));
    shift = _mm256_set1_epi16(static_cast<int16_t>(1u << m.up));
    fill = _mm256_set1_epi16(static_cast<int16_t>(256 + (m.fill <= 8 ? 256u >> m.fill : 0)));
  }

  __m256i Extract(__m256i pixels) const {
    return _mm256_mulhi_epu16(_mm256_mullo_epi16(_mm256_and_si256(pixels, mask), shift), fill);
  }
};

// Whether v + (v >> fill) fits a byte for every pixel. With a mask whose bits are not contiguous it can be larger; then
// only its low byte counts, which the multiplication above does not give.
bool FitsByte(const ComponentMask& m) {
  const uint32_t largest = (m.mask << m.up >> 8) & 0xFF;
  return m.fill > 8 || largest + (largest >> m.fill) <= 255;
}

// The palette indices of 32 pixels. `bytes` holds their sixteen bytes in both halves, each half in the order in which
// the caller wants them.
__m256i Nibbles(Vector32 bytes) {
  const __m256i low = _mm256_set1_epi8(0x0F);
  return _mm256_unpacklo_epi8(_mm256_and_si256(_mm256_srli_epi16(bytes.v, 4), low), _mm256_and_si256(bytes.v, low));
}

// One byte of each of sixteen colors of a table, in both halves of a vector.
Vector32 TablePlane(const uint32_t* table, int byte) {
  uint8_t plane[16];
  for (int i = 0; i < 16; ++i) plane[i] = static_cast<uint8_t>(table[i] >> 8 * byte);
  return Vector32::Twice(plane);
}

// Shorter rows are converted faster without the planes of the table, which take as long to set up as dozens of pixels.
constexpr std::size_t kMinNibbles = 96;

// For shorter rows of 256 gray levels the tables take longer to set up than they save.
constexpr std::size_t kMinLevels = 128;

// The colors of eight palette indices: two loads for each pixel, its index and its color.
__m256i EightEntries(const uint8_t* source, const uint32_t* table) {
  const auto four = [table](const uint8_t* p) {
    __m128i v = _mm_cvtsi32_si128(static_cast<int>(table[p[0]]));
    v = _mm_insert_epi32(v, static_cast<int>(table[p[1]]), 1);
    v = _mm_insert_epi32(v, static_cast<int>(table[p[2]]), 2);
    return _mm_insert_epi32(v, static_cast<int>(table[p[3]]), 3);
  };
  return _mm256_inserti128_si256(_mm256_castsi128_si256(four(source)), four(source + 4), 1);
}

// Sixteen weighted sums divided by kGrayDivisor: exact for sums up to 25500.
__m256i Hundredth(__m256i sums) { return _mm256_srli_epi16(_mm256_mulhi_epu16(sums, _mm256_set1_epi16(5243)), 3); }

// The weighted sums of eight pixels of four bytes, 32 bits each.
__m256i WeightedSums(__m256i pixels, Vector32 weights) {
  return _mm256_madd_epi16(_mm256_maddubs_epi16(pixels, weights.v), _mm256_set1_epi16(1));
}

// The gray levels of 32 pixels, eight sums in each vector.
__m256i GrayLevels(__m256i a, __m256i b, __m256i c, __m256i d) {
  const __m256i grays = _mm256_packus_epi16(Hundredth(_mm256_packs_epi32(a, b)), Hundredth(_mm256_packs_epi32(c, d)));
  return _mm256_permutevar8x32_epi32(grays, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
}

// The gray levels of 32 pixels. Of each eight pixels the second load starts four bytes early, so that none leaves the
// block.
__m256i GrayBlock(const uint8_t* source, Vector32 weights) {
  const Vector32 spread{_mm256_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1,  //
                                         4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15, -1)};
  const auto eight = [&](const uint8_t* p) {
    return WeightedSums(Shuffle(Vector32::Halves(p, p + 8), spread).v, weights);
  };
  return GrayLevels(eight(source), eight(source + 24), eight(source + 48), eight(source + 72));
}

// Stores each of 32 bytes three times.
void StoreTriples(uint8_t* dst, __m256i grays) {
  const Vector32 first{_mm256_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5,  //
                                        5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10)};
  const Vector32 second{_mm256_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15,  //
                                         0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5)};
  const Vector32 third{_mm256_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10,  //
                                        10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15)};
  Shuffle(Vector32{_mm256_permute4x64_epi64(grays, 0x44)}, first).Store(dst);
  Shuffle(Vector32{grays}, second).Store(dst + 32);
  Shuffle(Vector32{_mm256_permute4x64_epi64(grays, 0xEE)}, third).Store(dst + 64);
}

}  // namespace

void PackRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kMinRearranged) return ssse3::PackRow32(dst, source, pixels);
  static_assert(kStaysInside<PackMap>);
  RearrangeRow<PackMap>(dst, source, pixels, [](std::size_t) {});
}

void PackSwapRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kMinRearranged) return ssse3::PackSwapRow32(dst, source, pixels);
  static_assert(kStaysInside<PackSwapMap>);
  RearrangeRow<PackSwapMap>(dst, source, pixels, [](std::size_t) {});
}

void ReverseRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kMinRearranged) return ssse3::ReverseRow24(dst, source, pixels);
  RearrangeRow<ReverseMap>(dst, source, pixels,
                           [=](std::size_t i) { plain::ReverseRow24(dst + 3 * i, source + 3 * (pixels - 1 - i), 1); });
}

void ReverseRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kBlockPixels) return ssse3::ReverseRow8(dst, source, pixels);
  const Vector32 reverse{_mm256_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0,  //
                                          15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0)};
  CoverWithBlocks(pixels, PixelsToAlignment<1>(dst), [=](std::size_t i) {
    const uint8_t* const block = source + (pixels - kBlockPixels - i);
    Shuffle(Vector32::Halves(block + 16, block), reverse).Store(dst + i);
  });
}

void UnpackRow16(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks) {
  const ComponentMask* const m = masks.component;
  if (pixels < kBlockPixels || !FitsByte(m[0]) || !FitsByte(m[2])) {
    return ssse3::UnpackRow16(dst, source, pixels, masks);
  }
  const ComponentFactors first(m[0]), second(m[1]), third(m[2]);
  CoverWithBlocks(pixels, PixelsToAlignment<3>(dst), [&](std::size_t i) {
    __m256i eight[4];  // pixels, four bytes each
    for (std::size_t half = 0; half < 2; ++half) {
      // The unpack instructions work in halves of a vector: pixels 0..3 and 4..7 are to come first in them.
      const __m256i sixteen = _mm256_permute4x64_epi64(Vector32::Load(source + 2 * i + 32 * half).v, 0xD8);
      const __m256i two = _mm256_or_si256(first.Extract(sixteen), _mm256_slli_epi16(second.Extract(sixteen), 8));
      const __m256i one = third.Extract(sixteen);
      eight[2 * half] = _mm256_unpacklo_epi16(two, one);
      eight[2 * half + 1] = _mm256_unpackhi_epi16(two, one);
    }
    StoreBlock(dst + 3 * i, eight[0], eight[1], eight[2], eight[3]);
  });
}

// 32 pixels at a time: each of the three planes of the table is a shuffle that looks up 32 indices at once. A first
// pixel in the low half of a byte and a last one in the high half are converted by themselves.
void ExpandNibblesRow24(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table) {
  if (pixels < kMinNibbles) return ssse3::ExpandNibblesRow24(dst, source, odd, pixels, table);
  const WholeBytes row = PaintHalfBytes<3, plain::ExpandNibblesRow24>(dst, source, odd, pixels, table);
  const Vector32 planes[3] = {TablePlane(table, 0), TablePlane(table, 1), TablePlane(table, 2)};
  // The unpack instructions work in halves of a vector: pixels 0..3, 8..11, 16..19 and 24..27 go into the lower one.
  const Vector32 order{_mm256_setr_epi8(0, 1, 4, 5, 8, 9, 12, 13, -1, -1, -1, -1, -1, -1, -1, -1,  //
                                        2, 3, 6, 7, 10, 11, 14, 15, -1, -1, -1, -1, -1, -1, -1, -1)};
  CoverWithBlocks(row.pixels, kBlockPixels, [&](std::size_t i) {
    const Vector32 indices{Nibbles(Shuffle(Vector32::Twice(row.source + i / 2), order))};
    const __m256i first = Shuffle(planes[0], indices).v;
    const __m256i second = Shuffle(planes[1], indices).v;
    const __m256i third = Shuffle(planes[2], indices).v;
    const __m256i zero = _mm256_setzero_si256();
    const __m256i lowPairs = _mm256_unpacklo_epi8(first, second), highPairs = _mm256_unpackhi_epi8(first, second);
    const __m256i lowThird = _mm256_unpacklo_epi8(third, zero), highThird = _mm256_unpackhi_epi8(third, zero);
    StoreBlock(row.dst + 3 * i, _mm256_unpacklo_epi16(lowPairs, lowThird), _mm256_unpackhi_epi16(lowPairs, lowThird),
               _mm256_unpacklo_epi16(highPairs, highThird), _mm256_unpackhi_epi16(highPairs, highThird));
  });
}

void ExpandNibblesRow8(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table) {
  if (pixels < kMinNibbles) return ssse3::ExpandNibblesRow8(dst, source, odd, pixels, table);
  const WholeBytes row = PaintHalfBytes<1, plain::ExpandNibblesRow8>(dst, source, odd, pixels, table);
  const Vector32 plane = TablePlane(table, 0);
  const Vector32 order{_mm256_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, -1, -1, -1, -1, -1, -1, -1, -1,  //
                                        8, 9, 10, 11, 12, 13, 14, 15, -1, -1, -1, -1, -1, -1, -1, -1)};
  CoverWithBlocks(row.pixels, kBlockPixels, [&](std::size_t i) {
    Shuffle(plane, Vector32{Nibbles(Shuffle(Vector32::Twice(row.source + i / 2), order))}).Store(row.dst + i);
  });
}

void ExpandBytesRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table) {
  if (pixels < kBlockPixels) return plain::ExpandBytesRow24(dst, source, pixels, table);
  CoverWithBlocks(pixels, PixelsToAlignment<3>(dst), [=](std::size_t i) {
    const uint8_t* const p = source + i;
    StoreBlock(dst + 3 * i, EightEntries(p, table), EightEntries(p + 8, table), EightEntries(p + 16, table),
               EightEntries(p + 24, table));
  });
}

// Looks 32 indices up in sixteen tables of sixteen gray levels. A byte shuffle gives 0 for an index whose top bit is
// set. So each half of the tables is looked up in turn with indices that decrease by 16 and end below 0; what is stored
// of a table is how it differs from the one before, and the exclusive or of all that is found is the last one reached.
void ExpandBytesRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table) {
  if (pixels < kMinLevels) return plain::ExpandBytesRow8(dst, source, pixels, table);
  alignas(32) uint8_t levels[256];
  alignas(32) uint8_t changes[256];
  const auto eight = [table](std::size_t i) {
    return _mm256_and_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(table + i)), _mm256_set1_epi32(0xFF));
  };
  for (std::size_t i = 0; i < 256; i += 32) {
    const __m256i low = _mm256_packus_epi32(eight(i), eight(i + 8));
    const __m256i high = _mm256_packus_epi32(eight(i + 16), eight(i + 24));
    const __m256i bytes = _mm256_packus_epi16(low, high);
    Vector32{_mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7))}.Store(levels + i);
  }
  const auto load = [](const uint8_t* p) { return Vector16::Load(p); };
  for (std::size_t i = 0; i < 256; i += 16) {
    (i % 128 == 0 ? load(levels + i) : load(levels + i) ^ load(levels + i - 16)).Store(changes + i);
  }
  const __m256i sixteen = _mm256_set1_epi8(16);
  CoverWithLargeBlocks(pixels, PixelsToAlignment<1>(dst), [&](std::size_t i) {
    Vector32 low = Vector32::Load(source + i);
    Vector32 high = low ^ Vector32::Fill(0x80);
    Vector32 found = Vector32::Fill(0);
    for (std::size_t t = 0; t < 128; t += 16) {
      found = found ^ Shuffle(Vector32::Twice(changes + t), low) ^ Shuffle(Vector32::Twice(changes + 128 + t), high);
      low.v = _mm256_subs_epi8(low.v, sixteen);
      high.v = _mm256_subs_epi8(high.v, sixteen);
    }
    found.Store(dst + i);
  });
}

void GrayRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kBlockPixels) return ssse3::GrayRow24(dst, source, pixels);
  const Vector32 weights{_mm256_set1_epi32(static_cast<int>(kBandWeights))};
  CoverWithBlocks(pixels, PixelsToAlignment<1>(dst),
                  [=](std::size_t i) { Vector32{GrayBlock(source + 3 * i, weights)}.Store(dst + i); });
}

void GrayRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kBlockPixels) return ssse3::GrayRow32(dst, source, pixels);
  const Vector32 weights{_mm256_set1_epi32(static_cast<int>(kBandWeights))};
  CoverWithBlocks(pixels, PixelsToAlignment<1>(dst), [=](std::size_t i) {
    const auto eight = [=](const uint8_t* p) { return WeightedSums(Vector32::Load(p).v, weights); };
    const uint8_t* const p = source + 4 * i;
    Vector32{GrayLevels(eight(p), eight(p + 32), eight(p + 64), eight(p + 96))}.Store(dst + i);
  });
}

void GrayRow16(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks) {
  const ComponentMask* const m = masks.component;
  if (pixels < kBlockPixels || !FitsByte(m[0]) || !FitsByte(m[1]) || !FitsByte(m[2])) {
    return ssse3::GrayRow16(dst, source, pixels, masks);
  }
  const ComponentFactors blue(m[0]), green(m[1]), red(m[2]);
  CoverWithLargeBlocks(pixels, PixelsToAlignment<1>(dst), [&](std::size_t i) {
    const auto sixteen = [&](const uint8_t* p) {
      const __m256i v = Vector32::Load(p).v;
      const auto weighted = [](__m256i component, uint32_t weight) {
        return _mm256_mullo_epi16(component, _mm256_set1_epi16(static_cast<int16_t>(weight)));
      };
      const __m256i sum =
          _mm256_add_epi16(weighted(blue.Extract(v), kBlueWeight), weighted(green.Extract(v), kGreenWeight));
      return Hundredth(_mm256_add_epi16(sum, weighted(red.Extract(v), kRedWeight)));
    };
    // Packing works in halves of a vector and leaves the eight pixels of each half in the order 0, 2, 1, 3.
    const __m256i grays = _mm256_packus_epi16(sixteen(source + 2 * i), sixteen(source + 2 * i + 32));
    Vector32{_mm256_permute4x64_epi64(grays, 0xD8)}.Store(dst + i);
  });
}

// The gray level of a gray pixel is the pixel itself, so blocks may overlap.
void RegrayRow24(uint8_t* dst, std::size_t pixels) {
  if (pixels < kBlockPixels) return ssse3::RegrayRow24(dst, pixels);
  const Vector32 weights{_mm256_set1_epi32(static_cast<int>(kRegrayWeights))};
  CoverWithBlocks(pixels, PixelsToAlignment<3>(dst),
                  [=](std::size_t i) { StoreTriples(dst + 3 * i, GrayBlock(dst + 3 * i, weights)); });
}

void TripleRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kBlockPixels) return ssse3::TripleRow24(dst, source, pixels);
  CoverWithBlocks(pixels, PixelsToAlignment<3>(dst),
                  [=](std::size_t i) { StoreTriples(dst + 3 * i, Vector32::Load(source + i).v); });
}

// Marks, repetitions and shuffles are those of ssse3.
constinit const PixelRows kPixelRows = {
    .ExpandBytesRow24 = avx2::ExpandBytesRow24,
    .ExpandBytesRow8 = avx2::ExpandBytesRow8,
    .ExpandNibblesRow24 = avx2::ExpandNibblesRow24,
    .ExpandNibblesRow8 = avx2::ExpandNibblesRow8,
    .UnpackRow16 = avx2::UnpackRow16,
    .PackRow32 = avx2::PackRow32,
    .PackSwapRow32 = avx2::PackSwapRow32,
    .GrayRow24 = avx2::GrayRow24,
    .GrayRow32 = avx2::GrayRow32,
    .GrayRow16 = avx2::GrayRow16,
    .RegrayRow24 = avx2::RegrayRow24,
    .TripleRow24 = avx2::TripleRow24,
    .MarkRow24 = ssse3::MarkRow24,
    .ReverseRow24 = avx2::ReverseRow24,
    .ReverseRow8 = avx2::ReverseRow8,
    .RepeatRow24 = ssse3::RepeatRow24,
    .RepeatRow8 = ssse3::RepeatRow8,
    .ShuffleRow = ssse3::ShuffleRow,
};

}  // namespace qnv::avx2
