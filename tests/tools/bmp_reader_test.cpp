#include "qnvtool/bmp_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "bmp_file.h"
#include "qnvdrv10.h"
#include "qnvtool/tool_error.h"

namespace qnv::test {
namespace {

using tool::Dib;
using tool::ReadBmp;
using tool::ToolError;

// The message of the error, empty when there is none.
std::string ErrorOf(const std::vector<uint8_t>& file, tool::ExitCode* code = nullptr) {
  try {
    ReadBmp(file, "x.bmp");
  } catch (const ToolError& error) {
    if (code != nullptr) *code = error.code();
    return error.what();
  }
  return {};
}

std::vector<uint8_t> CountingBytes(std::size_t size) {
  std::vector<uint8_t> bytes(size);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(i * 7 + 3);
  return bytes;
}

BmpFile WithRows(BmpFile file) {
  file.pixels = CountingBytes(file.stride() * static_cast<std::size_t>(std::abs(file.height)));
  return file;
}

std::vector<uint32_t> Colors(std::size_t count) {
  std::vector<uint32_t> table;
  for (std::size_t i = 0; i < count; ++i) table.push_back(static_cast<uint32_t>(0x102030 + i * 0x010203) & 0xFFFFFF);
  return table;
}

TEST(BmpReader, EveryHeaderSizeGivesTheSameBitmap) {
  for (const uint32_t size : {12u, 16u, 40u, 52u, 56u, 64u, 108u, 124u}) {
    BmpFile file;
    file.headerSize = size;
    file.bitCount = 8;
    file.table = Colors(256);
    file = WithRows(file);
    const Dib dib = ReadBmp(file.Bytes(), "x.bmp");
    SCOPED_TRACE(size);
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
  for (const int bits : {1, 4, 8, 16, 24, 32}) {
    for (const int32_t height : {3, -3}) {
      BmpFile file;
      file.bitCount = static_cast<uint16_t>(bits);
      file.height = height;
      if (bits <= 8) file.table = Colors(std::size_t{1} << bits);
      file = WithRows(file);
      const Dib dib = ReadBmp(file.Bytes(), "x.bmp");
      SCOPED_TRACE(testing::Message() << bits << " bits, height " << height);
      EXPECT_EQ(dib.bits, file.pixels);
      EXPECT_EQ(dib.topDown, height < 0);
      EXPECT_EQ(tool::I32At(dib.info, 8), height);
      EXPECT_EQ(dib.compression, uint32_t{BI_RGB});
    }
  }
}

TEST(BmpReader, ShortTablesAreTakenAsTheyAre) {
  BmpFile file;
  file.bitCount = 8;
  file.colors = 3;
  file.table = Colors(3);
  const Dib dib = ReadBmp(WithRows(file).Bytes(), "x.bmp");
  EXPECT_EQ(tool::U32At(dib.info, 32), 3u);
  EXPECT_EQ(dib.info.size(), 40u + 3 * 4);
  EXPECT_TRUE(dib.remarks.empty());
}

TEST(BmpReader, TablesThatRunIntoThePixelsAreCut) {
  BmpFile file;
  file.bitCount = 8;
  file.colors = 200;
  file.table = Colors(10);
  const Dib dib = ReadBmp(WithRows(file).Bytes(), "x.bmp");
  EXPECT_EQ(tool::U32At(dib.info, 32), 10u);
  ASSERT_EQ(dib.remarks.size(), 1u);
  EXPECT_NE(dib.remarks[0].find("biClrUsed"), std::string::npos);
}

TEST(BmpReader, TablesLongerThanTheDepthAllowsAreCut) {
  BmpFile file;
  file.bitCount = 1;
  file.colors = 300;
  file.table = Colors(300);
  const Dib dib = ReadBmp(WithRows(file).Bytes(), "x.bmp");
  EXPECT_EQ(tool::U32At(dib.info, 32), 2u);
}

TEST(BmpReader, HintTablesOfDeepPixelsAreLeftOut) {
  BmpFile file;
  file.colors = 16;
  file.table = Colors(16);
  file = WithRows(file);
  const Dib dib = ReadBmp(file.Bytes(), "x.bmp");
  EXPECT_EQ(dib.info.size(), 40u);
  EXPECT_EQ(dib.bits, file.pixels);
}

TEST(BmpReader, MasksOf16BitsStandAtByte40) {
  const std::vector<uint32_t> masks{0xF800, 0x07E0, 0x001F};
  for (const uint32_t size : {40u, 52u, 56u, 108u, 124u}) {
    BmpFile file;
    file.headerSize = size;
    file.bitCount = 16;
    file.compression = BI_BITFIELDS;
    file.masks = masks;
    file = WithRows(file);
    const Dib dib = ReadBmp(file.Bytes(), "x.bmp");
    SCOPED_TRACE(size);
    EXPECT_EQ(dib.bitCount, 16);
    EXPECT_EQ(dib.compression, uint32_t{BI_BITFIELDS});
    EXPECT_EQ(dib.bits, file.pixels);
    ASSERT_EQ(dib.info.size(), 52u);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(tool::U32At(dib.info, 40 + i * 4), masks[i]);
  }
}

struct ExpandCase {
  const char* name;
  uint16_t bits;
  std::vector<uint32_t> masks;
  uint32_t pixel;
  uint32_t expected;  // 0x00RRGGBB
};

TEST(BmpReader, OtherBitFieldsBecomePlain32BitPixels) {
  const ExpandCase cases[] = {
      {"red and blue exchanged", 32, {0x0000FF, 0x00FF00, 0xFF0000}, 0x00112233, 0x00332211},
      {"top bytes", 32, {0xFF000000, 0x00FF0000, 0x0000FF00}, 0x112233FF, 0x00112233},
      {"ten bits each", 32, {0x3FF00000, 0x000FFC00, 0x000003FF}, 0x3FF001FF, 0x00FF007F},
      {"one bit each", 16, {0x0004, 0x0002, 0x0001}, 0x0005, 0x00FF00FF},
      {"nine bits of red", 16, {0xFF80, 0x0070, 0x000F}, 0xFFFF, 0x00FFFFFF},
      {"one bit of blue", 16, {0x7C00, 0x03E0, 0x0001}, 0x7C01, 0x00FF00FF},
  };
  for (const ExpandCase& c : cases) {
    BmpFile file;
    file.width = 1;
    file.height = 1;
    file.bitCount = c.bits;
    file.compression = BI_BITFIELDS;
    file.masks = c.masks;
    for (int i = 0; i < 4; ++i) file.pixels.push_back(static_cast<uint8_t>(c.pixel >> 8 * i));
    const Dib dib = ReadBmp(file.Bytes(), "x.bmp");
    SCOPED_TRACE(c.name);
    EXPECT_EQ(dib.bitCount, 32);
    EXPECT_EQ(dib.compression, uint32_t{BI_RGB});
    EXPECT_EQ(dib.info.size(), 40u);
    ASSERT_EQ(dib.bits.size(), 4u);
    EXPECT_EQ(tool::U32At(dib.bits, 0), c.expected);
  }
}

TEST(BmpReader, FixedLayoutOf32BitsStays) {
  BmpFile file;
  file.bitCount = 32;
  file.compression = BI_BITFIELDS;
  file.masks = {0xFF0000, 0x00FF00, 0x0000FF};
  file = WithRows(file);
  const Dib dib = ReadBmp(file.Bytes(), "x.bmp");
  EXPECT_EQ(dib.compression, uint32_t{BI_RGB});
  EXPECT_EQ(dib.bits, file.pixels);
}

BmpFile RleFile(uint16_t bits, std::vector<uint8_t> codes) {
  BmpFile file;
  file.bitCount = static_cast<uint16_t>(bits);
  file.compression = bits == 8 ? BI_RLE8 : BI_RLE4;
  file.table = Colors(std::size_t{1} << bits);
  file.pixels = std::move(codes);
  return file;
}

TEST(BmpReader, RleCodesAreFollowedByEndsOfBitmap) {
  for (const int bits : {8, 4}) {
    for (std::vector<uint8_t> codes : {std::vector<uint8_t>{5, 1, 0, 0}, std::vector<uint8_t>{0, 200, 9}}) {
      const Dib dib = ReadBmp(RleFile(static_cast<uint16_t>(bits), codes).Bytes(), "x.bmp");
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
  const Dib dib = ReadBmp(file.Bytes(), "x.bmp");
  EXPECT_EQ(dib.bits[4], 0);
  EXPECT_EQ(dib.bits[5], 1);
  EXPECT_TRUE(dib.remarks.empty());
  file.imageSize = 4000;
  EXPECT_EQ(ReadBmp(file.Bytes(), "x.bmp").remarks.size(), 1u);
}

struct BadCase {
  const char* field;  // what the message must name
  void (*spoil)(BmpFile& file);
};

TEST(BmpReader, BadFieldsAreNamed) {
  const BadCase cases[] = {
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
      {"red mask",
       [](BmpFile& f) {
         f.bitCount = 32, f.compression = BI_BITFIELDS, f.masks = {0, 1, 2};
       }},
      {"green mask",
       [](BmpFile& f) {
         f.bitCount = 32, f.compression = BI_BITFIELDS, f.masks = {1, 5, 2};
       }},
      {"blue mask",
       [](BmpFile& f) {
         f.bitCount = 16, f.compression = BI_BITFIELDS, f.masks = {1, 2, 0x10000};
       }},
      {"bfOffBits", [](BmpFile& f) { f.offsetChange = 1 << 20; }},
      {"bfOffBits", [](BmpFile& f) { f.offsetChange = -20; }},
      {"bfOffBits", [](BmpFile& f) { f.bitCount = 8; }},  // no table at all
      {"pixel rows", [](BmpFile& f) { f.pixels.pop_back(); }},
      {"pixel rows", [](BmpFile& f) { f.width = 32767, f.height = 32767; }},
  };
  for (const BadCase& c : cases) {
    BmpFile file = WithRows(BmpFile{});
    c.spoil(file);
    tool::ExitCode code = tool::ExitCode::kOk;
    const std::string message = ErrorOf(file.Bytes(), &code);
    EXPECT_EQ(message.rfind(std::string("x.bmp: ") + c.field, 0), 0u) << "wanted " << c.field << ", got " << message;
    EXPECT_EQ(message.find('\n'), std::string::npos);
    EXPECT_EQ(code, tool::ExitCode::kBadInput);
  }
}

TEST(BmpReader, EveryTruncationOfTheHeadersIsReported) {
  for (const uint32_t size : {12u, 16u, 40u, 52u, 56u, 64u, 108u, 124u}) {
    for (const int bits : {4, 16, 32}) {
      BmpFile file;
      file.headerSize = size;
      file.bitCount = static_cast<uint16_t>(bits);
      if (bits == 4) file.table = Colors(16);
      if (bits != 4 && size >= 40 && size != 64) {
        file.compression = BI_BITFIELDS;
        file.masks = {0xF800, 0x07E0, 0x001F};
      }
      const std::vector<uint8_t> whole = WithRows(file).Bytes();
      ASSERT_EQ(ErrorOf(whole), "") << size << ' ' << bits;
      for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::vector<uint8_t> cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length));
        EXPECT_NE(ErrorOf(cut), "") << size << ' ' << bits << " cut to " << length;
      }
    }
  }
}

TEST(BmpReader, EveryByteOfTheHeadersMayBeAnything) {
  for (const uint32_t size : {12u, 40u, 124u}) {
    BmpFile file;
    file.headerSize = size;
    file.bitCount = 8;
    file.table = Colors(256);
    const std::vector<uint8_t> whole = WithRows(file).Bytes();
    int accepted = 0;
    int refused = 0;
    for (std::size_t at = 0; at < 14 + size; ++at) {
      for (int value = 0; value < 256; ++value) {
        std::vector<uint8_t> spoiled = whole;
        spoiled[at] = static_cast<uint8_t>(value);
        ++(ErrorOf(spoiled).empty() ? accepted : refused);
      }
    }
    EXPECT_GT(accepted, 0);
    EXPECT_GT(refused, 0);
  }
}

TEST(BmpReader, OtherFilesAreCalledWhatTheyAre) {
  const std::string png = "\x89PNG\r\n";
  EXPECT_NE(ErrorOf({png.begin(), png.end()}).find("no BMP file"), std::string::npos);
}

TEST(BmpReader, ResolutionIsPassedOn) {
  BmpFile file;
  file.xPixelsPerMetre = 2835;
  file.yPixelsPerMetre = 0x80000000;  // negative: as good as none
  const Dib dib = ReadBmp(WithRows(file).Bytes(), "x.bmp");
  EXPECT_EQ(dib.xPixelsPerMetre, 2835);
  EXPECT_EQ(dib.yPixelsPerMetre, 0);
}

}  // namespace
}  // namespace qnv::test
