// Paints spans, runs of pixels of a band row, with a prepared fill pattern and its binary raster operation.
#pragma once

#include <cstdint>

#include "raster/band_view.h"
#include "raster/pattern_masks.h"
#include "raster/rows/row_kernels.h"

namespace qnv {

class SpanPainter {
 public:
  // regray: pixels become gray levels after they are written. The pattern must not change while this object is used.
  SpanPainter(const BandView& band, const RowKernels& rows, const FillPattern& pattern, bool regray);

  // False when no span can change anything.
  bool Paints() const { return paints_; }

  // Paints the pixels [left, right) of row y. Band pixels; the cells of the pattern are counted from pixel (0, 0).
  // Requires: inside the band's rectangle, left < right.
  void Paint(int32_t y, int32_t left, int32_t right);

  // Paints the pixels [left, right) of each of the rows [top, bottom).
  void PaintRows(int32_t top, int32_t bottom, int32_t left, int32_t right);

 private:
  void PaintBlock(int32_t top, std::size_t rows, int32_t left, std::size_t pixels);
  // Replaces the painted pixels of a row by their gray levels.
  void Regray(uint8_t* dst, std::size_t pixels, int32_t y, int32_t left);

  const BandView& band_;
  const RowKernels& rows_;
  PatternMasks masks_;
  PatternMasks painted_;  // and2 is 0xFF for cells that are kept, xor2 for cells that are painted
  bool hatched_;
  bool fills_;   // the operation does not read the band
  bool paints_;  // see Paints
  bool regray_;
};

}  // namespace qnv
