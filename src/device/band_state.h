// The state of a device: its description, its band, the drawing origin, the fill pattern and work memory. Every device
// class has it; the code below device/ receives parts of it as plain values.
#pragma once

#include <cstdint>

#include "image/image_buffers.h"
#include "output/scratch_buffer.h"
#include "qnvdrv10.h"
#include "raster/paint_state.h"
#include "raster/rect.h"
#include "raster/rows/row_kernels.h"

namespace qnv {

// First size of the work memory of span output, in bytes.
inline constexpr uint32_t kScratchBytes = 1024;

// Bytes of a band row, padded to a multiple of four. The sum wraps at 32 bits, as it does in hosts.
constexpr uint32_t StrideOf(uint32_t width, uint32_t bytesPerPixel) { return (width * bytesPerPixel + 3) & ~3u; }

struct BandState {
  DeviceDescription description{};
  DeviceSize deviceSize{};    // at resolution B
  Rect bandRect{};            // place of the band: page pixels, on the resolution-mapping device band pixels
  Origin origin{};            // page pixels, added to the coordinates of drawing calls
  uint8_t* buffer = nullptr;  // memory of the band, owned by the host; null: nothing is painted
  // Kept between calls because a call with a null draw mode paints with the pattern of the call before. The initial
  // pattern has a period of 0 and paints nothing.
  FillPattern fillPattern{};
  uint32_t stride = 0;  // bytes from one band row to the next
  const RowKernels* rows = &KernelsFor(DetectCpuLevel(), HasFastStrings());
  ScratchBuffer scratch{kScratchBytes};
  ImageBuffers imageBuffers;

  bool Is24() const { return description.bitsPerPixel == 24; }

  PaintState Paint() { return {*rows, fillPattern, origin}; }
  // For calls whose coordinates have the origin added already.
  PaintState PaintWithoutOrigin() { return {*rows, fillPattern, Origin{0, 0}}; }
};

}  // namespace qnv
