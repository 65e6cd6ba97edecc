// BMP files of every kind as bitmaps of the rasteriser, what is said of bad ones, and the files that the tool writes
// itself.
#include "qnvtool/input/bmp_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "bmp_file.h"
#include "qnvtool/output/bmp_writer.h"
#include "support/test_device.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

using tool::Dib;

constexpr uint32_t kHeaderSizes[] = {12, 16, 40, 52, 56, 64, 108, 124};
constexpr uint16_t kDepths[] = {1, 4, 8, 16, 24, 32};

std::string BmpErrorOf(const std::vector<uint8_t>& file) {
  return InputErrorOf([&] { tool::ReadBmp(file, "x.bmp"); });
}

// Pixel rows that count.
BmpFile WithRows(BmpFile file) {
  file.pixels.resize(file.stride() * static_cast<std::size_t>(std::abs(file.height)));
  for (std::size_t i = 0; i < file.pixels.size(); ++i) file.pixels[i] = static_cast<uint8_t>(i * 7 + 3);
  return file;
}

Dib ReadFile(const BmpFile& file) { return tool::ReadBmp(file.Bytes(), "x.bmp"); }

std::vector<uint32_t> Colors(std::size_t count) {
  std::vector<uint32_t> table;
  for (std::size_t i = 0; i < count; ++i) table.push_back(static_cast<uint32_t>(0x102030 + i * 0x010203) & 0xFFFFFF);
  return table;
}

TEST(BmpReader, EveryHeaderSizeGivesTheSameBitmap) {
  for (const uint32_t size : kHeaderSizes) {
    SCOPED_TRACE(size);
    const BmpFile file = WithRows({.headerSize = size, .bitCount = 8, .table = Colors(256)});
    const Dib dib = ReadFile(file);
    EXPECT_EQ(dib.width, 5);
    EXPECT_EQ(dib.height, 3);
    EXPECT_FALSE(dib.topDown);
    EXPECT_EQ(dib.bitCount, 8);
    EXPECT_EQ(dib.bits, file.pixels);
    ASSERT_EQ(dib.info.size(), 40u + 256 * 4);
    EXPECT_EQ(tool::U32At(dib.info, 0), 40u);
    EXPECT_EQ(tool::U32At(dib.info, 4), 5u);
    EXPECT_EQ(tool::U32At(dib.info, 8), 3u);
    EXPECT_EQ(tool::U16At(dib.info, 12), 1);
    EXPECT_EQ(tool::U16At(dib.info, 14), 8);
    EXPECT_EQ(tool::U32At(dib.info, 16), uint32_t{BI_RGB});
    for (std::size_t i = 0; i < 256; ++i) ASSERT_EQ(tool::U32At(dib.info, 40 + i * 4), file.table[i]) << i;
  }
}

TEST(BmpReader, EveryDepthKeepsItsRows) {
  for (const uint16_t bits : kDepths) {
    for (const int32_t height : {3, -3}) {
      SCOPED_TRACE(testing::Message() << bits << " bits, height " << height);
      const BmpFile file =
          WithRows({.height = height, .bitCount = bits, .table = Colors(bits <= 8 ? std::size_t{1} << bits : 0)});
      const Dib dib = ReadFile(file);
      EXPECT_EQ(dib.bits, file.pixels);
      EXPECT_EQ(dib.topDown, height < 0);
      EXPECT_EQ(tool::I32At(dib.info, 8), height);
      EXPECT_EQ(dib.compression, uint32_t{BI_RGB});
    }
  }
}

TEST(BmpReader, ColorTablesAreTakenAsFarAsTheyCount) {
  struct Case {
    const char* name;
    uint16_t bits;
    uint32_t colors;  // that the header says
    std::size_t inTheFile;
    uint32_t taken;
    const char* remark;
  };
  const Case cases[] = {
      {"short ones as they are", 8, 3, 3, 3, nullptr},
      {"cut where they run into the pixels", 8, 200, 10, 10, "biClrUsed"},
      {"cut where the depth ends", 1, 300, 300, 2, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Dib dib = ReadFile(WithRows({.bitCount = c.bits, .colors = c.colors, .table = Colors(c.inTheFile)}));
    EXPECT_EQ(tool::U32At(dib.info, 32), c.taken);
    EXPECT_EQ(dib.info.size(), 40u + c.taken * 4);
    if (c.remark == nullptr) {
      EXPECT_TRUE(dib.remarks.empty());
    } else if (*c.remark != 0) {
      ASSERT_EQ(dib.remarks.size(), 1u);
      EXPECT_NE(dib.remarks[0].find(c.remark), std::string::npos);
    }
  }
  // Deep pixels have a table as a hint only.
  const BmpFile deep = WithRows({.colors = 16, .table = Colors(16)});
  EXPECT_EQ(ReadFile(deep).info.size(), 40u);
  EXPECT_EQ(ReadFile(deep).bits, deep.pixels);
}

TEST(BmpReader, MasksOf16BitsStandAtByte40) {
  const std::vector<uint32_t> masks{0xF800, 0x07E0, 0x001F};
  for (const uint32_t size : {40u, 52u, 56u, 108u, 124u}) {
    SCOPED_TRACE(size);
    const BmpFile file = WithRows({.headerSize = size, .bitCount = 16, .compression = BI_BITFIELDS, .masks = masks});
    const Dib dib = ReadFile(file);
    EXPECT_EQ(dib.bitCount, 16);
    EXPECT_EQ(dib.compression, uint32_t{BI_BITFIELDS});
    EXPECT_EQ(dib.bits, file.pixels);
    ASSERT_EQ(dib.info.size(), 52u);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(tool::U32At(dib.info, 40 + i * 4), masks[i]);
  }
}

TEST(BmpReader, OtherBitFieldsBecomePlain32BitPixels) {
  struct Case {
    const char* name;
    uint16_t bits;
    std::vector<uint32_t> masks;
    uint32_t pixel;
    uint32_t expected;  // 0x00RRGGBB
  };
  const Case cases[] = {
      {"the layout of every 32-bit pixel", 32, {0xFF0000, 0x00FF00, 0x0000FF}, 0x44332211, 0x44332211},
      {"red and blue exchanged", 32, {0x0000FF, 0x00FF00, 0xFF0000}, 0x00112233, 0x00332211},
      {"top bytes", 32, {0xFF000000, 0x00FF0000, 0x0000FF00}, 0x112233FF, 0x00112233},
      {"ten bits each", 32, {0x3FF00000, 0x000FFC00, 0x000003FF}, 0x3FF001FF, 0x00FF007F},
      {"one bit each", 16, {0x0004, 0x0002, 0x0001}, 0x0005, 0x00FF00FF},
      {"nine bits of red", 16, {0xFF80, 0x0070, 0x000F}, 0xFFFF, 0x00FFFFFF},
      {"one bit of blue", 16, {0x7C00, 0x03E0, 0x0001}, 0x7C01, 0x00FF00FF},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    BmpFile file{.width = 2, .height = 1, .bitCount = c.bits, .compression = BI_BITFIELDS, .masks = c.masks};
    for (int bit = 0; bit < 2 * c.bits; bit += 8) {
      file.pixels.push_back(static_cast<uint8_t>(c.pixel >> bit % c.bits));
    }
    const Dib dib = ReadFile(file);
    EXPECT_EQ(dib.bitCount, 32);
    EXPECT_EQ(dib.compression, uint32_t{BI_RGB});
    EXPECT_EQ(dib.info.size(), 40u);
    ASSERT_EQ(dib.bits.size(), 8u);
    for (const std::size_t at : {0u, 4u}) EXPECT_EQ(tool::U32At(dib.bits, at), c.expected);
  }
}

BmpFile RleFile(uint16_t bits, std::vector<uint8_t> codes) {
  return {.bitCount = bits,
          .compression = bits == 8 ? uint32_t{BI_RLE8} : uint32_t{BI_RLE4},
          .table = Colors(std::size_t{1} << bits),
          .pixels = std::move(codes)};
}

TEST(BmpReader, RleCodesAreFollowedByEndsOfBitmap) {
  for (const uint16_t bits : {uint16_t{8}, uint16_t{4}}) {
    for (std::vector<uint8_t> codes : {std::vector<uint8_t>{5, 1, 0, 0}, std::vector<uint8_t>{0, 200, 9}}) {
      const Dib dib = ReadFile(RleFile(bits, codes));
      ASSERT_GE(dib.bits.size(), codes.size() + 300);
      EXPECT_TRUE(std::equal(codes.begin(), codes.end(), dib.bits.begin()));
      // A run of 255 literal bytes and its padding may swallow this much; an end of bitmap comes next.
      const std::size_t even = (codes.size() + 1) / 2 * 2;
      EXPECT_EQ(dib.bits[even + 256], 0);
      EXPECT_EQ(dib.bits[even + 257], 1);
    }
  }
}

TEST(BmpReader, RleCodesEndWhereTheHeaderSays) {
  BmpFile file = RleFile(8, {5, 1, 0, 0, 77, 77, 77, 77});
  file.imageSize = 4;
  const Dib dib = ReadFile(file);
  EXPECT_EQ(dib.bits[4], 0);
  EXPECT_EQ(dib.bits[5], 1);
  EXPECT_TRUE(dib.remarks.empty());
  file.imageSize = 4000;
  EXPECT_EQ(ReadFile(file).remarks.size(), 1u);
}

BmpFile Masked(uint16_t bits, uint32_t red, uint32_t green, uint32_t blue) {
  return {.bitCount = bits, .compression = BI_BITFIELDS, .masks = {red, green, blue}};
}

TEST(BmpReader, BadFieldsAreNamed) {
  struct Case {
    const char* field;  // what the message must name
    void (*spoil)(BmpFile& file);
  };
  const Case cases[] = {
      {"biSize", [](BmpFile& f) { f.headerSize = 41; }},
      {"biWidth", [](BmpFile& f) { f.width = 0; }},
      {"biWidth", [](BmpFile& f) { f.width = -5; }},
      {"biWidth", [](BmpFile& f) { f.width = 32768; }},
      {"biHeight", [](BmpFile& f) { f.height = 0; }},
      {"biHeight", [](BmpFile& f) { f.height = 32768; }},
      {"biHeight", [](BmpFile& f) { f.height = INT32_MIN; }},
      {"biPlanes", [](BmpFile& f) { f.planes = 0; }},
      {"biPlanes", [](BmpFile& f) { f.planes = 3; }},
      {"biBitCount", [](BmpFile& f) { f.bitCount = 0; }},
      {"biBitCount", [](BmpFile& f) { f.bitCount = 2; }},
      {"biBitCount", [](BmpFile& f) { f.bitCount = 64; }},
      {"biCompression", [](BmpFile& f) { f.compression = 4; }},
      {"biCompression", [](BmpFile& f) { f.compression = 0xFFFFFFFF; }},
      {"biCompression", [](BmpFile& f) { f.compression = BI_RLE8; }},
      {"biCompression", [](BmpFile& f) { f.compression = BI_BITFIELDS; }},
      {"biCompression", [](BmpFile& f) { f.headerSize = 64, f.bitCount = 32, f.compression = BI_BITFIELDS; }},
      {"biHeight", [](BmpFile& f) { f.bitCount = 8, f.compression = BI_RLE8, f.height = -3; }},
      {"red mask", [](BmpFile& f) { f = Masked(32, 0, 1, 2); }},
      {"green mask", [](BmpFile& f) { f = Masked(32, 1, 5, 2); }},
      {"blue mask", [](BmpFile& f) { f = Masked(16, 1, 2, 0x10000); }},
      {"bfOffBits", [](BmpFile& f) { f.offsetChange = 1 << 20; }},
      {"bfOffBits", [](BmpFile& f) { f.offsetChange = -20; }},
      {"bfOffBits", [](BmpFile& f) { f.bitCount = 8; }},  // no table at all
      {"pixel rows: 5 x 3 pixels of 24 bits need 48 bytes, the file has 47", [](BmpFile& f) { f.pixels.pop_back(); }},
      {"pixel rows", [](BmpFile& f) { f.width = 32767, f.height = 32767; }},
  };
  for (const Case& c : cases) {
    BmpFile file = WithRows({});
    c.spoil(file);
    const std::string message = BmpErrorOf(file.Bytes());
    EXPECT_TRUE(message.starts_with(std::string("x.bmp: ") + c.field)) << "wanted " << c.field << ", got " << message;
    EXPECT_EQ(message.find('\n'), std::string::npos);
  }
}

TEST(BmpReader, EveryTruncationOfTheHeadersIsReported) {
  for (const uint32_t size : kHeaderSizes) {
    for (const uint16_t bits : {uint16_t{4}, uint16_t{16}, uint16_t{32}}) {
      BmpFile file{.headerSize = size, .bitCount = bits};
      if (bits == 4) file.table = Colors(16);
      if (bits != 4 && size >= 40 && size != 64) {
        file.compression = BI_BITFIELDS;
        file.masks = {0xF800, 0x07E0, 0x001F};
      }
      const std::vector<uint8_t> whole = WithRows(file).Bytes();
      ASSERT_EQ(BmpErrorOf(whole), "") << size << ' ' << bits;
      for (auto end = whole.begin(); end != whole.end(); ++end) {
        EXPECT_NE(BmpErrorOf({whole.begin(), end}), "") << size << ' ' << bits << " cut to " << end - whole.begin();
      }
    }
  }
}

TEST(BmpReader, EveryByteOfTheHeadersMayBeAnything) {
  for (const uint32_t size : {12u, 40u, 124u}) {
    const std::vector<uint8_t> whole = WithRows({.headerSize = size, .bitCount = 8, .table = Colors(256)}).Bytes();
    int accepted = 0;
    int refused = 0;
    for (std::size_t at = 0; at < 14 + size; ++at) {
      for (int value = 0; value < 256; ++value) {
        std::vector<uint8_t> spoiled = whole;
        spoiled[at] = static_cast<uint8_t>(value);
        ++(BmpErrorOf(spoiled).empty() ? accepted : refused);
      }
    }
    EXPECT_GT(accepted, 0);
    EXPECT_GT(refused, 0);
  }
}

TEST(BmpReader, OtherFilesAreCalledWhatTheyAre) {
  const std::string png = "\x89PNG\r\n";
  EXPECT_NE(BmpErrorOf({png.begin(), png.end()}).find("no BMP file"), std::string::npos);
}

TEST(BmpReader, ResolutionIsPassedOn) {
  // A negative one is as good as none.
  const Dib dib = ReadFile(WithRows({.xPixelsPerMetre = 2835, .yPixelsPerMetre = 0x80000000}));
  EXPECT_EQ(dib.xPixelsPerMetre, 2835);
  EXPECT_EQ(dib.yPixelsPerMetre, 0);
}

TEST(BmpWriter, FilesAreReadBack) {
  const std::vector<uint8_t> pixels{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  const tool::Dib dib = tool::ReadBmp(tool::EncodeBmp24(2, 2, 72, pixels), "x.bmp");
  EXPECT_EQ(dib.bits, (std::vector<uint8_t>{7, 8, 9, 10, 11, 12, 0, 0, 1, 2, 3, 4, 5, 6, 0, 0}));
  EXPECT_EQ(dib.xPixelsPerMetre, 2835);
}

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
