// The record of an output call's arguments.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

// The arguments of Output, as the host passes them; style and count are already cut to 16 bits.
struct OutputArguments {
  uint16_t style;
  uint16_t count;
  const int16_t* points;
  const PhysicalPen* pen;
  const PhysicalBrush* brush;
  const DRAWMODE* drawMode;
  const BandRect* clip;
};

}  // namespace qnv
