#include "device/dual_plane/dual_plane_device.h"
#include "image/image_rows.h"

namespace qnv {

bool DualPlaneDevice::TagImage(const BltArguments& a) {
  planeUniform_ = false;
  return TagTransferOn(tagDevice_->PlaneWithoutOrigin(), QNV_TAG_IMAGE, a);
}

uint16_t DualPlaneDevice::StretchDIBits(const ImageArguments& a) {
  const BandView band = ImageBand(Band());
  ImageTransfer transfer(state_.imageBuffers);
  if (!transfer.Prepare(state_.Paint(), state_.bandRect, BandTarget(state_.Is24()), a)) return 0;
  const auto keepPixels = [](uint8_t*, std::size_t) {};
  const uint32_t bitmapWidth = state_.description.width;
  switch (ImageModeOf(a.rop)) {
    case ImageMode::kCopy: {
      const Rect& area = transfer.Clipped();
      const BltArguments whole{area.left, area.top, nullptr,    area.left, 0, transfer.Width(), area.bottom - area.top,
                               SRCCOPY,   a.brush,  a.drawMode, &kNoClip};
      if (!TagImage(whole)) return 0;
      CopyImage(transfer, band, *state_.rows);
      return 1;
    }
    case ImageMode::kMerge:
      return FeedRows(transfer, bitmapWidth, band.bytesPerPixel, kMergeTags, a, keepPixels,
                      [&](const BltArguments& row, const uint8_t* pixels) {
                        if (!TagImage(row)) return false;
                        MergeRow(transfer, band, *state_.rows, a.rop, row, pixels);
                        return true;
                      });
    case ImageMode::kBitBlt: break;
  }
  return FeedRows(transfer, bitmapWidth, band.bytesPerPixel, a.rop, a, keepPixels,
                  [&](const BltArguments& row, const uint8_t*) {
                    if (!TagImage(row)) return false;
                    colourDevice_->PaintImageRow(row);
                    return true;
                  });
}

}  // namespace qnv
