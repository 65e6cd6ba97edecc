// Pictures of bands.
#include "qnvtool/calls/plane_picture.h"

#include <algorithm>

namespace qnv::tool {

PlaneSize SizeOf(const calls::PlayedDevice& device) {
  const BandRect& rect = device.shape.rect;
  const int64_t width = std::min<int64_t>(int64_t{rect.right} - rect.left, device.shape.description.width);
  const int64_t height = std::min<int64_t>(int64_t{rect.bottom} - rect.top, device.shape.description.height);
  return {static_cast<int>(std::max<int64_t>(width, 0)), static_cast<int>(std::max<int64_t>(height, 0))};
}

PictureForm FormOf(const calls::PlayedDevice& device, bool tags, const PlaneSize& size) {
  const bool gray = device.shape.PixelBytes() == 1;
  const auto& description = device.shape.description;
  return {size.width, size.height, device.shape.IsScaled() ? description.resolutionB : description.resolutionA,
          tags   ? PictureForm::Pixels::kTags
          : gray ? PictureForm::Pixels::kGray
                 : PictureForm::Pixels::kColor};
}

void WriteDevicePicture(const calls::PlayedDevice& device, bool tags, const std::string& path, const CallParts& parts) {
  const PlaneSize size = SizeOf(device);
  const calls::GuardedPlane& plane = tags ? device.tags : device.band;
  if (size.width == 0 || size.height == 0 || plane.empty()) return;
  parts.writePng(path, FormOf(device, tags, size), plane.data(),
                 tags ? device.shape.TagStride() : device.shape.Stride());
}

}  // namespace qnv::tool
