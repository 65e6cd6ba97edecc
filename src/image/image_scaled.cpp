#include <cstring>

#include "device/scaled_raster_device.h"
#include "image/stretch_dibits.h"

namespace qnv {
namespace {

// SRCCOPY: of the rows and columns that a converted row covers, those that the band keeps are written.
class KeptRowCopier {
 public:
  KeptRowCopier(const ImageTransfer& transfer, const BandView& band, const KeptMapping& mapping, const Rect& bandInPage,
                const RowKernels& kernels, bool regray)
      : band_(band),
        mapping_(mapping),
        kernels_(kernels),
        regray_(regray),
        left_(transfer.LeftInBand()),
        width_(transfer.Width()),
        top_(WrapSubtract(transfer.Clipped().top, bandInPage.top)),
        bandColumns_(WrapSubtract(band.rect.right, band.rect.left)),
        bandRows_(WrapSubtract(band.rect.bottom, band.rect.top)) {}

  // pixels: the converted row, from the first visible column on.
  void Copy(const uint8_t* pixels, const CoveredRows& rows) const {
    // Intended: when the first row is not kept the others are not looked at.
    uint8_t* first = BandRow(rows.first);
    if (first == nullptr) return;
    int32_t firstColumn = -1;
    int32_t endColumn = -1;
    mapping_.ForEachRun(left_, width_, bandColumns_, [&](const ColumnRun& run) {
      uint8_t* dst = first + static_cast<std::size_t>(run.bandColumn) * 3;
      for (int32_t i = 0; i < run.count; ++i) {
        std::memcpy(dst + 3 * i, pixels + std::ptrdiff_t{3} * (run.callerColumn + run.picks[i]), 3);
      }
      if (regray_) kernels_.image->RegrayRow24(dst, static_cast<std::size_t>(run.count));
      if (firstColumn < 0) firstColumn = run.bandColumn;
      endColumn = run.bandColumn + run.count;
    });
    if (firstColumn < 0) return;
    const std::size_t offset = static_cast<std::size_t>(firstColumn) * 3;
    const std::size_t bytes = static_cast<std::size_t>(endColumn - firstColumn) * 3;
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
  const RowKernels& kernels_;
  const bool regray_;
  const int32_t left_, width_, top_, bandColumns_, bandRows_;
};

}  // namespace

uint16_t ScaledRasterDevice::StretchDIBits(const ImageArguments& a) {
  const BandView band = Band();
  const Rect bandInPage = Mapping().CallerRect(state_.bandRect);
  ImageTransfer transfer(state_.imageBuffers);
  // Transfers of this device take red, green and blue.
  const PixelTarget target =
      ImageModeOf(a.rop) == ImageMode::kBitBlt ? PixelTarget::kSource24 : PixelTarget::kBand24;
  if (!transfer.Prepare(state_, bandInPage, target, a)) return 0;
  const OriginAtZero origin(state_);
  const uint16_t described = state_.description.bitsPerPixel;
  const bool gray = IsGrayMode();
  switch (ImageModeOf(a.rop)) {
    case ImageMode::kCopy: {
      uint8_t* buffer = transfer.TakeRowBuffer(transfer.Width());
      if (buffer == nullptr) return 0;
      const KeptRowCopier copier(transfer, band, Mapping(), bandInPage, *state_.rows, gray);
      CoveredRows rows;
      while (transfer.NextRow(&rows)) {
        if (rows.count == 0) continue;
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
