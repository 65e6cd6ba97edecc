// One band painted twice: by the library, and by the platform's GDI as an independent witness.
//
// Include this before anything that includes qnvdrv10.h: the platform's header has to come first.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <type_traits>
#include <vector>

#include "support/plane_image.h"
#include "support/test_device.h"

namespace qnv::test {

// A brush, pen, region or bitmap of the platform, deleted when it goes.
struct GdiDeleter {
  void operator()(void* object) const { DeleteObject(object); }
};
template <class Handle>
using GdiObject = std::unique_ptr<std::remove_pointer_t<Handle>, GdiDeleter>;

// The header of a DIB whose top row comes first, followed by the gray ramp as its color table.
struct DibHeader {
  DibHeader(uint16_t depth, int32_t width, int32_t height);
  const BITMAPINFO* info() const { return reinterpret_cast<const BITMAPINFO*>(this); }

  BITMAPINFOHEADER header{};
  RGBQUAD colors[256];
};

// A bitmap of the platform in a device context of its own.
class GdiBitmap {
 public:
  explicit GdiBitmap(HBITMAP bitmap);
  // A DIB section of 24 or 8 (gray) bits a pixel. Its rows lie in memory as those of a band do.
  GdiBitmap(uint16_t depth, int32_t width, int32_t height);
  ~GdiBitmap() { DeleteDC(dc_); }
  GdiBitmap(const GdiBitmap&) = delete;
  GdiBitmap& operator=(const GdiBitmap&) = delete;

  HDC dc() const { return dc_; }
  uint8_t* Row(int32_t row) const;  // of a DIB section

 private:
  GdiObject<HBITMAP> bitmap_;
  HDC dc_;
  BITMAP record_{};
};

// What a context draws with, and the rectangle that clips it, for as long as this lives.
class Selected {
 public:
  Selected(HDC dc, std::initializer_list<HGDIOBJ> objects, const BandRect& clip = kEverywhere);
  ~Selected() { RestoreDC(dc_, saved_); }
  Selected(const Selected&) = delete;
  Selected& operator=(const Selected&) = delete;

 private:
  HDC dc_;
  int saved_;
};

struct WitnessShape {
  uint16_t depth = 24;  // or 8
  uint32_t width = 43;  // odd, so that rows have padding
  uint32_t height = 19;
  int32_t left = 0;  // page position of the band's first pixel
  int32_t top = 0;
  uint16_t resolution = 360;
};

class Witness {
 public:
  explicit Witness(const WitnessShape& shape = {});

  const WitnessShape& shape() const { return shape_; }
  const TestDevice& device() const { return device_; }
  DeviceHandle* handle() const { return device_.handle(); }
  HDC dc() const { return bitmap_.dc(); }  // logical coordinates are the page's

  // The same noise in both pictures.
  void Reset(uint64_t seed);

  // Colors and modes of `mode` for the platform's calls.
  void Apply(const DRAWMODE& mode) const;

  // Both pictures hold the same pixels, give or take `tolerance` in every byte, and the library wrote neither padding
  // nor memory around its band.
  testing::AssertionResult Same(int tolerance = 0) const;

  // The library's picture is what Reset left.
  testing::AssertionResult Untouched() const { return BandShows(device_, start_); }

 private:
  WitnessShape shape_;
  TestDevice device_;
  GdiBitmap bitmap_;
  PlaneImage start_;
};

// A logical color that a witness of this depth shows exactly: any color, or the gray level of its lowest byte.
COLORREF ExactColor(const Witness& witness, uint32_t color);

// A draw mode whose text and background colors a witness of this depth shows exactly.
DRAWMODE TwoColors(const Witness& witness, int16_t rop2 = R2_COPYPEN);

}  // namespace qnv::test
