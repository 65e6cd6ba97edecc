// Makes devices, brushes and draw modes for the rows.
#include "device_fixture.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace qnv::bench {

DeviceFixture::DeviceFixture(const Library& library, Memory& memory, Band band, Shape shape, bool wideHatch)
    : library_(library), memory_(memory), band_(band) {
  Enable(Info(shape).bandWidth, Info(shape).bandHeight, wideHatch);
}

DeviceFixture::DeviceFixture(const Library& library, Memory& memory, Band band, int width, int height, bool wideHatch)
    : library_(library), memory_(memory), band_(band) {
  Enable(width, height, wideHatch);
}

DeviceFixture::~DeviceFixture() { library_.Disable(handle_); }

void DeviceFixture::Enable(int width, int height, bool wideHatch) {
  width_ = width;
  height_ = height;
  stride_ = (static_cast<std::size_t>(width) * static_cast<std::size_t>(BytesPerPixel(band_)) + 3) & ~std::size_t{3};
  DeviceDescription description = {};
  description.kind = IsScaled(band_) ? QNV_KIND_SCALED : QNV_KIND_RASTER;
  description.bitsPerPixel = band_ == Band::kGray8 ? 8 : band_ == Band::kScaledGray ? 0 : 24;
  description.resolutionA = IsScaled(band_) || wideHatch ? 720 : 360;
  description.resolutionB = IsScaled(band_) ? 360 : description.resolutionA;
  description.width = static_cast<uint32_t>(width);
  description.height = static_cast<uint32_t>(height);
  const BandRect rect = {0, 0, width, height};
  handle_ = library_.Enable(&description, &rect, memory_.band(), IsDual(band_) ? memory_.tags() : nullptr);
  if (handle_ == nullptr) {
    std::fprintf(stderr, "qnvbench: the library refused a device (%s)\n", BandName(band_));
    std::exit(1);
  }
  Clear();
  if (band_ == Band::kDualMarked) MarkTags();
  clip = {0, 0, width * pageScale(), height * pageScale()};
  mode.Rop2 = R2_COPYPEN;
  mode.bkMode = OPAQUE;
  mode.bkColor = library_.ColorInfo(handle_, kPaper, nullptr);
  mode.TextColor = library_.ColorInfo(handle_, kInk, nullptr);
}

void DeviceFixture::Clear() const { library_.Control(handle_, QNV_CLEAR_BAND, nullptr, nullptr); }

void DeviceFixture::MoveBand(int top) const {
  const BandRect rect = {0, top, width_, top + height_};
  library_.Control(handle_, QNV_SET_BAND_RECT, &rect, nullptr);
}

// Paints one pixel as an image, after which the device writes tags in every call.
void DeviceFixture::MarkTags() const {
  BITMAPINFOHEADER header = {};
  header.biSize = sizeof header;
  header.biWidth = 1;
  header.biHeight = 1;
  header.biPlanes = 1;
  header.biBitCount = 24;
  const uint8_t pixel[4] = {};
  const BandRect everywhere = {0, 0, width_, height_};
  library_.StretchDIBits(handle_, 0, 0, 0, 1, 1, 0, 0, 1, 1, pixel, &header, nullptr, SRCCOPY, nullptr, &mode,
                         &everywhere);
}

std::size_t DeviceFixture::TagSize() const {
  return ((static_cast<std::size_t>(width_) + 3) & ~std::size_t{3}) * static_cast<std::size_t>(height_);
}

void DeviceFixture::Rewind() const {
  memory_.RewindBand(stride_ * static_cast<std::size_t>(height_));
  if (IsDual(band_)) memory_.RewindTags(TagSize(), band_ == Band::kDualMarked);
}

uint64_t DeviceFixture::PictureHash() const {
  const uint64_t colors = HashBytes(memory_.band(), stride_ * static_cast<std::size_t>(height_));
  return IsDual(band_) ? colors * 3 + HashBytes(memory_.tags(), TagSize()) : colors;
}

// Realises the brush of a row and sets the background mode that goes with it.
void DeviceFixture::MakeBrush(Brush kind) {
  if (kind == Brush::kNone) return;
  LogicalBrush logical = {};
  logical.colour = 0x00285AC8;
  mode.bkMode = kind == Brush::kHatch ? TRANSPARENT : OPAQUE;
  uint8_t cells[8 * 8 * 3];
  SourceBitmap bitmap = {};
  switch (kind) {
    case Brush::kSolid: logical.style = BS_SOLID; break;
    case Brush::kHatch:
    case Brush::kHatchOpaque:
      logical.style = BS_HATCHED;
      logical.hatch = HS_DIAGCROSS;
      break;
    case Brush::kPattern8:
    case Brush::kPattern16: {
      FillRandom(cells, sizeof cells, 4);
      logical.style = BS_PATTERN;
      bitmap.bmWidth = 8;
      bitmap.bmHeight = 8;
      bitmap.bmPlanes = 1;
      bitmap.bmBitsPixel = IsGray(band_) ? 8 : 24;
      bitmap.bmWidthBytes = IsGray(band_) ? 8 : 24;
      bitmap.bmBits = cells;
      logical.colour = reinterpret_cast<std::uintptr_t>(&bitmap);
      break;
    }
    case Brush::kNone: break;
  }
  std::memset(&brush, 0, sizeof brush);
  library_.RealizeObject(handle_, OBJ_BRUSH, &logical, &brush, nullptr);
}

PageRect RectOnPage(const DeviceFixture& device, Shape shape) {
  const ShapeInfo& info = Info(shape);
  const int scale = device.pageScale();
  return {info.x * scale, info.y * scale, info.width * scale, info.height * scale};
}

}  // namespace qnv::bench
