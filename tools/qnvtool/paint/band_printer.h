// Paints pages band by band, as a printer driver does: one device, whose band moves down the page.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

#include "qnvtool/layout/page.h"
#include "qnvtool/paint/device_choice.h"
#include "qnvtool/paint/page_painter.h"
#include "qnvtool/paint/rasteriser.h"

namespace qnv::tool {

// The size of the picture of a page, in pixels of the device.
struct PictureSize {
  int width = 0;
  int height = 0;
};

// Throws ToolError: library when it does not make such a device, usage when a page of pageWidth x pageHeight pixels at
// device.pageDpi is too large for it.
PictureSize PictureSizeOf(const Rasteriser& rasteriser, const DeviceChoice& device, int pageWidth, int pageHeight);

// Painted rows, in pixels of the picture.
struct BandView {
  int top = 0;
  int rows = 0;
  const uint8_t* pixels = nullptr;  // 3 bytes a pixel: blue, green, red; on gray bands one byte
  std::size_t stride = 0;
  const uint8_t* tags = nullptr;  // one byte a pixel; null without a tag plane
  std::size_t tagStride = 0;
};

class BandPrinter {
 public:
  using Sink = std::function<void(const BandView&)>;

  // For pages of pageWidth x pageHeight pixels at device.pageDpi. `bandRows` counts rows of the picture, 0 or more
  // than the page means the whole page. Throws ToolError as PictureSizeOf does.
  BandPrinter(const Rasteriser& rasteriser, const DeviceChoice& device, int pageWidth, int pageHeight, int bandRows);
  ~BandPrinter();
  BandPrinter(const BandPrinter&) = delete;
  BandPrinter& operator=(const BandPrinter&) = delete;

  int width() const { return width_; }  // of the picture, pixels
  int height() const { return height_; }
  int bandRows() const { return bandRows_; }

  // Paints a page and passes its bands to `sink`, from the top of the page to the bottom.
  void Print(const Page& page, const Sink& sink);

  // For preparing a PagePainter.
  DeviceHandle* device() const { return handle_; }

  // The page rows that rows of the picture show.
  Rect ViewOf(int top, int rows) const;

  // Paints as many rows as a band has, or fewer. The result is valid until the next call.
  BandView PrintRows(const PagePainter& page, int top, int rows);

 private:
  // Rows of the picture that the memory holds for a band; the sink gets those in the middle.
  struct Extent {
    int top = 0;
    int bottom = 0;
  };

  Extent ExtentOf(int top, int rows) const;
  // Calls QNVControl. Throws ToolError when the library refuses.
  void Control(uint32_t code, const void* data) const;

  const Rasteriser rasteriser_;
  const DeviceChoice device_;
  const int guard_;  // rows that the memory of a band may have above and below it
  int width_ = 0;
  int height_ = 0;
  int bandRows_ = 0;
  std::size_t stride_ = 0;
  std::size_t tagStride_ = 0;
  std::vector<uint8_t> band_;
  std::vector<uint8_t> tags_;
  DeviceHandle* handle_ = nullptr;
};

}  // namespace qnv::tool
