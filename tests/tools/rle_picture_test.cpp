// RLE files written by the tool, painted by the library.
#include <gtest/gtest.h>

#include "qnvtool/bmp_reader.h"
#include "qnvtool/bmp_writer.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

// Gray levels as indices.
tool::Bytes EncodeGray(int width, int height, const std::vector<uint8_t>& indices) {
  std::vector<uint32_t> palette;
  for (uint32_t i = 0; i < 256; ++i) palette.push_back(i * 0x010101);
  return tool::EncodeBmpRle8(width, height, 72, indices, palette);
}

std::vector<uint8_t> PaintedBand(const tool::Dib& dib) {
  const auto height = static_cast<uint32_t>(dib.height);
  TestDevice device({.bitsPerPixel = 8, .width = static_cast<uint32_t>(dib.width), .height = height});
  const DRAWMODE mode = MakeDrawMode();
  // Exactly as long as the reader made it, with an unreadable page behind.
  const FencedInput bits(dib.bits);
  EXPECT_EQ(QNVDevSetDIBitsToDevice(device.handle(), 0, 0, 0, height, &kEverywhere, &mode, bits.data(), dib.info.data(),
                                    nullptr) &
                0xFFFF,
            1u);
  return device.BandBytes();
}

TEST(RlePicture, EveryPixelSurvives) {
  constexpr int kWidth = 300;  // longer than the longest run
  constexpr int kHeight = 6;
  std::vector<uint8_t> indices;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const int shapes[] = {y * 40, x, x / 2, x / 3, x * x % (y + 3), x % 7 < 4 ? 5 : x};
      indices.push_back(static_cast<uint8_t>(shapes[y]));
    }
  }
  const tool::Dib dib = tool::ReadBmp(EncodeGray(kWidth, kHeight, indices), "x.bmp");
  EXPECT_TRUE(dib.remarks.empty());
  EXPECT_EQ(PaintedBand(dib), indices);
}

// However short the stream is cut, decoding stays inside what the reader hands over (the sanitizers watch) and the
// pixels that were there are right.
TEST(RlePicture, StreamsMayBreakOffAnywhere) {
  constexpr int kWidth = 40;
  constexpr int kHeight = 8;
  std::vector<uint8_t> indices;
  for (int i = 0; i < kWidth * kHeight; ++i) indices.push_back(static_cast<uint8_t>(i % 11 < 5 ? 200 : i % 251 + 1));
  const tool::Bytes whole = EncodeGray(kWidth, kHeight, indices);
  const std::size_t pixels = tool::U32At(whole, 10);
  int shortened = 0;
  for (std::size_t size = pixels + 1; size < whole.size(); ++size) {
    const tool::Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    const std::vector<uint8_t> painted = PaintedBand(tool::ReadBmp(cut, "x.bmp"));
    // Rows are stored from the bottom up, so what is there is at the end.
    std::size_t same = 0;
    while (same < painted.size() && painted[painted.size() - 1 - same] == indices[indices.size() - 1 - same]) ++same;
    shortened += same < painted.size() ? 1 : 0;
  }
  EXPECT_GT(shortened, 10);
}

}  // namespace
}  // namespace qnv::test
