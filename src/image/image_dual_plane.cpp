#include "device/dual_plane_device.h"
#include "image/stretch_dibits.h"

namespace qnv {

uint16_t DualPlaneDevice::StretchDIBits(const ImageArguments& a) {
  const BandView band = ImageBand(Band());
  ImageTransfer transfer(state_.imageBuffers);
  if (!transfer.Prepare(state_, state_.bandRect, BandTarget(state_), a)) return 0;
  const OriginAtZero tagOrigin(tagDevice_->state());
  const OriginAtZero colourOrigin(colourDevice_->state());
  // Every depth is an image flag: what images paint is tagged as image.
  const auto tag = [&](const BltArguments& blt) { return TagBlt(blt, transfer.BitCount()) != 0; };
  const uint32_t bitmapWidth = state_.description.width;
  switch (ImageModeOf(a.rop)) {
    case ImageMode::kCopy: {
      const Rect& area = transfer.Clipped();
      const BltArguments whole{area.left, area.top, nullptr,    area.left, 0, transfer.Width(), area.bottom - area.top,
                               SRCCOPY,   a.brush,  a.drawMode, &kNoClip};
      if (!tag(whole)) return 0;
      CopyImage(transfer, band, *state_.rows);
      return 1;
    }
    case ImageMode::kMerge: return MergeImage(transfer, band, *state_.rows, bitmapWidth, a, tag);
    case ImageMode::kBitBlt: break;
  }
  return BlitImage(
      transfer, bitmapWidth, band.bytesPerPixel, a, [](uint8_t*, std::size_t) {},
      [&](const BltArguments& row) { return tag(row) && colourDevice_->BitBlt(row) != 0; });
}

}  // namespace qnv
