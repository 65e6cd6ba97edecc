// PNG, JPEG and TIFF pictures of every kind, made by their libraries, and what becomes of damaged ones.
#include <gtest/gtest.h>
#include <png.h>
#include <tiffio.h>

#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>
// Needs the types of <cstdio>.
#include <jpeglib.h>

#include "picture_inputs.h"
#include "qnvtool/input/exif.h"
#include "qnvtool/input/jpeg_reader.h"
#include "qnvtool/input/png_reader.h"
#include "qnvtool/input/tiff_reader.h"
#include "tool_errors.h"

namespace qnv::test::picture_formats {
namespace {

using FileBytes = std::vector<uint8_t>;

const tool::PictureDecoders kDecoders{tool::OpenPng, tool::OpenJpeg, tool::OpenTiff};

// The color of a pixel that a bitmap shows, 0xRRGGBB; y counts from the top.
uint32_t ColorOf(const WholePicture& picture, int x, int y) {
  const std::size_t stride = tool::DibStride(picture.width, picture.bitCount);
  const int stored = picture.topDown ? y : picture.height - 1 - y;
  const uint8_t* const row = picture.bits.data() + static_cast<std::size_t>(stored) * stride;
  const auto column = static_cast<std::size_t>(x);
  if (picture.bitCount >= 24) {
    const uint8_t* const pixel = row + column * static_cast<std::size_t>(picture.bitCount / 8);
    return static_cast<uint32_t>(pixel[2] << 16 | pixel[1] << 8 | pixel[0]);
  }
  const auto bits = static_cast<std::size_t>(picture.bitCount);
  const std::size_t index = row[column * bits / 8] >> (8 - bits - column * bits % 8) & ((1u << bits) - 1);
  return tool::U32At(picture.info, 40 + index * 4);
}

using ColorAt = std::function<uint32_t(int x, int y)>;

void ExpectColors(const WholePicture& picture, const ColorAt& expected, int rows = -1) {
  for (int y = 0; y < (rows < 0 ? picture.height : rows); ++y) {
    for (int x = 0; x < picture.width; ++x) {
      ASSERT_EQ(ColorOf(picture, x, y), expected(x, y)) << x << ',' << y;
    }
  }
}

uint32_t Over(uint32_t value, uint32_t alpha) { return (value * alpha + 255 * (255 - alpha) + 127) / 255; }

uint32_t OverWhite(uint32_t color, uint32_t alpha) {
  return Over(color >> 16, alpha) << 16 | Over(color >> 8 & 0xFF, alpha) << 8 | Over(color & 0xFF, alpha);
}

// Components that differ between neighbors, columns, rows and channels.
uint32_t Component(int x, int y, int channel, uint32_t largest) {
  return static_cast<uint32_t>(x * 37 + y * 101 + channel * 71 + x * y) % (largest + 1);
}

// ---- PNG ------------------------------------------------------------------------------------------------------------

struct PngSample {
  int type = PNG_COLOR_TYPE_RGB;
  int depth = 8;
  bool interlaced = false;
  bool hasKey = false;  // tRNS: the alphas of a palette, or the color of pixel (0, 0)
  bool hasProfile = false;
  uint32_t pixelsPerMetre = 0;
  int width = 13;
  int height = 11;

  int channels() const {
    return type == PNG_COLOR_TYPE_RGB          ? 3
           : type == PNG_COLOR_TYPE_RGB_ALPHA  ? 4
           : type == PNG_COLOR_TYPE_GRAY_ALPHA ? 2
                                               : 1;
  }
  uint32_t largest() const { return (1u << depth) - 1; }
  uint32_t Value(int x, int y, int channel) const { return Component(x, y, channel, largest()); }

  static uint32_t PaletteColor(uint32_t i) { return (i * 0x3F1D07 + 0x102030) & 0xFFFFFF; }
  static uint32_t PaletteAlpha(uint32_t i) { return i * 91 % 256; }

  // What is to be shown.
  uint32_t Color(int x, int y) const {
    const auto byte = [&](int channel) {
      const uint32_t value = Value(x, y, channel);
      return depth == 16 ? (value * 255 + 32767) / 65535 : value * 255 / largest();
    };
    if (type == PNG_COLOR_TYPE_PALETTE) {
      const uint32_t index = Value(x, y, 0);
      return hasKey ? OverWhite(PaletteColor(index), PaletteAlpha(index)) : PaletteColor(index);
    }
    if (hasKey) {
      bool isKey = true;
      for (int c = 0; c < channels(); ++c) isKey &= Value(x, y, c) == Value(0, 0, c);
      if (isKey) return 0xFFFFFF;
    }
    const bool gray = channels() < 3;
    const uint32_t color = gray ? byte(0) * 0x010101 : byte(0) << 16 | byte(1) << 8 | byte(2);
    return channels() % 2 == 0 ? OverWhite(color, byte(channels() - 1)) : color;
  }

  FileBytes Bytes() const {
    FileBytes bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &bytes,
        [](png_structp p, png_bytep data, png_size_t size) {
          auto* const to = static_cast<FileBytes*>(png_get_io_ptr(p));
          to->insert(to->end(), data, data + size);
        },
        nullptr);
    png_set_IHDR(png, info, static_cast<uint32_t>(width), static_cast<uint32_t>(height), depth, type,
                 interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_color palette[256];
    png_byte alphas[256];
    for (uint32_t i = 0; i < 256; ++i) {
      const uint32_t color = PaletteColor(i);
      palette[i] = {static_cast<png_byte>(color >> 16), static_cast<png_byte>(color >> 8),
                    static_cast<png_byte>(color)};
      alphas[i] = static_cast<png_byte>(PaletteAlpha(i));
    }
    if (type == PNG_COLOR_TYPE_PALETTE) png_set_PLTE(png, info, palette, 1 << depth);
    if (hasKey) {
      png_color_16 key{};
      key.gray = key.red = static_cast<png_uint_16>(Value(0, 0, 0));
      key.green = static_cast<png_uint_16>(Value(0, 0, 1));
      key.blue = static_cast<png_uint_16>(Value(0, 0, 2));
      png_set_tRNS(png, info, alphas, type == PNG_COLOR_TYPE_PALETTE ? 1 << depth : 0, &key);
    }
    if (pixelsPerMetre != 0) png_set_pHYs(png, info, pixelsPerMetre, pixelsPerMetre * 2, PNG_RESOLUTION_METER);
    png_write_info(png, info);
    std::vector<FileBytes> rows;
    std::vector<png_bytep> pointers;
    for (int y = 0; y < height; ++y) {
      FileBytes row((static_cast<std::size_t>(width * channels() * depth) + 7) / 8);
      for (int i = 0; i < width * channels(); ++i) {
        const uint32_t value = Value(i / channels(), y, i % channels());
        const auto bit = static_cast<std::size_t>(i * depth);
        if (depth == 16) {
          row[bit / 8] = static_cast<uint8_t>(value >> 8);
          row[bit / 8 + 1] = static_cast<uint8_t>(value);
        } else {
          row[bit / 8] = static_cast<uint8_t>(row[bit / 8] | value << (8 - static_cast<std::size_t>(depth) - bit % 8));
        }
      }
      rows.push_back(row);
    }
    for (FileBytes& row : rows) pointers.push_back(row.data());
    png_write_image(png, pointers.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return bytes;
  }
};

TEST(PngReader, EveryKindShowsItsColors) {
  struct Case {
    int type;
    std::vector<int> depths;
    bool mayHaveKey;
  };
  const Case cases[] = {{PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}, true},
                        {PNG_COLOR_TYPE_PALETTE, {1, 2, 4, 8}, true},
                        {PNG_COLOR_TYPE_RGB, {8, 16}, true},
                        {PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}, false},
                        {PNG_COLOR_TYPE_RGB_ALPHA, {8, 16}, false}};
  for (const Case& c : cases) {
    for (const int depth : c.depths) {
      for (const bool interlaced : {false, true}) {
        for (const bool hasKey : {false, true}) {
          if (hasKey && !c.mayHaveKey) continue;
          SCOPED_TRACE(testing::Message() << "type " << c.type << ", depth " << depth << ", interlaced " << interlaced
                                          << ", key " << hasKey);
          const PngSample file{.type = c.type, .depth = depth, .interlaced = interlaced, .hasKey = hasKey};
          const WholePicture picture = ReadWhole(file.Bytes(), kDecoders);
          const bool color = c.type == PNG_COLOR_TYPE_RGB || c.type == PNG_COLOR_TYPE_RGB_ALPHA;
          EXPECT_EQ(picture.bitCount, color ? 24 : depth == 16 ? 8 : depth == 2 ? 4 : depth);
          ExpectColors(picture, [&](int x, int y) { return file.Color(x, y); });
          const bool transparent = hasKey || (c.type & PNG_COLOR_MASK_ALPHA) != 0;
          EXPECT_EQ(picture.notes.size(), transparent ? picture.notes.size() : 0);
          for (const std::string& note : picture.notes) EXPECT_EQ(note, "its transparency is laid over white");
          EXPECT_EQ(picture.notes.empty(), !transparent);
        }
      }
    }
  }
}

TEST(PngReader, SmallSidesInterlaced) {
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {9, 1}, {4, 4}, {5, 3}, {33, 17}}) {
    const PngSample file{.interlaced = true, .width = width, .height = height};
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    ExpectColors(ReadWhole(file.Bytes(), kDecoders), [&](int x, int y) { return file.Color(x, y); });
  }
}

TEST(PngReader, ResolutionIsRead) {
  const WholePicture picture = ReadWhole(PngSample{.pixelsPerMetre = 11811}.Bytes(), kDecoders);
  EXPECT_EQ(picture.xPixelsPerMetre, 11811);
  EXPECT_EQ(picture.yPixelsPerMetre, 23622);
  EXPECT_EQ(ReadWhole(PngSample{}.Bytes(), kDecoders).xPixelsPerMetre, 0);
}

// Reads a file that may be damaged. The error, or the picture.
struct Tried {
  std::string error;
  WholePicture picture;
};

Tried Try(const FileBytes& file) {
  Tried tried;
  tried.error = InputErrorOf([&] { tried.picture = ReadWhole(file, kDecoders); });
  return tried;
}

// Files cut at every length: an error, or the upper rows as they should be, the rest white, and a note that says how
// many. Returns the number of cut files that gave a picture.
int ExpectCutFilesAreRead(const FileBytes& whole, const ColorAt& expected) {
  int pictures = 0;
  int rowsBefore = 0;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    SCOPED_TRACE(testing::Message() << "cut to " << size << " of " << whole.size());
    const Tried tried = Try({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
    EXPECT_EQ(tried.error.find('\n'), std::string::npos);
    if (!tried.error.empty()) {
      EXPECT_EQ(pictures, 0) << tried.error;  // once the headers are there, there is a picture
      continue;
    }
    ++pictures;
    const WholePicture& picture = tried.picture;
    int missing = 0;
    for (const std::string& note : picture.notes) std::sscanf(note.c_str(), "%d of", &missing);
    const int rows = picture.height - missing;
    EXPECT_GE(rows, rowsBefore);
    rowsBefore = rows;
    ExpectColors(picture, [&](int x, int y) { return y < rows ? expected(x, y) : 0xFFFFFF; });
    if (testing::Test::HasFailure()) return pictures;
  }
  return pictures;
}

TEST(PngReader, FilesMayBreakOffAnywhere) {
  for (const int type : {PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_GRAY}) {
    const PngSample file{.type = type, .height = 40};
    const int pictures = ExpectCutFilesAreRead(file.Bytes(), [&](int x, int y) { return file.Color(x, y); });
    EXPECT_GT(pictures, 100);
  }
  // The white of a palette is its lightest color, so only that nothing breaks is asked here and for interlaced ones.
  for (const PngSample& file : {PngSample{.type = PNG_COLOR_TYPE_PALETTE, .depth = 4}, PngSample{.interlaced = true},
                                PngSample{.depth = 16, .hasKey = true}}) {
    const FileBytes whole = file.Bytes();
    int pictures = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
      pictures += Try({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}).error.empty() ? 1 : 0;
    }
    EXPECT_GT(pictures, 50);
  }
}

TEST(PngReader, DamagedBytesDoNoHarm) {
  const FileBytes whole = PngSample{.type = PNG_COLOR_TYPE_PALETTE, .depth = 4, .hasKey = true}.Bytes();
  int refused = 0;
  for (std::size_t at = 8; at < whole.size(); ++at) {
    for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
      FileBytes spoiled = whole;
      spoiled[at] = static_cast<uint8_t>(spoiled[at] ^ value);
      refused += Try(spoiled).error.empty() ? 0 : 1;
    }
  }
  EXPECT_GT(refused, 50);
}

// ---- JPEG -----------------------------------------------------------------------------------------------------------

struct JpegSample {
  int width = 32;
  int height = 16;
  J_COLOR_SPACE colors = JCS_RGB;  // of the pixels below; CMYK stays what it is
  bool progressive = false;
  bool adobe = true;    // of CMYK: complements
  int density = 0;      // dots per inch
  FileBytes exif = {};  // behind "Exif\0\0"
  std::function<uint8_t(int x, int y, int channel)> value = nullptr;

  FileBytes Bytes() const {
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = static_cast<JDIMENSION>(width);
    jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = colors == JCS_GRAYSCALE ? 1 : colors == JCS_CMYK ? 4 : 3;
    jpeg.in_color_space = colors;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 100, TRUE);
    if (progressive) jpeg_simple_progression(&jpeg);
    if (colors == JCS_CMYK) jpeg.write_Adobe_marker = adobe ? TRUE : FALSE;
    if (density != 0) {
      jpeg.density_unit = 1;
      jpeg.X_density = jpeg.Y_density = static_cast<UINT16>(density);
    }
    jpeg_start_compress(&jpeg, TRUE);
    if (!exif.empty()) {
      FileBytes marker{'E', 'x', 'i', 'f', 0, 0};
      marker.insert(marker.end(), exif.begin(), exif.end());
      jpeg_write_marker(&jpeg, JPEG_APP0 + 1, marker.data(), static_cast<unsigned>(marker.size()));
    }
    FileBytes row(static_cast<std::size_t>(width * jpeg.input_components));
    for (int y = 0; y < height; ++y) {
      for (int i = 0; i < width * jpeg.input_components; ++i) {
        row[static_cast<std::size_t>(i)] = value(i / jpeg.input_components, y, i % jpeg.input_components);
      }
      JSAMPROW rows[1] = {row.data()};
      jpeg_write_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    const FileBytes bytes(memory, memory + size);
    jpeg_destroy_compress(&jpeg);
    std::free(memory);
    return bytes;
  }
};

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
std::vector<uint32_t> JpegColors(const FileBytes& file, int* width) {
  jpeg_decompress_struct jpeg;
  jpeg_error_mgr errors;
  jpeg.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&jpeg);
  jpeg_mem_src(&jpeg, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&jpeg, TRUE);
  jpeg.out_color_space = JCS_RGB;
  jpeg_start_decompress(&jpeg);
  std::vector<uint32_t> result;
  FileBytes row(std::size_t{jpeg.output_width} * 3);
  while (jpeg.output_scanline < jpeg.output_height) {
    JSAMPROW rows[1] = {row.data()};
    jpeg_read_scanlines(&jpeg, rows, 1);
    for (std::size_t i = 0; i < row.size(); i += 3) {
      result.push_back(static_cast<uint32_t>(row[i] << 16 | row[i + 1] << 8 | row[i + 2]));
    }
  }
  *width = static_cast<int>(jpeg.output_width);
  jpeg_destroy_decompress(&jpeg);
  return result;
}

uint8_t Smooth(int x, int y, int channel) { return static_cast<uint8_t>((x * 5 + y * 9 + channel * 60) % 256); }

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
        int wide = 0;
        const std::vector<uint32_t> expected = JpegColors(bytes, &wide);
        ASSERT_EQ(picture.width, wide);
        ExpectColors(picture, [&](int x, int y) { return expected[static_cast<std::size_t>(y * wide + x)]; });
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
    const FileBytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));  // a block of its own
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
  int wide = 0;
  const std::vector<uint32_t> expected = JpegColors(whole, &wide);
  // The marker that ends the file may be missing.
  const FileBytes data(whole.begin(), whole.end() - 2);
  const int pictures =
      ExpectCutFilesAreRead(data, [&](int x, int y) { return expected[static_cast<std::size_t>(y * wide + x)]; });
  EXPECT_GT(pictures, 500);
  for (const JpegSample& other : {JpegSample{.progressive = true, .value = Smooth}, JpegSample{.value = Smooth},
                                  JpegSample{.exif = ExifData(6, true), .value = Smooth}}) {
    const FileBytes bytes = other.Bytes();
    int read = 0;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
      const Tried tried = Try({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)});
      if (tried.error.empty()) ++read;
    }
    EXPECT_GT(read, 100);
  }
}

TEST(JpegReader, DamagedBytesDoNoHarm) {
  const FileBytes whole = JpegSample{.value = Smooth}.Bytes();
  int refused = 0;
  for (std::size_t at = 3; at < whole.size(); ++at) {
    for (const int value : {0x01, 0x80, 0xFF}) {
      FileBytes spoiled = whole;
      spoiled[at] = static_cast<uint8_t>(spoiled[at] ^ value);
      refused += Try(spoiled).error.empty() ? 0 : 1;
    }
  }
  EXPECT_GT(refused, 20);
}

// ---- TIFF -----------------------------------------------------------------------------------------------------------

struct TiffSample {
  uint16_t photometric = PHOTOMETRIC_RGB;
  uint16_t bits = 8;
  uint16_t samples = 3;
  uint16_t compression = COMPRESSION_NONE;
  uint16_t planar = PLANARCONFIG_CONTIG;
  uint16_t orientation = 1;
  uint32_t rowsPerStrip = 5;
  uint32_t tile = 0;   // side
  uint16_t alpha = 0;  // kind of the last sample; 0: none
  uint16_t fillOrder = FILLORDER_MSB2LSB;
  float dpi = 0;
  const char* mode = "w";  // "wb": big endian, "wl": little endian, "w8": BigTIFF
  int width = 21;
  int height = 18;

  uint32_t Value(int x, int y, int sample) const { return Component(x, y, sample, (1u << bits) - 1); }

  static uint16_t MapValue(uint32_t i, int channel) {
    return static_cast<uint16_t>((i * 37 + static_cast<uint32_t>(channel) * 90 + 5) % 256 * 257);
  }

  // A row, or a part of one: of all samples, or of one plane.
  FileBytes Row(int y, int left, int columns, int plane) const {
    const int each = plane < 0 ? samples : 1;
    FileBytes row((static_cast<std::size_t>(columns * each * bits) + 7) / 8);
    for (int i = 0; i < columns * each; ++i) {
      const int x = left + i / each;
      if (x >= width || y >= height) continue;
      const uint32_t value = Value(x, y, plane < 0 ? i % each : plane);
      const auto bit = static_cast<std::size_t>(i * bits);
      if (bits == 16) {
        const auto word = static_cast<uint16_t>(value);
        std::memcpy(row.data() + bit / 8, &word, 2);
      } else {
        row[bit / 8] = static_cast<uint8_t>(row[bit / 8] | value << (8 - std::size_t{bits} - bit % 8));
      }
    }
    return row;
  }

  void AddTo(TIFF* tiff) const {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(width));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(height));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, planar);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation);
    if (fillOrder != FILLORDER_MSB2LSB) TIFFSetField(tiff, TIFFTAG_FILLORDER, fillOrder);
    if (alpha != 0) TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
    if (dpi > 0) {
      TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
      TIFFSetField(tiff, TIFFTAG_XRESOLUTION, dpi);
      TIFFSetField(tiff, TIFFTAG_YRESOLUTION, dpi * 2);
    }
    std::vector<uint16_t> map[3];
    if (photometric == PHOTOMETRIC_PALETTE) {
      for (int c = 0; c < 3; ++c) {
        for (uint32_t i = 0; i < 1u << bits; ++i) map[c].push_back(MapValue(i, c));
      }
      TIFFSetField(tiff, TIFFTAG_COLORMAP, map[0].data(), map[1].data(), map[2].data());
    }
    const int planes = planar == PLANARCONFIG_SEPARATE ? samples : 1;
    if (tile != 0) {
      TIFFSetField(tiff, TIFFTAG_TILEWIDTH, tile);
      TIFFSetField(tiff, TIFFTAG_TILELENGTH, tile);
      const int side = static_cast<int>(tile);
      for (int top = 0; top < height; top += side) {
        for (int left = 0; left < width; left += side) {
          FileBytes bytes;
          for (int y = top; y < top + side; ++y) {
            const FileBytes row = Row(y, left, side, -1);
            bytes.insert(bytes.end(), row.begin(), row.end());
          }
          TIFFWriteTile(tiff, bytes.data(), static_cast<uint32_t>(left), static_cast<uint32_t>(top), 0, 0);
        }
      }
    } else {
      TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, rowsPerStrip);
      for (int plane = 0; plane < planes; ++plane) {
        for (int y = 0; y < height; ++y) {
          FileBytes row = Row(y, 0, width, planes > 1 ? plane : -1);
          TIFFWriteScanline(tiff, row.data(), static_cast<uint32_t>(y), static_cast<uint16_t>(plane));
        }
      }
    }
  }

  // What is to be shown for pixel (x, y) of the file.
  uint32_t Color(int x, int y) const {
    const auto byte = [&](int sample) {
      const uint32_t value = Value(x, y, sample);
      return bits == 16 ? (value + 128) / 257 : value * 255 / ((1u << bits) - 1);
    };
    switch (photometric) {
      case PHOTOMETRIC_MINISBLACK: return byte(0) * 0x010101;
      case PHOTOMETRIC_MINISWHITE: return (255 - byte(0)) * 0x010101;
      case PHOTOMETRIC_PALETTE: {
        const uint32_t index = Value(x, y, 0);
        return static_cast<uint32_t>(MapValue(index, 0) >> 8) << 16 |
               static_cast<uint32_t>(MapValue(index, 1) >> 8) << 8 | static_cast<uint32_t>(MapValue(index, 2) >> 8);
      }
      case PHOTOMETRIC_SEPARATED: {
        const auto mix = [&](int ink) { return (255 - byte(ink)) * (255 - byte(3)) / 255; };
        return mix(0) << 16 | mix(1) << 8 | mix(2);
      }
      default: break;
    }
    return byte(0) << 16 | byte(1) << 8 | byte(2);
  }
};

FileBytes TiffBytes(const std::vector<TiffSample>& pages, int thumbnail = -1) {
  const std::string path = testing::TempDir() + "/picture_formats_test.tif";
  TIFF* const tiff = TIFFOpen(path.c_str(), pages.front().mode);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    if (static_cast<int>(i) == thumbnail) TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_REDUCEDIMAGE);
    pages[i].AddTo(tiff);
    TIFFWriteDirectory(tiff);
  }
  TIFFClose(tiff);
  const tool::Bytes bytes = tool::OpenInput(path)->All(std::size_t{1} << 30, "a test");
  std::remove(path.c_str());
  return bytes;
}

TEST(TiffReader, EveryKindShowsItsColors) {
  struct Case {
    const char* name;
    TiffSample file;
    int bitCount;
  };
  const Case cases[] = {
      {"1 bit", {.photometric = PHOTOMETRIC_MINISBLACK, .bits = 1, .samples = 1}, 1},
      {"1 bit, white is 0", {.photometric = PHOTOMETRIC_MINISWHITE, .bits = 1, .samples = 1}, 1},
      {"fax",
       {.photometric = PHOTOMETRIC_MINISWHITE, .bits = 1, .samples = 1, .compression = COMPRESSION_CCITTFAX4},
       1},
      {"reversed bits",
       {.photometric = PHOTOMETRIC_MINISBLACK, .bits = 1, .samples = 1, .fillOrder = FILLORDER_LSB2MSB},
       1},
      {"2 bits", {.photometric = PHOTOMETRIC_MINISBLACK, .bits = 2, .samples = 1}, 4},
      {"4 bits", {.photometric = PHOTOMETRIC_MINISBLACK, .bits = 4, .samples = 1, .compression = COMPRESSION_LZW}, 4},
      {"gray", {.photometric = PHOTOMETRIC_MINISBLACK, .samples = 1}, 8},
      {"gray, white is 0", {.photometric = PHOTOMETRIC_MINISWHITE, .samples = 1}, 8},
      {"palette of 1 bit", {.photometric = PHOTOMETRIC_PALETTE, .bits = 1, .samples = 1}, 1},
      {"palette of 2 bits", {.photometric = PHOTOMETRIC_PALETTE, .bits = 2, .samples = 1}, 4},
      {"palette of 4 bits", {.photometric = PHOTOMETRIC_PALETTE, .bits = 4, .samples = 1}, 4},
      {"palette", {.photometric = PHOTOMETRIC_PALETTE, .samples = 1, .compression = COMPRESSION_PACKBITS}, 8},
      {"RGB", {}, 24},
      {"RGB, one strip", {.rowsPerStrip = 18}, 24},
      {"RGB, big endian", {.mode = "wb"}, 24},
      {"RGB, BigTIFF", {.mode = "w8"}, 24},
      {"RGB, LZW", {.compression = COMPRESSION_LZW}, 24},
      {"RGB, deflate", {.compression = COMPRESSION_ADOBE_DEFLATE}, 24},
      {"planes", {.planar = PLANARCONFIG_SEPARATE}, 24},
      {"tiles", {.tile = 16}, 24},
      {"tiles of 16 bits", {.bits = 16, .tile = 16}, 24},
      {"tiles, compressed", {.compression = COMPRESSION_LZW, .tile = 16}, 24},
      {"tiles of gray", {.photometric = PHOTOMETRIC_MINISBLACK, .samples = 1, .tile = 16}, 24},
      {"CMYK", {.photometric = PHOTOMETRIC_SEPARATED, .samples = 4}, 24},
      {"16 bits", {.bits = 16}, 24},
      {"16 bits, big endian", {.bits = 16, .mode = "wb"}, 24},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const WholePicture picture = ReadWhole(TiffBytes({c.file}), kDecoders);
    EXPECT_EQ(picture.bitCount, c.bitCount);
    ExpectColors(picture, [&](int x, int y) { return c.file.Color(x, y); });
    const bool cmyk = c.file.photometric == PHOTOMETRIC_SEPARATED;
    EXPECT_EQ(picture.notes, cmyk ? std::vector<std::string>{"its CMYK colors are converted without a color profile"}
                                  : std::vector<std::string>{});
  }
}

TEST(TiffReader, AlphaIsLaidOverWhite) {
  const TiffSample file{.samples = 4, .alpha = EXTRASAMPLE_UNASSALPHA};
  const WholePicture picture = ReadWhole(TiffBytes({file}), kDecoders);
  EXPECT_EQ(picture.notes, std::vector<std::string>{"its transparency is laid over white"});
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const uint32_t color = ColorOf(picture, x, y);
      const uint32_t expected = OverWhite(file.Color(x, y), file.Value(x, y, 3));
      for (int shift = 0; shift < 24; shift += 8) {
        // libtiff multiplies by alpha and rounds before the paper is added.
        ASSERT_NEAR(static_cast<int>(color >> shift & 0xFF), static_cast<int>(expected >> shift & 0xFF), 1);
      }
    }
  }
}

TEST(TiffReader, OrientationIsRespected) {
  for (const TiffSample& kind :
       {TiffSample{}, TiffSample{.photometric = PHOTOMETRIC_PALETTE, .samples = 1}, TiffSample{.bits = 16},
        TiffSample{.photometric = PHOTOMETRIC_PALETTE, .bits = 4, .samples = 1}, TiffSample{.tile = 16},
        TiffSample{.photometric = PHOTOMETRIC_MINISBLACK, .bits = 1, .samples = 1}}) {
    for (int number = 1; number <= 8; ++number) {
      SCOPED_TRACE(testing::Message() << "orientation " << number << ", bits " << kind.bits);
      TiffSample file = kind;
      file.orientation = static_cast<uint16_t>(number);
      const WholePicture picture = ReadWhole(TiffBytes({file}), kDecoders);
      ASSERT_EQ(picture.width, number < 5 ? file.width : file.height);
      const int right = file.width - 1;
      const int bottom = file.height - 1;
      ExpectColors(picture, [&](int x, int y) {
        const std::pair<int, int> source[] = {{x, y}, {right - x, y},  {right - x, bottom - y}, {x, bottom - y},
                                              {y, x}, {y, bottom - x}, {right - y, bottom - x}, {right - y, x}};
        return file.Color(source[number - 1].first, source[number - 1].second);
      });
    }
  }
}

TEST(TiffReader, EveryPictureIsAPage) {
  const std::vector<TiffSample> pages{
      {.dpi = 254}, {.width = 3, .height = 2}, {.photometric = PHOTOMETRIC_MINISBLACK, .bits = 1, .samples = 1}};
  std::vector<std::string> notes;
  const auto pictures = tool::OpenPictures(tool::InputOf(TiffBytes(pages, 1), "x.tif"), kDecoders,
                                           [&](const std::string& note) { notes.push_back(note); });
  ASSERT_EQ(pictures->count(), 2);  // the second is marked as a thumbnail
  EXPECT_EQ(pictures->Open(0)->xPixelsPerMetre(), 10000);
  EXPECT_EQ(pictures->Open(0)->yPixelsPerMetre(), 20000);
  EXPECT_EQ(pictures->Open(1)->width(), 21);
  EXPECT_EQ(pictures->Open(1)->Rows()->Window(0, 1).info[14], 1);  // bits a pixel
  EXPECT_TRUE(notes.empty());
}

// What comes before the break is printed.
TEST(TiffReader, DirectoriesMayBreakOff) {
  FileBytes file = TiffBytes({{}, {}, {}});
  file.resize(file.size() - 600);  // in the rows of the third picture, whose directory follows them
  std::vector<std::string> notes;
  const auto pictures = tool::OpenPictures(tool::InputOf(file, "x.tif"), kDecoders,
                                           [&](const std::string& note) { notes.push_back(note); });
  EXPECT_EQ(pictures->count(), 2);
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_TRUE(notes[0].starts_with("of its pictures only the first 2 can be read: ")) << notes[0];
  ExpectColors(ReadWhole(file, kDecoders), [](int x, int y) { return TiffSample{}.Color(x, y); });
}

TEST(TiffReader, FilesMayBreakOffAnywhere) {
  for (const TiffSample& file :
       {TiffSample{}, TiffSample{.compression = COMPRESSION_LZW}, TiffSample{.tile = 16}, TiffSample{.bits = 16},
        TiffSample{
            .photometric = PHOTOMETRIC_MINISWHITE, .bits = 1, .samples = 1, .compression = COMPRESSION_CCITTFAX4}}) {
    const FileBytes whole = TiffBytes({file});
    for (std::size_t size = 0; size < whole.size(); ++size) {
      // Directories stand at the end, so most cut files are refused.
      const Tried tried = Try({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
      EXPECT_EQ(tried.error.find('\n'), std::string::npos);
    }
    int refused = 0;
    for (std::size_t at = 4; at < whole.size(); ++at) {
      FileBytes spoiled = whole;
      spoiled[at] = static_cast<uint8_t>(spoiled[at] ^ 0xFF);
      refused += Try(spoiled).error.empty() ? 0 : 1;
    }
    EXPECT_GT(refused, 4);
  }
}

// ---- All of them ----------------------------------------------------------------------------------------------------

// A BMP file around a PNG or JPEG file.
TEST(EmbeddedPictures, AreDecoded) {
  const PngSample png{.hasProfile = false};
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
