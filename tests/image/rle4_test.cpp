// BI_RLE4: two pixels in a byte, high nibble first.
#include <gtest/gtest.h>

#include "image/rle_cases.h"

namespace qnv::test {
namespace {

TEST(Rle4, Codes) {
  RunRleCases(
      BI_RLE4,
      {
          {.name = "a run alternates two colours",
           .codes = RleWriter()
                        .Run(5, 0x12)
                        .EndOfLine()
                        .Run(4, 0x33)
                        .Run(1, 0x45)
                        .EndOfLine()
                        .Run(5, 0xFE)
                        .EndOfBitmap()
                        .bytes(),
           .picture = "popop"
                      "dddde"
                      "bcbcb"},
          {.name = "each run starts with its high nibble",
           .codes = RleWriter()
                        .Run(1, 0x12)
                        .Run(1, 0x34)
                        .Run(3, 0x56)
                        .EndOfLine()
                        .Run(2, 0x12)
                        .Run(3, 0x34)
                        .EndOfBitmap()
                        .bytes(),
           .picture = "aaaaa"
                      "bcded"
                      "bdfgf"},
          {.name = "literals of one to four bytes, padded to even",
           .codes = RleWriter()
                        .Literal(5, {0x12, 0x34, 0x50})
                        .EndOfLine()
                        .Literal(4, {0x67, 0x89})
                        .Run(1, 0x10)
                        .EndOfLine()
                        .Literal(3, {0xAB, 0xC0})
                        .Run(2, 0x23)
                        .EndOfBitmap()
                        .bytes(),
           .picture = "klmcd"
                      "ghijb"
                      "bcdef"},
          {.name = "the end of a line fills the rest with index 0",
           .codes = RleWriter().Run(2, 0x12).EndOfLine().EndOfLine().Run(3, 0x34).EndOfLine().bytes(),
           .picture = "dedaa"
                      "aaaaa"
                      "bcaaa"},
          {.name = "the end of the bitmap at once",
           .codes = RleWriter().EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "aaaaa"
                      "aaaaa"},
          {.name = "the end of the bitmap within a row",
           .codes = RleWriter().Run(3, 0x12).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "aaaaa"
                      "bcbaa"},
          {.name = "deltas",
           .codes = RleWriter().Run(1, 0x10).Delta(2, 0).Run(1, 0x20).Delta(0, 2).Run(1, 0x30).EndOfBitmap().bytes(),
           .picture = "aaaad"
                      "aaaaa"
                      "baaca"},
          {.name = "a run stops at the row's end",
           .codes = RleWriter().Run(200, 0x12).EndOfLine().Run(1, 0x30).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "daaaa"
                      "bcbcb"},
          {.name = "a full row does not end by itself",
           .codes = RleWriter().Run(5, 0x11).Run(5, 0x22).EndOfLine().Run(5, 0x33).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "ddddd"
                      "bbbbb"},
          // Unlike the 8-bit form, all bytes of a literal are stepped over, whatever fits.
          {.name = "an overlong literal is stepped over whole",
           .codes = RleWriter()
                        .Run(3, 0x11)
                        .Literal(9, {0x23, 0x00, 0x00, 0x00, 0x00})
                        .EndOfLine()
                        .Run(5, 0x44)
                        .EndOfBitmap()
                        .bytes(),
           .picture = "aaaaa"
                      "eeeee"
                      "bbbcd"},
          {.name = "a literal in a full row is stepped over whole",
           .codes = RleWriter().Run(5, 0x11).Literal(4, {0x00, 0x00}).EndOfLine().Run(5, 0x44).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "eeeee"
                      "bbbbb"},
      });
}

TEST(Rle4, PartsScalesAndDirections) {
  const std::vector<uint8_t> codes = RleWriter()
                                         .Run(3, 0x12)
                                         .Literal(3, {0x34, 0x50})
                                         .EndOfLine()
                                         .Delta(1, 1)
                                         .Literal(5, {0x56, 0x78, 0x90})
                                         .EndOfLine()
                                         .Run(60, 0xAB)
                                         .Literal(7, {0x00, 0x00, 0x00, 0x00})
                                         .EndOfLine()
                                         .Run(2, 0xCD)
                                         .EndOfBitmap()
                                         .bytes();
  // Stored rows from the bottom: bcbdef, aaaaaa, afghij, klklkl, mnaaaa.
  RunRleCases(BI_RLE4, {
                           {.name = "rows below are stepped over",
                            .codes = codes,
                            .picture = "mnaaa"
                                       "klklk"
                                       "afghi",
                            .width = 6,
                            .height = 5,
                            .place = {0, 0, 5, 3, 0, 2, 5, 3}},
                           {.name = "columns of a row",
                            .codes = codes,
                            .picture = "..fgh"
                                       "..aaa"
                                       "..cbd",
                            .width = 6,
                            .height = 5,
                            .place = {2, 0, 3, 3, 1, 0, 3, 3}},
                           {.name = "mirrored left to right",
                            .codes = codes,
                            .picture = "jihgf"
                                       "....."
                                       ".....",
                            .width = 6,
                            .height = 5,
                            .place = {5, 0, -5, 1, 1, 2, 5, 1}},
                           {.name = "stored top row first",
                            .codes = codes,
                            .picture = "bcbde"
                                       "aaaaa"
                                       "afghi",
                            .width = 6,
                            .height = 5,
                            .topDown = true,
                            .place = {0, 0, 5, 3, 0, 2, 5, 3}},
                       });
}

// Every literal length takes (n + 1) / 2 bytes, rounded up to even.
TEST(Rle4, LiteralLengths) {
  for (int count = 3; count <= 12; ++count) {
    std::vector<int> literal;
    for (int i = 0; i < (count + 1) / 2; ++i) literal.push_back(0x12);
    RleWriter writer;
    writer.Literal(count, literal).Run(1, 0x30).EndOfBitmap();
    TestDevice device({.bitsPerPixel = 24, .width = 14, .height = 1});
    const Dib dib(DibInfo(14, 1, {.bitCount = 4, .compression = BI_RLE4}, RleTable(BI_RLE4)), writer.bytes());
    EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 14, 1, 0, 0, 14, 1}));
    std::string line;
    for (int i = 0; i < count; ++i) line += i % 2 == 0 ? 'b' : 'c';
    line += 'd';
    line.resize(14, 'a');
    EXPECT_TRUE(BandIs(device, ImageInks(device), line)) << "literal of " << count;
  }
}

}  // namespace
}  // namespace qnv::test
