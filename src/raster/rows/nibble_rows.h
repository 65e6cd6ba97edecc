// Rows of images with 16 colors, two pixels a byte, for kernels that read whole bytes.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv {
namespace {

// The pixels of a row that are whole bytes of the source.
struct WholeBytes {
  uint8_t* dst;
  const uint8_t* source;
  std::size_t pixels;  // even
};

// Leaves a first pixel in the low half of a byte, and a last one in the high half, to the plain kernel, and returns
// what lies between. odd: the row begins in a low half. Requires: at least one pixel.
template <std::size_t kBytesPerPixel, auto Plain>
WholeBytes PaintHalfBytes(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table) {
  if (odd) {
    Plain(dst, source++, true, 1, table);
    dst += kBytesPerPixel;
    --pixels;
  }
  if (pixels % 2 != 0) {
    --pixels;
    Plain(dst + kBytesPerPixel * pixels, source + pixels / 2, false, 1, table);
  }
  return {dst, source, pixels};
}

}  // namespace
}  // namespace qnv
