// SRCCOPY of an image on the resolution-mapping device: writes a converted row to those of its rows and columns that
// the band keeps.
#pragma once

#include <cstdint>

#include "image/kept_columns.h"
#include "image/row_stepping.h"
#include "raster/band_view.h"
#include "raster/mappings.h"
#include "raster/rows/row_kernels.h"

namespace qnv {

class KeptRowCopier {
 public:
  // top: first visible row of the picture in caller pixels, counted from the top of the band. regray: pixels become
  // gray levels.
  KeptRowCopier(const BandView& band, const KeptMapping& mapping, const KeptColumns& columns, int32_t top,
                const RowKernels& kernels, bool regray)
      : band_(band),
        mapping_(mapping),
        columns_(columns),
        kernels_(kernels),
        regray_(regray),
        top_(top),
        bandRows_(WrapSubtract(band.rect.bottom, band.rect.top)) {}

  // Whether a source row is painted at all. Intended: when the first destination row that it covers is not kept, the
  // others are not painted either.
  bool Keeps(const CoveredRows& rows) const {
    return rows.count != 0 && !columns_.IsEmpty() && BandRow(rows.first) != nullptr;
  }

  // Writes a source row. pixels: the converted row from the first visible column on; a byte behind its last pixel is
  // read. Requires: Keeps(rows).
  void Copy(const uint8_t* pixels, const CoveredRows& rows) const;

 private:
  // The memory of the band row that shows a destination row, which is counted from the first visible one; null when
  // none does.
  uint8_t* BandRow(int32_t row) const {
    const int32_t bandRow = mapping_.BandRow(WrapAdd(top_, row));
    if (bandRow < 0 || bandRow >= bandRows_) return nullptr;
    return band_.RelativeAt(0, static_cast<uint32_t>(bandRow));
  }

  const BandView& band_;
  const KeptMapping mapping_;
  const KeptColumns& columns_;
  const RowKernels& kernels_;
  const bool regray_;
  const int32_t top_, bandRows_;
};

}  // namespace qnv
