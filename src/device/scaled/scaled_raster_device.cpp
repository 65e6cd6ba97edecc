// The resolution-mapping device: construction, clearing, and the view of its band.
#include "device/scaled/scaled_raster_device.h"

namespace qnv {

ScaledRasterDevice::ScaledRasterDevice(const DeviceDescription& description) : Device(description) {
  map_.SetResolutions(description.resolutionA, description.resolutionB);
  // Intended: rounded, where the plain devices truncate.
  state_.deviceSize = {static_cast<uint32_t>(map_.MapToBand(static_cast<int32_t>(description.width))),
                       static_cast<uint32_t>(map_.MapToBand(static_cast<int32_t>(description.height)))};
}

ScaledRasterDevice::ScaledRasterDevice(const DeviceDescription& description, const BandRect& bandRect, void* buffer)
    : ScaledRasterDevice(description) {
  state_.bandRect = bandRect;
  state_.buffer = static_cast<uint8_t*>(buffer);
  // A resolution of 0 cannot be mapped; the factory then refuses the device.
  hasTables_ = description.resolutionA != 0 && map_.Build();
}

void ScaledRasterDevice::Enable(const BandRect& bandRect) {
  state_.bandRect = bandRect;
  state_.stride = StrideOf(state_.description.width, 3);
}

void ScaledRasterDevice::ClearBand() {
  const int32_t pixels = WrapAdd(static_cast<int32_t>(state_.description.width), 1);
  ClearWords(state_.buffer, WrapMultiply(pixels, 3) / 4, state_.description.height, 0xFF);
}

BandView ScaledRasterDevice::Band() const {
  return {state_.buffer, state_.stride, state_.buffer != nullptr ? state_.bandRect : Rect{0, 0, 0, 0}, 3};
}

}  // namespace qnv
