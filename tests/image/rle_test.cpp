// Run-length images, BI_RLE8 and BI_RLE4. Both have the same codes, ends and jumps; a byte of BI_RLE4 holds two pixels,
// high nibble first. What holds for both is written once, in pixels, and encoded either way.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "image/dib_builder.h"

namespace qnv::test {
namespace {

constexpr uint32_t kBothCompressions[] = {BI_RLE8, BI_RLE4};

// Codes written as words, pixels as the letters of a picture; 'a' is index 0, 'Y' and 'Z' are indices above 15.
//   5b     a run of five (of BI_RLE4 also 5bc: two colors in turn)
//   (bcd)  a literal, then what makes its bytes even; the spare nibble of BI_RLE4 is not 0
//   +2,1   a delta: two to the right, one row on
//   /      the end of a line
//   !      the end of the bitmap
std::vector<uint8_t> RleBytes(uint32_t compression, const std::string& codes) {
  const bool nibbles = compression == BI_RLE4;
  const auto index = [](char letter) { return letter == 'Z' ? 255 : letter == 'Y' ? 16 : letter - 'a'; };
  RleWriter writer;
  std::istringstream words(codes);
  for (std::string word; words >> word;) {
    if (word == "/") {
      writer.EndOfLine();
    } else if (word == "!") {
      writer.EndOfBitmap();
    } else if (word[0] == '+') {
      writer.Delta(std::stoi(word), std::stoi(word.substr(word.find(',') + 1)));
    } else if (word[0] == '(') {
      const std::string letters = word.substr(1, word.size() - 2);
      std::vector<int> bytes;
      for (std::size_t i = 0; i < letters.size(); i += nibbles ? 2 : 1) {
        const int second = i + 1 < letters.size() ? index(letters[i + 1]) : 15;
        bytes.push_back(nibbles ? index(letters[i]) << 4 | second : index(letters[i]));
      }
      writer.Literal(static_cast<int>(letters.size()), bytes);
    } else {
      const std::string letters = word.substr(word.find_first_not_of("0123456789"));
      const int first = index(letters.front());
      writer.Run(std::stoi(word), nibbles ? first << 4 | index(letters.back()) : first);
    }
  }
  return writer.bytes();
}

Dib RleDib(uint32_t compression, int32_t width, int32_t height, const std::string& codes, bool topDown = false) {
  const uint16_t bitCount = compression == BI_RLE8 ? 8 : 4;
  return Dib(DibInfo(width, height, {.bitCount = bitCount, .compression = compression, .topDown = topDown},
                     FullTable(bitCount)),
             RleBytes(compression, codes));
}

struct RleCase {
  const char* name;
  std::string codes;
  const char* picture;  // top row first
  ImagePlace place{0, 0, 5, 3, 0, 0, 5, 3};
  bool topDown = false;
};

// Images of `width` x `height` on a band of 5 x 3. Each stream ends where its memory ends. The second operation takes
// the same rows through a transfer.
void RunRleCases(uint32_t compression, const std::vector<RleCase>& cases, int32_t width = 5, int32_t height = 3) {
  for (const RleCase& c : cases) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      for (uint32_t rop : {SRCCOPY, 0x00CC0021u}) {
        SCOPED_TRACE(std::string(c.name) + (compression == BI_RLE8 ? ", BI_RLE8, " : ", BI_RLE4, ") +
                     std::to_string(bandDepth) + "-bit band, rop " + std::to_string(rop));
        TestDevice device({.bitsPerPixel = bandDepth, .width = 5, .height = 3});
        const Dib dib = RleDib(compression, width, height, c.codes, c.topDown);
        EXPECT_EQ(1u, Stretch(device, dib, c.place, {.rop = rop}));
        PictureInks inks = ImageInks(device);
        inks.push_back({'Z', Physical(device, 0x123456)});  // the entries above 15
        EXPECT_TRUE(BandIs(device, inks, c.picture));
      }
    }
  }
}

TEST(Rle, CodesOfBoth) {
  for (uint32_t compression : kBothCompressions) {
    RunRleCases(
        compression,
        {
            {"runs, rows from the bottom", "5b / 2c 3d / 5e !", "eeeee ccddd bbbbb"},
            {"the end of a line fills the rest with index 0", "2b / / 4c /", "cccca aaaaa bbaaa"},
            {"the end of the bitmap fills everything after it", "5b / 1c !", "aaaaa caaaa bbbbb"},
            {"the end of the bitmap at once", "!", "aaaaa aaaaa aaaaa"},
            {"literals, padded to an even number of bytes", "(bcde) 1f / (ghi) 2j / (bcdef) !", "bcdef ghijj bcdef"},
            {"a delta along the row fills with index 0", "1b +2,0 2c / +4,0 1d !", "aaaaa aaaad baacc"},
            {"a delta one row on", "1b +2,1 1c !", "aaaaa aaaca baaaa"},
            {"a delta two rows on", "1b +1,2 3c !", "aaccc aaaaa baaaa"},
            {"a delta straight up", "3b +0,1 1c !", "aaaaa aaaca bbbaa"},
            {"a delta along, then up", "1b +2,0 1c +0,2 1d !", "aaaad aaaaa baaca"},
            {"a delta far past the image", "2b +0,200", "aaaaa aaaaa bbaaa"},
            {"a delta past the row's end drops what follows", "1b +200,0 3c / 5d !", "aaaaa ddddd baaaa"},
            {"a delta to past the end of a later row", "4b +9,1 3c / 5d !", "ddddd aaaaa bbbba"},
            {"an empty delta", "2b +0,0 3c !", "aaaaa aaaaa bbccc"},
            {"a run stops at the row's end", "255b / 5c !", "aaaaa ccccc bbbbb"},
            {"a full row does not end by itself", "5b 5c 5d / 5e !", "aaaaa eeeee bbbbb"},
            {"nothing is read behind the last pixel", "5b / 5c / 5d", "ddddd ccccc bbbbb"},
            {"a delta ends a full row", "5b +0,1 / 5d !", "ddddd aaaaa bbbbb"},
        });
  }
}

TEST(Rle, CodesOfBytes) {
  RunRleCases(BI_RLE8,
              {
                  {"indices above 15", "2Z 3Y / !", "aaaaa aaaaa ZZZZZ"},
                  // Literals past the row's end are not stepped over: what does not fit is read as codes.
                  {"an overlong literal, even part", "3b (cdaafe) !", "aaaaa eeeee bbbcd"},
                  {"an overlong literal, odd part: to the next even byte", "4b (cjaadf) !", "aaaaa fffaa bbbbc"},
                  {"a literal in a full row is all codes", "5b (aacg) !", "aaaaa ggaaa bbbbb"},
                  {"an overlong literal behind a delta, in a row that is stepped over",
                   "1b +3,1 (cdaafe) !",
                   "eeeee",
                   {0, 0, 5, 1, 0, 2, 5, 1}},
              });
}

TEST(Rle, CodesOfNibbles) {
  RunRleCases(BI_RLE4,
              {
                  {"a run alternates two colors", "5bc / 4dd 1ef / 5po !", "popop dddde bcbcb"},
                  {"each run starts with its high nibble", "1bc 1de 3fg / 2bc 3de !", "aaaaa bcded bdfgf"},
                  {"a run of two colors stops at the row's end", "200bc / 1da !", "aaaaa daaaa bcbcb"},
                  {"the end of the bitmap within a run of two colors", "3bc !", "aaaaa aaaaa bcbaa"},
                  {"literals of two and three bytes", "(bcdef) / (ghij) 1ba / (klm) 2cd !", "klmcd ghijb bcdef"},
                  // Unlike the 8-bit form, all bytes of a literal are stepped over, whatever fits.
                  {"an overlong literal is stepped over whole", "3b (cdaaaaaaa) / 5e !", "aaaaa eeeee bbbcd"},
                  {"a literal in a full row is stepped over whole", "5b (aaaa) / 5e !", "aaaaa eeeee bbbbb"},
              });
}

TEST(Rle, PartsScalesAndDirections) {
  // Stored rows from the bottom: bbbcde, aaaaaa, afghia, jjjjjj, kkaaaa.
  const std::string codes = "3b (cde) / +1,1 (fghi) / 6j / 2k !";
  for (uint32_t compression : kBothCompressions) {
    RunRleCases(compression,
                {
                    {"rows below are stepped over", codes, "jjjjj afghi aaaaa", {0, 0, 5, 3, 0, 1, 5, 3}},
                    {"columns of a row", codes, "..fgh ..aaa ..bbc", {2, 0, 3, 3, 1, 0, 3, 3}},
                    {"the top rows", codes, "kaaaa jjjjj fghia", {0, 0, 5, 3, 1, 2, 5, 3}},
                    {"mirrored left to right", codes, "..... ihgfa", {5, 1, -5, 1, 0, 2, 5, 1}},
                    {"upside down", codes, "bbbcd aaaaa afghi", {0, 3, 5, -3, 0, 0, 5, 3}},
                    {"stored top row first", codes, "bbbcd aaaaa afghi", {0, 0, 5, 3, 0, 2, 5, 3}, true},
                    {"doubled", codes, "ccdde ccdde", {-4, 0, 10, 2, 1, 0, 5, 1}},
                },
                6, 5);
  }
}

// Columns from the middle of alternating runs, and rows that end in codes past their width.
TEST(Rle, PartsOfAlternatingRuns) {
  // Stored rows from the bottom: bcbdef, aaaaaa, afghij, klklkl, mnaaaa.
  const std::string codes = "3bc (def) / +1,1 (fghij) / 60kl (aaaaaaa) / 2mn !";
  RunRleCases(BI_RLE4,
              {
                  {"rows below are stepped over", codes, "mnaaa klklk afghi", {0, 0, 5, 3, 0, 2, 5, 3}},
                  {"columns of a row", codes, "..fgh ..aaa ..cbd", {2, 0, 3, 3, 1, 0, 3, 3}},
                  {"mirrored left to right", codes, "jihgf", {5, 0, -5, 1, 1, 2, 5, 1}},
                  {"stored top row first", codes, "bcbde aaaaa afghi", {0, 0, 5, 3, 0, 2, 5, 3}, true},
              },
              6, 5);
}

// A row is as wide as biWidth says, whatever part of it is painted; one pixel and odd widths included.
TEST(Rle, Widths) {
  for (uint32_t compression : kBothCompressions) {
    for (int32_t width = 1; width <= 9; ++width) {
      TestDevice device({.bitsPerPixel = 8, .width = 10, .height = 2});
      const std::string codes = std::to_string(width) + "b 3c / " + std::to_string(width + 100) + "d /";
      EXPECT_EQ(1u, Stretch(device, RleDib(compression, width, 2, codes), {0, 0, width, 2, 0, 0, width, 2}));
      std::string picture(20, '.');
      for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
        picture[x] = 'd';
        picture[10 + x] = 'b';
      }
      EXPECT_TRUE(BandIs(device, ImageInks(device), picture)) << "width " << width;
    }
  }
}

// Every literal is followed by what makes its bytes even: n bytes in one form, (n + 1) / 2 in the other.
TEST(Rle, LiteralLengths) {
  for (uint32_t compression : kBothCompressions) {
    for (std::size_t count = 3; count <= 12; ++count) {
      const std::string literal = std::string("bcbcbcbcbcbc").substr(0, count);
      std::string line = literal + 'd';
      line.resize(14, 'a');
      TestDevice device({.width = 14, .height = 1});
      const Dib dib = RleDib(compression, 14, 1, "(" + literal + ") 1d !");
      EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 14, 1, 0, 0, 14, 1}));
      EXPECT_TRUE(BandIs(device, ImageInks(device), line)) << "compression " << compression << ", literal of " << count;
    }
  }
}

}  // namespace
}  // namespace qnv::test
