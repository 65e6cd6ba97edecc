// What the painting code reads of a device, as plain values: the code below device/ knows no device.
#pragma once

#include "qnvdrv10.h"
#include "raster/fill_pattern.h"
#include "raster/rows/row_kernels.h"

namespace qnv {

// Added to the coordinates of a call before they are compared with the band.
using Origin = DrawingOrigin;

struct PaintState {
  const RowKernels& rows;
  // The fill prepared by the last call that had a draw mode. It outlives the call: a call with a null draw mode paints
  // with it.
  FillPattern& fillPattern;
  Origin origin;
};

}  // namespace qnv
