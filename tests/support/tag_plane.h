// Dual-plane devices whose tag plane is not known to hold nothing but 1, so that every call has to write the tags that
// it sets. Only an image brings a device into that state.
#pragma once

#include <cstdint>
#include <string_view>

#include "support/plane_image.h"

namespace qnv::test {

// Tag that no call writes, for telling kept tags from written ones.
inline constexpr uint8_t kOldTag = 0x55;

// Paints an image of one pixel at page position (x, y). Returns the call's 16-bit result.
uint32_t PaintOnePixelImage(DeviceHandle* handle, int32_t x, int32_t y);

// After this the tag plane holds kOldTag everywhere, padding included, the band holds the device's fill byte, and there
// is no origin. Requires: the band lies where the device was made.
void MixTags(TestDevice* device);

// The same with noise made from `seed` in the band.
void MakeTagsMixed(TestDevice* device, uint64_t seed);

// The tag plane as MixTags leaves it.
PlaneImage MixedTags(const TestDevice& device);

// The tag plane has kept all tags but those at the picture's '1' (graphics) and '0' (text background) pixels.
testing::AssertionResult TagsMarked(const TestDevice& device, std::string_view picture);

}  // namespace qnv::test
