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

void MakeTagsMixed(TestDevice* device, uint64_t seed) {
  const DeviceOptions& options = device->options();
  device->SetOrigin(0, 0);
  ASSERT_EQ(1u, PaintOnePixelImage(device->handle(), options.left, options.top));
  ASSERT_EQ(3, device->tags()->data()[0]);
  device->tags()->Fill(kOldTag);
  FillWithNoise(&device->band(), seed);
}

}  // namespace qnv::test
