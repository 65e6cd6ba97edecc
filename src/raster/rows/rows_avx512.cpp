// Level avx512: row kernels with vectors of 64 bytes, or blocks of 64 pixels. The ends of rows that are combined with
// the band are vectors under a mask. Fills and copies are those of avx2, because a processor stores two vectors of 32
// bytes in the time of one of 64.
#include <cstring>

#include "raster/rows/bit_vectors.h"
#include "raster/rows/byte_moves.h"
#include "raster/rows/row_tables.h"
#include "raster/rows/tile.h"
#include "raster/rows/vector64.h"

namespace qnv::avx512 {
namespace {

// In shorter rows stores across cache lines cost less than another vector under a mask.
constexpr std::size_t kMinAligned = 512;

// The distance from dst to the next aligned address, 0 for rows that are not aligned.
std::size_t AlignedStart(const uint8_t* dst, std::size_t bytes) {
  return bytes < kMinAligned ? 0 : (0 - reinterpret_cast<uintptr_t>(dst)) % 64;
}

// Applies an operation to the bytes [begin, end) of a row under masks. operation.At(band, offset, mask): the new bytes
// of a vector at that offset of the row; mask: those that are wanted.
template <class Operation>
void MaskedPart(uint8_t* dst, std::size_t begin, std::size_t end, const Operation& operation) {
  for (std::size_t i = begin; i < end; i += 64) {
    const __mmask64 mask = FirstBytes(end - i < 64 ? end - i : 64);
    operation.At(Vector64::Load(dst + i, mask), i, mask).Store(dst + i, mask);
  }
}

// Applies an operation to a row: `whole` to its whole vectors, from the first aligned one on. whole(begin, end)
template <class Operation, class Whole>
void WalkRow(uint8_t* dst, std::size_t bytes, const Operation& operation, Whole whole) {
  const std::size_t begin = AlignedStart(dst, bytes);
  MaskedPart(dst, 0, begin, operation);
  const std::size_t end = begin + (bytes - begin) / 64 * 64;
  whole(begin, end);
  MaskedPart(dst, end, bytes, operation);
}

// D' = (D & ((S & and1) ^ and2)) ^ ((S & xor1) ^ xor2) with masks that are the same for all bytes. kAnds, kXors:
// whether and1 and xor1 are all ones, so that the source takes part in the and mask and in the xor mask; otherwise they
// are 0.
template <bool kAnds, bool kXors>
struct Combination {
  Vector64 and2, xor2;

  Vector64 operator()(Vector64 d, Vector64 s) const {
    const Vector64 kept = kAnds ? Ternary<kA&(kB ^ kC)>(d, s, and2) : Ternary<kA & kB>(d, and2, and2);
    return kXors ? Ternary<kA ^ kB ^ kC>(kept, s, xor2) : Ternary<kA ^ kB>(kept, xor2, xor2);
  }
};

// Calls walk with the combination that the masks stand for.
template <class Walk>
void WithCombination(const ByteMasks& m, Walk walk) {
  const Vector64 and2 = Vector64::Fill(m.and2), xor2 = Vector64::Fill(m.xor2);
  if (m.and1 != 0) {
    return m.xor1 != 0 ? walk(Combination<true, true>{and2, xor2}) : walk(Combination<true, false>{and2, xor2});
  }
  return m.xor1 != 0 ? walk(Combination<false, true>{and2, xor2}) : walk(Combination<false, false>{and2, xor2});
}

// The band and a source, combined by a function of both.
template <class Combine>
struct SourceOperation {
  const uint8_t* source;
  Combine combine;

  Vector64 At(Vector64 band, std::size_t offset, __mmask64 mask) const {
    return combine(band, Vector64::Load(source + offset, mask));
  }
};

template <class Combine>
void CombineRow(uint8_t* dst, const uint8_t* source, std::size_t bytes, const Combine& combine) {
  WalkRow(dst, bytes, SourceOperation<Combine>{source, combine}, [=](std::size_t i, std::size_t end) {
    const auto step = [=](std::size_t at) {
      combine(Vector64::Load(dst + at), Vector64::Load(source + at)).Store(dst + at);
    };
    for (; i + 128 <= end; i += 128) {
      step(i);
      step(i + 64);
    }
    if (i < end) step(i);
  });
}

// (A & B) ^ C: what masks do to a byte.
Vector64 AndXor(Vector64 a, Vector64 andMask, Vector64 xorMask) { return Ternary<(kA & kB) ^ kC>(a, andMask, xorMask); }

// The bytes after which every pattern repeats; three vectors are a multiple of them.
constexpr std::size_t kPeriod = 48;

// A mask tile at an offset of a row.
Vector64 TileAt(const uint8_t* tile, std::size_t offset) { return Vector64::Load(tile + offset % kPeriod); }
static_assert(kPeriod - 1 + 64 <= kTilePeriod + kMaxAdvance);

// D' = (D & andTile) ^ xorTile
struct TileOperation {
  const uint8_t *andTile, *xorTile;

  Vector64 At(Vector64 band, std::size_t offset, __mmask64) const {
    return AndXor(band, TileAt(andTile, offset), TileAt(xorTile, offset));
  }
};

// The four masks of an operation with a source at an offset of a row.
struct FourMasks {
  Vector64 and1, and2, xor1, xor2;

  FourMasks(const TileMasks& m, std::size_t offset)
      : and1(TileAt(m.and1, offset)),
        and2(TileAt(m.and2, offset)),
        xor1(TileAt(m.xor1, offset)),
        xor2(TileAt(m.xor2, offset)) {}

  Vector64 Apply(Vector64 band, Vector64 source) const {
    return AndXor(band, AndXor(source, and1, and2), AndXor(source, xor1, xor2));
  }
};

struct SourceTileOperation {
  const uint8_t* source;
  TileMasks masks;

  Vector64 At(Vector64 band, std::size_t offset, __mmask64 mask) const {
    return FourMasks(masks, offset).Apply(band, Vector64::Load(source + offset, mask));
  }
};

// Up to 64 pixels of a source whose red and blue are exchanged, combined with the band.
template <class Combine>
void SwapPart(uint8_t* dst, const uint8_t* source, std::size_t pixels, const Combine& combine) {
  const auto part = [&](auto vector) {
    constexpr std::size_t kAt = 64 * vector;
    if (3 * pixels <= kAt) return;
    const __mmask64 mask = FirstBytes(3 * pixels - kAt < 64 ? 3 * pixels - kAt : 64);
    combine(Vector64::Load(dst + kAt, mask), MovedVector<SwapMap, vector>(source, SingleMasks<SwapMap>(), mask))
        .Store(dst + kAt, mask);
  };
  part(std::integral_constant<std::size_t, 0>{});
  part(std::integral_constant<std::size_t, 1>{});
  part(std::integral_constant<std::size_t, 2>{});
}

template <class Combine>
void CombineSwapped(uint8_t* dst, const uint8_t* source, std::size_t pixels, const Combine& combine) {
  if (3 * pixels >= kMinAligned) {
    const std::size_t head = PixelsToAlignment<3, kWideBlockPixels>(dst);
    SwapPart(dst, source, head, combine);
    dst += 3 * head;
    source += 3 * head;
    pixels -= head;
  }
  const SingleMasks<SwapMap> single;
  for (; pixels >= kWideBlockPixels; pixels -= kWideBlockPixels, dst += 192, source += 192) {
    combine(Vector64::Load(dst), MovedVector<SwapMap, 0>(source, single)).Store(dst);
    combine(Vector64::Load(dst + 64), MovedVector<SwapMap, 1>(source, single)).Store(dst + 64);
    combine(Vector64::Load(dst + 128), MovedVector<SwapMap, 2>(source, single)).Store(dst + 128);
  }
  SwapPart(dst, source, pixels, combine);
}

}  // namespace

// Six tiles stay in registers.
void RopTileRow(uint8_t* dst, std::size_t bytes, const uint8_t* andTile, const uint8_t* xorTile) {
  const TileOperation operation{andTile, xorTile};
  WalkRow(dst, bytes, operation, [&](std::size_t i, std::size_t end) {
    if (i + 192 <= end) {
      const Vector64 and0 = TileAt(andTile, i), and1 = TileAt(andTile, i + 64), and2 = TileAt(andTile, i + 128);
      const Vector64 xor0 = TileAt(xorTile, i), xor1 = TileAt(xorTile, i + 64), xor2 = TileAt(xorTile, i + 128);
      for (; i + 192 <= end; i += 192) {
        AndXor(Vector64::Load(dst + i), and0, xor0).Store(dst + i);
        AndXor(Vector64::Load(dst + i + 64), and1, xor1).Store(dst + i + 64);
        AndXor(Vector64::Load(dst + i + 128), and2, xor2).Store(dst + i + 128);
      }
    }
    MaskedPart(dst, i, end, operation);
  });
}

void RopSourceRow(uint8_t* dst, const uint8_t* source, std::size_t bytes, const ByteMasks& masks) {
  WithCombination(masks, [=](const auto& combine) { CombineRow(dst, source, bytes, combine); });
}

// A period has twelve vectors of masks, but 32-bit code has eight registers. So there are three passes over the row,
// each for every third vector.
void RopSourceTileRow(uint8_t* dst, const uint8_t* source, std::size_t bytes, const TileMasks& masks) {
  WalkRow(dst, bytes, SourceTileOperation{source, masks}, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end && i < begin + 192; i += 64) {
      const FourMasks tiles(masks, i);
      for (std::size_t at = i; at < end; at += 192) {
        tiles.Apply(Vector64::Load(dst + at), Vector64::Load(source + at)).Store(dst + at);
      }
    }
  });
}

void MinimumRow(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  CombineRow(dst, source, bytes, [](Vector64 d, Vector64 s) { return Min(d, s); });
}

void SwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kWideBlockPixels) return avx2::SwapRow24(dst, source, pixels);
  MoveSingles<SwapMap>(dst, source, pixels);
}

void RopSwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, const ByteMasks& masks) {
  WithCombination(masks, [=](const auto& combine) { CombineSwapped(dst, source, pixels, combine); });
}

// Pixels under masks that are made of the bits of a source.

void ExpandBitsRow24(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                     uint32_t clear) {
  ExpandBitVectors<3>(dst, bits, offset, pixels, set, clear);
}

void ExpandBitsRow8(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels, uint32_t set,
                    uint32_t clear) {
  ExpandBitVectors<1>(dst, bits, offset, pixels, set, clear);
}

void ExpandGlyph24(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  ExpandGlyphMasks<3>(dst, stride, column, colors);
}

void ExpandGlyph8(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  ExpandGlyphMasks<1>(dst, stride, column, colors);
}

void PaintGlyph24(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  PaintGlyphMasks<3>(dst, stride, column, colors);
}

void PaintGlyph8(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors) {
  PaintGlyphMasks<1>(dst, stride, column, colors);
}

namespace {

constexpr RowKernels TableWith(kernel::CopyRow* copy, const RowKernels* withStrings) {
  return {
      .FillTileRow = avx2::FillTileRow,
      .RopTileRow = avx512::RopTileRow,
      .RopSourceRow = avx512::RopSourceRow,
      .RopSourceTileRow = avx512::RopSourceTileRow,
      .CopyRow = copy,
      .MinimumRow = avx512::MinimumRow,
      .SwapRow24 = avx512::SwapRow24,
      .RopSwapRow24 = avx512::RopSwapRow24,
      .ExpandBitsRow24 = avx512::ExpandBitsRow24,
      .ExpandBitsRow8 = avx512::ExpandBitsRow8,
      .ExpandGlyph24 = avx512::ExpandGlyph24,
      .ExpandGlyph8 = avx512::ExpandGlyph8,
      .PaintGlyph24 = avx512::PaintGlyph24,
      .PaintGlyph8 = avx512::PaintGlyph8,
      .image = &kPixelRows,
      .withStrings = withStrings,
  };
}

constinit const RowKernels kFastStringKernels = TableWith(avx2::CopyByString, nullptr);

}  // namespace

constinit const RowKernels kRowKernels = TableWith(avx2::CopyRow, &kFastStringKernels);

}  // namespace qnv::avx512
