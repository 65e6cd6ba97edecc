// Converts rows of bitmap pixels into one of the three target forms. A bitmap format is two functions: one for
// consecutive pixels, one for pixels at given indices. Mirroring and enlarging work on converted pixels, whatever their
// format was.
#pragma once

#include <cstdint>

#include "image/color_tables.h"
#include "raster/rows/row_kernels.h"

namespace qnv {

// The colors of a bitmap: the table is used at 1, 4 and 8 bits a pixel, the masks at 16.
struct PixelColors {
  ColorTable table;
  PixelMasks masks;
};

// What converters need besides the pixels.
struct ConverterContext {
  const PixelColors& colors;
  const RowKernels& rows;
};

struct RowConverter {
  // Converts the pixels first .. first + count - 1 of a row. out: `count` pixels in target form.
  void (*Consecutive)(uint8_t* out, const uint8_t* row, uint32_t first, std::size_t count,
                      const ConverterContext& context);
  // Converts the pixels indices[0] .. indices[count - 1] of a row, in this order; an index may occur more than once.
  void (*Indexed)(uint8_t* out, const uint8_t* row, const uint16_t* indices, std::size_t count,
                  const ConverterContext& context);
};

// The converter for rows of a depth. Requires: a depth of 1, 4, 8, 16, 24 or 32.
RowConverter RowConverterFor(uint32_t bitCount, PixelTarget target);

}  // namespace qnv
