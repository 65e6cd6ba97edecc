// What all models share: planes of pixels, and the calls that are made of other calls; the factory of models.
#include "reference/model.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "reference/arithmetic.h"
#include "reference/band_model.h"
#include "reference/dual_plane_model.h"

namespace qnv::reference {

std::size_t Plane::Offset(int column, int row) const {
  const std::size_t offset = static_cast<std::size_t>(row) * stride_ +
                             static_cast<std::size_t>(column) * static_cast<std::size_t>(bytesPerPixel_);
  if (column < 0 || row < 0 || offset + static_cast<std::size_t>(bytesPerPixel_) > bytes_.size()) {
    std::fprintf(stderr, "reference model left its plane: column %d, row %d\n", column, row);
    std::abort();
  }
  return offset;
}

uint32_t Plane::Read(int column, int row) const {
  if (!present_) return 0;
  const std::size_t at = Offset(column, row);
  uint32_t value = 0;
  for (int i = 0; i < bytesPerPixel_; ++i) value |= uint32_t{bytes_[at + static_cast<std::size_t>(i)]} << 8 * i;
  return value;
}

void Plane::Write(int column, int row, uint32_t value) {
  if (!present_) return;
  const std::size_t at = Offset(column, row);
  for (int i = 0; i < bytesPerPixel_; ++i)
    bytes_[at + static_cast<std::size_t>(i)] = static_cast<uint8_t>(value >> 8 * i);
}

void Plane::FillStart(std::size_t count, uint8_t value) {
  if (!present_) return;
  if (count > bytes_.size()) std::abort();
  std::fill_n(bytes_.begin(), count, value);
}

void Plane::SetBytes(const std::vector<uint8_t>& bytes) {
  if (bytes.size() != bytes_.size()) std::abort();
  bytes_ = bytes;
}

uint32_t Model::PolyPixel(int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t color, const DRAWMODE* drawMode,
                          const BandRect* clip) {
  for (int y = std::min(y1, y2); y <= std::max(y1, y2); ++y) {
    for (int x = std::min(x1, x2); x <= std::max(x1, x2); ++x) Pixel(x, y, color, drawMode, clip);
  }
  return 0;
}

uint32_t Model::SetDIBitsToDevice(int32_t x, int32_t y, uint32_t startScan, uint32_t numScans, const BandRect* clip,
                                  const DRAWMODE* drawMode, const void* bits, const void* bitmapInfo) {
  if (bitmapInfo == nullptr) return 0;
  const int32_t width = static_cast<const BITMAPINFOHEADER*>(bitmapInfo)->biWidth;
  const int32_t rows = static_cast<int32_t>(numScans);
  return StretchDIBits({0, x, y, width, rows, 0, static_cast<int32_t>(startScan), width, rows, bits, bitmapInfo,
                        SRCCOPY, nullptr, drawMode, clip});
}

std::unique_ptr<Model> MakeModel(const DeviceDescription* description, const BandRect* bandRect,
                                 const std::vector<uint8_t>* band, const std::vector<uint8_t>* tags) {
  if (description == nullptr || bandRect == nullptr) return nullptr;
  const bool scaled = description->kind == QNV_KIND_SCALED;
  const bool dual = description->kind == QNV_KIND_RASTER && tags != nullptr;
  if (scaled ? description->resolutionA == 0 : description->kind != QNV_KIND_RASTER) return nullptr;
  if (!scaled && !dual && description->bitsPerPixel != 24 && description->bitsPerPixel != 8) return nullptr;

  const int bytesPerPixel = scaled || description->bitsPerPixel == 24 ? 3 : 1;
  const uint32_t stride = (description->width * static_cast<uint32_t>(bytesPerPixel) + 3) / 4 * 4;
  Plane color(band, stride, bytesPerPixel);
  if (!dual) return std::make_unique<BandModel>(*description, *bandRect, std::move(color));
  return std::make_unique<DualPlaneModel>(*description, *bandRect, std::move(color),
                                          Plane(tags, (description->width + 3) / 4 * 4, 1));
}

uint32_t GetDeviceInfo(const DeviceDescription* description, DeviceSize* result) {
  if (description == nullptr) return 0;
  const uint32_t a = description->resolutionA;
  const uint32_t b = description->resolutionB;
  const bool scaled = description->kind == QNV_KIND_SCALED;
  const bool raster = description->kind == QNV_KIND_RASTER;
  if (!scaled && !raster && description->kind != QNV_KIND_DUAL_PLANE) return 0;
  if (raster && description->bitsPerPixel != 24 && description->bitsPerPixel != 8) return 0;
  if (result == nullptr) return 0;
  const auto scale = [&](uint32_t value) -> uint32_t {
    if (scaled) return static_cast<uint32_t>(MulDiv(static_cast<int>(value), static_cast<int>(b), static_cast<int>(a)));
    const uint32_t quotient = value / a;
    const uint32_t whole = quotient * b;
    return whole < quotient ? 0 : whole + value % a * b / a;
  };
  result->width = scale(description->width);
  result->height = scale(description->height);
  return 8;
}

}  // namespace qnv::reference
