// Level avx512: image kernels in blocks of 64 pixels. Rows shorter than a block are passed to the levels below.
#include <cstring>

#include "raster/rows/byte_moves.h"
#include "raster/rows/gray_weights.h"
#include "raster/rows/nibble_rows.h"
#include "raster/rows/pixel_blocks.h"
#include "raster/rows/repeated_rows.h"
#include "raster/rows/row_tables.h"
#include "raster/rows/vector64.h"

namespace qnv::avx512 {
namespace {

// 64 numbers that the compiler computes, one for each byte of a vector.
struct ByteTable {
  alignas(64) uint8_t bytes[64] = {};

  template <class Of>
  explicit constexpr ByteTable(Of of) {
    for (std::size_t i = 0; i < 64; ++i) bytes[i] = static_cast<uint8_t>(of(i));
  }
  Vector64 Load() const { return Vector64::Load(bytes); }
};

// The same for each of the three vectors of a block. of(byte of the block)
struct BlockTable {
  ByteTable vector[3];

  template <class Of>
  explicit constexpr BlockTable(Of of)
      : vector{ByteTable([=](std::size_t i) { return of(i); }), ByteTable([=](std::size_t i) { return of(64 + i); }),
               ByteTable([=](std::size_t i) { return of(128 + i); })} {}
  Vector64 Load(std::size_t v) const { return vector[v].Load(); }
};

// The pixel of each byte of a block of 24-bit pixels, and its place in the pixel.
constexpr BlockTable kPixelOf{[](std::size_t i) { return i / 3; }};
constexpr BlockTable kPlaceOf{[](std::size_t i) { return i % 3; }};

// Calls block(i) for blocks of 64 pixels; see CoverWithWideBlocks.
template <std::size_t kBytesPerPixel, class Block>
void ForEachBlock(const uint8_t* dst, std::size_t pixels, Block block) {
  CoverWithWideBlocks(pixels, PixelsToAlignment<kBytesPerPixel, kWideBlockPixels>(dst), block);
}

// ---- Palettes

// A byte of each of 256 colors, looked up 64 indices at a time: a permutation of two vectors looks up seven bits, and
// the eighth one chooses between two of them.
struct Plane {
  alignas(64) uint8_t bytes[256];

  // Collects byte `which` of the colors of a table, 64 at a time.
  Plane(const uint32_t* table, std::size_t which) {
    static constexpr ByteTable kEveryFourth{[](std::size_t i) { return 4 * i; }};
    const Vector64 from{_mm512_add_epi8(kEveryFourth.Load().v, Vector64::Fill(static_cast<uint8_t>(which)).v)};
    for (std::size_t i = 0; i < 256; i += 32) {
      const auto* const colors = reinterpret_cast<const uint8_t*>(table + i);
      const Vector64 half = Permute(Vector64::Load(colors), Vector64::Load(colors + 64), from);
      half.Store(bytes + i, 0xFFFFFFFF);
    }
  }

  Vector64 At(Vector64 indices) const {
    const Vector64 low = Permute(Vector64::Load(bytes), Vector64::Load(bytes + 64), indices);
    const Vector64 high = Permute(Vector64::Load(bytes + 128), Vector64::Load(bytes + 192), indices);
    return {_mm512_mask_blend_epi8(_mm512_movepi8_mask(indices.v), low.v, high.v)};
  }
};

// For shorter rows collecting the planes takes longer than it saves.
constexpr std::size_t kMinPlanes24 = 128;
constexpr std::size_t kMinPlane8 = 64;

// Stores 64 pixels from three vectors that hold their first, second and third bytes.
void StorePlanes(uint8_t* dst, Vector64 first, Vector64 second, Vector64 third) {
  // The second byte of a pixel comes from the second vector of a permutation of two. The third is put in place by
  // another one, under a mask, with the same table: it ignores bit 6.
  static constexpr BlockTable kFrom{[](std::size_t i) { return i / 3 + (i % 3 == 1 ? 64 : 0); }};
  constexpr uint64_t kEveryThird = 0x9249249249249249;  // bits 0, 3, 6 ... 63
  const auto store = [&](std::size_t v, __mmask64 thirds) {
    const Vector64 from = kFrom.Load(v);
    const Vector64 two = Permute(first, second, from);
    Vector64{_mm512_mask_permutexvar_epi8(two.v, thirds, from.v, third.v)}.Store(dst + 64 * v);
  };
  store(0, kEveryThird << 2);
  store(1, kEveryThird << 1);
  store(2, kEveryThird);
}

// The palette indices of 64 pixels, the high half of each byte first.
Vector64 Nibbles(const uint8_t* source) {
  const __m512i words = _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(source)));
  const Vector64 high{_mm512_srli_epi16(words, 4)}, low{_mm512_slli_epi16(words, 8)};
  return Ternary<(kA | kB) & kC>(high, low, Vector64::Fill(0x0F));
}

// For shorter rows the levels below are as fast.
constexpr std::size_t kMinNibbles = kWideBlockPixels + 2;

// Calls block(dst, source) for blocks of 64 pixels of an image with 16 colors.
template <std::size_t kBytesPerPixel, auto Plain, class Block>
void ForEachNibbleBlock(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table,
                        Block block) {
  const WholeBytes row = PaintHalfBytes<kBytesPerPixel, Plain>(dst, source, odd, pixels, table);
  // Blocks must begin with a whole byte of the source, so that all but the last lie as the first one does.
  CoverWithWideBlocks(row.pixels, kWideBlockPixels,
                      [=](std::size_t i) { block(row.dst + kBytesPerPixel * i, row.source + i / 2); });
}

// ---- Pixels of 16 bits

// Whether the bits of a component are the highest 4 to 8 of its byte, and as many as they are repeated from. Then the
// byte is two pieces of the pixel: these bits, and below them their own highest ones.
bool IsPlain(const ComponentMask& m) {
  return m.fill >= 4 && m.fill <= 8 && (m.mask << m.up >> 8 & 0xFF) == (0xFF00u >> m.fill & 0xFF);
}

// The lowest bit of a component in a pixel.
uint32_t LowestBit(const ComponentMask& m) { return 16 - m.up - m.fill; }

// A value for each component, in the order of bytes, as a vector for bytes that begin at byte `v` of a pixel.
Vector64 ByComponent(uint32_t first, uint32_t second, uint32_t third, std::size_t v) {
  const Vector64 three{_mm512_set1_epi32(static_cast<int>(first | second << 8 | third << 16))};
  return {_mm512_shuffle_epi8(three.v, kPlaceOf.Load(v).v)};
}

// ---- Gray levels

// 32 weighted sums divided by kGrayDivisor: exact for sums up to 25500.
__m512i Hundredth(__m512i sums) { return _mm512_srli_epi16(_mm512_mulhi_epu16(sums, _mm512_set1_epi16(5243)), 3); }

// The weighted sums of sixteen pixels of four bytes, 32 bits each.
__m512i WeightedSums(Vector64 pixels, Vector64 weights) {
  return _mm512_madd_epi16(_mm512_maddubs_epi16(pixels.v, weights.v), _mm512_set1_epi16(1));
}

// The gray levels of 64 pixels, sixteen sums in each vector.
Vector64 GrayLevels(__m512i a, __m512i b, __m512i c, __m512i d) {
  const __m512i grays = _mm512_packus_epi16(Hundredth(_mm512_packs_epi32(a, b)), Hundredth(_mm512_packs_epi32(c, d)));
  // Packing works in quarters of a vector: each now holds four pixels from each of the four vectors.
  return {_mm512_maskz_permutexvar_epi32(
      0xFFFF, _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15), grays)};
}

// The gray levels of 64 pixels of three bytes. The last load begins sixteen bytes early, so that none leaves the block.
Vector64 GrayBlock(const uint8_t* source, Vector64 weights) {
  // The fourth byte, whose weight is 0, is another one of the pixel.
  static constexpr ByteTable kSpread{[](std::size_t i) { return i / 4 * 3 + i % 4 % 3; }};
  static constexpr ByteTable kSpreadLate{[](std::size_t i) { return 16 + i / 4 * 3 + i % 4 % 3; }};
  const auto sixteen = [=](const uint8_t* p, const ByteTable& spread) {
    return WeightedSums(Permute(Vector64::Load(p), spread.Load()), weights);
  };
  return GrayLevels(sixteen(source, kSpread), sixteen(source + 48, kSpread), sixteen(source + 96, kSpread),
                    sixteen(source + 128, kSpreadLate));
}

Vector64 Weights(uint32_t weights) { return {_mm512_set1_epi32(static_cast<int>(weights))}; }

// Stores each of 64 bytes three times.
void StoreTriples(uint8_t* dst, Vector64 grays) {
  for (std::size_t v = 0; v < 3; ++v) Permute(grays, kPixelOf.Load(v)).Store(dst + 64 * v);
}

// What each value of a component's bits adds to a weighted sum, 64 of them.
struct WeightTable {
  __m512i low, high;  // high: only for six bits

  WeightTable(const ComponentMask& m, uint32_t weight) {
    const __m512i numbers =
        _mm512_cvtepu8_epi16(_mm256_load_si256(reinterpret_cast<const __m256i*>(kByteNumbers.bytes)));
    const auto weighted = [&](__m512i number) {
      const __m512i v = _mm512_sll_epi16(number, _mm_cvtsi32_si128(static_cast<int>(8 - m.fill)));
      const __m512i filled = _mm512_add_epi16(v, _mm512_srl_epi16(v, _mm_cvtsi32_si128(static_cast<int>(m.fill))));
      return _mm512_mullo_epi16(filled, _mm512_set1_epi16(static_cast<int16_t>(weight)));
    };
    low = weighted(numbers);
    high = weighted(_mm512_add_epi16(numbers, _mm512_set1_epi16(32)));
  }
};

// For shorter rows the tables take longer to set up than they save.
constexpr std::size_t kMinGray16 = 128;

// Looks up what blue, green and red bits add, and sums them up. kSix: green has six bits instead of five.
template <bool kSix>
void GrayBlocks16(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks) {
  const ComponentMask* const m = masks.component;
  const WeightTable blue(m[0], kBlueWeight), green(m[1], kGreenWeight), red(m[2], kRedWeight);
  const __m512i blueAt = _mm512_set1_epi16(static_cast<int16_t>(LowestBit(m[0])));
  const __m512i greenAt = _mm512_set1_epi16(static_cast<int16_t>(LowestBit(m[1])));
  const __m512i redAt = _mm512_set1_epi16(static_cast<int16_t>(LowestBit(m[2])));
  ForEachBlock<1>(dst, pixels, [&](std::size_t i) {
    // The permutations ignore the bits above those of the component. Each word has its own count: a shift of all by one
    // count takes a step of the permuting unit too.
    const auto hundredfold = [&](const uint8_t* p) {
      const __m512i v = Vector64::Load(p).v;
      const __m512i g = _mm512_srlv_epi16(v, greenAt);
      const __m512i byGreen =
          kSix ? _mm512_permutex2var_epi16(green.low, g, green.high) : _mm512_permutexvar_epi16(g, green.low);
      const __m512i byBlue = _mm512_permutexvar_epi16(_mm512_srlv_epi16(v, blueAt), blue.low);
      const __m512i byRed = _mm512_permutexvar_epi16(_mm512_srlv_epi16(v, redAt), red.low);
      return _mm512_mulhi_epu16(_mm512_add_epi16(_mm512_add_epi16(byBlue, byGreen), byRed), _mm512_set1_epi16(5243));
    };
    // Eight times the levels of both halves become bytes next to each other, which a permutation puts in order.
    static constexpr ByteTable kInOrder{[](std::size_t byte) { return 2 * (byte % 32) + byte / 32; }};
    const Vector64 first{_mm512_srli_epi16(hundredfold(source + 2 * i), 3)};
    const Vector64 second{_mm512_slli_epi16(hundredfold(source + 2 * i + 64), 5)};
    const Vector64 both = Ternary<(kA & ~kC) | (kB & kC)>(first, second, Vector64{_mm512_set1_epi16(-256)});
    Permute(both, kInOrder.Load()).Store(dst + i);
  });
}

// ---- Repetition

// The source bytes of one of the three vectors of a block in which pixels are repeated: 128 / kFactor bytes from `load`
// on, which lie in the block, and their permutation.
struct Repetition {
  std::size_t load = 0;
  alignas(64) uint8_t index[64] = {};
};

template <std::size_t kBytesPerPixel, std::size_t kFactor>
constexpr Repetition MakeRepetition(std::size_t vector) {
  constexpr std::size_t kBlock = 64 / kFactor * kBytesPerPixel, kLoad = 128 / kFactor;
  const auto from = [=](std::size_t i) {
    const std::size_t byte = 64 * vector + i;
    return byte / kBytesPerPixel / kFactor * kBytesPerPixel + byte % kBytesPerPixel;
  };
  Repetition result;
  result.load = 64 * vector / kBytesPerPixel / kFactor * kBytesPerPixel;
  if (kBlock > kLoad && result.load > kBlock - kLoad) result.load = kBlock - kLoad;
  for (std::size_t i = 0; i < 64; ++i) result.index[i] = static_cast<uint8_t>(from(i) - result.load);
  return result;
}

// 64, 32, 16 or 8 bytes at the beginning of a vector.
template <std::size_t kBytes>
Vector64 LoadPart(const uint8_t* p) {
  if constexpr (kBytes == 64) return Vector64::Load(p);
  if constexpr (kBytes == 32) return {_mm512_castsi256_si512(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)))};
  if constexpr (kBytes == 16) return {_mm512_castsi128_si512(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
  if constexpr (kBytes == 8) return {_mm512_castsi128_si512(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)))};
}

template <std::size_t kBytesPerPixel, std::size_t kFactor>
void Repeat(uint8_t* dst, const uint8_t* source, std::size_t blocks) {
  static constexpr Repetition kVectors[3] = {MakeRepetition<kBytesPerPixel, kFactor>(0),
                                             MakeRepetition<kBytesPerPixel, kFactor>(kBytesPerPixel == 3 ? 1 : 0),
                                             MakeRepetition<kBytesPerPixel, kFactor>(kBytesPerPixel == 3 ? 2 : 0)};
  // In 24 bits the source bytes of a vector lie within a third of the block and a pixel.
  constexpr std::size_t kLoad = kBytesPerPixel == 3 ? 128 / kFactor : 64 / kFactor;
  for (; blocks != 0; --blocks, source += 64 / kFactor * kBytesPerPixel, dst += 64 * kBytesPerPixel) {
    for (std::size_t v = 0; v < kBytesPerPixel; ++v) {
      Permute(LoadPart<kLoad>(source + kVectors[v].load), Vector64::Load(kVectors[v].index)).Store(dst + 64 * v);
    }
  }
}

template <std::size_t kBytesPerPixel, auto Below>
void RepeatRow(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor) {
  RepeatInBlocks<kBytesPerPixel, 64, Below>(dst, source, pixels, factor, [=](auto constant, std::size_t blocks) {
    Repeat<kBytesPerPixel, constant>(dst, source, blocks);
  });
}

}  // namespace

void ExpandBytesRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table) {
  if (pixels < kMinPlanes24) return avx2::ExpandBytesRow24(dst, source, pixels, table);
  const Plane first(table, 0), second(table, 1), third(table, 2);
  ForEachBlock<3>(dst, pixels, [&](std::size_t i) {
    const Vector64 indices = Vector64::Load(source + i);
    StorePlanes(dst + 3 * i, first.At(indices), second.At(indices), third.At(indices));
  });
}

void ExpandBytesRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table) {
  if (pixels < kMinPlane8) return avx2::ExpandBytesRow8(dst, source, pixels, table);
  const Plane levels(table, 0);
  ForEachBlock<1>(dst, pixels, [&](std::size_t i) { levels.At(Vector64::Load(source + i)).Store(dst + i); });
}

// The sixteen colors lie in one vector. Each destination byte takes its index and then its byte of that color.
void ExpandNibblesRow24(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table) {
  if (pixels < kMinNibbles) return avx2::ExpandNibblesRow24(dst, source, odd, pixels, table);
  // The sixteen first bytes, the second ones, the third ones.
  static constexpr ByteTable kByPlace{[](std::size_t i) { return i % 16 * 4 + i / 16; }};
  static constexpr BlockTable kPlane{[](std::size_t i) { return 16 * (i % 3); }};
  const Vector64 planes = Permute(Vector64::Load(reinterpret_cast<const uint8_t*>(table)), kByPlace.Load());
  ForEachNibbleBlock<3, plain::ExpandNibblesRow24>(
      dst, source, odd, pixels, table, [&](uint8_t* out, const uint8_t* block) {
        const Vector64 indices = Nibbles(block);
        for (std::size_t v = 0; v < 3; ++v) {
          const Vector64 own = Permute(indices, kPixelOf.Load(v));
          Permute(planes, Ternary<kA | kB>(own, kPlane.Load(v), own)).Store(out + 64 * v);
        }
      });
}

void ExpandNibblesRow8(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table) {
  if (pixels < kMinNibbles) return avx2::ExpandNibblesRow8(dst, source, odd, pixels, table);
  static constexpr ByteTable kFirstBytes{[](std::size_t i) { return i % 16 * 4; }};
  const Vector64 levels = Permute(Vector64::Load(reinterpret_cast<const uint8_t*>(table)), kFirstBytes.Load());
  ForEachNibbleBlock<1, plain::ExpandNibblesRow8>(
      dst, source, odd, pixels, table,
      [&](uint8_t* out, const uint8_t* block) { Permute(levels, Nibbles(block)).Store(out); });
}

// Each eight destination bytes take the four pixels that they come from, and each byte takes eight bits that begin
// anywhere in these: once where its component begins, and once that many bits further on, so that the component's
// highest bits fill the rest of the byte.
void UnpackRow16(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks) {
  const ComponentMask* const m = masks.component;
  if (pixels < kWideBlockPixels || !IsPlain(m[0]) || !IsPlain(m[1]) || !IsPlain(m[2])) {
    return avx2::UnpackRow16(dst, source, pixels, masks);
  }
  // The first source byte of each load, so that all three lie in the block of 128.
  static constexpr std::size_t kLoad[3] = {0, 42, 64};
  static constexpr BlockTable kFour{[](std::size_t i) { return i / 8 * 8 / 3 * 2 + i % 8 - kLoad[i / 64]; }};
  // Where the pixel of each byte begins in the four, in bits.
  static constexpr BlockTable kPixelAt{[](std::size_t i) { return 16 * (i / 3 - i / 8 * 8 / 3); }};
  Vector64 at[3], further[3], own[3];
  for (std::size_t v = 0; v < 3; ++v) {
    const Vector64 begin = ByComponent((8 - m[0].up) & 63, (8 - m[1].up) & 63, (8 - m[2].up) & 63, v);
    const Vector64 fill = ByComponent(m[0].fill, m[1].fill, m[2].fill, v);
    at[v].v = _mm512_add_epi8(kPixelAt.Load(v).v, begin.v);
    further[v].v = _mm512_add_epi8(at[v].v, fill.v);
    own[v] = ByComponent(0xFF00u >> m[0].fill & 0xFF, 0xFF00u >> m[1].fill & 0xFF, 0xFF00u >> m[2].fill & 0xFF, v);
  }
  ForEachBlock<3>(dst, pixels, [&](std::size_t i) {
    for (std::size_t v = 0; v < 3; ++v) {
      const __m512i four = Permute(Vector64::Load(source + 2 * i + kLoad[v]), kFour.Load(v)).v;
      const Vector64 high{_mm512_maskz_multishift_epi64_epi8(kEvery, at[v].v, four)};
      const Vector64 low{_mm512_maskz_multishift_epi64_epi8(kEvery, further[v].v, four)};
      Ternary<(kA & kC) | (kB & ~kC)>(high, low, own[v]).Store(dst + 3 * i + 64 * v);
    }
  });
}

void PackRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kWideBlockPixels) return avx2::PackRow32(dst, source, pixels);
  MovePairs<PackMap>(dst, source, pixels);
}

void PackSwapRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kWideBlockPixels) return avx2::PackSwapRow32(dst, source, pixels);
  MovePairs<PackSwapMap>(dst, source, pixels);
}

void GrayRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kWideBlockPixels) return avx2::GrayRow24(dst, source, pixels);
  const Vector64 weights = Weights(kBandWeights);
  ForEachBlock<1>(dst, pixels, [=](std::size_t i) { GrayBlock(source + 3 * i, weights).Store(dst + i); });
}

void GrayRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kWideBlockPixels) return avx2::GrayRow32(dst, source, pixels);
  const Vector64 weights = Weights(kBandWeights);
  ForEachBlock<1>(dst, pixels, [=](std::size_t i) {
    const auto sixteen = [=](const uint8_t* p) { return WeightedSums(Vector64::Load(p), weights); };
    const uint8_t* const p = source + 4 * i;
    GrayLevels(sixteen(p), sixteen(p + 64), sixteen(p + 128), sixteen(p + 192)).Store(dst + i);
  });
}

void GrayRow16(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks) {
  const ComponentMask* const m = masks.component;
  const bool isTabled = IsPlain(m[0]) && IsPlain(m[1]) && IsPlain(m[2]) && m[0].fill == 5 && m[2].fill == 5 &&
                        (m[1].fill == 5 || m[1].fill == 6);
  if (pixels < kMinGray16 || !isTabled) return avx2::GrayRow16(dst, source, pixels, masks);
  m[1].fill == 6 ? GrayBlocks16<true>(dst, source, pixels, masks) : GrayBlocks16<false>(dst, source, pixels, masks);
}

// The gray level of a gray pixel is the pixel itself, so blocks may overlap.
void RegrayRow24(uint8_t* dst, std::size_t pixels) {
  if (pixels < kWideBlockPixels) return avx2::RegrayRow24(dst, pixels);
  const Vector64 weights = Weights(kRegrayWeights);
  ForEachBlock<3>(dst, pixels, [=](std::size_t i) { StoreTriples(dst + 3 * i, GrayBlock(dst + 3 * i, weights)); });
}

void TripleRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kWideBlockPixels) return avx2::TripleRow24(dst, source, pixels);
  ForEachBlock<3>(dst, pixels, [=](std::size_t i) { StoreTriples(dst + 3 * i, Vector64::Load(source + i)); });
}

// Sixteen pixels at a time, each as four bytes, of which the last repeats the first: they are compared with four times
// `skip`. Only the marks that change are stored.
void MarkRow24(uint8_t* marks, const uint8_t* source, std::size_t pixels, uint8_t skip, uint8_t mark) {
  static constexpr ByteTable kSpread{[](std::size_t i) { return i / 4 * 3 + i % 4 % 3; }};
  const Vector64 spread = kSpread.Load(), skips = Vector64::Fill(skip);
  const __m128i marked = _mm_set1_epi8(static_cast<char>(mark));
  const auto sixteen = [=](uint8_t* at, Vector64 bytes, __mmask16 wanted) {
    const __mmask16 differs = _mm512_mask_cmpneq_epi32_mask(wanted, Permute(bytes, spread).v, skips.v);
    _mm_mask_storeu_epi8(at, differs, marked);
  };
  // A load of 64 bytes reaches sixteen bytes beyond its pixels.
  for (; pixels >= 22; pixels -= 16, source += 48, marks += 16) sixteen(marks, Vector64::Load(source), 0xFFFF);
  for (std::size_t count; pixels != 0; pixels -= count, source += 48, marks += 16) {
    count = pixels < 16 ? pixels : 16;
    sixteen(marks, Vector64::Load(source, FirstBytes(3 * count)), static_cast<__mmask16>((1u << count) - 1));
  }
}

void ReverseRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kWideBlockPixels) return avx2::ReverseRow24(dst, source, pixels);
  MoveSingles<ReverseMapOf<std::ptrdiff_t{kWideBlockPixels}>>(dst, source, pixels);
}

void ReverseRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kWideBlockPixels) return avx2::ReverseRow8(dst, source, pixels);
  static constexpr ByteTable kReverse{[](std::size_t i) { return 63 - i; }};
  ForEachBlock<1>(dst, pixels, [=](std::size_t i) {
    Permute(Vector64::Load(source + (pixels - kWideBlockPixels - i)), kReverse.Load()).Store(dst + i);
  });
}

void RepeatRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor) {
  RepeatRow<3, ssse3::RepeatRow24>(dst, source, pixels, factor);
}

void RepeatRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor) {
  RepeatRow<1, ssse3::RepeatRow8>(dst, source, pixels, factor);
}

// Shuffles of groups of sixteen bytes are those of ssse3: their plans hold one load and one table for each group.
constinit const PixelRows kPixelRows = {
    .ExpandBytesRow24 = avx512::ExpandBytesRow24,
    .ExpandBytesRow8 = avx512::ExpandBytesRow8,
    .ExpandNibblesRow24 = avx512::ExpandNibblesRow24,
    .ExpandNibblesRow8 = avx512::ExpandNibblesRow8,
    .UnpackRow16 = avx512::UnpackRow16,
    .PackRow32 = avx512::PackRow32,
    .PackSwapRow32 = avx512::PackSwapRow32,
    .GrayRow24 = avx512::GrayRow24,
    .GrayRow32 = avx512::GrayRow32,
    .GrayRow16 = avx512::GrayRow16,
    .RegrayRow24 = avx512::RegrayRow24,
    .TripleRow24 = avx512::TripleRow24,
    .MarkRow24 = avx512::MarkRow24,
    .ReverseRow24 = avx512::ReverseRow24,
    .ReverseRow8 = avx512::ReverseRow8,
    .RepeatRow24 = avx512::RepeatRow24,
    .RepeatRow8 = avx512::RepeatRow8,
    .ShuffleRow = ssse3::ShuffleRow,
};

}  // namespace qnv::avx512
