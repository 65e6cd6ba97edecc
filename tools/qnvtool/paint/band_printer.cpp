// Makes the device, moves its band down the page, and passes the painted rows on.
#include "qnvtool/paint/band_printer.h"

#include <fmt/core.h>

#include <numeric>

#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kMaxStride = 65535;  // image transfers count a band row in 16 bits

// The description of a device for a page or a band of this size, in pixels.
DeviceDescription Describe(const DeviceChoice& device, int width, int height) {
  using Kind = DeviceChoice::Kind;
  DeviceDescription description{};
  description.kind = device.isScaled() ? QNV_KIND_SCALED : QNV_KIND_RASTER;
  description.bitsPerPixel = device.kind == Kind::kGray ? 8 : device.kind == Kind::kScaledGray ? 0 : 24;
  description.resolutionA = static_cast<uint16_t>(device.pageDpi);
  description.width = static_cast<uint32_t>(width);
  description.height = static_cast<uint32_t>(height);
  description.resolutionB = static_cast<uint16_t>(device.bandDpi);
  return description;
}

// Band rows after which a band row is a page row exactly again; 0 where all are.
int GuardRows(const DeviceChoice& device) {
  return device.isScaled() ? device.bandDpi / std::gcd(device.pageDpi, device.bandDpi) : 0;
}

std::size_t StrideOf(const DeviceChoice& device, std::size_t width) {
  return (width * static_cast<std::size_t>(device.bandBytesPerPixel()) + 3) & ~std::size_t{3};
}

}  // namespace

PictureSize PictureSizeOf(const Rasteriser& rasteriser, const DeviceChoice& device, int pageWidth, int pageHeight) {
  DeviceDescription description = Describe(device, pageWidth, pageHeight);
  if (device.kind == DeviceChoice::Kind::kDual) description.kind = QNV_KIND_DUAL_PLANE;
  DeviceSize size{};
  if (rasteriser.getDeviceInfo(&description, &size) != sizeof size) {
    throw ToolError(ExitCode::kLibrary, fmt::format("--device {}: the library does not have this device", device.name));
  }
  const auto tooLarge = [&](uint32_t side) {
    return side == 0 || side > uint32_t{kMaxSide} - 2 * static_cast<uint32_t>(GuardRows(device));
  };
  if (tooLarge(size.width) || tooLarge(size.height) || StrideOf(device, size.width) > kMaxStride) {
    throw ToolError(ExitCode::kUsage, fmt::format("the page would have {} x {} pixels, which is too large for --device "
                                                  "{}",
                                                  size.width, size.height, device.name));
  }
  return {static_cast<int>(size.width), static_cast<int>(size.height)};
}

BandPrinter::BandPrinter(const Rasteriser& rasteriser, const DeviceChoice& device, int pageWidth, int pageHeight,
                         int bandRows)
    : rasteriser_(rasteriser), device_(device), guard_(GuardRows(device)) {
  const PictureSize size = PictureSizeOf(rasteriser, device, pageWidth, pageHeight);
  const bool dual = device.kind == DeviceChoice::Kind::kDual;
  width_ = size.width;
  height_ = size.height;
  stride_ = StrideOf(device, static_cast<std::size_t>(width_));
  bandRows_ = bandRows <= 0 ? height_ : std::min(bandRows, height_);
  const std::size_t rows = static_cast<std::size_t>(bandRows_) + 2 * static_cast<std::size_t>(guard_);
  band_.resize(stride_ * rows);
  if (dual) {
    tagStride_ = (static_cast<std::size_t>(width_) + 3) & ~std::size_t{3};
    tags_.resize(tagStride_ * rows);
  }
  const DeviceDescription band = Describe(device, width_, static_cast<int>(rows));
  const BandRect rect{0, 0, width_, static_cast<int32_t>(rows)};
  handle_ = rasteriser_.enable(&band, &rect, band_.data(), dual ? tags_.data() : nullptr);
  if (handle_ == nullptr) {
    throw ToolError(ExitCode::kLibrary, fmt::format("--device {}: the library refuses QNVEnable", device.name));
  }
}

BandPrinter::~BandPrinter() { rasteriser_.disable(handle_); }

// The rows that the memory holds for a band of `rows` rows from `top` on. On a scaled device text and pictures are
// painted alike in every band only if the first row of the memory corresponds to a page row exactly; and page rows
// beside the edge of a band may be rounded into it. So there the memory holds some more rows above and below.
BandPrinter::Extent BandPrinter::ExtentOf(int top, int rows) const {
  if (guard_ == 0) return {top, top + rows};
  const int above = top == 0 ? 0 : (top - 1) / guard_ * guard_;
  return {above, (top + rows + guard_) / guard_ * guard_};
}

void BandPrinter::Control(uint32_t code, const void* data) const {
  if ((rasteriser_.control(handle_, code, data, nullptr) & 0xFFFF) != 1) {
    throw ToolError(ExitCode::kLibrary, fmt::format("the library refuses escape {:#x}", code));
  }
}

// Every item of the page is painted into every band that it touches.
void BandPrinter::Print(const Page& page, const Sink& sink) {
  const PagePainter painter(rasteriser_, handle_, device_, page);
  for (int top = 0; top < height_; top += bandRows_) {
    sink(PrintRows(painter, top, std::min(bandRows_, height_ - top)));
  }
}

Rect BandPrinter::ViewOf(int top, int rows) const {
  const Extent extent = ExtentOf(top, rows);
  const auto onPage = [&](int value) { return ScaleRounded(value, device_.pageDpi, device_.bandDpi); };
  return {0, onPage(extent.top), onPage(width_), onPage(extent.bottom)};
}

BandView BandPrinter::PrintRows(const PagePainter& page, int top, int rows) {
  const Extent extent = ExtentOf(top, rows);
  const DrawingOrigin origin{0, 0};
  const BandRect rect{0, extent.top, width_, extent.bottom};
  Control(QNV_SET_ORIGIN, &origin);
  Control(QNV_SET_BAND_RECT, &rect);
  Control(QNV_CLEAR_BAND, nullptr);
  page.Paint(handle_, ViewOf(top, rows));
  const std::size_t skipped = static_cast<std::size_t>(top - extent.top);  // rows above the band proper
  return {top,
          rows,
          band_.data() + skipped * stride_,
          stride_,
          tags_.empty() ? nullptr : tags_.data() + skipped * tagStride_,
          tagStride_};
}

}  // namespace qnv::tool
