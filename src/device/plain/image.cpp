// Images of the plain devices, and of the dual-plane device, which derives from them: SRCCOPY converts rows straight
// into the band, ROP_MINIMUM merges them with it, and every other raster code transfers them row by row.
#include "device/plain/raster_device.h"
#include "image/image_rows.h"
#include "raster/bit_blt.h"

namespace qnv {

uint16_t RasterDevice::StretchDIBits(const ImageArguments& a) {
  const BandView band = ImageBand(Band());
  ImageTransfer transfer(state_.imageBuffers);
  if (!transfer.Prepare(state_.Paint(), state_.bandRect, BandTarget(state_.Is24()), a)) return 0;
  const ImageMode mode = ImageModeOf(a.rop);
  if (mode == ImageMode::kCopy) {
    const Rect& area = transfer.Clipped();
    // The whole destination as one transfer, for its tags; its source is not read.
    const BltArguments whole{area.left, area.top, nullptr,    area.left, 0, transfer.Width(), area.bottom - area.top,
                             SRCCOPY,   a.brush,  a.drawMode, &kNoClip};
    if (!MarkImage(whole)) return 0;
    CopyImage(transfer, band, *state_.rows);
    return 1;
  }
  // The other codes paint row by row, and each row is marked before it is painted.
  const bool merges = mode == ImageMode::kMerge;
  const auto keepPixels = [](uint8_t*, std::size_t) {};
  const auto paintRow = [&](const BltArguments& row, const uint8_t* pixels) {
    if (!MarkImage(row)) return false;
    if (merges) {
      MergeRow(transfer, band, *state_.rows, a.rop, row, pixels);
    } else {
      PaintImageRow(row);
    }
    return true;
  };
  return FeedRows(transfer, state_.description.width, band.bytesPerPixel, merges ? kMergeTags : a.rop, a, AllRows{},
                  keepPixels, paintRow);
}

void RasterDevice24::PaintImageRow(const BltArguments& row) {
  BitBlt24(state_.PaintWithoutOrigin(), BandOf(3), SourceOrder::kBlueGreenRed, row);
}

void RasterDevice8::PaintImageRow(const BltArguments& row) { BitBlt8(state_.PaintWithoutOrigin(), BandOf(1), row); }

}  // namespace qnv
