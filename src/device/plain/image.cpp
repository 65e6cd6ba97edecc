#include "device/plain/raster_device.h"
#include "image/image_rows.h"
#include "raster/bit_blt.h"

namespace qnv {

uint16_t RasterDevice::StretchDIBits(const ImageArguments& a) {
  const BandView band = ImageBand(Band());
  ImageTransfer transfer(state_.imageBuffers);
  if (!transfer.Prepare(state_.Paint(), state_.bandRect, BandTarget(state_.Is24()), a)) return 0;
  const auto keepPixels = [](uint8_t*, std::size_t) {};
  const uint32_t bitmapWidth = state_.description.width;
  switch (ImageModeOf(a.rop)) {
    case ImageMode::kCopy: CopyImage(transfer, band, *state_.rows); return 1;
    case ImageMode::kMerge:
      return FeedRows(transfer, bitmapWidth, band.bytesPerPixel, kMergeTags, a, keepPixels,
                      [&](const BltArguments& row, const uint8_t* pixels) {
                        MergeRow(transfer, band, *state_.rows, a.rop, row, pixels);
                        return true;
                      });
    case ImageMode::kBitBlt: break;
  }
  return FeedRows(transfer, bitmapWidth, band.bytesPerPixel, a.rop, a, keepPixels,
                  [this](const BltArguments& row, const uint8_t*) {
                    PaintImageRow(row);
                    return true;
                  });
}

void RasterDevice24::PaintImageRow(const BltArguments& row) {
  BitBlt24(state_.PaintWithoutOrigin(), BandOf(3), SourceOrder::kBlueGreenRed, row);
}

void RasterDevice8::PaintImageRow(const BltArguments& row) { BitBlt8(state_.PaintWithoutOrigin(), BandOf(1), row); }

}  // namespace qnv
