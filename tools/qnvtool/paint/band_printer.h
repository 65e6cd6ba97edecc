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

// A finished band, in pixels of the picture. The memory is valid during the call of the sink only.
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
  // than the page means the whole page. Throws ToolError: library when it does not make such a device, usage when
  // the page is too large for it.
  BandPrinter(const Rasteriser& rasteriser, const DeviceChoice& device, int pageWidth, int pageHeight, int bandRows);
  ~BandPrinter();
  BandPrinter(const BandPrinter&) = delete;
  BandPrinter& operator=(const BandPrinter&) = delete;

  int width() const { return width_; }  // of the picture, pixels
  int height() const { return height_; }
  int bands() const { return (height_ + bandRows_ - 1) / bandRows_; }

  std::size_t bandBytes() const { return band_.size() + tags_.size(); }

  // Paints a page and passes its bands to `sink`, from the top of the page to the bottom.
  void Print(const Page& page, const Sink& sink);

  // For preparing a PagePainter.
  DeviceHandle* device() const { return handle_; }

  // The page rows that band `index` shows.
  Rect ViewOf(int index) const;

  // Paints a band. The result is valid until the next call.
  BandView PrintBand(const PagePainter& page, int index);

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
  int width_ = 0;
  int height_ = 0;
  int bandRows_ = 0;
  int guard_ = 0;  // band rows after which a band row is a page row exactly again; 0 where all are
  std::size_t stride_ = 0;
  std::size_t tagStride_ = 0;
  std::vector<uint8_t> band_;
  std::vector<uint8_t> tags_;
  DeviceHandle* handle_ = nullptr;
};

}  // namespace qnv::tool
