// The record of an image call's arguments.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

// The arguments of StretchDIBits, as the host passes them; get is already cut to 16 bits.
struct ImageArguments {
  uint16_t get;
  int32_t dstX, dstY, dstWidth, dstHeight;
  int32_t srcX, srcY, srcWidth, srcHeight;
  const void* bits;
  const void* bitmapInfo;
  const void* conversionInfo;
  uint32_t rop;
  const PhysicalBrush* brush;
  const DRAWMODE* drawMode;
  const BandRect* clip;
};

}  // namespace qnv
