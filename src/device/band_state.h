// What every device class keeps of the band it draws on.
#pragma once

#include <cstdint>

#include "image/image_buffers.h"
#include "output/scratch_buffer.h"
#include "qnvdrv10.h"
#include "raster/paint_state.h"
#include "raster/rect.h"
#include "raster/rows/row_kernels.h"

namespace qnv {

inline constexpr uint32_t kScratchBytes = 1024;

// Bytes of a band row: padded to 32 bits, wrapping as the host's own sum does.
constexpr uint32_t StrideOf(uint32_t width, uint32_t bytesPerPixel) { return (width * bytesPerPixel + 3) & ~3u; }

struct BandState {
  DeviceDescription description{};
  DeviceSize deviceSize{};  // at resolution B
  Rect bandRect{};
  Origin origin{};
  uint8_t* buffer = nullptr;  // the host's
  // State, not an argument: a call with a null draw mode paints with the pattern of the call before. It has no period,
  // and paints nothing, until a draw mode has been seen.
  FillPattern fillPattern{};
  uint32_t stride = 0;
  const RowKernels* rows = &KernelsFor(DetectCpuLevel());
  ScratchBuffer scratch{kScratchBytes};
  ImageBuffers imageBuffers;

  bool Is24() const { return description.bitsPerPixel == 24; }

  PaintState Paint() { return {*rows, fillPattern, origin}; }
  // For coordinates that hold the origin already.
  PaintState PaintWithoutOrigin() { return {*rows, fillPattern, Origin{0, 0}}; }
};

}  // namespace qnv
