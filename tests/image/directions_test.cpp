// Images stored top row first, and images mirrored by negative extents.
#include <gtest/gtest.h>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

// ---- Images stored top row first.

TEST(TopDown, WholeImagesEqualTheirTwins) {
  RunImageCases(
      {
          {.name = "unscaled",
           .place = {1, 1, 4, 3, 0, 0, 4, 3},
           .picture = "............."
                      ".abcd........"
                      ".efgh........"
                      ".ijkl........"},
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
                      "ijkl........."},
          {.name = "two rows from 1",
           .place = {0, 0, 4, 2, 0, 1, 4, 2},
           .picture = "abcd........."
                      "efgh........."},
          {.name = "row 1", .place = {0, 0, 4, 1, 0, 1, 4, 1}, .picture = "efgh........."},
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
                      "abcd........."},
          {.name = "srcY 0",
           .place = {0, 0, 4, 2, 0, 0, 4, 0},
           .picture = "ijkl........."
                      "ijkl........."},
          {.name = "srcY 3", .place = {0, 0, 4, 2, 0, 3, 4, 0}, .picture = kNoImage, .result = 0},
      },
      {24}, {true});
}

// ---- Negative extents: a picture is mirrored where the signs of source and destination differ.

TEST(ImageMirroring, Cases) {
  RunImageCases(
      {
          {.name = "destination to the left",
           .place = {7, 1, -4, 3, 0, 0, 4, 3},
           .picture = "............."
                      "...dcba......"
                      "...hgfe......"
                      "...lkji......"},
          {.name = "source to the left",
           .place = {2, 1, 4, 3, 4, 0, -4, 3},
           .picture = "............."
                      "..dcba......."
                      "..hgfe......."
                      "..lkji......."},
          {.name = "both to the left",
           .place = {7, 1, -4, 3, 4, 0, -4, 3},
           .picture = "............."
                      "...abcd......"
                      "...efgh......"
                      "...ijkl......"},
          {.name = "destination upwards",
           .place = {2, 5, 4, -3, 0, 0, 4, 3},
           .picture = "............."
                      "............."
                      "..ijkl......."
                      "..efgh......."
                      "..abcd......."},
          {.name = "source upwards",
           .place = {2, 1, 4, 3, 0, 3, 4, -3},
           .picture = "............."
                      "..ijkl......."
                      "..efgh......."
                      "..abcd......."},
          {.name = "both upwards",
           .place = {2, 5, 4, -3, 0, 3, 4, -3},
           .picture = "............."
                      "............."
                      "..abcd......."
                      "..efgh......."
                      "..ijkl......."},
          {.name = "destination to the left and upwards",
           .place = {7, 5, -4, -3, 0, 0, 4, 3},
           .picture = "............."
                      "............."
                      "...lkji......"
                      "...hgfe......"
                      "...dcba......"},
          {.name = "doubled to the left, clipped",
           .place = {10, 0, -8, 6, 0, 0, 4, 3},
           .picture = "............."
                      "...dccbb....."
                      "...hggff....."
                      "...hggff....."
                      "...lkkjj.....",
           .clip = {3, 1, 8, 5}},
          {.name = "12 to 5 to the left",
           .width = 12,
           .image = "abcdefghijkl",
           .place = {9, 0, -5, 1, 0, 0, 12, 1},
           .picture = "....kifdb...."},
          {.name = "3 to 10 to the left, clipped",
           .width = 3,
           .image = "abc",
           .place = {11, 0, -10, 1, 0, 0, 3, 1},
           .picture = "..ccbbbba....",
           .clip = {2, 0, 9, 1}},
          {.name = "8 to 3 upwards",
           .width = 1,
           .image = "abcdefgh",
           .place = {0, 5, 1, -3, 0, 0, 1, 8},
           .picture = "............."
                      "............."
                      "g............"
                      "e............"
                      "b............"},
          {.name = "2 to 6 upwards, clipped",
           .width = 1,
           .image = "ab",
           .place = {0, 6, 1, -6, 0, 0, 1, 2},
           .picture = "............."
                      "b............"
                      "b............"
                      "a............"
                      "a............",
           .clip = {0, 1, 1, 5}},
      },
      {4, 8, 24}, {false, true});
}

// A mirrored row of pixels smaller than a byte starts and ends anywhere in its bytes.
TEST(ImageMirroring, PartsOfPackedRows) {
  const std::string image = "abbabaabbbabaaababbaabab";  // 24 pixels
  for (uint16_t depth : {uint16_t{1}, uint16_t{4}}) {
    const Dib dib = PictureDib(24, image, {.bitCount = depth});
    for (int32_t from = 0; from < 24; ++from) {
      for (int32_t count = 1; from + count <= 24; ++count) {
        TestDevice device({.width = 24, .height = 1});
        EXPECT_EQ(1u, Stretch(device, dib, {count, 0, -count, 1, from, 0, count, 1}));
        std::string line = image.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(count));
        line = std::string(line.rbegin(), line.rend());
        line += std::string(static_cast<std::size_t>(24 - count), '.');
        EXPECT_TRUE(BandIs(device, ImageInks(device, depth), line))
            << depth << " bits, " << count << " pixels from " << from;
      }
    }
  }
}

}  // namespace
}  // namespace qnv::test
