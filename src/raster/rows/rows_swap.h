// Sources of red, green, blue in a band of blue, green, red.
//
// Byte j of the swapped source is the source's byte j + 2, j or j - 2 as j is the first, second or third of its
// pixel: three loads, each masked to its own bytes. The first and the last pixel of a row go through the plain
// kernels, so that those loads stay inside the source.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rows/row_tables.h"
#include "raster/rows/rows_vector.h"

namespace qnv {
namespace {

inline constexpr struct PlaceBytes {
  uint8_t bytes[2 + 3 * 32] = {};
  constexpr PlaceBytes() {
    for (std::size_t i = 0; i < sizeof bytes; i += 3) bytes[i] = 0xFF;
  }
} kPlaceBytes;

// The masks of a vector that starts at byte `offset` of a pixel row: for each place of a pixel its bytes.
template <class Vector>
struct Places {
  Vector first, second, third;

  explicit Places(std::size_t offset)
      : first(Vector::Load(kPlaceBytes.bytes + offset % 3)),
        second(Vector::Load(kPlaceBytes.bytes + (offset + 2) % 3)),
        third(Vector::Load(kPlaceBytes.bytes + (offset + 1) % 3)) {}

  Vector Swapped(const uint8_t* s) const {
    return ((Vector::Load(s + 2) & first) ^ (Vector::Load(s) & second)) ^ (Vector::Load(s - 2) & third);
  }
};

// source and the masks' tiles belong to the band byte that the walk begins with, the second pixel.
struct SwapOperation {
  const uint8_t* source;
  ByteMasks masks;

  template <class Vector>
  struct Constants {
    Places<Vector> places;
  };

  template <class Vector>
  Constants<Vector> Tiles(std::size_t at) const {
    return {Places<Vector>(at)};
  }
  template <class Vector>
  Vector With(Vector band, std::size_t offset, const Constants<Vector>& constants) const {
    const FourMasks<Vector> m{Vector::Fill(masks.and1), Vector::Fill(masks.and2), Vector::Fill(masks.xor1),
                              Vector::Fill(masks.xor2)};
    return m.Apply(band, constants.places.Swapped(source + offset));
  }
  template <class Vector>
  Vector AtTile(Vector band, std::size_t offset, std::size_t) const {
    return With(band, offset, Tiles<Vector>(offset));
  }
};

struct SwapTileOperation {
  const uint8_t* source;
  TileMasks masks;

  template <class Vector>
  struct Constants {
    Places<Vector> places;
    std::size_t tile;
  };

  template <class Vector>
  Constants<Vector> Tiles(std::size_t at) const {
    return {Places<Vector>(at), at};
  }
  template <class Vector>
  Vector With(Vector band, std::size_t offset, const Constants<Vector>& c) const {
    const FourMasks<Vector> m{Vector::Load(masks.and1 + c.tile), Vector::Load(masks.and2 + c.tile),
                              Vector::Load(masks.xor1 + c.tile), Vector::Load(masks.xor2 + c.tile)};
    return m.Apply(band, c.places.Swapped(source + offset));
  }
  template <class Vector>
  Vector AtTile(Vector band, std::size_t offset, std::size_t tileOffset) const {
    return With(band, offset, Constants<Vector>{Places<Vector>(offset), tileOffset});
  }
};

// Rows that are worth their constants; below, the plain kernels are as fast.
inline constexpr std::size_t kFewSwapped = 32;

template <class Vector>
void RopSwapRow24Of(uint8_t* dst, const uint8_t* source, std::size_t pixels, const ByteMasks& masks) {
  if (pixels < kFewSwapped) return plain::RopSwapRow24(dst, source, pixels, masks);
  const std::size_t last = 3 * (pixels - 1);
  plain::RopSwapRow24(dst, source, 1, masks);
  WalkLongTiledRow<Vector>(dst + 3, last - 3, SwapOperation{source + 3, masks});
  plain::RopSwapRow24(dst + last, source + last, 1, masks);
}

// Without a look at the band.
template <class Vector>
void SwapRow24Of(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kFewSwapped) return plain::SwapRow24(dst, source, pixels);
  constexpr std::size_t k = Vector::kBytes;
  const std::size_t last = 3 * (pixels - 1);
  plain::SwapRow24(dst, source, 1);
  const Places<Vector> p0(0), p1(k), p2(2 * k);
  std::size_t i = 3;
  for (; i + 3 * k <= last; i += 3 * k) {
    const Vector a = p0.Swapped(source + i);
    const Vector b = p1.Swapped(source + i + k);
    const Vector c = p2.Swapped(source + i + 2 * k);
    a.Store(dst + i);
    b.Store(dst + i + k);
    c.Store(dst + i + 2 * k);
  }
  plain::SwapRow24(dst + i, source + i, (3 * pixels - i) / 3);
}

template <class Vector>
void RopSwapTileRow24Of(uint8_t* dst, const uint8_t* source, std::size_t pixels, const TileMasks& masks) {
  if (pixels < kFewSwapped) return plain::RopSwapTileRow24(dst, source, pixels, masks);
  const std::size_t last = 3 * (pixels - 1);
  const auto from = [&](std::size_t at) {
    return TileMasks{masks.and1 + at, masks.and2 + at, masks.xor1 + at, masks.xor2 + at};
  };
  plain::RopSwapTileRow24(dst, source, 1, masks);
  WalkLongTiledRow<Vector>(dst + 3, last - 3, SwapTileOperation{source + 3, from(3)});
  plain::RopSwapTileRow24(dst + last, source + last, 1, from(last % kShortPeriod));
}

}  // namespace
}  // namespace qnv
