#include "image/stretch_dibits.h"

#include "device/raster_device.h"

namespace qnv {

uint16_t RasterDevice::StretchDIBits(const ImageArguments& a) {
  const BandView band = ImageBand(Band());
  ImageTransfer transfer(state_.imageBuffers);
  if (!transfer.Prepare(state_, state_.bandRect, BandTarget(state_), a)) return 0;
  const OriginAtZero origin(state_);
  switch (ImageModeOf(a.rop)) {
    case ImageMode::kCopy: CopyImage(transfer, band, *state_.rows); return 1;
    case ImageMode::kMerge:
      return MergeImage(transfer, band, *state_.rows, state_.description.width, a,
                        [](const BltArguments&) { return true; });
    case ImageMode::kBitBlt: break;
  }
  return BlitImage(
      transfer, state_.description.width, band.bytesPerPixel, a, [](uint8_t*, std::size_t) {},
      [this](const BltArguments& row) { return BitBlt(row), true; });
}

}  // namespace qnv
