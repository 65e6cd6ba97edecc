// Creates the DIB section and its device context, and reads the pixels back.
#include "windows/gdi_surface.h"

#include <cstdlib>
#include <cstring>

namespace qnv::test {
namespace {

constexpr uint32_t StrideOf(uint16_t depth, uint32_t width) { return (width * depth / 8 + 3) & ~3u; }

// A test without its witness proves nothing.
template <class Handle>
Handle Required(Handle handle) {
  if (handle == nullptr) std::abort();
  return handle;
}

}  // namespace

void SetGrayColors(DibHeader* dib) {
  for (uint32_t i = 0; i < 256; ++i) {
    const uint8_t level = static_cast<uint8_t>(i);
    dib->colors[i] = {level, level, level, 0};
  }
}

GdiSurface::GdiSurface(uint16_t depth, uint32_t width, uint32_t height, int32_t left, int32_t top)
    : dc_(Required(CreateCompatibleDC(nullptr))),
      stride_(StrideOf(depth, width)),
      size_(std::size_t{stride_} * height) {
  DibHeader dib{};
  dib.header.biSize = sizeof dib.header;
  dib.header.biWidth = static_cast<LONG>(width);
  dib.header.biHeight = -static_cast<LONG>(height);
  dib.header.biPlanes = 1;
  dib.header.biBitCount = depth;
  SetGrayColors(&dib);
  void* bits = nullptr;
  bitmap_ = Required(CreateDIBSection(dc_, dib.info(), DIB_RGB_COLORS, &bits, nullptr, 0));
  bits_ = static_cast<uint8_t*>(Required(bits));
  original_ = SelectObject(dc_, bitmap_);
  SetWindowOrgEx(dc_, left, top, nullptr);
  SetStretchBltMode(dc_, COLORONCOLOR);
}

GdiSurface::~GdiSurface() {
  SelectObject(dc_, original_);
  DeleteObject(bitmap_);
  DeleteDC(dc_);
}

std::vector<uint8_t> GdiSurface::Bytes() const {
  GdiFlush();
  return {bits_, bits_ + size_};
}

void GdiSurface::Load(const std::vector<uint8_t>& bytes) {
  if (bytes.size() != size_) std::abort();
  GdiFlush();
  std::memcpy(bits_, bytes.data(), size_);
}

GdiSource::GdiSource(HBITMAP bitmap)
    : dc_(Required(CreateCompatibleDC(nullptr))), bitmap_(Required(bitmap)), original_(SelectObject(dc_, bitmap_)) {}

GdiSource::~GdiSource() {
  SelectObject(dc_, original_);
  DeleteObject(bitmap_);
  DeleteDC(dc_);
}

}  // namespace qnv::test
