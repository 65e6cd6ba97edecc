// Exchanges red and blue of 24-bit pixels without byte shuffles, for levels that have none.
//
// Destination byte j is source byte j + 2, j or j - 2, depending on whether it is the first, second or third byte of
// its pixel. So each vector is put together from three loads, each masked to its own bytes. The first pixels and the
// last ones of a row are left to the plain kernel, so that those loads stay inside the source.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rows/row_tables.h"
#include "raster/rows/rows_vector.h"

namespace qnv {
namespace {

// Every third byte is 0xFF: loaded at three offsets, these are the masks of the three places.
inline constexpr struct PlaceBytes {
  uint8_t bytes[2 + 3 * 32] = {};
  constexpr PlaceBytes() {
    for (std::size_t i = 0; i < sizeof bytes; i += 3) bytes[i] = 0xFF;
  }
} kPlaceBytes;

// The masks for a vector at byte `offset` of a row: one for each of the three places in a pixel.
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

// For shorter rows loading the masks takes longer than it saves.
inline constexpr std::size_t kMinSwapped = 32;

// Three vectors are a whole number of pixels, so the masks of the three repeat.
template <class Vector>
void SwapRow24Of(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  if (pixels < kMinSwapped) return plain::SwapRow24(dst, source, pixels);
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

}  // namespace
}  // namespace qnv
