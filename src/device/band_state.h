// What every device class keeps of the band it draws on.
#pragma once

#include <cstdint>

#include "device/scratch_buffer.h"
#include "image/image_buffers.h"
#include "qnvdrv10.h"
#include "raster/band_view.h"
#include "raster/fill_pattern.h"
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
  Rect blitClip{};  // of the transfer in progress, origin added; all zeros = none
  int32_t originX = 0;
  int32_t originY = 0;
  uint8_t* buffer = nullptr;  // the host's
  FillPattern fillPattern{};  // no period until a draw mode has been seen
  uint32_t stride = 0;
  const RowKernels* rows = &KernelsFor(DetectCpuLevel());
  ScratchBuffer scratch{kScratchBytes};
  ImageBuffers imageBuffers;

  bool Is24() const { return description.bitsPerPixel == 24; }
};

// Sets the drawing origin to zero for a scope.
class OriginAtZero {
 public:
  explicit OriginAtZero(BandState& state) : state_(state), x_(state.originX), y_(state.originY) {
    state.originX = state.originY = 0;
  }
  ~OriginAtZero() {
    state_.originX = x_;
    state_.originY = y_;
  }
  OriginAtZero(const OriginAtZero&) = delete;
  OriginAtZero& operator=(const OriginAtZero&) = delete;

 private:
  BandState& state_;
  int32_t x_, y_;
};

}  // namespace qnv
