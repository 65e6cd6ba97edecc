// Blocks of pixels whose bytes only change places: exchanging red and blue, reversing, dropping every fourth byte. The
// sixteen bytes of each half of a destination vector come from about eighteen neighboring source bytes, slightly more
// than one shuffle can reach, so each vector takes two overlapping loads and two shuffles. Load addresses and shuffle
// indices are computed by the compiler from a map of the rearrangement. Offsets are in bytes from the block's start.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "raster/rows/pixel_blocks.h"
#include "raster/rows/vector32.h"

namespace qnv {
namespace {

// Maps: for each destination byte of a block, 96 of them here, the source byte that goes there, counted from the first
// source byte of the block. kSourceBytes: bytes of a source pixel. kBackward: the source of the row is read from its
// end, so the second half of a block comes first.
struct SwapMap {
  static constexpr bool kBackward = false;
  static constexpr std::ptrdiff_t kSourceBytes = 3;
  static constexpr std::ptrdiff_t From(std::ptrdiff_t byte) { return byte / 3 * 3 + 2 - byte % 3; }
};
template <std::ptrdiff_t kPixels>
struct ReverseMapOf {
  static constexpr bool kBackward = true;
  static constexpr std::ptrdiff_t kSourceBytes = 3;
  static constexpr std::ptrdiff_t From(std::ptrdiff_t byte) { return (kPixels - 1 - byte / 3) * 3 + byte % 3; }
};
using ReverseMap = ReverseMapOf<std::ptrdiff_t{kBlockPixels}>;
struct PackMap {
  static constexpr bool kBackward = false;
  static constexpr std::ptrdiff_t kSourceBytes = 4;
  static constexpr std::ptrdiff_t From(std::ptrdiff_t byte) { return byte / 3 * 4 + byte % 3; }
};
struct PackSwapMap {
  static constexpr bool kBackward = false;
  static constexpr std::ptrdiff_t kSourceBytes = 4;
  static constexpr std::ptrdiff_t From(std::ptrdiff_t byte) { return byte / 3 * 4 + 2 - byte % 3; }
};

// Where the two loads of a destination vector begin, and what each contributes.
struct Windows {
  std::ptrdiff_t low = 0, high = 0;
  alignas(32) uint8_t fromLow[32] = {};
  alignas(32) uint8_t fromHigh[32] = {};
  bool complete = true;  // the two loads contain every byte that is needed
};

// Computes the loads and shuffles of one of the three vectors of a block.
template <class Map>
constexpr Windows MakeWindows(std::ptrdiff_t vector) {
  constexpr uint8_t kNone = 0x80;
  Windows windows;
  const auto from = [=](std::ptrdiff_t i) { return Map::From(32 * vector + (Map::kBackward ? i ^ 16 : i)); };
  // The lowest and the highest load that any byte needs. A byte shuffle works within each half, so half i / 16 of a
  // load supplies half i / 16 of the vector.
  windows.low = from(0);
  windows.high = from(0) - 15;
  for (std::ptrdiff_t i = 0; i < 32; ++i) {
    const std::ptrdiff_t half = i / 16 * 16;
    windows.low = std::min(windows.low, from(i) - half);
    windows.high = std::max(windows.high, from(i) - half - 15);
  }
  for (std::ptrdiff_t i = 0; i < 32; ++i) {
    const std::ptrdiff_t half = i / 16 * 16;
    const std::ptrdiff_t inLow = from(i) - half - windows.low;
    const std::ptrdiff_t inHigh = from(i) - half - windows.high;
    windows.fromLow[i] = windows.fromHigh[i] = kNone;
    if (inLow < 16) {
      windows.fromLow[i] = static_cast<uint8_t>(inLow);
    } else {
      windows.fromHigh[i] = static_cast<uint8_t>(inHigh);
      windows.complete = windows.complete && inHigh >= 0;
    }
  }
  return windows;
}

template <class Map>
inline constexpr Windows kWindows[3] = {MakeWindows<Map>(0), MakeWindows<Map>(1), MakeWindows<Map>(2)};

// Whether the loads of a block stay inside the block.
template <class Map>
inline constexpr bool kStaysInside = [] {
  for (const Windows& w : kWindows<Map>) {
    if (w.low < 0 || w.high + 32 > Map::kSourceBytes * std::ptrdiff_t{kBlockPixels}) return false;
  }
  return true;
}();

// One of the three vectors of a block.
template <class Map, std::size_t kVector>
Vector32 RearrangedVector(const uint8_t* source) {
  constexpr const Windows& w = kWindows<Map>[kVector];
  static_assert(w.complete);
  const Vector32 low = Shuffle(Vector32::Load(source + w.low), Vector32::Load(w.fromLow));
  const Vector32 high = Shuffle(Vector32::Load(source + w.high), Vector32::Load(w.fromHigh));
  const Vector32 both = low | high;
  return Map::kBackward ? Vector32{_mm256_permute4x64_epi64(both.v, 0x4E)} : both;
}

// Rearranges a row of at least kMinRearranged pixels. For maps whose loads reach outside a block, edge(i) is called to
// store the first and the last pixel, so that no load leaves the source.
template <class Map, class Edge>
void RearrangeRow(uint8_t* dst, const uint8_t* source, std::size_t pixels, Edge edge) {
  constexpr std::size_t kEdge = kStaysInside<Map> ? 0 : 1;
  if constexpr (kEdge != 0) {
    edge(std::size_t{0});
    edge(pixels - 1);
  }
  uint8_t* const inner = dst + 3 * kEdge;
  const std::size_t innerPixels = pixels - 2 * kEdge;
  CoverWithBlocks(innerPixels, PixelsToAlignment<3>(inner), [&](std::size_t i) {
    const std::size_t first = kEdge + (Map::kBackward ? innerPixels - kBlockPixels - i : i);
    const uint8_t* const block = source + static_cast<std::size_t>(Map::kSourceBytes) * first;
    RearrangedVector<Map, 0>(block).Store(inner + 3 * i);
    RearrangedVector<Map, 1>(block).Store(inner + 3 * i + 32);
    RearrangedVector<Map, 2>(block).Store(inner + 3 * i + 64);
  });
}

inline constexpr std::size_t kMinRearranged = kBlockPixels + 2;

}  // namespace
}  // namespace qnv
