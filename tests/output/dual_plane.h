// Dual-plane devices whose tag plane is known to be mixed, so that every operation has to mark it.
#pragma once

#include <cstring>

#include "output/band_picture.h"

namespace qnv::test {

// Paints a one-pixel image over the whole band, which tags every pixel as image and ends the uniform state, then gives
// the colour plane its fill byte back.
inline void TagWholeBandAsImage(TestDevice& device) {
  BITMAPINFOHEADER header;
  std::memset(&header, 0, sizeof header);
  header.biSize = sizeof header;
  header.biWidth = 1;
  header.biHeight = 1;
  header.biPlanes = 1;
  header.biBitCount = 24;
  const uint8_t pixel[4] = {1, 2, 3, 0};
  const DRAWMODE mode = MakeDrawMode();
  const DeviceOptions& o = device.options();
  device.SetOrigin(0, 0);
  EXPECT_EQ(1u, QNVStretchDIBits(device.handle(), 0, o.left, o.top, static_cast<int32_t>(o.width),
                                 static_cast<int32_t>(o.height), 0, 0, 1, 1, pixel, &header, nullptr, SRCCOPY, nullptr,
                                 &mode, &kEverywhere) &
                    0xFFFF);
  device.band().Fill(o.fill);
}

// The tag plane that TagWholeBandAsImage leaves: image tags, row padding as it was.
inline PicturePlane ImageTags(const TestDevice& device) {
  PicturePlane tags = UntouchedTags(device);
  for (uint32_t row = 0; row < tags.height; ++row) {
    for (uint32_t column = 0; column < tags.width; ++column) tags.Put(column, row, Gray(QNV_TAG_IMAGE));
  }
  return tags;
}

// The tag plane is all image but for the picture's '1' (graphics) and '0' (text background) pixels.
inline testing::AssertionResult TagsMarked(const TestDevice& device, std::string_view picture) {
  if (!device.FencesIntact()) return testing::AssertionFailure() << "memory outside the planes was written";
  return PlaneIs(CurrentTags(device), ImageTags(device), {{'1', Gray(QNV_TAG_GRAPHICS)}, {'0', 0}}, picture);
}

inline testing::AssertionResult TagsAllImage(const TestDevice& device) {
  if (!device.FencesIntact()) return testing::AssertionFailure() << "memory outside the planes was written";
  return SamePlane(ImageTags(device), CurrentTags(device));
}

}  // namespace qnv::test
