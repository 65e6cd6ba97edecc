// Images of the resolution-mapping device: SRCCOPY writes the rows and columns that the band keeps, other raster codes
// transfer each row in page coordinates.
#include "device/scaled/scaled_raster_device.h"
#include "image/image_rows.h"
#include "image/kept_row_copier.h"
#include "raster/bit_blt.h"

namespace qnv {

uint16_t ScaledRasterDevice::StretchDIBits(const ImageArguments& a) {
  const BandView band = Band();
  const KeptMapping mapping = Mapping();
  const Rect bandInPage = mapping.CallerRect(state_.bandRect);
  ImageTransfer transfer(state_.imageBuffers);
  // Transfers on this device take their sources in the order red, green, blue.
  const PixelTarget target = ImageModeOf(a.rop) == ImageMode::kBitBlt ? PixelTarget::kSource24 : PixelTarget::kBand24;
  if (!transfer.Prepare(state_.Paint(), bandInPage, target, a)) return 0;
  const bool gray = IsGrayMode();
  switch (ImageModeOf(a.rop)) {
    case ImageMode::kCopy: {
      uint8_t* buffer = transfer.TakeRowBuffer(1);
      KeptColumns columns;
      const int32_t bandColumns = WrapSubtract(band.rect.right, band.rect.left);
      if (buffer == nullptr ||
          !columns.Make(mapping, transfer.LeftInBand(), transfer.Width(), bandColumns, state_.imageBuffers)) {
        return 0;
      }
      // Rows and columns are counted from the corner of the band, in page pixels.
      const int32_t top = WrapSubtract(transfer.Clipped().top, bandInPage.top);
      const KeptRowCopier copier(band, mapping, columns, top, *state_.rows, gray);
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
  const uint32_t bitmapWidth = static_cast<uint32_t>(map_.MapToPage(static_cast<int32_t>(state_.description.width)));
  return FeedRows(
      transfer, bitmapWidth, 3, a.rop, a,
      [&](int32_t row) { return mapping.BandRow(WrapSubtract(row, bandInPage.top)) >= 0; },
      // A row is made gray once here, so the transfers need not do it again for each destination row.
      [&](uint8_t* pixels, std::size_t count) {
        if (gray) state_.rows->image->RegrayRow24(pixels, count);
      },
      [&](const BltArguments& row, const uint8_t*) {
        BitBltKept(state_.PaintWithoutOrigin(), band, mapping, KeptTransfer{true, false}, row);
        return true;
      });
}

}  // namespace qnv
