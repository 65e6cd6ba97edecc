// JPEG pictures, their Exif data, and what becomes of damaged ones.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "jpeg_sample.h"
#include "qnvtool/input/exif.h"

namespace qnv::test::picture_formats {
namespace {

// A TIFF header and one directory with an orientation and, unless it is 0, a resolution in dots per centimetre.
FileBytes ExifData(int orientation, bool bigEndian, uint32_t perCentimetre = 0) {
  FileBytes data;
  const auto put = [&](uint32_t value, int size) {
    for (int i = 0; i < size; ++i) {
      data.push_back(static_cast<uint8_t>(value >> 8 * (bigEndian ? size - 1 - i : i)));
    }
  };
  data.assign(2, bigEndian ? 'M' : 'I');
  put(42, 2);
  put(8, 4);
  const uint32_t entries = perCentimetre != 0 ? 4 : 1;
  put(entries, 2);
  const auto entry = [&](uint32_t tag, uint32_t type, uint32_t value, int size) {
    put(tag, 2);
    put(type, 2);
    put(1, 4);
    put(value, size);
    if (size == 2) put(0, 2);
  };
  entry(0x112, 3, static_cast<uint32_t>(orientation), 2);
  if (perCentimetre != 0) {
    const uint32_t rational = 8 + 2 + 4 * 12 + 4;
    entry(0x11A, 5, rational, 4);
    entry(0x11B, 5, rational, 4);
    entry(0x128, 3, 3, 2);
    put(0, 4);
    put(perCentimetre * 7, 4);
    put(7, 4);
  }
  return data;
}

// Decoded by libjpeg alone.
struct JpegColors {
  explicit JpegColors(const FileBytes& file);
  uint32_t operator()(int x, int y) const {
    return colors[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
  }
  int width = 0;
  std::vector<uint32_t> colors;
};

JpegColors::JpegColors(const FileBytes& file) {
  jpeg_decompress_struct jpeg;
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&jpeg);
  jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&jpeg, TRUE);
  jpeg.out_color_space = JCS_RGB;
  jpeg_start_decompress(&jpeg);
  FileBytes row(std::size_t{jpeg.output_width} * 3);
  while (jpeg.output_scanline < jpeg.output_height) {
    JSAMPROW rows[1] = {row.data()};
    jpeg_read_scanlines(&jpeg, rows, 1);
    for (std::size_t i = 0; i < row.size(); i += 3) {
      colors.push_back(static_cast<uint32_t>(row[i] << 16 | row[i + 1] << 8 | row[i + 2]));
    }
  }
  width = static_cast<int>(jpeg.output_width);
  jpeg_destroy_decompress(&jpeg);
}

TEST(JpegReader, ColorsAreThoseOfTheLibrary) {
  for (const bool progressive : {false, true}) {
    for (const J_COLOR_SPACE colors : {JCS_RGB, JCS_GRAYSCALE}) {
      for (const auto& [width, height] : {std::pair{32, 16}, {33, 19}, {1, 1}, {100, 90}}) {
        SCOPED_TRACE(testing::Message() << "progressive " << progressive << ", colors " << colors << ", " << width
                                        << " x " << height);
        const JpegSample file{
            .width = width, .height = height, .colors = colors, .progressive = progressive, .value = Smooth};
        const FileBytes bytes = file.Bytes();
        const WholePicture picture = ReadWhole(bytes, kDecoders);
        EXPECT_EQ(picture.bitCount, colors == JCS_GRAYSCALE ? 8 : 24);
        EXPECT_EQ(picture.height, height);
        EXPECT_TRUE(picture.notes.empty());
        const JpegColors expected(bytes);
        ASSERT_EQ(picture.width, expected.width);
        ExpectColors(picture, expected);
      }
    }
  }
}

// Black, cyan, magenta, yellow and white ink in blocks, which survive compression as they are.
TEST(JpegReader, CmykBecomesRgb) {
  const auto ink = [](int x, int, int channel) -> int {
    const int block = x / 16;
    return block == 0 ? (channel == 3 ? 255 : 0) : block == 4 ? 0 : channel == block - 1 ? 255 : 0;
  };
  for (const bool adobe : {true, false}) {
    const JpegSample file{.width = 80, .colors = JCS_CMYK, .adobe = adobe, .value = [&](int x, int y, int channel) {
                            return static_cast<uint8_t>(adobe ? 255 - ink(x, y, channel) : ink(x, y, channel));
                          }};
    const WholePicture picture = ReadWhole(file.Bytes(), kDecoders);
    constexpr uint32_t kColors[] = {0x000000, 0x00FFFF, 0xFF00FF, 0xFFFF00, 0xFFFFFF};
    ExpectColors(picture, [&](int x, int) { return kColors[x / 16]; });
    EXPECT_EQ(picture.notes, std::vector<std::string>{"its CMYK colors are converted without a color profile"});
  }
}

// An L of dark blocks, told apart in all eight positions.
TEST(JpegReader, OrientationIsRespected) {
  const auto isDark = [](int column, int row) { return column == 0 || row == 2; };  // blocks of 16: 4 columns, 3 rows
  const auto value = [&](int x, int y, int) { return static_cast<uint8_t>(isDark(x / 16, y / 16) ? 0 : 255); };
  // What stands at (column, row) of the page, in the file.
  const std::function<std::pair<int, int>(int, int)> source[] = {
      [](int x, int y) { return std::pair{x, y}; },         [](int x, int y) { return std::pair{3 - x, y}; },
      [](int x, int y) { return std::pair{3 - x, 2 - y}; }, [](int x, int y) { return std::pair{x, 2 - y}; },
      [](int x, int y) { return std::pair{y, x}; },         [](int x, int y) { return std::pair{y, 2 - x}; },
      [](int x, int y) { return std::pair{3 - y, 2 - x}; }, [](int x, int y) { return std::pair{3 - y, x}; }};
  for (int number = 1; number <= 8; ++number) {
    for (const bool bigEndian : {false, true}) {
      for (const J_COLOR_SPACE colors : {JCS_GRAYSCALE, JCS_RGB}) {
        SCOPED_TRACE(testing::Message() << "orientation " << number << ", big endian " << bigEndian);
        const JpegSample file{
            .width = 64, .height = 48, .colors = colors, .exif = ExifData(number, bigEndian), .value = value};
        const WholePicture picture = ReadWhole(file.Bytes(), kDecoders);
        EXPECT_EQ(picture.width, number < 5 ? 64 : 48);
        EXPECT_EQ(picture.height, number < 5 ? 48 : 64);
        ExpectColors(picture, [&](int x, int y) {
          const auto [column, row] = source[number - 1](x / 16, y / 16);
          return isDark(column, row) ? 0u : 0xFFFFFFu;
        });
      }
    }
  }
}

TEST(JpegReader, ResolutionIsRead) {
  const auto resolution = [](const JpegSample& file) {
    const WholePicture picture = ReadWhole(file.Bytes(), kDecoders);
    EXPECT_EQ(picture.xPixelsPerMetre, picture.yPixelsPerMetre);
    return picture.xPixelsPerMetre;
  };
  EXPECT_EQ(resolution({.density = 300, .value = Smooth}), 11811);
  EXPECT_EQ(resolution({.exif = ExifData(1, true, 100), .value = Smooth}), 10000);
  EXPECT_EQ(resolution({.exif = ExifData(1, false, 100), .value = Smooth}), 10000);
  EXPECT_EQ(resolution({.density = 300, .exif = ExifData(6, false, 100), .value = Smooth}), 11811);
  EXPECT_EQ(resolution({.value = Smooth}), 0);
}

TEST(JpegReader, ExifDataMayBeAnything) {
  const FileBytes whole = ExifData(6, false, 100);
  ASSERT_EQ(tool::ReadExif(whole.data(), whole.size()).orientation.number, 6);
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const FileBytes cut = CutTo(whole, size);
    const int number = tool::ReadExif(cut.data(), cut.size()).orientation.number;
    EXPECT_TRUE(number == 6 || number == 1) << size;
  }
  for (std::size_t at = 0; at < whole.size(); ++at) {
    for (int value = 0; value < 256; value += 5) {
      FileBytes spoiled = whole;
      spoiled[at] = static_cast<uint8_t>(value);
      const int number = tool::ReadExif(spoiled.data(), spoiled.size()).orientation.number;
      EXPECT_TRUE(number >= 1 && number <= 8);
    }
  }
}

// A break in the data: above it the picture is right, below it white.
TEST(JpegReader, FilesMayBreakOffAnywhere) {
  const JpegSample file{.width = 40, .height = 64, .colors = JCS_GRAYSCALE, .value = Smooth};
  const FileBytes whole = file.Bytes();
  const JpegColors expected(whole);
  // The marker that ends the file may be missing.
  const FileBytes data(whole.begin(), whole.end() - 2);
  const int pictures = ExpectCutFilesAreRead(data, expected);
  EXPECT_GT(pictures, 500);
  for (const JpegSample& other : {JpegSample{.progressive = true, .value = Smooth}, JpegSample{.value = Smooth},
                                  JpegSample{.exif = ExifData(6, true), .value = Smooth}}) {
    EXPECT_GT(ReadOfCutFiles(other.Bytes()), 100);
  }
}

TEST(JpegReader, DamagedBytesDoNoHarm) {
  const FileBytes whole = JpegSample{.value = Smooth}.Bytes();
  EXPECT_GT(RefusedOfDamagedFiles(whole, 3, {0x01, 0x80, 0xFF}), 20);
}

}  // namespace
}  // namespace qnv::test::picture_formats
