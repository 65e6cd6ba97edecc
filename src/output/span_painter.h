// Paints spans of band rows with a prepared fill pattern under its binary raster operation.
#pragma once

#include <cstdint>

#include "raster/band_view.h"
#include "raster/pattern_masks.h"
#include "raster/rows/row_kernels.h"

namespace qnv {

class SpanPainter {
 public:
  // regray: pixels that are written become gray levels. The pattern must not change meanwhile.
  SpanPainter(const BandView& band, const RowKernels& rows, const FillPattern& pattern, bool regray);

  // False when no span can change anything.
  bool Paints() const { return paints_; }

  // Paints the pixels [left, right) of row y, device space, which the pattern's cells are counted in too.
  // Requires: inside the band's rectangle, left < right.
  void Paint(int32_t y, int32_t left, int32_t right);

  // The same for rows [top, bottom).
  void PaintRows(int32_t top, int32_t bottom, int32_t left, int32_t right);

 private:
  void PaintBlock(int32_t top, std::size_t rows, int32_t left, std::size_t pixels);
  void Regray(uint8_t* dst, std::size_t pixels, int32_t y, int32_t left);

  const BandView& band_;
  const RowKernels& rows_;
  PatternMasks masks_;
  PatternMasks painted_;  // and2, xor2: which cells are kept, which are painted
  bool hatched_;
  bool fills_;  // the old pixel does not matter
  bool paints_;
  bool regray_;
};

}  // namespace qnv
