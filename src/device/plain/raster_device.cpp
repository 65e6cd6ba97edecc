// The plain devices: construction, clearing, and the view of their band.
#include "device/plain/raster_device.h"

#include "color/pens_and_brushes.h"
#include "device/plain/size_scaling.h"

namespace qnv {

RasterDevice::RasterDevice(const DeviceDescription& description) : Device(description) {
  state_.deviceSize = ScaledDeviceSize(description);
}

RasterDevice::RasterDevice(const DeviceDescription& description, const BandRect& bandRect, void* buffer)
    : RasterDevice(description) {
  state_.bandRect = bandRect;
  state_.buffer = static_cast<uint8_t*>(buffer);
}

void RasterDevice::Enable(const BandRect& bandRect) {
  state_.bandRect = bandRect;
  state_.stride = StrideOf(state_.description.width, DescribedBytes());
}

uint8_t RasterDevice::HatchScale() const { return HatchScaleAt(state_.description.resolutionA); }

void RasterDevice::ClearBand() {
  // Sums wrap; the row is cleared in whole 32-bit words, its padding included.
  const int32_t rowBytes =
      WrapMultiply(static_cast<int32_t>(state_.description.width), static_cast<int32_t>(DescribedBytes()));
  ClearWords(state_.buffer, WrapAdd(rowBytes, 3) / 4, state_.description.height, 0xFF);
}

BandView RasterDevice::BandOfOtherDepth(uint32_t bytesPerPixel) const {
  BandView band = Band();
  band.bytesPerPixel = bytesPerPixel;
  if (state_.buffer != nullptr && bytesPerPixel > DescribedBytes()) {
    // The host allocated the band for fewer bytes a pixel: only what lies in that memory is painted.
    const Rect memory{band.rect.left, band.rect.top,
                      WrapAdd(band.rect.left, static_cast<int32_t>(state_.stride / bytesPerPixel)),
                      WrapAdd(band.rect.top, static_cast<int32_t>(state_.description.height))};
    RectIntersect(band.rect, band.rect, memory);
  }
  return band;
}

}  // namespace qnv
