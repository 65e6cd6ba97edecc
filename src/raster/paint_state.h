// The part of a device's state that painting needs, as plain values: code below device/ does not include devices.
#pragma once

#include "qnvdrv10.h"
#include "raster/fill_pattern.h"
#include "raster/rows/row_kernels.h"

namespace qnv {

// Added to the coordinates of a call before they are compared with the band; page pixels.
using Origin = DrawingOrigin;

struct PaintState {
  // The row kernels of the level that the device chose.
  const RowKernels& rows;
  // The fill prepared by the last call that had a draw mode. It belongs to the device, because a call with a null draw
  // mode paints with the fill of the call before.
  FillPattern& fillPattern;
  Origin origin;
};

}  // namespace qnv
