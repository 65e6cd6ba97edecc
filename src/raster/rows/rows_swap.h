// Red, green, blue into blue, green, red without byte shuffles, for levels that have none.
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

// The masks of a vector that starts at byte `offset` of a pixel row: one for each of the three places in a pixel.
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

// Shorter rows do not repay loading the constants; the plain kernel is as fast.
inline constexpr std::size_t kMinSwapped = 32;

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
