// The arguments of a bit-block transfer as one record, as the host passes them to QNVDevBitBlt.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

struct BltArguments {
  int32_t destX, destY;        // top left of the destination, caller coordinates
  const SourceBitmap* source;  // null when the operation reads none
  int32_t srcX, srcY;          // the source pixel for (destX, destY)
  int32_t width, height;
  uint32_t rop;  // the index of the operation in bits 16..23
  const PhysicalBrush* brush;
  const DRAWMODE* drawMode;
  const BandRect* clip;
};

}  // namespace qnv
