// RLE files written by the tool, painted by the library.
#include <gtest/gtest.h>

#include "qnvtool/bmp_reader.h"
#include "qnvtool/bmp_writer.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

TEST(RlePicture, EveryPixelSurvives) {
  constexpr int kWidth = 300;  // longer than the longest run
  constexpr int kHeight = 6;
  std::vector<uint32_t> palette;
  for (uint32_t i = 0; i < 256; ++i) palette.push_back(i * 0x010101);
  std::vector<uint8_t> indices;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const int shapes[] = {y * 40, x, x / 2, x / 3, x * x % (y + 3), x % 7 < 4 ? 5 : x};
      indices.push_back(static_cast<uint8_t>(shapes[y]));
    }
  }
  const tool::Dib dib = tool::ReadBmp(tool::EncodeBmpRle8(kWidth, kHeight, 72, indices, palette), "x.bmp");
  EXPECT_TRUE(dib.remarks.empty());
  TestDevice device({.bitsPerPixel = 8, .width = kWidth, .height = kHeight});
  const DRAWMODE mode = MakeDrawMode();
  ASSERT_EQ(QNVDevSetDIBitsToDevice(device.handle(), 0, 0, 0, kHeight, &kEverywhere, &mode, dib.bits.data(),
                                    dib.info.data(), nullptr) &
                0xFFFF,
            1u);
  EXPECT_EQ(device.BandBytes(), indices);
}

// However short the stream is cut, decoding stays inside what the reader hands over (the sanitizers watch) and the
// pixels that were there are right.
TEST(RlePicture, StreamsMayBreakOffAnywhere) {
  constexpr int kWidth = 40;
  constexpr int kHeight = 8;
  std::vector<uint8_t> indices;
  for (int i = 0; i < kWidth * kHeight; ++i) indices.push_back(static_cast<uint8_t>(i % 11 < 5 ? 200 : i % 251 + 1));
  std::vector<uint32_t> palette;
  for (uint32_t i = 0; i < 256; ++i) palette.push_back(i * 0x010101);
  const tool::Bytes whole = tool::EncodeBmpRle8(kWidth, kHeight, 72, indices, palette);
  const std::size_t pixels = tool::U32At(whole, 10);
  int shortened = 0;
  for (std::size_t size = pixels + 1; size < whole.size(); ++size) {
    const tool::Dib dib =
        tool::ReadBmp(tool::Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)), "x.bmp");
    TestDevice device({.bitsPerPixel = 8, .width = kWidth, .height = kHeight});
    const DRAWMODE mode = MakeDrawMode();
    // Exactly as long as the reader made it, with an unreadable page behind.
    FencedBuffer bits(dib.bits.size(), 0);
    std::copy(dib.bits.begin(), dib.bits.end(), bits.data());
    ASSERT_EQ(QNVDevSetDIBitsToDevice(device.handle(), 0, 0, 0, kHeight, &kEverywhere, &mode, bits.data(),
                                      dib.info.data(), nullptr) &
                  0xFFFF,
              1u);
    const std::vector<uint8_t> painted = device.BandBytes();
    // Rows are stored from the bottom up, so what is there is at the end.
    std::size_t same = 0;
    while (same < painted.size() && painted[painted.size() - 1 - same] == indices[indices.size() - 1 - same]) ++same;
    shortened += same < painted.size() ? 1 : 0;
  }
  EXPECT_GT(shortened, 10);
}

}  // namespace
}  // namespace qnv::test
