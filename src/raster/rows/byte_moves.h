// Blocks of 64 pixels whose bytes only change places, with permutations of whole 64-byte vectors. A map (see
// byte_windows.h) says where each byte of a block comes from. A destination vector takes 64 source bytes that lie
// within 66: one permutation of a load, into which one or two bytes are loaded under a mask. Where they lie within 86,
// as when every fourth byte is dropped, it is one permutation of two loads. Offsets are in bytes from the block's
// start.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "raster/rows/byte_windows.h"
#include "raster/rows/vector64.h"

namespace qnv {
namespace {

// 64 pixels of three bytes are three vectors of 64 bytes.
inline constexpr std::size_t kWideBlockPixels = 64;

// Calls block(i) for the first pixel i of each block of 64 until all of [0, pixels) is covered; blocks may overlap.
// second: the pixel where the second block begins, 1..64. One copy of the block's code, in an inner loop that only
// counts, serves the first block, those between and the last one.
// Requires: at least one block.
template <class Block>
void CoverWithWideBlocks(std::size_t pixels, std::size_t second, Block block) {
  const std::size_t last = pixels - kWideBlockPixels;
  const std::size_t begin[3] = {0, second, last};
  const std::size_t end[3] = {last == 0 ? 0u : 1u, last, last + 1};
  for (std::size_t part = 0; part < 3; ++part) {
    for (std::size_t i = begin[part]; i < end[part]; i += kWideBlockPixels) block(i);
  }
}

// Where a destination vector comes from: a load, its permutation, and up to two more loads of single bytes, which take
// them to their places.
struct Moves {
  std::ptrdiff_t load = 0;
  std::ptrdiff_t single[2] = {};
  uint64_t singleMask[2] = {};
  alignas(64) uint8_t index[64] = {};
};

template <class Map>
constexpr Moves MakeMoves(std::ptrdiff_t vector) {
  Moves moves;
  moves.load = 64 * (Map::kBackward ? 2 - vector : vector);
  std::size_t singles = 0;
  for (std::ptrdiff_t i = 0; i < 64; ++i) {
    const std::ptrdiff_t from = Map::From(64 * vector + i);
    if (from >= moves.load && from < moves.load + 64) {
      moves.index[i] = static_cast<uint8_t>(from - moves.load);
      continue;
    }
    // Bytes that are equally far from their places come with one load. A third distance would not compile.
    if (singles == 0 || moves.single[singles - 1] != from - i) moves.single[singles++] = from - i;
    moves.singleMask[singles - 1] |= uint64_t{1} << i;
  }
  return moves;
}

template <class Map>
inline constexpr Moves kMoves[3] = {MakeMoves<Map>(0), MakeMoves<Map>(1), MakeMoves<Map>(2)};

// A mask in a mask register, where it stays: 32-bit code would otherwise make masks anew each time.
inline __mmask64 HeldMask(uint64_t mask) {
  __mmask64 held = mask;
  __asm__("" : "+k"(held));
  return held;
}

// The masks of the single bytes of a block.
template <class Map>
struct SingleMasks {
  __mmask64 of[3][2];

  SingleMasks() {
    constexpr const Moves(&moves)[3] = kMoves<Map>;
    for (std::size_t v = 0; v < 3; ++v) {
      for (std::size_t i = 0; i < 2; ++i) {
        const uint64_t mask = moves[v].singleMask[i];
        if (mask != 0) of[v][i] = HeldMask(mask);
      }
    }
  }
};

// One of the three vectors of a block. mask: its bytes that are wanted; source bytes beyond those are not read.
template <class Map, std::size_t kVector, class... Mask>
Vector64 MovedVector(const uint8_t* source, const SingleMasks<Map>& single, Mask... mask) {
  constexpr const Moves& m = kMoves<Map>[kVector];
  __m512i v = Permute(Vector64::Load(source + m.load, mask...), Vector64::Load(m.index)).v;
  if constexpr (m.singleMask[0] != 0) {
    v = _mm512_mask_loadu_epi8(v, (single.of[kVector][0] & ... & mask), source + m.single[0]);
  }
  if constexpr (m.singleMask[1] != 0) {
    v = _mm512_mask_loadu_epi8(v, (single.of[kVector][1] & ... & mask), source + m.single[1]);
  }
  return {v};
}

// Two loads and the permutation of both.
struct PairMoves {
  std::ptrdiff_t low = 0, high = 0;
  alignas(64) uint8_t index[64] = {};
};

template <class Map>
constexpr PairMoves MakePairMoves(std::ptrdiff_t vector) {
  PairMoves moves;
  moves.low = Map::From(64 * vector);
  std::ptrdiff_t most = moves.low;
  for (std::ptrdiff_t i = 0; i < 64; ++i) {
    moves.low = std::min(moves.low, Map::From(64 * vector + i));
    most = std::max(most, Map::From(64 * vector + i));
  }
  moves.high = most - 63;
  for (std::ptrdiff_t i = 0; i < 64; ++i) {
    const std::ptrdiff_t from = Map::From(64 * vector + i);
    const bool isLow = from < moves.low + 64;
    moves.index[i] = static_cast<uint8_t>(isLow ? from - moves.low : 64 + from - moves.high);
  }
  return moves;
}

template <class Map>
inline constexpr PairMoves kPairMoves[3] = {MakePairMoves<Map>(0), MakePairMoves<Map>(1), MakePairMoves<Map>(2)};

// One of the three vectors of a block.
template <class Map, std::size_t kVector>
Vector64 PairedVector(const uint8_t* source) {
  constexpr const PairMoves& m = kPairMoves<Map>[kVector];
  return Permute(Vector64::Load(source + m.low), Vector64::Load(source + m.high), Vector64::Load(m.index));
}

// Stores a row of at least one block of 64 pixels; blocks may overlap. vectors(block, source): stores the block.
template <class Map, class StoreVectors>
void MoveRow(uint8_t* dst, const uint8_t* source, std::size_t pixels, const StoreVectors& store) {
  const std::size_t second = PixelsToAlignment<3, kWideBlockPixels>(dst);
  CoverWithWideBlocks(pixels, second, [=, &store](std::size_t i) {
    const std::size_t first = Map::kBackward ? pixels - kWideBlockPixels - i : i;
    store(dst + 3 * i, source + static_cast<std::size_t>(Map::kSourceBytes) * first);
  });
}

// Rows by the first and by the second kind of moves.
template <class Map>
void MoveSingles(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  const SingleMasks<Map> single;
  MoveRow<Map>(dst, source, pixels, [&](uint8_t* out, const uint8_t* block) {
    MovedVector<Map, 0>(block, single).Store(out);
    MovedVector<Map, 1>(block, single).Store(out + 64);
    MovedVector<Map, 2>(block, single).Store(out + 128);
  });
}

template <class Map>
void MovePairs(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  MoveRow<Map>(dst, source, pixels, [](uint8_t* out, const uint8_t* block) {
    PairedVector<Map, 0>(block).Store(out);
    PairedVector<Map, 1>(block).Store(out + 64);
    PairedVector<Map, 2>(block).Store(out + 128);
  });
}

}  // namespace
}  // namespace qnv
