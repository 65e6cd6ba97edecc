// Devices, draw modes and drawing objects as a host would make them.
#include "support/test_device.h"

#include <cstdlib>
#include <cstring>

namespace qnv::test {

TestDevice::TestDevice(const DeviceOptions& options) : options_(options) {
  bytesPerPixel_ = options.kind == QNV_KIND_SCALED || options.bitsPerPixel == 24 ? 3 : 1;
  stride_ = (options.width * static_cast<uint32_t>(bytesPerPixel_) + 3) & ~3u;
  band_ = std::make_unique<FencedBuffer>(std::size_t{stride_} * options.height, options.fill);
  if (options.tagPlane) tags_ = std::make_unique<FencedBuffer>(std::size_t{tagStride()} * options.height, options.fill);
  const DeviceDescription description{options.kind,  options.bitsPerPixel, options.resolutionA,
                                      options.width, options.height,       options.resolutionB};
  const BandRect bandRect{options.left, options.top, options.left + static_cast<int32_t>(options.width),
                          options.top + static_cast<int32_t>(options.height)};
  handle_ = QNVEnable(&description, &bandRect, band_->data(), tags_ ? tags_->data() : nullptr);
  if (handle_ == nullptr) std::abort();
}

TestDevice::~TestDevice() { QNVDisable(handle_); }

const uint8_t* TestDevice::Pixel(uint32_t column, uint32_t row) const {
  return band_->data() + std::size_t{row} * stride_ + std::size_t{column} * static_cast<uint32_t>(bytesPerPixel_);
}

std::vector<uint8_t> TestDevice::BandBytes() const { return {band_->data(), band_->data() + band_->size()}; }

std::vector<uint8_t> TestDevice::TagBytes() const {
  return tags_ ? std::vector<uint8_t>{tags_->data(), tags_->data() + tags_->size()} : std::vector<uint8_t>{};
}

void TestDevice::SetOrigin(int32_t x, int32_t y) {
  const DrawingOrigin origin{x, y};
  QNVControl(handle_, QNV_SET_ORIGIN, &origin, nullptr);
}

void TestDevice::MoveBand(int32_t left, int32_t top) {
  const BandRect rect{left, top, left + static_cast<int32_t>(options_.width),
                      top + static_cast<int32_t>(options_.height)};
  QNVControl(handle_, QNV_SET_BAND_RECT, &rect, nullptr);
}

void TestDevice::Clear() { QNVControl(handle_, QNV_CLEAR_BAND, nullptr, nullptr); }

bool TestDevice::FencesIntact() const { return band_->FencesIntact() && (!tags_ || tags_->FencesIntact()); }

DRAWMODE MakeDrawMode(const DrawModeOptions& options) {
  DRAWMODE mode;
  std::memset(&mode, 0, sizeof mode);
  mode.Rop2 = static_cast<int16_t>(options.rop2);
  mode.bkMode = static_cast<int16_t>(options.bkMode);
  mode.bkColor = options.background;
  mode.TextColor = options.text;
  return mode;
}

PhysicalBrush BrushRecord(int style, uint32_t color, int scale) {
  PhysicalBrush brush{};
  brush.style = static_cast<uint16_t>(style);
  brush.hatchScale[0] = brush.hatchScale[1] = static_cast<uint8_t>(scale);
  brush.colour = color;
  return brush;
}

namespace {

PhysicalBrush Realise(DeviceHandle* handle, const LogicalBrush& logical) {
  PhysicalBrush brush;
  std::memset(&brush, 0, sizeof brush);
  if (QNVRealizeObject(handle, OBJ_BRUSH, &logical, &brush, nullptr) == 0) std::abort();
  return brush;
}

}  // namespace

PhysicalBrush SolidBrush(DeviceHandle* handle, uint32_t color) {
  return Realise(handle, LogicalBrush{BS_SOLID, color, 0, 0});
}

PhysicalBrush HatchBrush(DeviceHandle* handle, int16_t hatch, uint32_t color, uint32_t background) {
  return Realise(handle, LogicalBrush{BS_HATCHED, color, hatch, background});
}

PhysicalBrush PatternBrush(DeviceHandle* handle, const SourceBitmap& bitmap) {
  return Realise(handle, LogicalBrush{BS_PATTERN, reinterpret_cast<uintptr_t>(&bitmap), 0, 0});
}

PhysicalPen SolidPen(DeviceHandle* handle, uint32_t color) {
  const LogicalPen logical{PS_SOLID, 1, 1, color};
  PhysicalPen pen;
  if (QNVRealizeObject(handle, OBJ_PEN, &logical, &pen, nullptr) == 0) std::abort();
  return pen;
}

}  // namespace qnv::test
