// Coordinates so far apart that sums and steps reach the ends of their types.
#include <gtest/gtest.h>

#include <cstring>

#include "robustness/modelled_device.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

// A band pixel of 65,535 page pixels: the band reaches from -65,535 to behind 2^31 - 65,535.
constexpr DeviceOptions kWidePage{
    .kind = QNV_KIND_SCALED, .width = 32769, .height = 1, .resolutionA = 65535, .resolutionB = 1, .left = -1};

// A destination whose end lies 2^31 - 1 pixels behind a begin inside the band, and so behind the last coordinate when
// it is counted from the band's left.
TEST(FarCoordinates, AFillAsWideAsThePageIsTheFillsOfItsHalves) {
  constexpr int32_t kLeft = -65525;
  constexpr int32_t kHalf = 1 << 30;
  constexpr BandRect kNoLimit{-65535, 0, INT32_MAX, 1};
  const DRAWMODE mode = MakeDrawMode();
  TestDevice whole(kWidePage);
  TestDevice halves(kWidePage);
  const auto fill = [&](const TestDevice& device, int32_t left, int32_t width) {
    EXPECT_EQ(
        1u,
        QNVDevBitBlt(device.handle(), left, 0, nullptr, 0, 0, width, 1, WHITENESS, nullptr, &mode, &kNoLimit) & 0xFFFF);
  };
  fill(whole, kLeft, INT32_MAX);
  fill(halves, kLeft, kHalf);
  fill(halves, kLeft + kHalf, INT32_MAX - kHalf);
  EXPECT_EQ(halves.BandBytes(), whole.BandBytes());
  EXPECT_NE(TestDevice(kWidePage).BandBytes(), whole.BandBytes());
  EXPECT_TRUE(whole.FencesIntact());
}

// One pixel stretched over 2^24 whose source corner lies 65,536 pixels away, which is the same corner: the steps
// between are products of 2^56.
TEST(FarCoordinates, AnEnlargedPixelFromACornerThatWraps) {
  ModelledDevice device({.width = 8, .height = 2});
  ASSERT_NE(nullptr, device.model);
  BITMAPINFOHEADER header;
  std::memset(&header, 0, sizeof header);
  header.biSize = sizeof header;
  header.biWidth = 2;
  header.biHeight = 1;
  header.biPlanes = 1;
  header.biBitCount = 24;
  const uint8_t pixels[8] = {1, 2, 3, 4, 5, 6};
  const DRAWMODE mode = MakeDrawMode();
  for (const int32_t width : {1 << 12, 1 << 16, 1 << 20, 1 << 24}) {
    for (const int32_t corner : {0, 65536, -65536, 65537}) {
      reference::ImageArgs args{};
      args.dstWidth = width;
      args.dstHeight = 2;
      args.srcX = corner;
      args.srcWidth = 1;
      args.srcHeight = 1;
      args.bits = pixels;
      args.bitmapInfo = &header;
      args.rop = SRCCOPY;
      args.drawMode = &mode;
      args.clip = &kEverywhere;
      const uint32_t expected = device.model->StretchDIBits(args) & 0xFFFF;
      const uint32_t got = QNVStretchDIBits(device.handle(), 0, 0, 0, width, 2, corner, 0, 1, 1, pixels, &header,
                                            nullptr, SRCCOPY, nullptr, &mode, &kEverywhere);
      EXPECT_EQ(expected, got & 0xFFFF) << width << " from " << corner;
      EXPECT_EQ(device.model->band().bytes(), device.BandBytes()) << width << " from " << corner;
    }
  }
}

}  // namespace
}  // namespace qnv::test
