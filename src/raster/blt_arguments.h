// The record of a bit-block transfer's arguments.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

// The arguments of a bit-block transfer, as the host passes them.
struct BltArguments {
  int32_t destX, destY;
  const SourceBitmap* source;
  int32_t srcX, srcY;
  int32_t width, height;
  uint32_t rop;
  const PhysicalBrush* brush;
  const DRAWMODE* drawMode;
  const BandRect* clip;
};

}  // namespace qnv
