// The memory of one plane of the band as pixel code sees it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rect.h"

namespace qnv {

struct BandView {
  uint8_t* bits;           // pixel (rect.left, rect.top); host memory
  uint32_t stride;         // bytes from one row to the next
  Rect rect;               // device space; empty when the host gave no memory
  uint32_t bytesPerPixel;  // 3 (blue, green, red) or 1 (gray)

  // Requires: rect holds the point.
  uint8_t* At(int32_t x, int32_t y) const {
    return RelativeAt(static_cast<uint32_t>(WrapSubtract(x, rect.left)),
                      static_cast<uint32_t>(WrapSubtract(y, rect.top)));
  }

  // column, row: from the band's top-left pixel.
  uint8_t* RelativeAt(uint32_t column, uint32_t row) const {
    return bits + std::size_t{row} * stride + std::size_t{column} * bytesPerPixel;
  }

  // Whether so many pixels are a row without padding: several of them are one long row.
  bool IsWholeRow(int32_t pixels) const { return static_cast<uint32_t>(pixels) * bytesPerPixel == stride; }
};

}  // namespace qnv
