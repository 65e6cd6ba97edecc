// Row kernels as templates over a vector type, which a level instantiates for its own vectors. Counts and offsets are
// in bytes. Everything here has internal linkage, so that code compiled for one instruction set is never shared with
// another.
//
// A Vector type has kBytes, Load and Store at any alignment, Fill(byte), the operators & and ^, and the function Min.
// `Smaller` is the vector type for rows that are shorter than one Vector.
//
// The last vector of a row may overlap the one before. Where an operation reads the band, the last vector is computed
// from the old bytes before anything is stored, so that no byte is combined twice.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "raster/rows/row_kernels.h"
#include "raster/rows/tile.h"
#include "raster/rows/vector16.h"

namespace qnv {
namespace {

// Machine words with the interface of a vector, for the ends of rows.
template <class Word>
struct WordVector {
  static constexpr std::size_t kBytes = sizeof(Word);
  Word v;

  static WordVector Load(const uint8_t* p) {
    WordVector r;
    std::memcpy(&r.v, p, sizeof(Word));
    return r;
  }
  void Store(uint8_t* p) const { std::memcpy(p, &v, sizeof(Word)); }
  friend WordVector operator&(WordVector a, WordVector b) { return {static_cast<Word>(a.v & b.v)}; }
  friend WordVector operator^(WordVector a, WordVector b) { return {static_cast<Word>(a.v ^ b.v)}; }
  friend WordVector Min(WordVector a, WordVector b) {
    WordVector r{};
    for (std::size_t i = 0; i < 8 * sizeof(Word); i += 8) {
      const uint32_t x = a.v >> i & 0xFF, y = b.v >> i & 0xFF;
      r.v = static_cast<Word>(r.v | (x < y ? x : y) << i);
    }
    return r;
  }
};

// An Operation computes the new bytes of the band at an offset of the row:
//   template <class Vector> Vector At(Vector band, std::size_t offset)
// band: the old bytes there.

// Applies an operation to a row shorter than a vector, as two overlapping words or as single bytes.
template <class Operation>
void ShortRow(uint8_t* dst, std::size_t bytes, const Operation& operation) {
  const auto overlapping = [&](auto word) {
    using Word = decltype(word);
    const std::size_t last = bytes - Word::kBytes;
    const Word a = operation.template At<Word>(Word::Load(dst), 0);
    const Word b = operation.template At<Word>(Word::Load(dst + last), last);
    a.Store(dst);
    b.Store(dst + last);
  };
  if (bytes >= 8) {
    overlapping(Vector8{});
  } else if (bytes >= 4) {
    overlapping(WordVector<uint32_t>{});
  } else {
    for (std::size_t i = 0; i < bytes; ++i) {
      using Byte = WordVector<uint8_t>;
      operation.template At<Byte>(Byte::Load(dst + i), i).Store(dst + i);
    }
  }
}

// The distance from dst to the next aligned address, or 0 for rows so short that stores across cache lines cost less
// than computing a vector twice.
template <class Vector>
std::size_t AlignedStart(const uint8_t* dst, std::size_t bytes) {
  constexpr std::size_t k = Vector::kBytes;
  return bytes < 8 * k ? 0 : k - (reinterpret_cast<uintptr_t>(dst) & (k - 1));
}

// Applies an operation to a row. For operations without a pattern, which are the same at every offset.
template <class Vector, class Smaller, class Operation>
void WalkRow(uint8_t* dst, std::size_t bytes, const Operation& operation) {
  constexpr std::size_t k = Vector::kBytes;
  if (bytes < k) {
    if constexpr (k > Smaller::kBytes) return WalkRow<Smaller, Smaller>(dst, bytes, operation);
    return ShortRow(dst, bytes, operation);
  }
  const std::size_t last = bytes - k;
  const Vector firstResult = operation.template At<Vector>(Vector::Load(dst), 0);
  const Vector lastResult = operation.template At<Vector>(Vector::Load(dst + last), last);
  std::size_t i = AlignedStart<Vector>(dst, bytes);
  for (; i + 2 * k <= last; i += 2 * k) {
    operation.template At<Vector>(Vector::Load(dst + i), i).Store(dst + i);
    operation.template At<Vector>(Vector::Load(dst + i + k), i + k).Store(dst + i + k);
  }
  for (; i < last; i += k) operation.template At<Vector>(Vector::Load(dst + i), i).Store(dst + i);
  firstResult.Store(dst);
  lastResult.Store(dst + last);
}

// Operations with a pattern also have AtTile(band, offset, offset in the tile), and WalkVectors for the inner part of a
// row.
//
// The bytes after which every pattern repeats; three vectors of 16 or 32 bytes are a multiple of them.
inline constexpr std::size_t kShortPeriod = 48;

// Applies an operation with a pattern to a row of at least one vector.
template <class Vector, class Operation>
void WalkLongTiledRow(uint8_t* dst, std::size_t bytes, const Operation& operation) {
  constexpr std::size_t k = Vector::kBytes;
  const std::size_t last = bytes - k;
  const Vector firstResult = operation.template AtTile<Vector>(Vector::Load(dst), 0, 0);
  const Vector lastResult = operation.template AtTile<Vector>(Vector::Load(dst + last), last, last % kShortPeriod);
  operation.template WalkVectors<Vector>(dst, AlignedStart<Vector>(dst, bytes), last);
  firstResult.Store(dst);
  lastResult.Store(dst + last);
}

// Applies an operation with a pattern to a row of any length.
template <class Vector, class Smaller, class Operation>
void WalkTiledRow(uint8_t* dst, std::size_t bytes, const Operation& operation) {
  if (bytes >= Vector::kBytes) return WalkLongTiledRow<Vector>(dst, bytes, operation);
  if constexpr (Vector::kBytes > Smaller::kBytes) return WalkTiledRow<Smaller, Smaller>(dst, bytes, operation);
  ShortRow(dst, bytes, operation);
}

// ---- D' = tile: the band is not read.

// Three vectors of the tile are a whole period, so they are loaded once and stored in turn.
template <class Vector, class Smaller>
void FillTileRowOf(uint8_t* dst, std::size_t bytes, const uint8_t* tile) {
  constexpr std::size_t k = Vector::kBytes;
  if (bytes < k) {
    if constexpr (k > Smaller::kBytes) return FillTileRowOf<Smaller, Smaller>(dst, bytes, tile);
    if (bytes >= 8) {
      std::memcpy(dst, tile, 8);
      std::memcpy(dst + bytes - 8, tile + bytes - 8, 8);
    } else if (bytes >= 4) {
      std::memcpy(dst, tile, 4);
      std::memcpy(dst + bytes - 4, tile + bytes - 4, 4);
    } else {
      for (std::size_t i = 0; i < bytes; ++i) dst[i] = tile[i];
    }
    return;
  }
  uint8_t* const lastDst = dst + (bytes - k);
  const Vector last = Vector::Load(tile + (bytes - k) % kShortPeriod);
  Vector::Load(tile).Store(dst);
  const std::size_t head = AlignedStart<Vector>(dst, bytes);
  dst += head;
  tile += head;
  const Vector t0 = Vector::Load(tile), t1 = Vector::Load(tile + k), t2 = Vector::Load(tile + 2 * k);
  for (; dst + 3 * k <= lastDst; dst += 3 * k) {
    t0.Store(dst);
    t1.Store(dst + k);
    t2.Store(dst + 2 * k);
  }
  if (dst < lastDst) t0.Store(dst);
  if (dst + k < lastDst) t1.Store(dst + k);
  if (dst + 2 * k < lastDst) t2.Store(dst + 2 * k);
  last.Store(lastDst);
}

// ---- D' = (D & andTile) ^ xorTile

// An and mask and an xor mask, both tiles.
struct TileOperation {
  const uint8_t* andTile;
  const uint8_t* xorTile;

  template <class Vector>
  struct Pair {
    Vector andMask, xorMask;
  };

  template <class Vector>
  Pair<Vector> Tiles(std::size_t at) const {
    return {Vector::Load(andTile + at), Vector::Load(xorTile + at)};
  }
  template <class Vector>
  static Vector With(Vector band, const Pair<Vector>& tiles) {
    return (band & tiles.andMask) ^ tiles.xorMask;
  }
  template <class Vector>
  Vector AtTile(Vector band, std::size_t, std::size_t tileOffset) const {
    return With(band, Tiles<Vector>(tileOffset));
  }
  // Applies the operation to the vectors from offset i on that begin before `last`, three per iteration. Each is stored
  // before the next is loaded, so that six tiles and the current vector fit into the eight registers of 32-bit code.
  template <class Vector>
  void WalkVectors(uint8_t* dst, std::size_t i, std::size_t last) const {
    constexpr std::size_t k = Vector::kBytes;
    const Pair<Vector> t0 = Tiles<Vector>(i), t1 = Tiles<Vector>(i + k), t2 = Tiles<Vector>(i + 2 * k);
    uint8_t* const end = dst + last;
    uint8_t* at = dst + i;
    for (; at + 3 * k <= end; at += 3 * k) {
      With(Vector::Load(at), t0).Store(at);
      With(Vector::Load(at + k), t1).Store(at + k);
      With(Vector::Load(at + 2 * k), t2).Store(at + 2 * k);
    }
    if (at < end) With(Vector::Load(at), t0).Store(at);
    if (at + k < end) With(Vector::Load(at + k), t1).Store(at + k);
    if (at + 2 * k < end) With(Vector::Load(at + 2 * k), t2).Store(at + 2 * k);
  }
  template <class Vector>
  Vector At(Vector band, std::size_t offset) const {
    return AtTile(band, offset, offset);
  }
};

template <class Vector, class Smaller>
void RopTileRowOf(uint8_t* dst, std::size_t bytes, const uint8_t* andTile, const uint8_t* xorTile) {
  WalkTiledRow<Vector, Smaller>(dst, bytes, TileOperation{andTile, xorTile});
}

// ---- Four masks and a source

template <class Vector>
struct FourMasks {
  Vector and1, and2, xor1, xor2;

  Vector Apply(Vector band, Vector source) const {
    return (band & ((source & and1) ^ and2)) ^ ((source & xor1) ^ xor2);
  }
};

// A source and masks that are the same for all bytes. kAnds, kXors: whether and1 and xor1 are all ones, so that the
// source takes part in the and mask and in the xor mask; otherwise they are 0. Wide: the vector type of `and2` and
// `xor2`.
template <class Wide, bool kAnds, bool kXors>
struct SourceOperation {
  const uint8_t* source;
  ByteMasks bytes;
  Wide and2, xor2;

  template <class Vector>
  Vector At(Vector band, std::size_t offset) const {
    const Vector s = Vector::Load(source + offset);
    if constexpr (std::is_same_v<Vector, Wide>) {
      return Apply(band, s, and2, xor2);
    } else {
      return Apply(band, s, Filled<Vector>(bytes.and2), Filled<Vector>(bytes.xor2));
    }
  }

 private:
  template <class Vector>
  static Vector Apply(Vector band, Vector s, Vector andMask, Vector xorMask) {
    return (band & (kAnds ? s ^ andMask : andMask)) ^ (kXors ? s ^ xorMask : xorMask);
  }

  template <class Vector>
  static Vector Filled(uint8_t byte) {
    uint8_t all[Vector::kBytes];
    std::memset(all, byte, sizeof all);
    return Vector::Load(all);
  }
};

template <class Vector, class Smaller>
void RopSourceRowOf(uint8_t* dst, const uint8_t* source, std::size_t bytes, const ByteMasks& m) {
  const Vector and2 = Vector::Fill(m.and2), xor2 = Vector::Fill(m.xor2);
  // One of four loops, by the masks that the operation really has.
  const auto walk = [=](auto ands, auto xors) {
    WalkRow<Vector, Smaller>(dst, bytes, SourceOperation<Vector, ands, xors>{source, m, and2, xor2});
  };
  constexpr std::true_type kYes;
  constexpr std::false_type kNo;
  if (m.and1 != 0) return m.xor1 != 0 ? walk(kYes, kYes) : walk(kYes, kNo);
  return m.xor1 != 0 ? walk(kNo, kYes) : walk(kNo, kNo);
}

// A source and masks that are tiles.
struct SourceTileOperation {
  const uint8_t* source;
  TileMasks masks;

  template <class Vector>
  FourMasks<Vector> Tiles(std::size_t at) const {
    return {Vector::Load(masks.and1 + at), Vector::Load(masks.and2 + at), Vector::Load(masks.xor1 + at),
            Vector::Load(masks.xor2 + at)};
  }
  template <class Vector>
  Vector AtTile(Vector band, std::size_t offset, std::size_t tileOffset) const {
    return Tiles<Vector>(tileOffset).Apply(band, Vector::Load(source + offset));
  }
  // A period has twelve vectors of masks, but only four fit into the registers. So there are three passes over the row,
  // each for every third vector. The row stays in the first-level cache between them.
  template <class Vector>
  void WalkVectors(uint8_t* dst, std::size_t i, std::size_t last) const {
    constexpr std::size_t k = Vector::kBytes;
    for (std::size_t phase = 0; phase < 3; ++phase, i += k) {
      const FourMasks<Vector> tiles = Tiles<Vector>(i % kShortPeriod);
      for (std::size_t at = i; at < last; at += 3 * k) {
        tiles.Apply(Vector::Load(dst + at), Vector::Load(source + at)).Store(dst + at);
      }
    }
  }
  template <class Vector>
  Vector At(Vector band, std::size_t offset) const {
    return AtTile(band, offset, offset);
  }
};

template <class Vector, class Smaller>
void RopSourceTileRowOf(uint8_t* dst, const uint8_t* source, std::size_t bytes, const TileMasks& masks) {
  WalkTiledRow<Vector, Smaller>(dst, bytes, SourceTileOperation{source, masks});
}

// ---- D' = min(D, S)

struct MinimumOperation {
  const uint8_t* source;

  template <class Vector>
  Vector At(Vector band, std::size_t offset) const {
    return Min(band, Vector::Load(source + offset));
  }
};

template <class Vector, class Smaller>
void MinimumRowOf(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  WalkRow<Vector, Smaller>(dst, bytes, MinimumOperation{source});
}

// ---- D' = S

// Four vectors are loaded before the first is stored.
template <class Vector, class Smaller>
void CopyRowOf(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  constexpr std::size_t k = Vector::kBytes;
  if (bytes < k) {
    if constexpr (k > Smaller::kBytes) return CopyRowOf<Smaller, Smaller>(dst, source, bytes);
    std::memcpy(dst, source, bytes);
    return;
  }
  const std::size_t last = bytes - k;
  const Vector lastVector = Vector::Load(source + last);
  Vector::Load(source).Store(dst);
  std::size_t i = AlignedStart<Vector>(dst, bytes);
  for (; i + 4 * k <= last; i += 4 * k) {
    const Vector a = Vector::Load(source + i), b = Vector::Load(source + i + k);
    const Vector c = Vector::Load(source + i + 2 * k), d = Vector::Load(source + i + 3 * k);
    a.Store(dst + i);
    b.Store(dst + i + k);
    c.Store(dst + i + 2 * k);
    d.Store(dst + i + 3 * k);
  }
  for (; i < last; i += k) Vector::Load(source + i).Store(dst + i);
  lastVector.Store(dst + last);
}

}  // namespace
}  // namespace qnv
