// What holds for pictures of all formats: sizes that are refused, programs without a reader, pictures in BMP files.
#include <gtest/gtest.h>

#include "jpeg_sample.h"
#include "png_sample.h"
#include "tiff_sample.h"

namespace qnv::test::picture_formats {
namespace {

// A BMP file around a PNG or JPEG file.
TEST(EmbeddedPictures, AreDecoded) {
  const PngSample png{};
  const JpegSample jpeg{.value = Smooth};
  for (const bool isPng : {true, false}) {
    BmpFile file{.width = isPng ? 13 : 32, .height = isPng ? 11 : 16, .bitCount = 0};
    file.compression = isPng ? 5 : 4;
    file.pixels = isPng ? png.Bytes() : jpeg.Bytes();
    const WholePicture embedded = ReadWhole(file.Bytes(), kDecoders);
    const WholePicture alone = ReadWhole(file.pixels, kDecoders);
    EXPECT_EQ(embedded.bits, alone.bits);
    EXPECT_EQ(embedded.info, alone.info);
  }
}

TEST(Pictures, TooLargeOnesAreRefusedBeforeMemoryIsTaken) {
  FileBytes png = PngSample{}.Bytes();
  // The sides in IHDR, and its checksum.
  const auto put = [&](std::size_t at, uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) png[at + i] = static_cast<uint8_t>(value >> (24 - 8 * i));
  };
  put(16, 100000);
  put(20, 100000);
  uint32_t crc = 0xFFFFFFFF;
  for (std::size_t i = 12; i < 29; ++i) {
    crc ^= png[i];
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (crc & 1 ? 0xEDB88320 : 0);
  }
  put(29, ~crc);
  EXPECT_EQ(Try(png).error, "x.bmp: has 100000 x 100000 pixels; pictures of 1 to 32767 on each side can be printed");

  FileBytes jpeg = JpegSample{.progressive = true, .value = Smooth}.Bytes();
  for (std::size_t i = 0; i + 9 < jpeg.size(); ++i) {
    if (jpeg[i] != 0xFF || jpeg[i + 1] != 0xC2) continue;
    jpeg[i + 5] = jpeg[i + 7] = 0x7F;  // 32,528 x 32,544 pixels or so
    break;
  }
  EXPECT_NE(Try(jpeg).error.find("is a progressive JPEG picture that would take "), std::string::npos);

  // Rows that are turned are converted to 32 bits a pixel, a strip at a time.
  TiffSample strip{.photometric = PHOTOMETRIC_MINISBLACK, .bits = 1, .samples = 1, .compression = COMPRESSION_LZW};
  strip.orientation = 5;
  strip.rowsPerStrip = 30000;
  strip.width = 600;
  strip.height = 30000;
  EXPECT_NE(Try(TiffBytes({strip})).error.find("is a TIFF picture with pieces of 68 MB, at most 64 can be in memory"),
            std::string::npos);
}

TEST(Pictures, ReadersMayBeAbsent) {
  const auto errorOf = [](const FileBytes& file) { return InputErrorOf([&] { OpenPicture(file); }); };
  EXPECT_EQ(errorOf(PngSample{}.Bytes()), "x.bmp: is a PNG picture, which this program was built without a reader for");
  EXPECT_EQ(errorOf(JpegSample{.value = Smooth}.Bytes()),
            "x.bmp: is a JPEG picture, which this program was built without a reader for");
  EXPECT_EQ(errorOf({'x', 'y'}), "x.bmp: is no picture that can be printed (BMP, PNG, JPEG and TIFF can)");
}

}  // namespace
}  // namespace qnv::test::picture_formats
