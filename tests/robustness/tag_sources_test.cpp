// Sources of the dual-plane device whose numbers would lead out of their memory.
#include <gtest/gtest.h>

#include <cstdint>

#include "image/dib_builder.h"

namespace qnv::test {
namespace {

// A source without width or height, or turned inside out, has no pixel: nothing is painted, nothing is tagged.
TEST(TagSources, WithoutPixels) {
  FencedBuffer pixels(3 * 4 * 4, 0x55);
  TestDevice device({.tagPlane = true});
  const Dib dib = PictureDib(1, "a", {});
  ASSERT_EQ(1u, Stretch(device, dib, {60, 30, 1, 1, 0, 0, 1, 1}));  // from now on tags are written
  const std::vector<uint8_t> band = device.BandBytes();
  const std::vector<uint8_t> tags = device.TagBytes();
  const DRAWMODE mode = MakeDrawMode();
  struct Size {
    int16_t width, height;
  };
  for (const Size size :
       {Size{-32768, 4}, Size{-32768, -32768}, Size{-1, 4}, Size{4, -1}, Size{4, -32768}, Size{0, 4}, Size{4, 0}}) {
    for (int32_t srcX : {0, 1, INT32_MAX, INT32_MAX - 1, INT32_MIN, -1, 32767, -32768}) {
      for (int32_t srcY : {0, INT32_MAX, INT32_MIN, -1}) {
        for (uint8_t depth : {uint8_t{24}, uint8_t{1}}) {
          for (uint32_t rop : {uint32_t{SRCAND}, uint32_t{SRCPAINT}}) {
            const SourceBitmap source{0, size.width, size.height, 12, 1, depth, pixels.data()};
            QNVDevBitBlt(device.handle(), 0, 0, &source, srcX, srcY, 64, 32, rop, nullptr, &mode, &kEverywhere);
            ASSERT_EQ(band, device.BandBytes()) << size.width << " x " << size.height << " at " << srcX << ", " << srcY;
            ASSERT_EQ(tags, device.TagBytes()) << size.width << " x " << size.height << " at " << srcX << ", " << srcY;
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace qnv::test
