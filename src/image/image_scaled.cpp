#include <cstring>

#include "device/scaled_raster_device.h"
#include "image/kept_columns.h"
#include "image/stretch_dibits.h"
#include "raster/rows/store_pixel.h"

namespace qnv {
namespace {

// SRCCOPY: of the rows and columns that a converted row covers, those that the band keeps are written.
class KeptRowCopier {
 public:
  // top: of the visible picture, caller's pixels from the band's top.
  KeptRowCopier(const BandView& band, const KeptMapping& mapping, const KeptColumns& columns, int32_t top,
                const RowKernels& kernels, bool regray)
      : band_(band),
        mapping_(mapping),
        columns_(columns),
        kernels_(kernels),
        regray_(regray),
        top_(top),
        bandRows_(WrapSubtract(band.rect.bottom, band.rect.top)) {}

  // Whether anything of a source row is seen. Intended: when the first row that it covers is not kept the others are
  // not looked at.
  bool Keeps(const CoveredRows& rows) const {
    return rows.count != 0 && !columns_.IsEmpty() && BandRow(rows.first) != nullptr;
  }

  // pixels: the converted row, from the first visible column on; a byte behind the last pixel is read.
  // Requires: Keeps(rows).
  void Copy(const uint8_t* pixels, const CoveredRows& rows) const {
    uint8_t* first = BandRow(rows.first);
    for (const KeptColumns::Run& run : columns_) {
      uint8_t* dst = first + static_cast<std::size_t>(run.bandColumn) * 3;
      const std::size_t count = static_cast<std::size_t>(run.count);
      StorePixels<3>(dst, count, [=](std::size_t i) {
        uint32_t packed;
        std::memcpy(&packed, pixels + std::ptrdiff_t{3} * run.columns[i], 4);
        return packed;
      });
      if (regray_) kernels_.image->RegrayRow24(dst, count);
    }
    const std::size_t offset = static_cast<std::size_t>(columns_.First()) * 3;
    const std::size_t bytes = static_cast<std::size_t>(columns_.End() - columns_.First()) * 3;
    for (int32_t i = 1; i < rows.count; ++i) {
      uint8_t* other = BandRow(rows.first + i);
      if (other != nullptr && other != first) std::memcpy(other + offset, first + offset, bytes);
    }
  }

 private:
  // Band row of a destination row counted from the clip's top; null when it is stored nowhere.
  uint8_t* BandRow(int32_t row) const {
    const int32_t bandRow = mapping_.BandRow(top_ + row);
    if (bandRow < 0 || bandRow >= bandRows_) return nullptr;
    return band_.RelativeAt(0, static_cast<uint32_t>(bandRow));
  }

  const BandView& band_;
  const KeptMapping mapping_;
  const KeptColumns& columns_;
  const RowKernels& kernels_;
  const bool regray_;
  const int32_t top_, bandRows_;
};

}  // namespace

uint16_t ScaledRasterDevice::StretchDIBits(const ImageArguments& a) {
  const BandView band = Band();
  const Rect bandInPage = Mapping().CallerRect(state_.bandRect);
  ImageTransfer transfer(state_.imageBuffers);
  // Transfers of this device take red, green and blue.
  const PixelTarget target = ImageModeOf(a.rop) == ImageMode::kBitBlt ? PixelTarget::kSource24 : PixelTarget::kBand24;
  if (!transfer.Prepare(state_, bandInPage, target, a)) return 0;
  const OriginAtZero origin(state_);
  const uint16_t described = state_.description.bitsPerPixel;
  const bool gray = IsGrayMode();
  switch (ImageModeOf(a.rop)) {
    case ImageMode::kCopy: {
      uint8_t* buffer = transfer.TakeRowBuffer(transfer.Width() + 1);
      KeptColumns columns;
      const int32_t bandColumns = WrapSubtract(band.rect.right, band.rect.left);
      if (buffer == nullptr ||
          !columns.Make(Mapping(), transfer.LeftInBand(), transfer.Width(), bandColumns, state_.imageBuffers)) {
        return 0;
      }
      const int32_t top = WrapSubtract(transfer.Clipped().top, bandInPage.top);
      const KeptRowCopier copier(band, Mapping(), columns, top, *state_.rows, gray);
      CoveredRows rows;
      while (transfer.NextRow(&rows)) {
        if (!copier.Keeps(rows)) continue;
        transfer.ConvertRow(buffer);
        copier.Copy(buffer, rows);
      }
      return 1;
    }
    case ImageMode::kMerge: return 1;  // Intended: extended codes paint nothing on this device.
    case ImageMode::kBitBlt: break;
  }
  // Rows are made gray here, not once more by every transfer.
  SetGrayMode(24);
  const uint32_t bitmapWidth = static_cast<uint32_t>(map_.MapToPage(static_cast<int32_t>(state_.description.width)));
  const uint16_t result = BlitImage(
      transfer, bitmapWidth, 3, a,
      [&](uint8_t* pixels, std::size_t count) {
        if (gray) state_.rows->image->RegrayRow24(pixels, count);
      },
      [this](const BltArguments& row) { return BitBlt(row), true; });
  SetGrayMode(described);
  return result;
}

}  // namespace qnv
