// Where a call may paint, without making it: a rectangle that holds every pixel and tag of the band that the call can
// change. It is often larger than what changes, and never smaller; unusual arguments give the whole band.
#pragma once

#include <cstdint>

#include "calls/device_shape.h"
#include "calls/invoke.h"

namespace qnv::calls {

// Pixels of the band's memory, counted from its first one; half-open.
struct Reach {
  int32_t left = 0, top = 0, right = 0, bottom = 0;

  bool IsEmpty() const { return left >= right || top >= bottom; }
  bool Holds(int64_t x, int64_t y) const { return left <= x && x < right && top <= y && y < bottom; }
  int64_t Pixels() const { return IsEmpty() ? 0 : (int64_t{right} - left) * (int64_t{bottom} - top); }
  // The smallest rectangle that holds both.
  void Join(const Reach& other);
  bool operator==(const Reach&) const = default;
};

// The columns and rows of the band that its rectangle shows, as far as its memory has them.
Reach BandReach(const DeviceShape& device);

// device: before the call. The slots are those of a call that may be made: its memory is there.
Reach ReachOf(Function function, const Slots& slots, const DeviceShape& device);

}  // namespace qnv::calls
