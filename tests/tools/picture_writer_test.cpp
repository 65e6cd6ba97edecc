// Picture files of both formats.
#include "qnvtool/picture_writer.h"

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <utility>

#include "qnvtool/png_writer.h"
#include "qnvtool/tool_error.h"

namespace qnv::test {
namespace {

using tool::PictureForm;
using Pixels = PictureForm::Pixels;

std::string TempFile(const char* name) { return testing::TempDir() + "/" + name; }

struct PngFile {
  int width = 0;
  int height = 0;
  int type = 0;
  png_uint_32 perMetre = 0;
  std::vector<uint8_t> bytes;  // red, green, blue
};

PngFile ReadPng(const std::string& path) {
  PngFile result;
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return result;
  png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_read_info(png, info);
  result.width = static_cast<int>(png_get_image_width(png, info));
  result.height = static_cast<int>(png_get_image_height(png, info));
  result.type = png_get_color_type(png, info);
  result.perMetre = png_get_pixels_per_meter(png, info);
  png_set_expand(png);
  png_set_gray_to_rgb(png);
  png_read_update_info(png, info);
  const std::size_t row = png_get_rowbytes(png, info);
  result.bytes.resize(row * static_cast<std::size_t>(result.height));
  for (std::size_t y = 0; y < static_cast<std::size_t>(result.height); ++y) {
    png_read_row(png, result.bytes.data() + y * row, nullptr);
  }
  png_destroy_read_struct(&png, &info, nullptr);
  std::fclose(file);
  return result;
}

// Three pixels a row, two rows, four bytes of padding that must not appear.
constexpr uint8_t kColor[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 99, 99, 99, 11, 12, 13, 14, 15, 16, 17, 18, 19, 99, 99, 99};
constexpr uint8_t kGray[] = {10, 20, 30, 99, 40, 50, 60, 99};
constexpr uint8_t kTags[] = {0, 1, 3, 99, 3, 2, 1, 99};

PngFile WriteAndRead(Pixels pixels, const uint8_t* first, std::size_t stride) {
  const std::string path = TempFile("writer.png");
  {
    const auto writer = tool::CreatePngFile(path, {3, 2, 300, pixels});
    writer->WriteRows(first, stride, 1);
    writer->WriteRows(first + stride, stride, 1);
    writer->Finish();
  }
  return ReadPng(path);
}

TEST(PictureWriter, ColorPng) {
  const PngFile png = WriteAndRead(Pixels::kColor, kColor, 12);
  EXPECT_EQ(png.width, 3);
  EXPECT_EQ(png.height, 2);
  EXPECT_EQ(png.type, PNG_COLOR_TYPE_RGB);
  EXPECT_EQ(png.perMetre, 11811u);
  EXPECT_EQ(png.bytes, (std::vector<uint8_t>{3, 2, 1, 6, 5, 4, 9, 8, 7, 13, 12, 11, 16, 15, 14, 19, 18, 17}));
}

TEST(PictureWriter, GrayPng) {
  const PngFile png = WriteAndRead(Pixels::kGray, kGray, 4);
  EXPECT_EQ(png.type, PNG_COLOR_TYPE_GRAY);
  EXPECT_EQ(png.bytes, (std::vector<uint8_t>{10, 10, 10, 20, 20, 20, 30, 30, 30, 40, 40, 40, 50, 50, 50, 60, 60, 60}));
}

TEST(PictureWriter, GrayOfThreeBytes) {
  const PngFile png = WriteAndRead(Pixels::kGrayOf3, kColor, 12);
  EXPECT_EQ(png.type, PNG_COLOR_TYPE_GRAY);
  EXPECT_EQ(png.bytes, (std::vector<uint8_t>{1, 1, 1, 4, 4, 4, 7, 7, 7, 11, 11, 11, 14, 14, 14, 17, 17, 17}));
}

TEST(PictureWriter, TagsShowTheLegend) {
  const PngFile png = WriteAndRead(Pixels::kTags, kTags, 4);
  EXPECT_EQ(png.type, PNG_COLOR_TYPE_PALETTE);
  std::vector<uint8_t> expected;
  for (const uint32_t rgb :
       {tool::kTagTextCell, tool::kTagGraphics, tool::kTagImage, tool::kTagImage, 0u, tool::kTagGraphics}) {
    expected.insert(expected.end(),
                    {static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8), static_cast<uint8_t>(rgb)});
  }
  EXPECT_EQ(png.bytes, expected);
}

// Pictures that are compressed in many pieces: noise, which deflate stores, beside runs, which refer far back.
TEST(PictureWriter, LargePng) {
  constexpr int kWidth = 1201;
  constexpr int kHeight = 1103;
  constexpr std::size_t kRow = kWidth * 3;
  std::vector<uint8_t> pixels(kRow * kHeight);
  uint32_t random = 1;
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    random = random * 1664525 + 1013904223;
    const std::size_t row = i / kRow;
    pixels[i] = row % 300 < 100 ? static_cast<uint8_t>(random >> 24) : static_cast<uint8_t>(row * i % kRow / 40);
  }
  const auto write = [&](const std::string& path, int rows) {
    const auto writer = tool::CreatePngFile(path, {kWidth, kHeight, 300, Pixels::kColor});
    for (int y = 0; y < kHeight; y += rows) {
      writer->WriteRows(pixels.data() + static_cast<std::size_t>(y) * kRow, kRow, std::min(rows, kHeight - y));
    }
    writer->Finish();
  };
  const std::string path = TempFile("large.png");
  write(path, kHeight);
  PngFile png = ReadPng(path);
  EXPECT_EQ(png.width, kWidth);
  EXPECT_EQ(png.height, kHeight);
  for (std::size_t i = 0; i + 2 < png.bytes.size(); i += 3) std::swap(png.bytes[i], png.bytes[i + 2]);
  EXPECT_TRUE(png.bytes == pixels);

  const auto bytesOf = [](const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    std::stringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
  };
  const std::string bands = TempFile("bands.png");
  write(bands, 17);
  EXPECT_TRUE(bytesOf(bands) == bytesOf(path)) << "the file depends on the height of the bands";
}

std::string WriteAndReadPnm(Pixels pixels, const uint8_t* first, std::size_t stride) {
  const std::string path = TempFile("writer.pnm");
  const auto writer = tool::CreatePnmFile(path, {3, 2, 300, pixels});
  writer->WriteRows(first, stride, 2);
  writer->Finish();
  std::ifstream file(path, std::ios::binary);
  std::stringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

TEST(PictureWriter, PnmFiles) {
  EXPECT_EQ(WriteAndReadPnm(Pixels::kColor, kColor, 12),
            std::string("P6\n3 2\n255\n\3\2\1\6\5\4\11\10\7\15\14\13\20\17\16\23\22\21"));
  EXPECT_EQ(WriteAndReadPnm(Pixels::kGray, kGray, 4), std::string("P5\n3 2\n255\n\12\24\36\50\62\74"));
  EXPECT_EQ(WriteAndReadPnm(Pixels::kTags, kTags, 4), std::string("P5\n3 2\n255\n\0\1\3\3\2\1", 17));
}

TEST(PictureWriter, FormatsByName) {
  using tool::PictureFormat;
  for (const char* name : {"a.ppm", "b/a.pgm", "a.png.pnm", "a.PPM", "-"}) {
    EXPECT_EQ(tool::FormatOf(name, ""), PictureFormat::kPnm) << name;
    EXPECT_EQ(tool::FormatOf(name, "png"), PictureFormat::kPng) << name;
  }
  for (const char* name : {"a.png", "a.Png", "a.ppm/b.png"}) {
    EXPECT_EQ(tool::FormatOf(name, ""), PictureFormat::kPng) << name;
    EXPECT_EQ(tool::FormatOf(name, "ppm"), PictureFormat::kPnm) << name;
  }
  for (const char* name : {"a", "ppm", "a.ppm/b", "a.jpg", "a.", ".png", ""}) {
    EXPECT_THROW(tool::FormatOf(name, ""), tool::ToolError) << name;
    EXPECT_EQ(tool::FormatOf(name, "pgm"), PictureFormat::kPnm) << name;
  }
}

TEST(PictureWriter, FailuresNameTheFile) {
  for (const auto create : {tool::CreatePngFile, tool::CreatePnmFile}) {
    const auto errorOf = [&](const std::string& path) {
      try {
        const auto writer = create(path, {3, 2, 300, Pixels::kGray});
        writer->WriteRows(kGray, 4, 2);
        writer->Finish();
      } catch (const tool::ToolError& error) {
        EXPECT_EQ(error.code(), tool::ExitCode::kCannotWrite);
        return std::string(error.what());
      }
      return std::string();
    };
    EXPECT_EQ(errorOf("/no such folder/x").rfind("/no such folder/x: cannot be written", 0), 0u);
    EXPECT_EQ(errorOf("/dev/full").rfind("/dev/full: cannot be written", 0), 0u);
  }
}

}  // namespace
}  // namespace qnv::test
