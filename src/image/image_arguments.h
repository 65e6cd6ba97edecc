// The arguments of a call of QNVStretchDIBits as one record.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

// As the host passes them, except that get is cut to 16 bits.
struct ImageArguments {
  uint16_t get;                             // 1 asks to read the band, which is refused
  int32_t dstX, dstY, dstWidth, dstHeight;  // caller coordinates; extents may be negative
  int32_t srcX, srcY, srcWidth, srcHeight;  // pixels of the bitmap; extents may be negative
  const void* bits;                         // rows or run lengths
  const void* bitmapInfo;                   // BITMAPINFOHEADER, then color table or masks
  const void* conversionInfo;               // not read
  uint32_t rop;
  const PhysicalBrush* brush;
  const DRAWMODE* drawMode;
  const BandRect* clip;
};

}  // namespace qnv
