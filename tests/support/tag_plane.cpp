// Prepares tag planes and compares them with pictures of marks.
#include "support/tag_plane.h"

#include <gtest/gtest.h>

#include "support/random_bytes.h"

namespace qnv::test {

uint32_t PaintOnePixelImage(DeviceHandle* handle, int32_t x, int32_t y) {
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = 1;
  header.biHeight = 1;
  header.biPlanes = 1;
  header.biBitCount = 24;
  const uint8_t bits[4] = {0x10, 0x20, 0x30, 0};
  const DRAWMODE mode = MakeDrawMode();
  return QNVStretchDIBits(handle, 0, x, y, 1, 1, 0, 0, 1, 1, bits, &header, nullptr, SRCCOPY, nullptr, &mode,
                          &kEverywhere) &
         0xFFFF;
}

void MixTags(TestDevice* device) {
  const DeviceOptions& options = device->options();
  device->SetOrigin(0, 0);
  ASSERT_EQ(1u, PaintOnePixelImage(device->handle(), options.left, options.top));
  ASSERT_EQ(QNV_TAG_IMAGE, device->tags()->data()[0]);
  device->tags()->Fill(kOldTag);
  device->band().Fill(options.fill);
}

void MakeTagsMixed(TestDevice* device, uint64_t seed) {
  MixTags(device);
  FillWithNoise(&device->band(), seed);
}

PlaneImage MixedTags(const TestDevice& device) {
  PlaneImage tags = TagImage(device);
  tags.FillBytes(kOldTag);
  return tags;
}

testing::AssertionResult TagsMarked(const TestDevice& device, std::string_view picture) {
  if (!device.FencesIntact()) return testing::AssertionFailure() << "memory outside the planes was written";
  return PlaneIs(TagImage(device), MixedTags(device), {{'1', Gray(QNV_TAG_GRAPHICS)}, {'0', 0}}, picture);
}

}  // namespace qnv::test
