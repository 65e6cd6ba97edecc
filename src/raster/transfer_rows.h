// Paints a transfer whose area is known: chooses the row kernel by the inputs of the operation and calls it for each
// band row and run of columns.
#pragma once

#include <cstdint>

#include "raster/band_view.h"
#include "raster/mappings.h"
#include "raster/pattern_masks.h"
#include "raster/rows/row_kernels.h"
#include "raster/source_rows.h"
#include "raster/transfer_geometry.h"

namespace qnv {

class TransferRows {
  static_assert(KeptMapping::kMaxRunPixels <= SourceRows::kMaxPixels, "a run is fetched into one chunk");

 public:
  // index: the ternary operation. pattern, source: null when the operation reads none. regray: pixels become gray
  // levels after they are written.
  TransferRows(const RowKernels& rows, uint8_t index, const FillPattern* pattern, const SourceRows* source,
               uint32_t bytesPerPixel, bool regray)
      : rows_(rows),
        masks_(index, pattern, false, bytesPerPixel),
        source_(source),
        shape_(ShapeOf(index)),
        bytesPerPixel_(bytesPerPixel),
        regray_(regray) {}

  // Paints `area`, which is in caller pixels like callerBand, the rectangle of the band.
  template <class Mapping>
  void Paint(const BandView& band, const Mapping& mapping, const Rect& callerBand, const TransferArea& area) {
    if (masks_.IsEmpty()) return;
    const int32_t bandColumns = WrapSubtract(band.rect.right, band.rect.left);
    const int32_t bandRows = WrapSubtract(band.rect.bottom, band.rect.top);
    const Rect relative = Shifted(area.rect, WrapSubtract(0, callerBand.left), WrapSubtract(0, callerBand.top));
    if (Mapping::kOneToOne && JoinsRows(band, relative)) {
      const int32_t pixels = (relative.right - relative.left) * (relative.bottom - relative.top);
      return PaintRows(band, RowRange{relative.top, 1, 0}, ColumnRun{0, 0, pixels, nullptr});
    }
    // Images are painted row by row: skip the work on columns for a row that the band does not keep.
    const int32_t pageRows = WrapSubtract(relative.bottom, relative.top);
    if (!Mapping::kOneToOne && pageRows == 1 && mapping.BandRow(relative.top) < 0) return;
    mapping.ForEachRun(relative.left, WrapSubtract(relative.right, relative.left), bandColumns,
                       [&](const ColumnRun& run) {
                         if constexpr (Mapping::kOneToOne) {
                           PaintRows(band, RowRange{relative.top, relative.bottom - relative.top, 0}, run);
                         } else {
                           mapping.ForEachKeptRow(relative.top, pageRows, bandRows, [&](int32_t bandRow, int32_t row) {
                             PaintRows(band, RowRange{bandRow, 1, row - relative.top}, run);
                           });
                         }
                       });
  }

 private:
  // Which inputs a row loop has to combine: nothing but the pattern, the band, the source, or source and pattern.
  enum class Shape : uint8_t { kFill, kBandOnly, kSourceCopy, kSource, kSourcePattern };

  static Shape ShapeOf(uint8_t index);

  // Whether the rows can be painted as one long row: they are whole band rows without padding, the pattern is one cell,
  // and the source, if any, has no gaps between its rows.
  bool JoinsRows(const BandView& band, const Rect& relative) const {
    if (relative.left != 0 || !band.IsWholeRow(relative.right) || !masks_.IsOneCell()) return false;
    // A run counts its pixels with 31 bits.
    if (int64_t{relative.right} * WrapSubtract(relative.bottom, relative.top) > INT32_MAX) return false;
    return source_ == nullptr || source_->RowsJoin(static_cast<std::ptrdiff_t>(band.stride));
  }

  struct RowRange {
    int32_t bandRow, count;  // band rows, counted from the top of the band
    int32_t sourceRow;       // of the first one, counted from the row of the first source pixel
  };

  // Paints one run of columns in consecutive rows. Requires: rows and columns inside the band.
  void PaintRows(const BandView& band, const RowRange& range, const ColumnRun& run);
  void PaintSourceRun(uint8_t* dst, int32_t bandRow, int32_t sourceRow, const ColumnRun& run);

  const RowKernels& rows_;
  PatternMasks masks_;
  const SourceRows* source_;
  Shape shape_;
  uint32_t bytesPerPixel_;
  bool regray_;
};

}  // namespace qnv
