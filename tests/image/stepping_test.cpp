// Shrinking and enlarging: which source pixel each destination pixel takes.
#include <gtest/gtest.h>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

struct LineCase {
  const char* name;
  const char* source;
  ImagePlace place;
  const char* line;  // 13 pixels
  int32_t clipFrom = -1000;
  int32_t clipTo = 1000;
};

// Nothing is averaged: a source pixel that covers no destination pixel is passed over.
const LineCase kLines[] = {
    {"same size", "abcdefghijkl", {0, 0, 12, 1, 0, 0, 12, 1}, "abcdefghijkl."},
    {"12 to 6", "abcdefghijkl", {0, 0, 6, 1, 0, 0, 12, 1}, "acegik......."},
    {"12 to 4", "abcdefghijkl", {0, 0, 4, 1, 0, 0, 12, 1}, "behk........."},
    {"12 to 5", "abcdefghijkl", {0, 0, 5, 1, 0, 0, 12, 1}, "bdgik........"},
    {"12 to 1", "abcdefghijkl", {0, 0, 1, 1, 0, 0, 12, 1}, "g............"},
    {"12 to 7", "abcdefghijkl", {0, 0, 7, 1, 0, 0, 12, 1}, "aceghjl......"},
    {"12 to 11", "abcdefghijkl", {0, 0, 11, 1, 0, 0, 12, 1}, "abcdeghijkl.."},
    {"5 to 12", "abcde", {0, 0, 12, 1, 0, 0, 5, 1}, "aabbbccdddee."},
    {"7 to 12", "abcdefg", {0, 0, 12, 1, 0, 0, 7, 1}, "aabccddeefgg."},
    {"1 to 12", "a", {0, 0, 12, 1, 0, 0, 1, 1}, "aaaaaaaaaaaa."},
    {"2 to 5", "ab", {3, 0, 5, 1, 0, 0, 2, 1}, "...aaabb....."},
    {"1 to 3", "a", {1, 0, 3, 1, 0, 0, 1, 1}, ".aaa........."},
    {"3 to 10, cut within the first pixel", "abc", {0, 0, 10, 1, 0, 0, 3, 1}, "..abbbbcc....", 2, 9},
    {"12 to 6, cut", "abcdefghijkl", {0, 0, 6, 1, 0, 0, 12, 1}, ".ceg.........", 1, 4},
    {"12 to 5, cut", "abcdefghijkl", {0, 0, 5, 1, 0, 0, 12, 1}, ".dgi.........", 1, 4},
    {"12 to 8, cut by the band", "abcdefghijkl", {-3, 0, 8, 1, 0, 0, 12, 1}, "fgijl........"},
};

// Columns and rows step by the same rule, so each line is painted across and down.
TEST(ImageStepping, Columns) {
  for (const LineCase& c : kLines) {
    for (uint16_t depth : {uint16_t{4}, uint16_t{8}, uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
      for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
        TestDevice device({.bitsPerPixel = bandDepth, .width = 13, .height = 1});
        const Dib dib = PictureDib(static_cast<int32_t>(std::strlen(c.source)), c.source, {.bitCount = depth});
        EXPECT_EQ(1u, Stretch(device, dib, c.place, {.clip = {c.clipFrom, -10, c.clipTo, 10}})) << c.name;
        EXPECT_TRUE(BandIs(device, ImageInks(device), c.line)) << c.name << ", " << depth << " bits";
      }
    }
  }
}

struct RowCase {
  const char* name;
  const char* source;  // one pixel a row, top row first
  ImagePlace place;
  const char* column;  // 13 rows of one pixel
  BandRect clip = kEverywhere;
};

const RowCase kRows[] = {
    {"same size", "abcdefgh", {0, 0, 1, 8, 0, 0, 1, 8}, "abcdefgh....."},
    {"8 to 4: alternate rows, none averaged", "abcdefgh", {0, 0, 1, 4, 0, 0, 1, 8}, "aceg........."},
    {"8 to 3", "abcdefgh", {0, 0, 1, 3, 0, 0, 1, 8}, "bdg.........."},
    {"8 to 6", "abcdefgh", {0, 0, 1, 6, 0, 0, 1, 8}, "abdefh......."},
    {"4 to 2", "abcd", {0, 0, 1, 2, 0, 0, 1, 4}, "ac..........."},
    {"1 to 3", "a", {0, 1, 1, 3, 0, 0, 1, 1}, ".aaa........."},
    {"2 to 5", "ab", {0, 0, 1, 5, 0, 0, 1, 2}, "aaabb........"},
    {"4 to 6", "abcd", {0, 0, 1, 6, 0, 0, 1, 4}, "aabccd......."},
    {"2 to 6, cut within both rows", "ab", {0, 0, 1, 6, 0, 0, 1, 2}, ".aabb........", {0, 1, 1, 5}},
    {"8 to 6, cut", "abcdefgh", {0, 0, 1, 6, 0, 0, 1, 8}, "..def........", {0, 2, 1, 5}},
};

TEST(ImageStepping, Rows) {
  for (const RowCase& c : kRows) {
    for (bool topDown : {false, true}) {
      for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
        for (uint32_t rop : {SRCCOPY, 0x00CC0021u}) {  // the second one goes row by row through a transfer
          TestDevice device({.bitsPerPixel = bandDepth, .width = 1, .height = 13});
          const Dib dib = PictureDib(1, c.source, {.topDown = topDown});
          EXPECT_EQ(1u, Stretch(device, dib, c.place, {.rop = rop, .clip = c.clip})) << c.name;
          EXPECT_TRUE(BandIs(device, ImageInks(device), c.column))
              << c.name << (topDown ? ", top-down" : "") << ", rop " << std::hex << rop;
        }
      }
    }
  }
}

// A copied row that covers nothing lies in the place of the next one. Where none follows it stays there; a transfer
// does not paint it.
TEST(ImageStepping, LastRowThatCoversNothing) {
  struct Case {
    const char* name;
    const char* source;
    bool topDown;
    ImagePlace place;
    BandRect clip;
    const char* copied;  // 13 rows
    const char* transferred;
  };
  const Case cases[] = {
      {"upwards, the source past the image",
       "abcd",
       false,
       {0, 4, 1, -3, 0, -1, 1, 12},
       {0, 1, 1, 8},
       ".da..........",
       ".d..........."},
      {"one row of the clip, reached by no row",
       "abcde",
       false,
       {0, 5, 1, -5, 0, 1, 1, 6},
       {0, 3, 1, 4},
       "...a.........",
       "............."},
      {"top-down", "abcdefgh", true, {0, 3, 1, 1, 0, -2, 1, 3}, {0, 2, 1, 5}, "...h.........", "............."},
      {"upwards, shrunk",
       "abcdefghi",
       false,
       {0, 6, 1, -7, 0, 5, 1, 12},
       {0, 0, 1, 7},
       "ba...........",
       "b............"},
  };
  for (const Case& c : cases) {
    for (uint32_t rop : {SRCCOPY, 0x00CC0000u}) {
      TestDevice device({.width = 1, .height = 13});
      const Dib dib = PictureDib(1, c.source, {.topDown = c.topDown});
      EXPECT_EQ(1u, Stretch(device, dib, c.place, {.rop = rop, .clip = c.clip})) << c.name;
      EXPECT_TRUE(BandIs(device, ImageInks(device), rop == SRCCOPY ? c.copied : c.transferred))
          << c.name << ", rop " << std::hex << rop;
    }
  }
}

// A repeated row is repeated over the painted span only, of whatever length.
TEST(ImageStepping, RepeatedRowsKeepToTheSpan) {
  for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
    for (int32_t width = 1; width <= 12; ++width) {
      for (int32_t left = 0; left + width <= 13; left += 3) {
        const std::string image = std::string("abcdefghijkl").substr(0, static_cast<std::size_t>(width));
        TestDevice device({.bitsPerPixel = bandDepth, .width = 13, .height = 4});
        const Dib dib = PictureDib(width, image, {});
        EXPECT_EQ(1u, Stretch(device, dib, {left, 1, width, 3, 0, 0, width, 1}));
        const std::string line = std::string(static_cast<std::size_t>(left), '.') + image +
                                 std::string(static_cast<std::size_t>(13 - left - width), '.');
        EXPECT_TRUE(BandIs(device, ImageInks(device), std::string(13, '.') + line + line + line))
            << bandDepth << " bits, " << width << " columns at " << left;
      }
    }
  }
}

// Large factors and long images keep their 16.16 arithmetic.
TEST(ImageStepping, LargeScales) {
  struct Case {
    const char* name;
    int32_t width;
    ImagePlace place;
    const char* line;
  };
  const Case cases[] = {
      {"2 to 20000, seen in the middle", 2, {-9994, 0, 20000, 1, 0, 0, 2, 1}, "aaaaaabbbbbbb"},
      {"30000 to 10", 30000, {0, 0, 10, 1, 0, 0, 30000, 1}, "bbbbbbbbbb..."},
      {"the last columns of 30000", 30000, {0, 0, 3, 1, 29997, 0, 3, 1}, "abc.........."},
  };
  for (const Case& c : cases) {
    std::string image;
    if (c.width == 2) {
      image = "ab";
    } else {
      image.assign(static_cast<std::size_t>(c.width), 'b');
      image.replace(image.size() - 3, 3, "abc");
    }
    TestDevice device({.width = 13, .height = 1});
    const Dib dib = PictureDib(c.width, image, {.bitCount = 8});
    EXPECT_EQ(1u, Stretch(device, dib, c.place)) << c.name;
    EXPECT_TRUE(BandIs(device, ImageInks(device), c.line)) << c.name;
  }
}

}  // namespace
}  // namespace qnv::test
