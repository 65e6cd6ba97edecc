// A plane of the band as painting code sees it: its memory, its row distance and its place.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rect.h"

namespace qnv {

struct BandView {
  uint8_t* bits;           // pixel (rect.left, rect.top), in memory of the host
  uint32_t stride;         // bytes from one row to the next
  Rect rect;               // in band pixels; empty when the host gave no memory
  uint32_t bytesPerPixel;  // 3 (blue, green, red) or 1 (gray)

  // The first byte of a pixel. Requires: rect contains the point.
  uint8_t* At(int32_t x, int32_t y) const {
    return RelativeAt(static_cast<uint32_t>(WrapSubtract(x, rect.left)),
                      static_cast<uint32_t>(WrapSubtract(y, rect.top)));
  }

  // The same with column and row counted from the top left pixel of the band.
  uint8_t* RelativeAt(uint32_t column, uint32_t row) const {
    return bits + std::size_t{row} * stride + std::size_t{column} * bytesPerPixel;
  }

  // Whether a row of so many pixels has no padding. Such rows follow each other in memory like one long row.
  bool IsWholeRow(int32_t pixels) const { return static_cast<uint32_t>(pixels) * bytesPerPixel == stride; }
};

}  // namespace qnv
