// BMP files of every kind as bitmaps of the rasteriser, what is said of bad ones, and the files that the tool writes
// itself.
#include "qnvtool/input/bmp_reader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

#include "bmp_file.h"
#include "picture_inputs.h"
#include "qnvtool/input/rle_reader.h"
#include "qnvtool/output/bmp_writer.h"
#include "support/test_device.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

constexpr uint32_t kHeaderSizes[] = {12, 16, 40, 52, 56, 64, 108, 124};
constexpr uint16_t kDepths[] = {1, 4, 8, 16, 24, 32};  // that are passed on as they are

std::string BmpErrorOf(const std::vector<uint8_t>& file) {
  return InputErrorOf([&] { tool::OpenBmp(tool::InputOf(file, "x.bmp"), {}, {}); });
}

// Pixel rows that count.
BmpFile WithRows(BmpFile file) {
  file.pixels.resize(file.stride() * static_cast<std::size_t>(std::abs(file.height)));
  for (std::size_t i = 0; i < file.pixels.size(); ++i) file.pixels[i] = static_cast<uint8_t>(i * 7 + 3);
  return file;
}

WholePicture ReadFile(const BmpFile& file) { return ReadWhole(file.Bytes()); }

std::vector<uint32_t> Colors(std::size_t count) {
  std::vector<uint32_t> table;
  for (std::size_t i = 0; i < count; ++i) table.push_back(static_cast<uint32_t>(0x102030 + i * 0x010203) & 0xFFFFFF);
  return table;
}

TEST(BmpReader, EveryHeaderSizeGivesTheSameBitmap) {
  for (const uint32_t size : kHeaderSizes) {
    SCOPED_TRACE(size);
    const BmpFile file = WithRows({.headerSize = size, .bitCount = 8, .table = Colors(256)});
    const WholePicture dib = ReadFile(file);
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
      const WholePicture dib = ReadFile(file);
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
    const WholePicture dib = ReadFile(WithRows({.bitCount = c.bits, .colors = c.colors, .table = Colors(c.inTheFile)}));
    EXPECT_EQ(tool::U32At(dib.info, 32), c.taken);
    EXPECT_EQ(dib.info.size(), 40u + c.taken * 4);
    if (c.remark == nullptr) {
      EXPECT_TRUE(dib.notes.empty());
    } else if (*c.remark != 0) {
      ASSERT_EQ(dib.notes.size(), 1u);
      EXPECT_NE(dib.notes[0].find(c.remark), std::string::npos);
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
    const WholePicture dib = ReadFile(file);
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
    const WholePicture dib = ReadFile(file);
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

// Behind the codes stand the zeros that the rasteriser asks for: 260 and two for each row.
TEST(BmpReader, RleCodesAreFollowedByZeros) {
  for (const uint16_t bits : {uint16_t{8}, uint16_t{4}}) {
    for (const int32_t height : {1, 3, 200}) {
      SCOPED_TRACE(testing::Message() << bits << " bits, " << height << " rows");
      const std::vector<uint8_t> codes{5, 1, 0, 1};
      BmpFile file = RleFile(bits, codes);
      file.height = height;
      const std::size_t zeros = 260 + 2 * static_cast<std::size_t>(height);
      const WholePicture dib = ReadWhole(file.Bytes(), {}, codes.size() + zeros);
      EXPECT_EQ(dib.compression, file.compression);
      EXPECT_TRUE(dib.notes.empty());
      std::vector<uint8_t> expected = codes;
      expected.resize(codes.size() + zeros, 0);
      EXPECT_EQ(dib.bits, expected);
    }
  }
}

// biSizeImage ends the codes: without the end of the bitmap behind it, rows are missing.
TEST(BmpReader, RleCodesEndWhereTheHeaderSays) {
  BmpFile file = RleFile(8, {5, 1, 0, 0, 0, 1});
  file.imageSize = 6;
  EXPECT_TRUE(ReadFile(file).notes.empty());
  file.imageSize = 4;
  EXPECT_EQ(
      ReadFile(file).notes,
      std::vector<std::string>{"2 of 3 rows are missing or damaged and stay white: the run-length codes break off"});
  file.imageSize = 4000;
  EXPECT_EQ(ReadFile(file).notes,
            std::vector<std::string>{"biSizeImage: 4000 bytes of RLE codes promised, the file has 6"});
}

TEST(BmpReader, TwoBitsBecomeFour) {
  BmpFile file{.width = 5, .height = 1, .bitCount = 2, .table = {0x000000, 0x111111, 0x222222, 0xFFFFFF}};
  file.pixels = {0b00011011, 0b11000000, 0, 0};
  const WholePicture dib = ReadFile(file);
  EXPECT_EQ(dib.bitCount, 4);
  EXPECT_EQ(dib.bits, (std::vector<uint8_t>{0x01, 0x23, 0x30, 0}));
  EXPECT_EQ(tool::U32At(dib.info, 32), 4u);
}

// Alpha counts where a mask gives it bits and one of them is set.
TEST(BmpReader, AlphaIsLaidOverWhite) {
  BmpFile file{.headerSize = 108,
               .width = 3,
               .height = 1,
               .bitCount = 32,
               .compression = BI_BITFIELDS,
               .masks = {0xFF0000, 0x00FF00, 0x0000FF, 0xFF000000}};
  file.pixels = {10, 20, 30, 255, 10, 20, 30, 0, 0, 100, 255, 51};
  const WholePicture blended = ReadFile(file);
  EXPECT_EQ(blended.bitCount, 24);
  EXPECT_EQ(blended.bits, (std::vector<uint8_t>{10, 20, 30, 255, 255, 255, 204, 224, 255, 0, 0, 0}));
  EXPECT_EQ(blended.notes, std::vector<std::string>{"its alpha channel is laid over white"});
  for (const std::size_t at : {3u, 7u, 11u}) file.pixels[at] = 0;
  const WholePicture opaque = ReadFile(file);
  EXPECT_EQ(opaque.bitCount, 32);
  EXPECT_EQ(opaque.bits, file.pixels);
  EXPECT_TRUE(opaque.notes.empty());
}

// The same codes as the eight-bit form, but a run has three bytes, and so has each pixel of a literal.
TEST(BmpReader, Rle24OfOs2) {
  BmpFile file{.headerSize = 64, .width = 4, .height = 3, .bitCount = 24, .compression = 4};
  file.pixels = {3, 1, 2, 3, 0, 0,                                         // bottom row: three pixels, then color 0
                 0, 3, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 9, 50, 60, 70, 0, 0,  // a literal, and a run that is cut
                 0, 1};
  const WholePicture dib = ReadFile(file);
  EXPECT_EQ(dib.bitCount, 24);
  EXPECT_EQ(dib.compression, uint32_t{BI_RGB});
  EXPECT_EQ(dib.bits, (std::vector<uint8_t>{1, 2, 3, 1, 2, 3, 1, 2, 3, 0,  0,  0,   //
                                            9, 8, 7, 6, 5, 4, 3, 2, 1, 50, 60, 70,  //
                                            0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  0,  0}));
}

TEST(BmpReader, MissingRowsAreWhite) {
  struct Case {
    uint16_t bits;
    std::vector<uint32_t> table;
    uint8_t white;
  };
  const Case cases[] = {{24, {}, 0xFF},
                        {32, {}, 0xFF},
                        {8, {0, 0x808080, 0xFEFEFE, 0x00FF00}, 2},
                        {4, {0, 0x808080, 0xFEFEFE, 0x00FF00}, 0x22},
                        {1, {0, 0xFFFFFF}, 0xFF},
                        {1, {0xFFFFFF, 0}, 0}};
  for (const Case& c : cases) {
    for (const int32_t height : {3, -3}) {
      SCOPED_TRACE(testing::Message() << c.bits << " bits, height " << height);
      BmpFile file = WithRows(
          {.height = height, .bitCount = c.bits, .colors = static_cast<uint32_t>(c.table.size()), .table = c.table});
      const std::size_t stride = file.stride();
      std::vector<uint8_t> expected = file.pixels;
      std::fill(expected.begin() + static_cast<std::ptrdiff_t>(stride), expected.end(), c.white);
      file.pixels.resize(2 * stride - 4);  // four bytes more than a row are padding at most
      if (c.bits == 24 || c.bits == 32) file.pixels.resize(stride + 1);
      const bool isSecondThere = file.pixels.size() >= stride + (5u * c.bits + 7) / 8;
      ASSERT_FALSE(isSecondThere);
      const WholePicture dib = ReadFile(file);
      EXPECT_EQ(dib.bits, expected);
      ASSERT_EQ(dib.notes.size(), 1u);
      EXPECT_TRUE(
          dib.notes[0].starts_with("2 of 3 rows are missing or damaged and stay white: the file ends at byte "));
    }
  }
  // The last row may lack what fills it up.
  BmpFile file = WithRows({});
  file.pixels.pop_back();
  EXPECT_TRUE(ReadFile(file).notes.empty());
}

// Windows in any order hold the rows that the whole picture has there.
TEST(BmpReader, WindowsShowTheRowsAskedFor) {
  for (const int32_t height : {150, -150}) {
    for (const uint16_t bits : {uint16_t{2}, uint16_t{8}, uint16_t{24}}) {
      const BmpFile file =
          WithRows({.height = height, .bitCount = bits, .table = Colors(bits <= 8 ? std::size_t{1} << bits : 0)});
      const WholePicture whole = ReadFile(file);
      const std::size_t stride = whole.bits.size() / 150;
      const auto rows = OpenPicture(file.Bytes())->Rows();
      for (const auto& [top, count] : {std::pair{0, 10}, {140, 10}, {60, 70}, {70, 5}, {149, 1}, {0, 150}, {1, 2}}) {
        const tool::DibWindow window = rows->Window(top, count);
        ASSERT_LE(window.top, top);
        ASSERT_GE(window.top + window.rows, top + count);
        EXPECT_EQ(window.info[8] | window.info[9] << 8, (height < 0 ? -window.rows : window.rows) & 0xFFFF);
        for (int row = top; row < top + count; ++row) {
          const int inWindow = height < 0 ? row - window.top : window.top + window.rows - 1 - row;
          const int inWhole = height < 0 ? row : 149 - row;
          ASSERT_EQ(std::memcmp(window.bits + static_cast<std::size_t>(inWindow) * stride,
                                whole.bits.data() + static_cast<std::size_t>(inWhole) * stride, stride),
                    0)
              << bits << " bits, height " << height << ", row " << row << " of " << top << '+' << count;
        }
      }
    }
  }
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
      {"biBitCount", [](BmpFile& f) { f.bitCount = 3; }},
      {"biBitCount", [](BmpFile& f) { f.bitCount = 64; }},
      {"biCompression: is an embedded JPEG", [](BmpFile& f) { f.compression = 4; }},
      {"biCompression: is an embedded PNG", [](BmpFile& f) { f.compression = 5; }},
      {"biCompression: 7", [](BmpFile& f) { f.compression = 7; }},
      {"biCompression: RLE24", [](BmpFile& f) { f.headerSize = 64, f.bitCount = 8, f.compression = 4; }},
      {"biCompression", [](BmpFile& f) { f.compression = 0xFFFFFFFF; }},
      {"biCompression", [](BmpFile& f) { f.compression = BI_RLE8; }},
      {"biCompression", [](BmpFile& f) { f.compression = BI_BITFIELDS; }},
      {"biCompression: Huffman",
       [](BmpFile& f) {
         f.headerSize = 64, f.bitCount = 1, f.compression = 3;
         f.table = Colors(2);
       }},
      {"biHeight", [](BmpFile& f) { f.bitCount = 8, f.compression = BI_RLE8, f.height = -3; }},
      {"red mask", [](BmpFile& f) { f = Masked(32, 0, 1, 2); }},
      {"green mask", [](BmpFile& f) { f = Masked(32, 1, 5, 2); }},
      {"blue mask", [](BmpFile& f) { f = Masked(16, 1, 2, 0x10000); }},
      {"bfOffBits", [](BmpFile& f) { f.offsetChange = 1 << 20; }},
      {"bfOffBits", [](BmpFile& f) { f.offsetChange = -20; }},
      {"bfOffBits", [](BmpFile& f) { f.bitCount = 8; }},  // no table at all
      {"pixel rows: a row of 5 pixels of 24 bits needs 16 bytes, the file has 14",
       [](BmpFile& f) { f.pixels.resize(14); }},
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
      const std::size_t firstRow = tool::U32At(whole, 10) + (5u * bits + 7) / 8;
      for (std::size_t end = 0; end != whole.size(); ++end) {
        const std::string error = BmpErrorOf({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(end)});
        EXPECT_EQ(error.empty(), end >= firstRow) << size << ' ' << bits << " cut to " << end << ' ' << error;
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
  const WholePicture dib = ReadFile(WithRows({.xPixelsPerMetre = 2835, .yPixelsPerMetre = 0x80000000}));
  EXPECT_EQ(dib.xPixelsPerMetre, 2835);
  EXPECT_EQ(dib.yPixelsPerMetre, 0);
}

TEST(BmpWriter, FilesAreReadBack) {
  const std::vector<uint8_t> pixels{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  const WholePicture dib = ReadWhole(tool::EncodeBmp24(2, 2, 72, pixels));
  EXPECT_EQ(dib.bits, (std::vector<uint8_t>{7, 8, 9, 10, 11, 12, 0, 0, 1, 2, 3, 4, 5, 6, 0, 0}));
  EXPECT_EQ(dib.xPixelsPerMetre, 2835);
}

// Gray levels as indices.
tool::Bytes EncodeGray(int width, int height, const std::vector<uint8_t>& indices) {
  std::vector<uint32_t> palette;
  for (uint32_t i = 0; i < 256; ++i) palette.push_back(i * 0x010101);
  return tool::EncodeBmpRle8(width, height, 72, indices, palette);
}

// The picture as the rasteriser paints it. The bits are exactly as long as promised, with an unreadable page behind.
std::vector<uint8_t> PaintedBand(const tool::Bytes& file, std::vector<std::string>* notes = nullptr) {
  const tool::PicturePtr picture = OpenPicture(file, notes);
  const auto height = static_cast<uint32_t>(picture->height());
  const auto rows = picture->Rows();
  const tool::DibWindow window = rows->Window(0, picture->height());
  const bool isRle = tool::U32At(tool::Bytes(window.info, window.info + 20), 16) != BI_RGB;
  const std::size_t codes = file.size() - tool::U32At(file, 10);
  const std::size_t size =
      isRle ? codes + 260 + std::size_t{2} * height : tool::DibStride(picture->width(), 8) * std::size_t{height};
  TestDevice device({.bitsPerPixel = 8, .width = static_cast<uint32_t>(picture->width()), .height = height});
  const DRAWMODE mode = MakeDrawMode();
  const FencedInput bits(std::vector<uint8_t>(window.bits, window.bits + size));
  EXPECT_EQ(QNVDevSetDIBitsToDevice(device.handle(), 0, 0, 0, height, &kEverywhere, &mode, bits.data(), window.info,
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
  std::vector<std::string> notes;
  EXPECT_EQ(PaintedBand(EncodeGray(kWidth, kHeight, indices), &notes), indices);
  EXPECT_TRUE(notes.empty());
}

// However short the codes are cut, the rows that are there are right and the others white, with a note.
TEST(RlePicture, StreamsMayBreakOffAnywhere) {
  constexpr int kWidth = 40;
  constexpr int kHeight = 8;
  std::vector<uint8_t> indices;
  for (int i = 0; i < kWidth * kHeight; ++i) indices.push_back(static_cast<uint8_t>(i % 11 < 5 ? 200 : i % 251 + 1));
  const tool::Bytes whole = EncodeGray(kWidth, kHeight, indices);
  const std::size_t pixels = tool::U32At(whole, 10);
  int before = 0;
  for (std::size_t size = pixels + 1; size < whole.size(); ++size) {
    std::vector<std::string> notes;
    const tool::Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    const std::vector<uint8_t> painted = PaintedBand(cut, &notes);
    // Rows are stored from the bottom up, so what is there is at the end.
    int rows = 0;
    while (rows < kHeight && std::equal(painted.end() - (rows + 1) * kWidth, painted.end() - rows * kWidth,
                                        indices.end() - (rows + 1) * kWidth)) {
      ++rows;
    }
    EXPECT_GE(rows, before) << size;
    before = rows;
    EXPECT_TRUE(std::all_of(painted.begin(), painted.end() - rows * kWidth, [](uint8_t v) { return v == 255; }))
        << size;
    EXPECT_EQ(notes.size(), rows < kHeight ? 2u : 1u) << size;  // biSizeImage promises more, too
  }
  EXPECT_EQ(before, kHeight);
}

// Codes of noise, decoded here and by the rasteriser: the same pixels, whatever the codes mean.
TEST(RlePicture, TheReaderDecodesAsTheRasteriserDoes) {
  uint32_t state = 12345;
  const auto random = [&](uint32_t below) {
    state = state * 1664525 + 1013904223;
    return (state >> 16) % below;
  };
  int busyRows = 0;
  for (int i = 0; i < 400; ++i) {
    const uint16_t bits = i % 2 == 0 ? 4 : 8;
    const int width = 1 + static_cast<int>(random(70));
    const int height = 1 + static_cast<int>(random(90));
    BmpFile file{.width = width, .height = height, .bitCount = bits};
    file.compression = bits == 8 ? uint32_t{BI_RLE8} : uint32_t{BI_RLE4};
    for (uint32_t gray = 0; gray < 1u << bits; ++gray) file.table.push_back(gray * 0x010101);
    const uint32_t codes = 20 + random(600);
    for (uint32_t code = 0; code < codes; ++code) {
      file.pixels.push_back(static_cast<uint8_t>(random(3) == 0 ? 0 : random(30)));
      file.pixels.push_back(static_cast<uint8_t>(random(2) == 0 ? random(256) : random(6) == 1 ? 0 : random(20) + 2));
    }
    file.pixels.resize(file.pixels.size() + 260 + 2 * static_cast<std::size_t>(height));  // a complete bitmap
    std::vector<std::string> notes;
    const std::vector<uint8_t> painted = PaintedBand(file.Bytes(), &notes);
    ASSERT_TRUE(notes.empty()) << i;
    tool::RleReader reader(tool::InputOf(file.pixels, "x"), bits, width);
    std::vector<uint8_t> row(static_cast<std::size_t>(width));
    for (int y = height - 1; y >= 0; --y) {
      const tool::RleReader::Mark mark = reader.Here();
      ASSERT_TRUE(reader.NextRow(row.data())) << i;
      const auto* const expected = painted.data() + static_cast<std::size_t>(y) * tool::DibStride(width, 8);
      ASSERT_TRUE(std::equal(row.begin(), row.end(), expected)) << "case " << i << ", row " << y;
      busyRows += std::count_if(row.begin(), row.end(), [](uint8_t index) { return index != 0; }) > 3 ? 1 : 0;
      // Once more from the mark, without decoding.
      if (y % 7 == 0) {
        reader.MoveTo(mark);
        ASSERT_TRUE(reader.NextRow(nullptr));
      }
    }
  }
  EXPECT_GT(busyRows, 1000);  // many rows have pixels of several kinds
}

// Long codes are decoded by the reader; the rows are those of the same codes handed over.
TEST(RlePicture, LongCodesBecomeRows) {
  constexpr int kWidth = 3000;
  constexpr int kHeight = 1600;
  std::vector<uint8_t> indices;
  for (int i = 0; i < kWidth * kHeight; ++i) indices.push_back(static_cast<uint8_t>((i * 7 + i / kWidth) % 251));
  const tool::Bytes file = EncodeGray(kWidth, kHeight, indices);
  ASSERT_GT(file.size(), tool::kMaxRleCodes);
  const auto rows = OpenPicture(file)->Rows();
  for (const int top : {0, 1500, 700, 63, 64, 65, 1599}) {
    const int count = std::min(70, kHeight - top);
    const tool::DibWindow window = rows->Window(top, count);
    EXPECT_EQ(tool::U32At(tool::Bytes(window.info, window.info + 20), 16), uint32_t{BI_RGB});
    for (int row = top; row < top + count; ++row) {
      const int stored = window.top + window.rows - 1 - row;
      ASSERT_TRUE(std::equal(window.bits + static_cast<std::ptrdiff_t>(stored) * kWidth,
                             window.bits + static_cast<std::ptrdiff_t>(stored + 1) * kWidth,
                             indices.begin() + static_cast<std::ptrdiff_t>(row) * kWidth))
          << row;
    }
  }
}

}  // namespace
}  // namespace qnv::test
