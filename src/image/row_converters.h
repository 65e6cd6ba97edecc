// Converts rows of bitmap pixels, stretched by a list of columns, into one of the three target forms.
#pragma once

#include <cstdint>

#include "image/color_tables.h"
#include "raster/rows/row_kernels.h"

namespace qnv {

// What a converter stores: destination pixel i comes from source column picks[i], or first + i without picks.
// Mirroring and stretching are nothing but other columns.
struct SourceColumns {
  const uint16_t* picks;
  int32_t first;
  int32_t count;  // destination pixels
};

// Constants of a call; which of them is read depends on the depth.
struct PixelColours {
  ColorTable table;
  PixelMasks masks;
};

// out: count pixels of the target; row: the first byte of the source row.
using RowConverter = void (*)(uint8_t* out, const uint8_t* row, const SourceColumns& columns,
                              const PixelColours& colours, const RowKernels& rows);

// Requires: a depth of 1, 4, 8, 16, 24 or 32.
RowConverter RowConverterFor(uint32_t bitCount, PixelTarget target);

}  // namespace qnv
