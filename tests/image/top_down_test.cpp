// Images stored top row first.
#include <gtest/gtest.h>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

TEST(TopDown, WholeImagesEqualTheirTwins) {
  RunImageCases(
      {
          {.name = "unscaled",
           .place = {1, 1, 4, 3, 0, 0, 4, 3},
           .picture = "............."
                      ".abcd........"
                      ".efgh........"
                      ".ijkl........"
                      "............."
                      "............."},
          {.name = "doubled",
           .place = {0, 0, 8, 6, 0, 0, 4, 3},
           .picture = "aabbccdd....."
                      "aabbccdd....."
                      "eeffgghh....."
                      "eeffgghh....."
                      "iijjkkll....."
                      "iijjkkll....."},
      },
      {4, 8, 16, 24, 32}, {false, true});
}

// Source rows are counted from the other end: row 0 is the bottom row of the picture here as well.
TEST(TopDown, PartsOfTheImage) {
  RunImageCases(
      {
          {.name = "two rows from 0",
           .place = {0, 0, 4, 2, 0, 0, 4, 2},
           .picture = "efgh........."
                      "ijkl........."
                      "............."
                      "............."
                      "............."
                      "............."},
          {.name = "two rows from 1",
           .place = {0, 0, 4, 2, 0, 1, 4, 2},
           .picture = "abcd........."
                      "efgh........."
                      "............."
                      "............."
                      "............."
                      "............."},
          {.name = "row 1",
           .place = {0, 0, 4, 1, 0, 1, 4, 1},
           .picture = "efgh........."
                      "............."
                      "............."
                      "............."
                      "............."
                      "............."},
      },
      {8, 24}, {false, true});
}

// The mending of an empty source height looks at the row counted from the other end.
TEST(TopDown, NoSourceHeight) {
  RunImageCases(
      {
          {.name = "srcY 2",
           .place = {0, 0, 4, 2, 0, 2, 4, 0},
           .picture = "abcd........."
                      "abcd........."
                      "............."
                      "............."
                      "............."
                      "............."},
          {.name = "srcY 0",
           .place = {0, 0, 4, 2, 0, 0, 4, 0},
           .picture = "ijkl........."
                      "ijkl........."
                      "............."
                      "............."
                      "............."
                      "............."},
          {.name = "srcY 3", .place = {0, 0, 4, 2, 0, 3, 4, 0}, .picture = kNoImage, .result = 0},
      },
      {24}, {true});
}

}  // namespace
}  // namespace qnv::test
