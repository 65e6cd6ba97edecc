// Set-up, escapes, colors and single pixels of a device with one band.
#include <cstring>

#include "reference/band_model.h"

namespace qnv::reference {

BandModel::BandModel(const DeviceDescription& description, const BandRect& bandRect, Plane band)
    : description_(description), rect_(ToRect(bandRect)), plane_(std::move(band)) {
  if (description.kind == QNV_KIND_SCALED) {
    map_ = std::make_shared<ResolutionMap>(description.resolutionA, description.resolutionB);
  }
}

bool BandModel::gray() const { return description_.bitsPerPixel == (scaled() ? 0 : 8); }

bool BandModel::inPlaceGray() const { return scaled() && description_.bitsPerPixel == 0; }

uint32_t BandModel::Control(uint32_t code, const void* data) {
  switch (code & 0xFFFF) {
    case QNV_SET_ORIGIN:
      if (data == nullptr) return 0;
      std::memcpy(&origin_, data, sizeof(DrawingOrigin));
      return 1;
    case QNV_SET_BAND_RECT:
      if (data == nullptr) return 0;
      std::memcpy(&rect_, data, sizeof(BandRect));
      return 1;
    case QNV_CLEAR_BAND: {
      const uint32_t bytes = scaled() || description_.bitsPerPixel == 24 ? 3 : 1;
      plane_.FillStart(std::size_t{(description_.width * bytes + 3) / 4} * description_.height * 4, 0xFF);
      return 1;
    }
    default: return 0;
  }
}

uint32_t BandModel::ColorInfo(uint32_t color) const { return gray() ? GrayLevel(color) : color; }

void BandModel::Put(int column, int row, uint32_t value) {
  plane_.Write(column, row, inPlaceGray() ? GrayLevel(value) : value);
}

uint32_t BandModel::Pixel(int32_t x, int32_t y, uint32_t color, const DRAWMODE* drawMode, const BandRect* clip) {
  if (clip == nullptr) return 0;
  int deviceX = Sum(x, origin_.x);
  int deviceY = Sum(y, origin_.y);
  if (!Contains(Shift(ToRect(*clip), origin_), deviceX, deviceY)) return 0;
  if (scaled()) {
    deviceX = map_->ToBand(deviceX);
    deviceY = map_->ToBand(deviceY);
  }
  if (!Contains(rect_, deviceX, deviceY)) return 0;
  const int column = deviceX - rect_.left;
  const int row = deviceY - rect_.top;
  const uint32_t old = plane_.Read(column, row);
  if (drawMode == nullptr) return plane_.bytesPerPixel() == 3 ? old : old * 0x010101;
  // The first byte of three is bits 16..23 of the color; a gray byte is bits 0..7.
  const uint32_t pen = plane_.bytesPerPixel() == 3 ? SwapRedBlue(color) : color;
  Put(column, row, EvaluateRop2(static_cast<uint16_t>(drawMode->Rop2), pen, old));
  return 0;
}

}  // namespace qnv::reference
