// Bringing a dual-plane device out of the state in which its tag plane is known to hold nothing but 1, so that every
// transfer has to write tags. Only an image does that.
#pragma once

#include <cstdint>

#include "support/test_device.h"

namespace qnv::test {

// Tag that no call writes, for telling kept tags from written ones.
inline constexpr uint8_t kOldTag = 0x55;

// Paints an image of one pixel at page position (x, y). Returns the call's 16-bit result.
uint32_t PaintOnePixelImage(DeviceHandle* handle, int32_t x, int32_t y);

// After this the tag plane holds kOldTag everywhere, padding included, the band is noise made from
// `seed`, and there is no origin. Requires: the band lies where the device was made.
void MakeTagsMixed(TestDevice* device, uint64_t seed);

}  // namespace qnv::test
