// The platform's own picture of a band: a DIB section of the same size and the same memory layout, with a device
// context whose logical coordinates are the page's.
//
// Include this before anything that includes qnvdrv10.h: the platform's header has to come first.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <cstdint>
#include <vector>

namespace qnv::test {

// A DIB's header with room for the longest color table; the masks of bit-fields lie in its first three entries.
struct DibHeader {
  BITMAPINFOHEADER header;
  RGBQUAD colors[256];

  const BITMAPINFO* info() const { return reinterpret_cast<const BITMAPINFO*>(this); }
};

// Entry i is the gray level i, as a gray band means its bytes.
void SetGrayColors(DibHeader* dib);

class GdiSurface {
 public:
  // `depth` is 24 or 8 (gray). The surface shows the page from (left, top) on.
  GdiSurface(uint16_t depth, uint32_t width, uint32_t height, int32_t left, int32_t top);
  ~GdiSurface();
  GdiSurface(const GdiSurface&) = delete;
  GdiSurface& operator=(const GdiSurface&) = delete;

  HDC dc() const { return dc_; }
  uint32_t stride() const { return stride_; }
  std::size_t size() const { return size_; }

  // Bytes in the order of a band: top row first, rows padded to four bytes.
  std::vector<uint8_t> Bytes() const;
  void Load(const std::vector<uint8_t>& bytes);

 private:
  HDC dc_;
  HBITMAP bitmap_ = nullptr;
  HGDIOBJ original_ = nullptr;
  uint8_t* bits_ = nullptr;
  uint32_t stride_;
  std::size_t size_;
};

// A bitmap to transfer from, selected into a context of its own.
class GdiSource {
 public:
  explicit GdiSource(HBITMAP bitmap);
  ~GdiSource();
  GdiSource(const GdiSource&) = delete;
  GdiSource& operator=(const GdiSource&) = delete;

  HDC dc() const { return dc_; }

 private:
  HDC dc_;
  HBITMAP bitmap_;
  HGDIOBJ original_;
};

// A brush, pen or region, deleted when it goes.
template <class Handle>
class GdiObject {
 public:
  explicit GdiObject(Handle handle) : handle_(handle) {}
  ~GdiObject() {
    if (handle_ != nullptr) DeleteObject(handle_);
  }
  GdiObject(GdiObject&& other) noexcept : handle_(other.handle_) { other.handle_ = nullptr; }
  GdiObject(const GdiObject&) = delete;
  GdiObject& operator=(const GdiObject&) = delete;
  GdiObject& operator=(GdiObject&&) = delete;

  Handle get() const { return handle_; }

 private:
  Handle handle_;
};

// Selects an object for as long as it lives.
class Selected {
 public:
  Selected(HDC dc, HGDIOBJ object) : dc_(dc), previous_(SelectObject(dc, object)) {}
  ~Selected() { SelectObject(dc_, previous_); }
  Selected(const Selected&) = delete;
  Selected& operator=(const Selected&) = delete;

 private:
  HDC dc_;
  HGDIOBJ previous_;
};

}  // namespace qnv::test
