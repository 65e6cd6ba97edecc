// Picture files of both formats.
#include "qnvtool/output/picture_writer.h"

#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <utility>

#include "qnvtool/output/png_writer.h"
#include "qnvtool/output/row_deflate.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

using tool::PictureForm;
using Form = PictureForm::Pixels;

std::string TempFile(const char* name) { return testing::TempDir() + "/" + name; }

std::string BytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

struct PngFile {
  std::string file;
  int width = 0;
  int height = 0;
  std::vector<uint8_t> pixels;  // red, green, blue
};

PngFile ReadPng(const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  EXPECT_NE(png_image_begin_read_from_file(&image, path.c_str()), 0) << image.message;
  image.format = PNG_FORMAT_RGB;
  PngFile result{BytesOf(path), static_cast<int>(image.width), static_cast<int>(image.height), {}};
  result.pixels.resize(PNG_IMAGE_SIZE(image));
  EXPECT_NE(png_image_finish_read(&image, nullptr, result.pixels.data(), 0, nullptr), 0) << image.message;
  return result;
}

// Three pixels a row, two rows, four bytes of padding that must not appear.
constexpr uint8_t kColor[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 99, 99, 99, 11, 12, 13, 14, 15, 16, 17, 18, 19, 99, 99, 99};
constexpr uint8_t kGray[] = {10, 20, 30, 99, 40, 50, 60, 99};
constexpr uint8_t kTags[] = {0, 1, 3, 99, 3, 2, 1, 99};

PngFile WriteAndRead(Form pixels, const uint8_t* first, std::size_t stride) {
  const std::string path = TempFile("writer.png");
  tool::WritePngFile(path, {3, 2, 300, pixels}, first, stride);
  return ReadPng(path);
}

TEST(PictureWriter, PngFiles) {
  std::vector<uint8_t> legend;
  for (const uint32_t rgb :
       {tool::kTagTextCell, tool::kTagGraphics, tool::kTagImage, tool::kTagImage, 0u, tool::kTagGraphics}) {
    for (const int shift : {16, 8, 0}) legend.push_back(static_cast<uint8_t>(rgb >> shift));
  }
  const auto grays = [](std::initializer_list<uint8_t> levels) {
    std::vector<uint8_t> bytes;
    for (const uint8_t level : levels) bytes.insert(bytes.end(), 3, level);
    return bytes;
  };
  const struct {
    Form form;
    const uint8_t* pixels;
    std::size_t stride;
    int type;
    std::vector<uint8_t> expected;
  } cases[] = {
      {Form::kColor, kColor, 12, PNG_COLOR_TYPE_RGB, {3, 2, 1, 6, 5, 4, 9, 8, 7, 13, 12, 11, 16, 15, 14, 19, 18, 17}},
      {Form::kGray, kGray, 4, PNG_COLOR_TYPE_GRAY, grays({10, 20, 30, 40, 50, 60})},
      {Form::kGrayOf3, kColor, 12, PNG_COLOR_TYPE_GRAY, grays({1, 4, 7, 11, 14, 17})},
      {Form::kTags, kTags, 4, PNG_COLOR_TYPE_PALETTE, legend},
  };
  for (const auto& c : cases) {
    const PngFile png = WriteAndRead(c.form, c.pixels, c.stride);
    EXPECT_EQ(png.width, 3);
    EXPECT_EQ(png.height, 2);
    EXPECT_EQ(png.file.at(25), c.type);
    // 11811 pixels a metre in both directions.
    EXPECT_NE(png.file.find(std::string("pHYs\0\0\x2E\x23\0\0\x2E\x23\1", 13)), std::string::npos);
    EXPECT_EQ(png.pixels, c.expected) << "form " << static_cast<int>(c.form);
  }
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
  const PictureForm form{kWidth, kHeight, 300, Form::kColor};
  const std::string path = TempFile("large.png");
  tool::WritePngFile(path, form, pixels.data(), kRow);
  PngFile png = ReadPng(path);
  EXPECT_EQ(png.width, kWidth);
  EXPECT_EQ(png.height, kHeight);
  for (std::size_t i = 0; i + 2 < png.pixels.size(); i += 3) std::swap(png.pixels[i], png.pixels[i + 2]);
  EXPECT_TRUE(png.pixels == pixels);

  // Bands of one piece and of several, each with no more rows above it in memory than are asked for.
  const auto encoder = tool::CreateDeflateEncoder(form);
  ASSERT_EQ(encoder->unit(), 128);
  ASSERT_EQ(encoder->rowsAbove(), 32768 / 3604 + 2);
  for (const int rows : {128, 384}) {
    const std::string bands = TempFile("bands.png");
    const auto writer = tool::CreatePngFile(bands, form);
    for (int top = 0; top < kHeight; top += rows) {
      const int above = std::min(top, encoder->rowsAbove());
      const int count = std::min(rows, kHeight - top);
      const std::vector<uint8_t> band(pixels.begin() + (top - above) * std::ptrdiff_t{kRow},
                                      pixels.begin() + (top + count) * std::ptrdiff_t{kRow});
      writer->Write(encoder->Encode({band.data() + static_cast<std::size_t>(above) * kRow, kRow, top, count}));
    }
    writer->Finish();
    EXPECT_TRUE(BytesOf(bands) == png.file) << "the file depends on the height of the bands: " << rows;
  }
}

std::string WriteAndReadPnm(Form pixels, const uint8_t* first, std::size_t stride) {
  const std::string path = TempFile("writer.pnm");
  tool::WritePnmFile(path, {3, 2, 300, pixels}, first, stride);
  return BytesOf(path);
}

TEST(PictureWriter, PnmFiles) {
  EXPECT_EQ(WriteAndReadPnm(Form::kColor, kColor, 12),
            std::string("P6\n3 2\n255\n\3\2\1\6\5\4\11\10\7\15\14\13\20\17\16\23\22\21"));
  EXPECT_EQ(WriteAndReadPnm(Form::kGray, kGray, 4), std::string("P5\n3 2\n255\n\12\24\36\50\62\74"));
  EXPECT_EQ(WriteAndReadPnm(Form::kTags, kTags, 4), std::string("P5\n3 2\n255\n\0\1\3\3\2\1", 17));
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
  const struct {
    const char* path;
    PictureFormat format;
  } documents[] = {{"a.tif", PictureFormat::kTiff}, {"a.TIFF", PictureFormat::kTiff}, {"a.pdf", PictureFormat::kPdf},
                   {"a.pwg", PictureFormat::kPwg},  {"a.urf", PictureFormat::kUrf},   {"a.ras", PictureFormat::kCups}};
  for (const auto& c : documents) {
    EXPECT_EQ(tool::FormatOf(c.path, ""), c.format) << c.path;
    EXPECT_TRUE(tool::HoldsAllPages(c.format)) << c.path;
  }
  EXPECT_EQ(tool::FormatOf("x", "cups"), PictureFormat::kCups);
  for (const char* name : {"a", "a.cups", "ppm", "a.ppm/b", "a.jpg", "a.", ".png", ""}) {
    EXPECT_THROW(tool::FormatOf(name, ""), tool::ToolError) << name;
    EXPECT_EQ(tool::FormatOf(name, "pgm"), PictureFormat::kPnm) << name;
  }
}

TEST(PictureWriter, FailuresNameTheFile) {
  for (const auto write : {tool::WritePngFile, tool::WritePnmFile}) {
    const auto errorOf = [&](const std::string& path) {
      return ErrorOf(tool::ExitCode::kCannotWrite, [&] { write(path, {3, 2, 300, Form::kGray}, kGray, 4); });
    };
    EXPECT_EQ(errorOf("/no such folder/x").rfind("/no such folder/x: cannot be written", 0), 0u);
    EXPECT_EQ(errorOf("/dev/full").rfind("/dev/full: cannot be written", 0), 0u);
  }
}

}  // namespace
}  // namespace qnv::test
