// The shapes of row loops over vectors of any width. Each instruction set includes this file into a namespace of
// its own and instantiates what it is good at.
//
// A Vector has kBytes, Load and Store at any alignment, Fill(byte), and & | ^ and Min as members.
//
// Remainders: the last vector of a row overlaps the one before. Where the band is read, that vector is computed
// from the old bytes before anything is stored, so that no byte is combined twice.

#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "raster/rows/row_kernels.h"
#include "raster/tile.h"

namespace qnv {
namespace {

// Machine words as the smallest vectors.
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
};

// What is computed at a byte offset of the row, from the band's vector there and the offset.
// Operation: template <class Vector> Vector At(Vector band, std::size_t offset).

// Rows shorter than a vector: two overlapping words, or single bytes.
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
    overlapping(WordVector<uint64_t>{});
  } else if (bytes >= 4) {
    overlapping(WordVector<uint32_t>{});
  } else {
    for (std::size_t i = 0; i < bytes; ++i) {
      using Byte = WordVector<uint8_t>;
      operation.template At<Byte>(Byte::Load(dst + i), i).Store(dst + i);
    }
  }
}

// Rows without a pattern: the operation is the same at every offset.
template <class Vector, class Smaller, class Operation>
void WalkRow(uint8_t* dst, std::size_t bytes, const Operation& operation) {
  if (bytes < Vector::kBytes) {
    if constexpr (Vector::kBytes > Smaller::kBytes) return WalkRow<Smaller, Smaller>(dst, bytes, operation);
    return ShortRow(dst, bytes, operation);
  }
  const std::size_t last = bytes - Vector::kBytes;
  const Vector lastResult = operation.template At<Vector>(Vector::Load(dst + last), last);
  std::size_t i = 0;
  for (; i + 2 * Vector::kBytes <= last; i += 2 * Vector::kBytes) {
    const Vector a = operation.template At<Vector>(Vector::Load(dst + i), i);
    const Vector b = operation.template At<Vector>(Vector::Load(dst + i + Vector::kBytes), i + Vector::kBytes);
    a.Store(dst + i);
    b.Store(dst + i + Vector::kBytes);
  }
  for (; i < last; i += Vector::kBytes) {
    operation.template At<Vector>(Vector::Load(dst + i), i).Store(dst + i);
  }
  lastResult.Store(dst + last);
}

// Rows with a pattern, three vectors a turn: a whole period for vectors of 16 and of 32 bytes. The tile offset
// is handed to the operation reduced to one period.
inline constexpr std::size_t kShortPeriod = 48;

template <class Vector, class Smaller, class Operation>
void WalkTiledRow(uint8_t* dst, std::size_t bytes, const Operation& operation) {
  constexpr std::size_t k = Vector::kBytes;
  if (bytes < k) {
    if constexpr (k > Smaller::kBytes) return WalkTiledRow<Smaller, Smaller>(dst, bytes, operation);
    return ShortRow(dst, bytes, operation);
  }
  const std::size_t last = bytes - k;
  const Vector lastResult = operation.template AtTile<Vector>(Vector::Load(dst + last), last, last % kShortPeriod);
  const auto t0 = operation.template Tiles<Vector>(0);
  const auto t1 = operation.template Tiles<Vector>(k);
  const auto t2 = operation.template Tiles<Vector>(2 * k);
  std::size_t i = 0;
  for (; i + 3 * k <= last; i += 3 * k) {
    const Vector a = operation.With(Vector::Load(dst + i), i, t0);
    const Vector b = operation.With(Vector::Load(dst + i + k), i + k, t1);
    const Vector c = operation.With(Vector::Load(dst + i + 2 * k), i + 2 * k, t2);
    a.Store(dst + i);
    b.Store(dst + i + k);
    c.Store(dst + i + 2 * k);
  }
  if (i < last) {
    operation.With(Vector::Load(dst + i), i, t0).Store(dst + i);
    i += k;
  }
  if (i < last) {
    operation.With(Vector::Load(dst + i), i, t1).Store(dst + i);
    i += k;
  }
  if (i < last) operation.With(Vector::Load(dst + i), i, t2).Store(dst + i);
  lastResult.Store(dst + last);
}

// ---- D' = tile: the band is not read.

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
  if (bytes >= 8 * k) {
    // Long rows: stores that do not straddle cache lines.
    Vector::Load(tile).Store(dst);
    const std::size_t head = k - (reinterpret_cast<uintptr_t>(dst) & (k - 1));
    dst += head;
    tile += head;
  }
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
  Vector With(Vector band, std::size_t, const Pair<Vector>& tiles) const {
    return (band & tiles.andMask) ^ tiles.xorMask;
  }
  template <class Vector>
  Vector AtTile(Vector band, std::size_t offset, std::size_t tileOffset) const {
    return With(band, offset, Tiles<Vector>(tileOffset));
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

template <class Wide>
struct SourceOperation {
  const uint8_t* source;
  ByteMasks bytes;
  FourMasks<Wide> wide;

  template <class Vector>
  Vector At(Vector band, std::size_t offset) const {
    const Vector s = Vector::Load(source + offset);
    if constexpr (sizeof(Vector) == sizeof(Wide)) {
      return wide.Apply(band, s);
    } else {
      const FourMasks<Vector> masks{Filled<Vector>(bytes.and1), Filled<Vector>(bytes.and2), Filled<Vector>(bytes.xor1),
                                    Filled<Vector>(bytes.xor2)};
      return masks.Apply(band, s);
    }
  }

 private:
  template <class Vector>
  static Vector Filled(uint8_t byte) {
    uint8_t all[Vector::kBytes];
    std::memset(all, byte, sizeof all);
    return Vector::Load(all);
  }
};

template <class Vector, class Smaller>
void RopSourceRowOf(uint8_t* dst, const uint8_t* source, std::size_t bytes, const ByteMasks& m) {
  const FourMasks<Vector> wide{Vector::Fill(m.and1), Vector::Fill(m.and2), Vector::Fill(m.xor1), Vector::Fill(m.xor2)};
  WalkRow<Vector, Smaller>(dst, bytes, SourceOperation<Vector>{source, m, wide});
}

struct SourceTileOperation {
  const uint8_t* source;
  TileMasks masks;

  // Twelve vectors of masks do not stay in registers: they are read where they are used.
  struct Offset {
    std::size_t at;
  };

  template <class Vector>
  Offset Tiles(std::size_t at) const {
    return {at};
  }
  template <class Vector>
  Vector With(Vector band, std::size_t offset, Offset tile) const {
    const FourMasks<Vector> m{Vector::Load(masks.and1 + tile.at), Vector::Load(masks.and2 + tile.at),
                              Vector::Load(masks.xor1 + tile.at), Vector::Load(masks.xor2 + tile.at)};
    return m.Apply(band, Vector::Load(source + offset));
  }
  template <class Vector>
  Vector AtTile(Vector band, std::size_t offset, std::size_t tileOffset) const {
    return With(band, offset, Offset{tileOffset});
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

template <class Vector>
void MinimumRowOf(uint8_t* dst, const uint8_t* source, std::size_t bytes) {
  std::size_t i = 0;
  for (; i + Vector::kBytes <= bytes; i += Vector::kBytes) {
    Min(Vector::Load(dst + i), Vector::Load(source + i)).Store(dst + i);
  }
  for (; i < bytes; ++i) dst[i] = dst[i] < source[i] ? dst[i] : source[i];
}

// ---- Red, green, blue to blue, green, red

// Byte j of the result is the source's byte j + 2, j or j - 2 as j is the first, second or third of its pixel:
// three loads, each masked to its own bytes. Works on the band from byte 3 on, while one pixel is left behind.
template <class Vector>
void SwapRow24Of(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  constexpr std::size_t k = Vector::kBytes;
  const std::size_t bytes = 3 * pixels;
  const auto swapPixel = [=](std::size_t at) {
    const uint8_t first = source[at], second = source[at + 1], third = source[at + 2];
    dst[at] = third;
    dst[at + 1] = second;
    dst[at + 2] = first;
  };
  std::size_t i = 0;
  if (bytes >= k + 6) {
    uint8_t select[3 * 16 * 2 + 3];
    for (std::size_t j = 0; j < sizeof select; ++j) select[j] = j % 3 == 0 ? 0xFF : 0;
    // phase[p]: the bytes that stand at place p of their pixel, for vectors that start at a pixel.
    const Vector masks[3] = {Vector::Load(select), Vector::Load(select + 2), Vector::Load(select + 1)};
    const auto swapped = [=](std::size_t at, const Vector& m0, const Vector& m1, const Vector& m2) {
      const uint8_t* s = source + at;
      return ((Vector::Load(s + 2) & m0) ^ (Vector::Load(s) & m1)) ^ (Vector::Load(s - 2) & m2);
    };
    swapPixel(0);
    i = 3;
    // k % 3 is 1 or 2: the places move on by that from vector to vector.
    constexpr std::size_t r = k % 3;
    for (; i + 3 * k + 2 <= bytes; i += 3 * k) {
      const Vector a = swapped(i, masks[0], masks[1], masks[2]);
      const Vector b = swapped(i + k, masks[(3 - r) % 3], masks[(4 - r) % 3], masks[(5 - r) % 3]);
      const Vector c = swapped(i + 2 * k, masks[(6 - 2 * r) % 3], masks[(7 - 2 * r) % 3], masks[(8 - 2 * r) % 3]);
      a.Store(dst + i);
      b.Store(dst + i + k);
      c.Store(dst + i + 2 * k);
    }
    // One vector at a time as far as whole pixels of it go: what it writes past them is written again.
    constexpr std::size_t whole = k / 3 * 3;
    for (; i + k + 2 <= bytes; i += whole) swapped(i, masks[0], masks[1], masks[2]).Store(dst + i);
  }
  for (; i < bytes; i += 3) swapPixel(i);
}

}  // namespace
}  // namespace qnv
