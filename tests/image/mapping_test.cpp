// Which source pixels belong to the destination: source rectangle, clip, band and origin.
#include <gtest/gtest.h>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

TEST(ImageMapping, SourceRectangles) {
  RunImageCases(
      {
          {.name = "the whole image",
           .place = {1, 1, 4, 3, 0, 0, 4, 3},
           .picture = "............."
                      ".abcd........"
                      ".efgh........"
                      ".ijkl........"},
          {.name = "two columns of two stored rows",
           .place = {2, 1, 2, 2, 1, 1, 2, 2},
           .picture = "............."
                      "..bc........."
                      "..fg........."},
          {.name = "stored row 0 is the bottom row", .place = {0, 0, 4, 1, 0, 0, 4, 1}, .picture = "ijkl........."},
          {.name = "one pixel",
           .place = {12, 5, 1, 1, 2, 1, 1, 1},
           .picture = "............."
                      "............."
                      "............."
                      "............."
                      "............."
                      "............g"},
          {.name = "columns right of the image are not painted",
           .place = {0, 0, 4, 3, 2, 0, 4, 3},
           .picture = "cd..........."
                      "gh..........."
                      "kl..........."},
          {.name = "columns left of the image take its first column",
           .place = {0, 0, 4, 3, -2, 0, 4, 3},
           .picture = "aaab........."
                      "eeef........."
                      "iiij........."},
          {.name = "rows above the image take its first row",
           .place = {0, 0, 4, 3, 0, 1, 4, 3},
           .picture = "abcd........."
                      "abcd........."
                      "efgh........."},
          {.name = "rows below the image are not painted",
           .place = {0, 0, 4, 3, 0, -1, 4, 3},
           .picture = "efgh........."
                      "ijkl........."},
          {.name = "a source rectangle twice the image",
           .place = {0, 0, 8, 6, 0, 0, 8, 6},
           .picture = "abcd........."
                      "abcd........."
                      "abcd........."
                      "abcd........."
                      "efgh........."
                      "ijkl........."},
          {.name = "doubled, half a source pixel to the left of the image",
           .place = {0, 0, 8, 6, -1, 0, 4, 3},
           .picture = "aaaabbcc....."
                      "aaaabbcc....."
                      "eeeeffgg....."
                      "eeeeffgg....."
                      "iiiijjkk....."
                      "iiiijjkk....."},
          {.name = "no source height: the row before srcY fills the height",
           .place = {0, 0, 4, 3, 0, 2, 4, 0},
           .picture = "efgh........."
                      "efgh........."
                      "efgh........."},
          {.name = "no source width: the column before srcX fills the width",
           .place = {0, 0, 4, 3, 3, 0, 0, 3},
           .picture = "cccc........."
                      "gggg........."
                      "kkkk........."},
      },
      {8, 24}, {false});
}

TEST(ImageMapping, ClipBandAndOrigin) {
  RunImageCases(
      {
          {.name = "clip inside",
           .place = {1, 1, 4, 3, 0, 0, 4, 3},
           .picture = "............."
                      "............."
                      "..fg........."
                      "..jk.........",
           .clip = {2, 2, 4, 4}},
          {.name = "clip starts within enlarged pixels",
           .place = {0, 0, 8, 6, 0, 0, 4, 3},
           .picture = "............."
                      "...bcc......."
                      "...fgg......."
                      "...fgg.......",
           .clip = {3, 1, 6, 4}},
          {.name = "band elsewhere on the page",
           .place = {98, 49, 4, 3, 0, 0, 4, 3},
           .picture = "gh..........."
                      "kl...........",
           .bandLeft = 100,
           .bandTop = 50},
          {.name = "band at negative coordinates",
           .place = {-6, -4, 4, 3, 0, 0, 4, 3},
           .picture = "fgh.........."
                      "jkl..........",
           .bandLeft = -5,
           .bandTop = -3},
          {.name = "the origin moves image and clip",
           .place = {1, 1, 4, 3, 0, 0, 4, 3},
           .picture = "............."
                      "............."
                      "............."
                      "......bcd...."
                      "......fgh....",
           .clip = {2, 0, 9, 3},
           .originX = 4,
           .originY = 2},
          {.name = "the band's right and bottom edges",
           .place = {11, 4, 4, 3, 0, 0, 4, 3},
           .picture = "............."
                      "............."
                      "............."
                      "............."
                      "...........ab"
                      "...........ef"},
          {.name = "one clipped pixel",
           .place = {1, 1, 8, 3, 0, 0, 4, 3},
           .picture = "............."
                      "............."
                      "......g......",
           .clip = {6, 2, 7, 3}},
      },
      {8, 24}, {false, true});
}

// A picture painted in bands of any height is the picture painted at once, when its scale is a whole number.
TEST(ImageMapping, AcrossBands) {
  const Dib dib = PictureDib(4, kFourByThree, {});
  const ImagePlace place{1, 1, 12, 9, 0, 0, 4, 3};
  TestDevice whole({.width = 15, .height = 12});
  ASSERT_EQ(1u, Stretch(whole, dib, place));
  const PlaneImage page = BandImage(whole);
  for (uint32_t bandRows : {1u, 2u, 5u}) {
    for (uint32_t top = 0; top < 12; top += bandRows) {
      TestDevice band({.width = 15, .height = bandRows, .top = static_cast<int32_t>(top)});
      Stretch(band, dib, place);
      PlaneImage expected = UntouchedBand(band);
      for (uint32_t row = 0; row < bandRows && top + row < 12; ++row) {
        for (uint32_t column = 0; column < 15; ++column) expected.SetColor(column, row, page.Color(column, top + row));
      }
      EXPECT_TRUE(SameImage(expected, BandImage(band))) << "band of " << bandRows << " rows at " << top;
    }
  }
}

// biWidth sets the row stride; padding is never shown.
TEST(ImageMapping, RowStrides) {
  for (uint16_t depth : {uint16_t{1}, uint16_t{4}, uint16_t{8}, uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
    for (int32_t width = 1; width <= 12; ++width) {
      std::string image;
      for (int32_t i = 0; i < 3 * width; ++i) image += static_cast<char>('a' + i % 7);
      TestDevice device({.width = 12, .height = 3});
      const Dib dib = PictureDib(width, image, {.bitCount = depth});
      EXPECT_EQ(1u, Stretch(device, dib, {0, 0, width, 3, 0, 0, width, 3}));
      std::string picture;
      for (int32_t row = 0; row < 3; ++row) {
        picture += image.substr(static_cast<std::size_t>(row * width), static_cast<std::size_t>(width));
        picture += std::string(static_cast<std::size_t>(12 - width), '.');
      }
      EXPECT_TRUE(BandIs(device, ImageInks(device, depth), picture)) << depth << " bits, width " << width;
    }
  }
}

}  // namespace
}  // namespace qnv::test
