// Converts rows of bitmap pixels into one of the three target forms. A format is two functions: consecutive
// pixels, and picked ones. Mirroring and enlarging work on converted pixels and know no format.
#pragma once

#include <cstdint>

#include "image/color_tables.h"
#include "raster/rows/row_kernels.h"

namespace qnv {

// Constants of a call; which of them is read depends on the depth.
struct PixelColors {
  ColorTable table;
  PixelMasks masks;
};

struct ConverterContext {
  const PixelColors& colors;
  const RowKernels& rows;
};

struct RowConverter {
  // Pixels first .. first + count - 1 of a row. out: count pixels of the target.
  void (*Consecutive)(uint8_t* out, const uint8_t* row, uint32_t first, std::size_t count,
                      const ConverterContext& context);
  // Pixels indices[0] .. indices[count - 1]; each is looked at once for each place that it takes.
  void (*Indexed)(uint8_t* out, const uint8_t* row, const uint16_t* indices, std::size_t count,
                  const ConverterContext& context);
};

// Requires: a depth of 1, 4, 8, 16, 24 or 32.
RowConverter RowConverterFor(uint32_t bitCount, PixelTarget target);

}  // namespace qnv
