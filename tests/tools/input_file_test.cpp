// Files that are read in pieces, what they are by their first bytes, and the store of decoded rows.
#include "qnvtool/input/input_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "qnvtool/input/file_kind.h"
#include "qnvtool/input/orientation.h"
#include "qnvtool/input/row_store.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

tool::Bytes Piece(const tool::Input& file, uint64_t offset, std::size_t count) {
  tool::Bytes piece(count);
  piece.resize(file->Read(offset, piece.data(), count));
  return piece;
}

TEST(InputFile, PiecesAreReadAnywhere) {
  const std::string path = testing::TempDir() + "/input_file_test";
  std::FILE* const out = std::fopen(path.c_str(), "wb");
  std::fputs("0123456789", out);
  std::fclose(out);
  const tool::Input file = tool::OpenInput(path);
  const tool::Input memory = tool::InputOf({'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'}, "memory");
  for (const tool::Input& one : {file, memory}) {
    EXPECT_EQ(one->size(), 10u);
    EXPECT_EQ(Piece(one, 7, 2), (tool::Bytes{'7', '8'}));
    EXPECT_EQ(Piece(one, 0, 3), (tool::Bytes{'0', '1', '2'}));
    EXPECT_EQ(Piece(one, 8, 5), (tool::Bytes{'8', '9'}));
    EXPECT_EQ(Piece(one, 10, 5), tool::Bytes{});
    EXPECT_EQ(Piece(one, uint64_t{1} << 40, 5), tool::Bytes{});
    const tool::Input part = tool::PartOf(one, 2, 5);
    EXPECT_EQ(part->size(), 5u);
    EXPECT_EQ(Piece(part, 3, 5), (tool::Bytes{'5', '6'}));
    EXPECT_EQ(Piece(part, 5, 5), tool::Bytes{});
    EXPECT_EQ(one->Head(4), (tool::Bytes{'0', '1', '2', '3'}));
    EXPECT_EQ(one->All(10, "a test").size(), 10u);
    EXPECT_EQ(InputErrorOf([&] { one->All(9, "a test"); }), one->name() + ": has 10 bytes; a test may have 9 at most");
  }
  EXPECT_EQ(file->name(), path);
  std::remove(path.c_str());
}

// A document may show more pictures than a process may have open files.
TEST(InputFile, MoreFilesThanMayBeOpen) {
  const std::string path = testing::TempDir() + "/input_file_test";
  std::FILE* const out = std::fopen(path.c_str(), "wb");
  std::fputs("abc", out);
  std::fclose(out);
  std::vector<tool::Input> files;
  for (int i = 0; i < 3000; ++i) files.push_back(tool::OpenInput(path));
  for (const tool::Input& file : files) ASSERT_EQ(Piece(file, 1, 1), tool::Bytes{'b'});
  files.clear();
  std::remove(path.c_str());
}

TEST(InputFile, FilesThatCannotBeUsedAreNamed) {
  EXPECT_EQ(InputErrorOf([] { tool::OpenInput("none.bmp"); }), "none.bmp: No such file or directory");
  EXPECT_EQ(InputErrorOf([] { tool::OpenInput("/dev/null"); }), "/dev/null: is empty");
  EXPECT_EQ(InputErrorOf([] { tool::OpenInput("."); }), ".: is a folder, not a file");
}

TEST(FileKind, KnownByTheFirstBytes) {
  using Form = tool::FileKind::Form;
  struct Case {
    std::string head;
    Form form;
    const char* what;
  };
  const auto with = [](const char* text, std::size_t size) { return std::string(text, size); };
  const Case cases[] = {
      {with("BM\x36\0\0\0", 6), Form::kBmp, "a BMP picture"},
      {"\x89PNG\r\n\x1A\n", Form::kPng, "a PNG picture"},
      {"\xFF\xD8\xFF\xE0", Form::kJpeg, "a JPEG picture"},
      {with("II*\0", 4), Form::kTiff, "a TIFF picture"},
      {with("MM\0*", 4), Form::kTiff, "a TIFF picture"},
      {with("II+\0", 4), Form::kTiff, "a BigTIFF picture"},
      {with("GIF89a\1\0", 8), Form::kForeign, "a GIF picture"},
      {with("RIFF\1\0\0\0WEBPVP8", 15), Form::kForeign, "a WebP picture"},
      {with("RIFF\1\0\0\0WAVE", 12), Form::kForeign, "a sound or film (RIFF)"},
      {with("\0\0\0\x0CjP  \r\n\x87\n", 12), Form::kForeign, "a JPEG 2000 picture"},
      {with("\0\0\0\x20"
            "ftypavif",
            12),
       Form::kForeign, "an AVIF picture"},
      {"%PDF-1.4", Form::kForeign, "a PDF document"},
      {"%!PS-Adobe-3.0", Form::kForeign, "a PostScript document"},
      {"%!PS-AdobeFont-1.0", Form::kForeign, "a Type 1 font"},
      {with("PK\3\4\0\0", 6), Form::kForeign, "a zip archive"},
      {with("PK\3\4", 4) + std::string(26, '\0') + "mimetypeapplication/vnd.oasis.opendocument.text", Form::kForeign,
       "an OpenDocument file"},
      {with("\x1F\x8B\x08", 3), Form::kForeign, "gzip data"},
      {with("\xFD"
            "7zXZ\0",
            6),
       Form::kForeign, "xz data"},
      {"\x7F"
       "ELF\1",
       Form::kForeign, "an ELF program"},
      {with("MZ\x90\0", 4), Form::kForeign, "a Windows program"},
      {std::string(257, '\0') + "ustar", Form::kForeign, "a tar archive"},
      // Words begin so, too.
      {"BMW is a car", Form::kUnknown, ""},
      {"MZ", Form::kUnknown, ""},
      {"OTTO is a name", Form::kUnknown, ""},
      {"ID3 is a format", Form::kUnknown, ""},
      {"", Form::kUnknown, ""},
      {"Some text.\n", Form::kUnknown, ""},
      {"\xEF\xBB\xBFText", Form::kUnknown, ""},
      {with("\xFF\xFEt\0", 4), Form::kUnknown, ""},
  };
  for (const Case& c : cases) {
    const tool::FileKind kind = tool::KindOf({c.head.begin(), c.head.end()});
    EXPECT_EQ(kind.form, c.form) << c.head;
    EXPECT_STREQ(kind.what, c.what) << c.head;
    if (kind.form == Form::kForeign) {
      EXPECT_NE(std::string(kind.remedy), "") << c.what;
    }
  }
  EXPECT_EQ(tool::ForeignFileMessage("x", tool::KindOf({0x1F, 0x8B, 8})), "x: is gzip data: unpack it first");
}

// Rows in memory and rows in a temporary file, of which there are too many for memory.
TEST(RowStore, RowsComeBack) {
  for (const int rows : {100, 3000}) {
    constexpr std::size_t kStride = 20000;
    tool::RowStore store("x", rows, kStride);
    tool::Bytes row(kStride);
    const auto value = [](int y, std::size_t x) { return static_cast<uint8_t>(static_cast<std::size_t>(y) * 31 + x); };
    for (int y = rows - 1; y >= 0; --y) {
      for (std::size_t x = 0; x < kStride; ++x) row[x] = value(y, x);
      store.Write(y, row.data());
    }
    const tool::Bytes part{1, 2, 3};
    store.Write(7, 19997, part.data(), 3);
    tool::Bytes read(3 * kStride);
    for (const int top : {0, 6, rows - 3}) {
      store.Read(top, 3, read.data());
      for (std::size_t i = 0; i < read.size(); ++i) {
        const int y = top + static_cast<int>(i / kStride);
        const std::size_t x = i % kStride;
        ASSERT_EQ(read[i], y == 7 && x >= 19997 ? x - 19996 : value(y, x)) << y << ',' << x;
      }
    }
  }
}

// More rows than are collected at once, in every orientation, one byte a pixel and three.
TEST(OrientedRows, EveryPixelGoesToItsPlace) {
  constexpr int kWidth = 7;
  constexpr int kHeight = 1100;
  for (int number = 1; number <= 8; ++number) {
    for (const std::size_t bytes : {1u, 3u}) {
      const bool swaps = number >= 5;
      const std::size_t stride = (swaps ? kHeight : kWidth) * bytes + 2;
      const int rows = swaps ? kWidth : kHeight;
      tool::RowStore store("x", rows, stride);
      tool::OrientedRows oriented(store, {number}, kWidth, kHeight, bytes);
      const auto value = [&](int x, int y, std::size_t byte) {
        return static_cast<uint8_t>(x * 13 + y * 7 + y / 256 + static_cast<int>(byte) * 50);
      };
      for (int y = 0; y < kHeight; ++y) {
        tool::Bytes row;
        for (int x = 0; x < kWidth; ++x) {
          for (std::size_t byte = 0; byte < bytes; ++byte) row.push_back(value(x, y, byte));
        }
        oriented.Add(row.data());
      }
      oriented.Finish();
      tool::Bytes read(stride);
      for (int top = 0; top < rows; ++top) {
        store.Read(top, 1, read.data());
        for (int left = 0; left < (swaps ? kHeight : kWidth); ++left) {
          constexpr int kRight = kWidth - 1;
          constexpr int kBottom = kHeight - 1;
          const std::pair<int, int> from[] = {
              {left, top}, {kRight - left, top},  {kRight - left, kBottom - top}, {left, kBottom - top},
              {top, left}, {top, kBottom - left}, {kRight - top, kBottom - left}, {kRight - top, left}};
          for (std::size_t byte = 0; byte < bytes; ++byte) {
            ASSERT_EQ(read[static_cast<std::size_t>(left) * bytes + byte],
                      value(from[number - 1].first, from[number - 1].second, byte))
                << "orientation " << number << " at " << left << ',' << top;
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace qnv::test
