// The dual-plane device is a plain 24-bit device that owns two more: one paints its color band, the other its tag
// plane. Both follow every escape that changes the origin or the place of the band.
#include "device/dual_plane/dual_plane_device.h"

namespace qnv {

DualPlaneDevice::DualPlaneDevice(const DeviceDescription& description) : RasterDevice24(description) {}

DualPlaneDevice::DualPlaneDevice(const DeviceDescription& description, const BandRect& bandRect, void* buffer,
                                 void* secondBuffer)
    : RasterDevice24(description, bandRect, buffer), tagBuffer_(static_cast<uint8_t*>(secondBuffer)) {
  DeviceDescription tagDescription = description;
  tagDescription.bitsPerPixel = 8;
  colorDevice_ = new RasterDevice24(description, bandRect, buffer);
  tagDevice_ = new TagDevice(tagDescription, bandRect, secondBuffer);
  if (colorDevice_ != nullptr) colorDevice_->Enable(bandRect);
  if (tagDevice_ != nullptr) tagDevice_->Enable(bandRect);
}

DualPlaneDevice::~DualPlaneDevice() {
  delete tagDevice_;
  delete colorDevice_;
}

bool DualPlaneDevice::IsReady() const {
  return RasterDevice24::IsReady() && colorDevice_ != nullptr && colorDevice_->IsReady() && tagDevice_ != nullptr &&
         tagDevice_->IsReady();
}

uint16_t DualPlaneDevice::Control(uint16_t code, const void* data) {
  const uint16_t result = RasterDevice24::Control(code, data);
  if (code == QNV_SET_ORIGIN || code == QNV_SET_BAND_RECT) {
    tagDevice_->Control(code, data);
    colorDevice_->Control(code, data);
  }
  return result;
}

void DualPlaneDevice::ClearBand() {
  // Intended: three bytes a pixel even when another depth is described.
  const int32_t width = static_cast<int32_t>(state_.description.width);
  ClearWords(state_.buffer, WrapMultiply(WrapAdd(width, 1), 3) / 4, state_.description.height, 0xFF);
  ClearWords(tagBuffer_, WrapAdd(width, 3) / 4, state_.description.height, QNV_TAG_GRAPHICS);
  // From here to the next image every tag is QNV_TAG_GRAPHICS, so that nothing has to be tagged.
  planeUniform_ = true;
}

}  // namespace qnv
