// Shrinking and enlarging: which source pixel each destination pixel takes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

// Nothing is averaged: a source pixel that covers no destination pixel is passed over.
TEST(ImageStepping, Columns) {
  RunImageCases({
      {"same size", {12, 1}, {0, 0, 12, 1, 0, 0, 12, 1}, "abcdefghijkl", "0"},
      {"12 to 6", {12, 1}, {0, 0, 6, 1, 0, 0, 12, 1}, "acegik", "0"},
      {"12 to 4", {12, 1}, {0, 0, 4, 1, 0, 0, 12, 1}, "behk", "0"},
      {"12 to 5", {12, 1}, {0, 0, 5, 1, 0, 0, 12, 1}, "bdgik", "0"},
      {"12 to 1", {12, 1}, {0, 0, 1, 1, 0, 0, 12, 1}, "g", "0"},
      {"12 to 7", {12, 1}, {0, 0, 7, 1, 0, 0, 12, 1}, "aceghjl", "0"},
      {"12 to 11", {12, 1}, {0, 0, 11, 1, 0, 0, 12, 1}, "abcdeghijkl", "0"},
      {"5 to 12", {5, 1}, {0, 0, 12, 1, 0, 0, 5, 1}, "aabbbccdddee", "0"},
      {"7 to 12", {7, 1}, {0, 0, 12, 1, 0, 0, 7, 1}, "aabccddeefgg", "0"},
      {"1 to 12", {1, 1}, {0, 0, 12, 1, 0, 0, 1, 1}, "aaaaaaaaaaaa", "0"},
      {"2 to 5", {2, 1}, {3, 0, 5, 1, 0, 0, 2, 1}, "...aaabb", "0"},
      {"1 to 3", {1, 1}, {1, 0, 3, 1, 0, 0, 1, 1}, ".aaa", "0"},
      {"3 to 10, cut within the first pixel", {3, 1}, {0, 0, 10, 1, 0, 0, 3, 1}, "..abbbbcc", "0", {2, 0, 9, 1}},
      {"12 to 6, cut", {12, 1}, {0, 0, 6, 1, 0, 0, 12, 1}, ".ceg", "0", {1, 0, 4, 1}},
      {"12 to 5, cut", {12, 1}, {0, 0, 5, 1, 0, 0, 12, 1}, ".dgi", "0", {1, 0, 4, 1}},
      {"12 to 8, cut by the band", {12, 1}, {-3, 0, 8, 1, 0, 0, 12, 1}, "fgijl", "0"},
  });
}

TEST(ImageStepping, Rows) {
  RunImageCases({
      {"same size", {1, 8}, {0, 0, 1, 8, 0, 0, 1, 8}, "a", "01234567"},
      {"8 to 4: alternate rows, none averaged", {1, 8}, {0, 0, 1, 4, 0, 0, 1, 8}, "a", "0246"},
      {"8 to 3", {1, 8}, {0, 0, 1, 3, 0, 0, 1, 8}, "a", "136"},
      {"8 to 6", {1, 8}, {0, 0, 1, 6, 0, 0, 1, 8}, "a", "013457"},
      {"4 to 2", {1, 4}, {0, 0, 1, 2, 0, 0, 1, 4}, "a", "02"},
      {"1 to 3", {1, 1}, {0, 1, 1, 3, 0, 0, 1, 1}, "a", ".000"},
      {"2 to 5", {1, 2}, {0, 0, 1, 5, 0, 0, 1, 2}, "a", "00011"},
      {"4 to 6", {1, 4}, {0, 0, 1, 6, 0, 0, 1, 4}, "a", "001223"},
      {"2 to 6, cut within both rows", {1, 2}, {0, 0, 1, 6, 0, 0, 1, 2}, "a", ".0011", {0, 1, 1, 5}},
      {"8 to 6, cut", {1, 8}, {0, 0, 1, 6, 0, 0, 1, 8}, "a", "..345", {0, 2, 1, 5}},
  });
}

// A copied row that covers nothing lies in the place of the next one. Where none follows it stays there; a transfer
// does not paint it.
TEST(ImageStepping, LastRowThatCoversNothing) {
  struct Case {
    bool topDown;
    ImageCase copied;
    const char* transferredRows;
  };
  const Case cases[] = {
      {false,
       {"upwards, the source past the image", {1, 4}, {0, 4, 1, -3, 0, -1, 1, 12}, "a", ".30", {0, 1, 1, 8}},
       ".3"},
      {false,
       {"one row of the clip, reached by none", {1, 5}, {0, 5, 1, -5, 0, 1, 1, 6}, "a", "...0", {0, 3, 1, 4}},
       "."},
      {true, {"stored top row first", {1, 8}, {0, 3, 1, 1, 0, -2, 1, 3}, "a", "...7", {0, 2, 1, 5}}, "."},
      {false, {"upwards, shrunk", {1, 9}, {0, 6, 1, -7, 0, 5, 1, 12}, "a", "10", {0, 0, 1, 7}}, "1"},
  };
  for (const Case& c : cases) {
    RunImageCases({c.copied}, {.topDown = {c.topDown}, .rops = {SRCCOPY}});
    ImageCase transferred = c.copied;
    transferred.rows = c.transferredRows;
    RunImageCases({transferred}, {.topDown = {c.topDown}, .rops = {kCopyByTransfer}});
  }
}

// A repeated row is repeated over the painted span only, of whatever length.
TEST(ImageStepping, RepeatedRowsKeepToTheSpan) {
  std::vector<ImageCase> cases;
  for (int32_t width = 1; width <= 12; ++width) {
    for (int32_t left = 0; left + width <= kImageColumns; left += 3) {
      cases.push_back(
          {"one row, three times", {width, 1}, {left, 1, width, 3, 0, 0, width, 1}, ColumnsFrom(left, width), ".000"});
    }
  }
  RunImageCases(cases, {.topDown = {false}, .depths = {24}});
}

// Large factors and long images keep their 16.16 arithmetic.
TEST(ImageStepping, LargeScales) {
  struct Case {
    const char* name;
    std::string image;
    ImagePlace place;
    const char* line;
  };
  const std::string manyColumns = std::string(29997, 'b').append("abc");
  const Case cases[] = {
      {"2 to 20000, seen in the middle", "ab", {-9994, 0, 20000, 1, 0, 0, 2, 1}, "aaaaaabbbbbbb"},
      {"30000 to 10", manyColumns, {0, 0, 10, 1, 0, 0, 30000, 1}, "bbbbbbbbbb..."},
      {"the last columns of 30000", manyColumns, {0, 0, 3, 1, 29997, 0, 3, 1}, "abc.........."},
  };
  for (const Case& c : cases) {
    TestDevice device({.width = 13, .height = 1});
    const Dib dib = PictureDib(static_cast<int32_t>(c.image.size()), c.image, {.bitCount = 8});
    EXPECT_EQ(1u, Stretch(device, dib, c.place)) << c.name;
    EXPECT_TRUE(BandIs(device, ImageInks(device), c.line)) << c.name;
  }
}

}  // namespace
}  // namespace qnv::test
