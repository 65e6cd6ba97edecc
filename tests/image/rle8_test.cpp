// BI_RLE8: runs, literals, ends and jumps of one byte a pixel.
#include <gtest/gtest.h>

#include "image/rle_cases.h"

namespace qnv::test {
namespace {

TEST(Rle8, Codes) {
  RunRleCases(
      BI_RLE8,
      {
          {.name = "runs, rows from the bottom",
           .codes = RleWriter().Run(5, 1).EndOfLine().Run(2, 2).Run(3, 3).EndOfLine().Run(5, 4).EndOfBitmap().bytes(),
           .picture = "eeeee"
                      "ccddd"
                      "bbbbb"},
          {.name = "indices above 15",
           .codes = RleWriter().Run(2, 255).Run(3, 16).EndOfLine().EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "aaaaa"
                      "ZZZZZ"},
          {.name = "the end of a line fills the rest with index 0",
           .codes = RleWriter().Run(2, 1).EndOfLine().EndOfLine().Run(4, 2).EndOfLine().bytes(),
           .picture = "cccca"
                      "aaaaa"
                      "bbaaa"},
          {.name = "the end of the bitmap fills everything after it",
           .codes = RleWriter().Run(5, 1).EndOfLine().Run(1, 2).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "caaaa"
                      "bbbbb"},
          {.name = "the end of the bitmap at once",
           .codes = RleWriter().EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "aaaaa"
                      "aaaaa"},
          {.name = "literals, odd ones padded",
           .codes = RleWriter()
                        .Literal(4, {1, 2, 3, 4})
                        .Run(1, 5)
                        .EndOfLine()
                        .Literal(3, {6, 7, 8})
                        .Run(2, 9)
                        .EndOfLine()
                        .Literal(5, {1, 2, 3, 4, 5})
                        .EndOfBitmap()
                        .bytes(),
           .picture = "bcdef"
                      "ghijj"
                      "bcdef"},
          {.name = "a delta along the row fills with index 0",
           .codes = RleWriter().Run(1, 1).Delta(2, 0).Run(2, 2).EndOfLine().Delta(4, 0).Run(1, 3).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "aaaad"
                      "baacc"},
          {.name = "a delta one row on",
           .codes = RleWriter().Run(1, 1).Delta(2, 1).Run(1, 2).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "aaaca"
                      "baaaa"},
          {.name = "a delta two rows on",
           .codes = RleWriter().Run(1, 1).Delta(1, 2).Run(3, 2).EndOfBitmap().bytes(),
           .picture = "aaccc"
                      "aaaaa"
                      "baaaa"},
          {.name = "a delta straight up",
           .codes = RleWriter().Run(3, 1).Delta(0, 1).Run(1, 2).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "aaaca"
                      "bbbaa"},
          {.name = "a delta far past the image",
           .codes = RleWriter().Run(2, 1).Delta(0, 200).bytes(),
           .picture = "aaaaa"
                      "aaaaa"
                      "bbaaa"},
          {.name = "a delta past the row's end drops what follows",
           .codes = RleWriter().Run(1, 1).Delta(200, 0).Run(3, 2).EndOfLine().Run(5, 3).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "ddddd"
                      "baaaa"},
          {.name = "a delta to past the end of a later row",
           .codes = RleWriter().Run(4, 1).Delta(9, 1).Run(3, 2).EndOfLine().Run(5, 3).EndOfBitmap().bytes(),
           .picture = "ddddd"
                      "aaaaa"
                      "bbbba"},
          {.name = "an empty delta",
           .codes = RleWriter().Run(2, 1).Delta(0, 0).Run(3, 2).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "aaaaa"
                      "bbccc"},
          {.name = "a run stops at the row's end",
           .codes = RleWriter().Run(255, 1).EndOfLine().Run(5, 2).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "ccccc"
                      "bbbbb"},
          {.name = "a full row does not end by itself",
           .codes = RleWriter().Run(5, 1).Run(5, 2).Run(5, 3).EndOfLine().Run(5, 4).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "eeeee"
                      "bbbbb"},
          {.name = "a delta ends a full row",
           .codes = RleWriter().Run(5, 1).Delta(0, 1).EndOfLine().Run(5, 3).EndOfBitmap().bytes(),
           .picture = "ddddd"
                      "aaaaa"
                      "bbbbb"},
          // Literals past the row's end are not stepped over: what does not fit is read as codes.
          {.name = "an overlong literal, even part",
           .codes = RleWriter().Run(3, 1).Literal(6, {2, 3, 0, 0, 5, 4}).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "eeeee"
                      "bbbcd"},
          {.name = "an overlong literal, odd part: to the next even byte",
           .codes = RleWriter().Run(4, 1).Literal(6, {2, 9, 0, 0, 3, 5}).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "fffaa"
                      "bbbbc"},
          {.name = "a literal in a full row is all codes",
           .codes = RleWriter().Run(5, 1).Literal(4, {0, 0, 2, 6}).EndOfBitmap().bytes(),
           .picture = "aaaaa"
                      "ggaaa"
                      "bbbbb"},
      });
}

TEST(Rle8, PartsScalesAndDirections) {
  const std::vector<uint8_t> codes = RleWriter()
                                         .Run(3, 1)
                                         .Literal(3, {2, 3, 4})
                                         .EndOfLine()
                                         .Delta(1, 1)
                                         .Literal(4, {5, 6, 7, 8})
                                         .EndOfLine()
                                         .Run(6, 9)
                                         .EndOfLine()
                                         .Run(2, 10)
                                         .EndOfBitmap()
                                         .bytes();
  // Stored rows from the bottom: bbbcde, aaaaaa, afghia, jjjjjj, kkaaaa.
  RunRleCases(BI_RLE8, {
                           {.name = "rows above are never decoded, rows below are stepped over",
                            .codes = codes,
                            .picture = "jjjjj"
                                       "afghi"
                                       "aaaaa",
                            .width = 6,
                            .height = 5,
                            .place = {0, 0, 5, 3, 0, 1, 5, 3}},
                           {.name = "columns of a row",
                            .codes = codes,
                            .picture = "..fgh"
                                       "..aaa"
                                       "..bbc",
                            .width = 6,
                            .height = 5,
                            .place = {2, 0, 3, 3, 1, 0, 3, 3}},
                           {.name = "the top rows",
                            .codes = codes,
                            .picture = "kaaaa"
                                       "jjjjj"
                                       "fghia",
                            .width = 6,
                            .height = 5,
                            .place = {0, 0, 5, 3, 1, 2, 5, 3}},
                           {.name = "mirrored left to right",
                            .codes = codes,
                            .picture = "....."
                                       "ihgfa"
                                       ".....",
                            .width = 6,
                            .height = 5,
                            .place = {5, 1, -5, 1, 0, 2, 5, 1}},
                           {.name = "upside down",
                            .codes = codes,
                            .picture = "bbbcd"
                                       "aaaaa"
                                       "afghi",
                            .width = 6,
                            .height = 5,
                            .place = {0, 3, 5, -3, 0, 0, 5, 3}},
                           {.name = "stored top row first",
                            .codes = codes,
                            .picture = "bbbcd"
                                       "aaaaa"
                                       "afghi",
                            .width = 6,
                            .height = 5,
                            .topDown = true,
                            .place = {0, 0, 5, 3, 0, 2, 5, 3}},
                           {.name = "doubled",
                            .codes = codes,
                            .picture = "ccdde"
                                       "ccdde"
                                       ".....",
                            .width = 6,
                            .height = 5,
                            .place = {-4, 0, 10, 2, 1, 0, 5, 1}},
                       });
}

// A row is as wide as biWidth says, whatever part of it is painted; one pixel and odd widths included.
TEST(Rle8, Widths) {
  for (int32_t width = 1; width <= 9; ++width) {
    TestDevice device({.bitsPerPixel = 8, .width = 10, .height = 2});
    RleWriter writer;
    writer.Run(width, 1).Run(3, 2).EndOfLine().Run(width + 100, 3).EndOfLine();
    const Dib dib(DibInfo(width, 2, {.bitCount = 8, .compression = BI_RLE8}, RleTable(BI_RLE8)), writer.bytes());
    EXPECT_EQ(1u, Stretch(device, dib, {0, 0, width, 2, 0, 0, width, 2}));
    const std::string rest(static_cast<std::size_t>(10 - width), '.');
    const std::string upper(static_cast<std::size_t>(width), 'd');
    const std::string lower(static_cast<std::size_t>(width), 'b');
    EXPECT_TRUE(BandIs(device, ImageInks(device), upper + rest + lower + rest)) << "width " << width;
  }
}

}  // namespace
}  // namespace qnv::test
