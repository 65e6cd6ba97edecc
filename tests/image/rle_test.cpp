// Run-length images, BI_RLE8 and BI_RLE4. Both have the same codes, ends and jumps; a byte of BI_RLE4 holds two pixels,
// high nibble first. What holds for both is written once, in pixels, and encoded either way.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "image/dib_builder.h"

namespace qnv::test {
namespace {

constexpr uint32_t kBothCompressions[] = {BI_RLE8, BI_RLE4};

// Run-length codes as bytes. Runs of one color and literals of pixels take the compression's own form.
class Rle {
 public:
  explicit Rle(uint32_t compression) : nibbles_(compression == BI_RLE4) {}
  Rle& Run(int count, int index) { return RunOf(count, nibbles_ ? index << 4 | index : index); }
  Rle& RunOf(int count, int byte) { return Append(writer_.Run(count, byte)); }
  Rle& EndOfLine() { return Append(writer_.EndOfLine()); }
  Rle& EndOfBitmap() { return Append(writer_.EndOfBitmap()); }
  Rle& Delta(int dx, int dy) { return Append(writer_.Delta(dx, dy)); }
  Rle& Literal(const std::vector<int>& indices) {
    std::vector<int> bytes = indices;
    if (nibbles_) {
      bytes.assign((indices.size() + 1) / 2, 0);
      for (std::size_t i = 0; i < indices.size(); ++i) bytes[i / 2] |= indices[i] << (i % 2 == 0 ? 4 : 0);
    }
    return LiteralOf(static_cast<int>(indices.size()), bytes);
  }
  Rle& LiteralOf(int count, const std::vector<int>& bytes) { return Append(writer_.Literal(count, bytes)); }
  const std::vector<uint8_t>& bytes() const { return writer_.bytes(); }

 private:
  Rle& Append(const RleWriter&) { return *this; }

  bool nibbles_;
  RleWriter writer_;
};

struct RleCase {
  const char* name = "";
  Rle codes;
  const char* picture = "";  // top row first; 'a' is index 0
  ImagePlace place{0, 0, 5, 3, 0, 0, 5, 3};
  bool topDown = false;
};

Dib RleDib(uint32_t compression, int32_t width, int32_t height, const std::vector<uint8_t>& codes,
           bool topDown = false) {
  const uint16_t bitCount = compression == BI_RLE8 ? 8 : 4;
  return Dib(DibInfo(width, height, {.bitCount = bitCount, .compression = compression, .topDown = topDown},
                     FullTable(bitCount)),
             codes);
}

// Images of `width` x `height` on a band of 5 x 3. Each stream ends where its memory ends. The second operation takes
// the same rows through a transfer.
void RunRleCases(uint32_t compression, const std::vector<RleCase>& cases, int32_t width = 5, int32_t height = 3) {
  for (const RleCase& c : cases) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      for (uint32_t rop : {SRCCOPY, 0x00CC0021u}) {
        SCOPED_TRACE(std::string(c.name) + (compression == BI_RLE8 ? ", BI_RLE8, " : ", BI_RLE4, ") +
                     std::to_string(bandDepth) + "-bit band, rop " + std::to_string(rop));
        TestDevice device({.bitsPerPixel = bandDepth, .width = 5, .height = 3});
        const Dib dib = RleDib(compression, width, height, c.codes.bytes(), c.topDown);
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
    const Rle start(compression);
    RunRleCases(
        compression,
        {
            {"runs, rows from the bottom",
             Rle(start).Run(5, 1).EndOfLine().Run(2, 2).Run(3, 3).EndOfLine().Run(5, 4).EndOfBitmap(),
             "eeeee ccddd bbbbb"},
            {"the end of a line fills the rest with index 0",
             Rle(start).Run(2, 1).EndOfLine().EndOfLine().Run(4, 2).EndOfLine(), "cccca aaaaa bbaaa"},
            {"the end of the bitmap fills everything after it",
             Rle(start).Run(5, 1).EndOfLine().Run(1, 2).EndOfBitmap(), "aaaaa caaaa bbbbb"},
            {"the end of the bitmap at once", Rle(start).EndOfBitmap(), "aaaaa aaaaa aaaaa"},
            {"literals, padded to an even number of bytes",
             Rle(start)
                 .Literal({1, 2, 3, 4})
                 .Run(1, 5)
                 .EndOfLine()
                 .Literal({6, 7, 8})
                 .Run(2, 9)
                 .EndOfLine()
                 .Literal({1, 2, 3, 4, 5})
                 .EndOfBitmap(),
             "bcdef ghijj bcdef"},
            {"a delta along the row fills with index 0",
             Rle(start).Run(1, 1).Delta(2, 0).Run(2, 2).EndOfLine().Delta(4, 0).Run(1, 3).EndOfBitmap(),
             "aaaaa aaaad baacc"},
            {"a delta one row on", Rle(start).Run(1, 1).Delta(2, 1).Run(1, 2).EndOfBitmap(), "aaaaa aaaca baaaa"},
            {"a delta two rows on", Rle(start).Run(1, 1).Delta(1, 2).Run(3, 2).EndOfBitmap(), "aaccc aaaaa baaaa"},
            {"a delta straight up", Rle(start).Run(3, 1).Delta(0, 1).Run(1, 2).EndOfBitmap(), "aaaaa aaaca bbbaa"},
            {"a delta along, then up", Rle(start).Run(1, 1).Delta(2, 0).Run(1, 2).Delta(0, 2).Run(1, 3).EndOfBitmap(),
             "aaaad aaaaa baaca"},
            {"a delta far past the image", Rle(start).Run(2, 1).Delta(0, 200), "aaaaa aaaaa bbaaa"},
            {"a delta past the row's end drops what follows",
             Rle(start).Run(1, 1).Delta(200, 0).Run(3, 2).EndOfLine().Run(5, 3).EndOfBitmap(), "aaaaa ddddd baaaa"},
            {"a delta to past the end of a later row",
             Rle(start).Run(4, 1).Delta(9, 1).Run(3, 2).EndOfLine().Run(5, 3).EndOfBitmap(), "ddddd aaaaa bbbba"},
            {"an empty delta", Rle(start).Run(2, 1).Delta(0, 0).Run(3, 2).EndOfBitmap(), "aaaaa aaaaa bbccc"},
            {"a run stops at the row's end", Rle(start).Run(255, 1).EndOfLine().Run(5, 2).EndOfBitmap(),
             "aaaaa ccccc bbbbb"},
            {"a full row does not end by itself",
             Rle(start).Run(5, 1).Run(5, 2).Run(5, 3).EndOfLine().Run(5, 4).EndOfBitmap(), "aaaaa eeeee bbbbb"},
            {"a delta ends a full row", Rle(start).Run(5, 1).Delta(0, 1).EndOfLine().Run(5, 3).EndOfBitmap(),
             "ddddd aaaaa bbbbb"},
        });
  }
}

TEST(Rle, CodesOfBytes) {
  const Rle start(BI_RLE8);
  RunRleCases(BI_RLE8, {
                           {"indices above 15", Rle(start).Run(2, 255).Run(3, 16).EndOfLine().EndOfBitmap(),
                            "aaaaa aaaaa ZZZZZ"},
                           // Literals past the row's end are not stepped over: what does not fit is read as codes.
                           {"an overlong literal, even part",
                            Rle(start).Run(3, 1).Literal({2, 3, 0, 0, 5, 4}).EndOfBitmap(), "aaaaa eeeee bbbcd"},
                           {"an overlong literal, odd part: to the next even byte",
                            Rle(start).Run(4, 1).Literal({2, 9, 0, 0, 3, 5}).EndOfBitmap(), "aaaaa fffaa bbbbc"},
                           {"a literal in a full row is all codes",
                            Rle(start).Run(5, 1).Literal({0, 0, 2, 6}).EndOfBitmap(), "aaaaa ggaaa bbbbb"},
                       });
}

TEST(Rle, CodesOfNibbles) {
  const Rle start(BI_RLE4);
  RunRleCases(
      BI_RLE4,
      {
          {"a run alternates two colors",
           Rle(start).RunOf(5, 0x12).EndOfLine().RunOf(4, 0x33).RunOf(1, 0x45).EndOfLine().RunOf(5, 0xFE).EndOfBitmap(),
           "popop dddde bcbcb"},
          {"each run starts with its high nibble",
           Rle(start)
               .RunOf(1, 0x12)
               .RunOf(1, 0x34)
               .RunOf(3, 0x56)
               .EndOfLine()
               .RunOf(2, 0x12)
               .RunOf(3, 0x34)
               .EndOfBitmap(),
           "aaaaa bcded bdfgf"},
          {"a run of two colors stops at the row's end",
           Rle(start).RunOf(200, 0x12).EndOfLine().RunOf(1, 0x30).EndOfBitmap(), "aaaaa daaaa bcbcb"},
          {"the end of the bitmap within a run of two colors", Rle(start).RunOf(3, 0x12).EndOfBitmap(),
           "aaaaa aaaaa bcbaa"},
          {"literals of one to four bytes, the spare nibble unused",
           Rle(start)
               .LiteralOf(5, {0x12, 0x34, 0x5F})
               .EndOfLine()
               .LiteralOf(4, {0x67, 0x89})
               .RunOf(1, 0x10)
               .EndOfLine()
               .LiteralOf(3, {0xAB, 0xCF})
               .RunOf(2, 0x23)
               .EndOfBitmap(),
           "klmcd ghijb bcdef"},
          // Unlike the 8-bit form, all bytes of a literal are stepped over, whatever fits.
          {"an overlong literal is stepped over whole",
           Rle(start).Run(3, 1).LiteralOf(9, {0x23, 0x00, 0x00, 0x00, 0x00}).EndOfLine().Run(5, 4).EndOfBitmap(),
           "aaaaa eeeee bbbcd"},
          {"a literal in a full row is stepped over whole",
           Rle(start).Run(5, 1).LiteralOf(4, {0x00, 0x00}).EndOfLine().Run(5, 4).EndOfBitmap(), "aaaaa eeeee bbbbb"},
      });
}

TEST(Rle, PartsScalesAndDirections) {
  for (uint32_t compression : kBothCompressions) {
    // Stored rows from the bottom: bbbcde, aaaaaa, afghia, jjjjjj, kkaaaa.
    const Rle codes = Rle(compression)
                          .Run(3, 1)
                          .Literal({2, 3, 4})
                          .EndOfLine()
                          .Delta(1, 1)
                          .Literal({5, 6, 7, 8})
                          .EndOfLine()
                          .Run(6, 9)
                          .EndOfLine()
                          .Run(2, 10)
                          .EndOfBitmap();
    RunRleCases(compression,
                {
                    {"rows above are never decoded, rows below are stepped over",
                     codes,
                     "jjjjj afghi aaaaa",
                     {0, 0, 5, 3, 0, 1, 5, 3}},
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
  const Rle codes = Rle(BI_RLE4)
                        .RunOf(3, 0x12)
                        .Literal({3, 4, 5})
                        .EndOfLine()
                        .Delta(1, 1)
                        .Literal({5, 6, 7, 8, 9})
                        .EndOfLine()
                        .RunOf(60, 0xAB)
                        .LiteralOf(7, {0x00, 0x00, 0x00, 0x00})
                        .EndOfLine()
                        .RunOf(2, 0xCD)
                        .EndOfBitmap();
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
      const Rle codes = Rle(compression).Run(width, 1).Run(3, 2).EndOfLine().Run(width + 100, 3).EndOfLine();
      EXPECT_EQ(1u, Stretch(device, RleDib(compression, width, 2, codes.bytes()), {0, 0, width, 2, 0, 0, width, 2}));
      const std::string rest(static_cast<std::size_t>(10 - width), '.');
      const std::string upper(static_cast<std::size_t>(width), 'd');
      const std::string lower(static_cast<std::size_t>(width), 'b');
      EXPECT_TRUE(BandIs(device, ImageInks(device), upper + rest + lower + rest)) << "width " << width;
    }
  }
}

// Every literal is followed by what makes its bytes even: n bytes in one form, (n + 1) / 2 in the other.
TEST(Rle, LiteralLengths) {
  for (uint32_t compression : kBothCompressions) {
    for (int count = 3; count <= 12; ++count) {
      std::vector<int> literal;
      std::string line;
      for (int i = 0; i < count; ++i) {
        literal.push_back(1 + i % 2);
        line += i % 2 == 0 ? 'b' : 'c';
      }
      line += 'd';
      line.resize(14, 'a');
      TestDevice device({.bitsPerPixel = 24, .width = 14, .height = 1});
      const Rle codes = Rle(compression).Literal(literal).Run(1, 3).EndOfBitmap();
      EXPECT_EQ(1u, Stretch(device, RleDib(compression, 14, 1, codes.bytes()), {0, 0, 14, 1, 0, 0, 14, 1}));
      EXPECT_TRUE(BandIs(device, ImageInks(device), line)) << "compression " << compression << ", literal of " << count;
    }
  }
}

}  // namespace
}  // namespace qnv::test
