// The arguments of a call of QNVOutput as one record.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

// As the host passes them, except that style and count are cut to 16 bits.
struct OutputArguments {
  uint16_t style;         // OS_...
  uint16_t count;         // word pairs, records or rows, depending on the style
  const int16_t* points;  // the list; need not be aligned
  const PhysicalPen* pen;
  const PhysicalBrush* brush;
  const DRAWMODE* drawMode;
  const BandRect* clip;
};

}  // namespace qnv
