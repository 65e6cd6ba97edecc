// Which part of an image lies where: source rectangle, clip, band, origin, row order, mirroring; and SetDIBitsToDevice,
// an unscaled copy of stored rows.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

// Images stored top row first equal their twins: stored rows are counted from the bottom of the picture there as well.
TEST(ImagePlacement, SourceRectangles) {
  RunImageCases({
      {"the whole image", {4, 3}, {1, 1, 4, 3, 0, 0, 4, 3}, ".abcd", ".012"},
      {"doubled", {4, 3}, {0, 0, 8, 6, 0, 0, 4, 3}, "aabbccdd", "001122"},
      {"two columns of two stored rows", {4, 3}, {2, 1, 2, 2, 1, 1, 2, 2}, "..bc", ".01"},
      {"stored row 0 is the bottom row", {4, 3}, {0, 0, 4, 1, 0, 0, 4, 1}, "abcd", "2"},
      {"stored row 1", {4, 3}, {0, 0, 4, 1, 0, 1, 4, 1}, "abcd", "1"},
      {"two stored rows from 0", {4, 3}, {0, 0, 4, 2, 0, 0, 4, 2}, "abcd", "12"},
      {"two stored rows from 1", {4, 3}, {0, 0, 4, 2, 0, 1, 4, 2}, "abcd", "01"},
      {"one pixel", {4, 3}, {12, 5, 1, 1, 2, 1, 1, 1}, "............c", ".....1"},
  });
}

TEST(ImagePlacement, SourceRectanglesBeyondTheImage) {
  RunImageCases(
      {
          {"columns right of the image are not painted", {4, 3}, {0, 0, 4, 3, 2, 0, 4, 3}, "cd", "012"},
          {"columns left of the image take its first column", {4, 3}, {0, 0, 4, 3, -2, 0, 4, 3}, "aaab", "012"},
          {"rows above the image take its first row", {4, 3}, {0, 0, 4, 3, 0, 1, 4, 3}, "abcd", "001"},
          {"rows below the image are not painted", {4, 3}, {0, 0, 4, 3, 0, -1, 4, 3}, "abcd", "12"},
          {"a source rectangle twice the image", {4, 3}, {0, 0, 8, 6, 0, 0, 8, 6}, "abcd", "000012"},
          {"doubled, half a source pixel to the left", {4, 3}, {0, 0, 8, 6, -1, 0, 4, 3}, "aaaabbcc", "001122"},
          {"no source height: the row before srcY fills the height", {4, 3}, {0, 0, 4, 3, 0, 2, 4, 0}, "abcd", "111"},
          {"no source width: the column before srcX fills the width", {4, 3}, {0, 0, 4, 3, 3, 0, 0, 3}, "cccc", "012"},
      },
      {.topDown = {false}, .rops = {SRCCOPY}});
}

// Top row first, the row before srcY is counted from the other end.
TEST(ImagePlacement, NoSourceHeightTopDown) {
  RunImageCases(
      {
          {"srcY 2", {4, 3}, {0, 0, 4, 2, 0, 2, 4, 0}, "abcd", "00"},
          {"srcY 0", {4, 3}, {0, 0, 4, 2, 0, 0, 4, 0}, "abcd", "22"},
          {"srcY 3", {4, 3}, {0, 0, 4, 2, 0, 3, 4, 0}, "", ""},
      },
      {.topDown = {true}});
}

TEST(ImagePlacement, ClipBandAndOrigin) {
  RunImageCases({
      {"clip inside", {4, 3}, {1, 1, 4, 3, 0, 0, 4, 3}, "..bc", "..12", {2, 2, 4, 4}},
      {"clip starts within enlarged pixels", {4, 3}, {0, 0, 8, 6, 0, 0, 4, 3}, "...bcc", ".011", {3, 1, 6, 4}},
      {"one clipped pixel", {4, 3}, {1, 1, 8, 3, 0, 0, 4, 3}, "......c", "..1", {6, 2, 7, 3}},
      {"band elsewhere on the page", {4, 3}, {98, 49, 4, 3, 0, 0, 4, 3}, "cd", "12", kEverywhere, {100, 50}},
      {"band at negative coordinates", {4, 3}, {-6, -4, 4, 3, 0, 0, 4, 3}, "bcd", "12", kEverywhere, {-5, -3}},
      {"the band's right and bottom edges", {4, 3}, {11, 7, 4, 3, 0, 0, 4, 3}, "...........ab", ".......01"},
      {"the origin moves image and clip",
       {4, 3},
       {1, 1, 4, 3, 0, 0, 4, 3},
       "......bcd",
       "...01",
       {2, 0, 9, 3},
       {0, 0},
       {4, 2}},
  });
}

// A picture is mirrored where the signs of source and destination extents differ.
TEST(ImagePlacement, Mirroring) {
  RunImageCases({
      {"destination to the left", {4, 3}, {7, 1, -4, 3, 0, 0, 4, 3}, "...dcba", ".012"},
      {"source to the left", {4, 3}, {2, 1, 4, 3, 4, 0, -4, 3}, "..dcba", ".012"},
      {"both to the left", {4, 3}, {7, 1, -4, 3, 4, 0, -4, 3}, "...abcd", ".012"},
      {"destination upwards", {4, 3}, {2, 5, 4, -3, 0, 0, 4, 3}, "..abcd", "..210"},
      {"source upwards", {4, 3}, {2, 1, 4, 3, 0, 3, 4, -3}, "..abcd", ".210"},
      {"both upwards", {4, 3}, {2, 5, 4, -3, 0, 3, 4, -3}, "..abcd", "..012"},
      {"destination to the left and upwards", {4, 3}, {7, 5, -4, -3, 0, 0, 4, 3}, "...dcba", "..210"},
      {"doubled to the left, clipped", {4, 3}, {10, 0, -8, 6, 0, 0, 4, 3}, "...dccbb", ".0112", {3, 1, 8, 5}},
      {"12 to 5 to the left", {12, 1}, {9, 0, -5, 1, 0, 0, 12, 1}, "....kifdb", "0"},
      {"3 to 10 to the left, clipped", {3, 1}, {11, 0, -10, 1, 0, 0, 3, 1}, "..ccbbbba", "0", {2, 0, 9, 1}},
      {"8 to 3 upwards", {1, 8}, {0, 5, 1, -3, 0, 0, 1, 8}, "a", "..641"},
      {"2 to 6 upwards, clipped", {1, 2}, {0, 6, 1, -6, 0, 0, 1, 2}, "a", ".1100", {0, 1, 1, 5}},
  });
}

// The pixels themselves, without the two lines of a case.
TEST(ImagePlacement, PicturesWrittenOut) {
  const Dib dib = PictureDib(4, "abcdefghijkl", {});
  TestDevice device({.width = 11, .height = 6});
  EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 4, 3, 0, 0, 4, 3}));
  EXPECT_EQ(1u, Stretch(device, dib, {11, 0, -6, 6, 0, 0, 4, 3}));
  EXPECT_EQ(1u, Stretch(device, dib, {1, 6, 3, -2, 1, 0, 3, 2}));
  EXPECT_TRUE(BandIs(device, ImageInks(device),
                     "abcd.ddcbba"
                     "efgh.ddcbba"
                     "ijkl.hhgffe"
                     ".....hhgffe"
                     ".jkl.llkjji"
                     ".fgh.llkjji"));
}

// A picture painted in bands of any height is the picture painted at once, when its scale is a whole number.
TEST(ImagePlacement, AcrossBands) {
  const std::string columns = ".aaabbbcccddd";
  const std::string rows = ".000111222..";
  for (uint32_t bandRows : {1u, 2u, 5u}) {
    for (uint32_t top = 0; top < rows.size(); top += bandRows) {
      TestDevice band({.width = kImageColumns, .height = bandRows, .top = static_cast<int32_t>(top)});
      Stretch(band, LetterDib({4, 3}, {}), {1, 1, 12, 9, 0, 0, 4, 3});
      EXPECT_TRUE(BandIs(band, ImageInks(band), BandPicture(columns, rows.substr(top, bandRows))))
          << "band of " << bandRows << " rows at " << top;
    }
  }
}

// biWidth sets the row stride; padding is never shown.
TEST(ImagePlacement, RowStrides) {
  std::vector<ImageCase> cases;
  for (int32_t width = 1; width <= 12; ++width) {
    cases.push_back({"whole rows", {width, 3}, {0, 0, width, 3, 0, 0, width, 3}, ColumnsFrom(0, width), "012"});
  }
  RunImageCases(cases);
}

// ---- SetDIBitsToDevice.

uint32_t SetBits(const TestDevice& device, int32_t x, int32_t y, uint32_t startScan, uint32_t numScans,
                 const void* bits, const void* info, const BandRect* clip) {
  return QNVDevSetDIBitsToDevice(device.handle(), x, y, startScan, numScans, clip, nullptr, bits, info, nullptr) &
         0xFFFF;
}

TEST(SetDIBitsToDevice, Cases) {
  struct Case {
    const char* name;
    int32_t x, y;
    uint32_t startScan, numScans;
    const char* columns;
    const char* rows;
    BandRect clip = kEverywhere;
  };
  const Case cases[] = {
      {"the whole image", 2, 1, 0, 3, "..abcd", ".012"},
      {"the first stored row", 2, 1, 0, 1, "..abcd", ".2"},
      {"from the second stored row on", 2, 1, 1, 2, "..abcd", ".01"},
      {"partly outside the band", -1, -1, 0, 3, "bcd", "12"},
      {"clipped", 2, 1, 0, 3, "...bc", "..1", {3, 2, 5, 3}},
      {"outside", 13, 0, 0, 3, "", ""},
      {"no rows", 0, 0, 0, 0, "", ""},
      {"rows past the image", 0, 0, 3, 2, "", ""},
  };
  for (const Case& c : cases) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      for (uint16_t depth : {uint16_t{4}, uint16_t{8}, uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
        for (bool topDown : {false, true}) {
          SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(depth) + "-bit image" +
                       (topDown ? ", top-down, " : ", ") + std::to_string(bandDepth) + "-bit band");
          TestDevice device({.bitsPerPixel = bandDepth, .width = kImageColumns, .height = kImageRows});
          const Dib dib = LetterDib({4, 3}, {.bitCount = depth, .topDown = topDown});
          EXPECT_EQ(*c.rows != '\0' ? 1u : 0u,
                    SetBits(device, c.x, c.y, c.startScan, c.numScans, dib.bits(), dib.info(), &c.clip));
          EXPECT_TRUE(BandIs(device, ImageInks(device), BandPicture(c.columns, c.rows)));
          EXPECT_TRUE(dib.Unchanged());
        }
      }
    }
  }
}

TEST(SetDIBitsToDevice, NullPointers) {
  TestDevice device({.width = kImageColumns, .height = kImageRows});
  const Dib dib = LetterDib({4, 3}, {});
  EXPECT_EQ(0u, SetBits(device, 0, 0, 0, 3, dib.bits(), nullptr, &kEverywhere));
  EXPECT_EQ(0u, SetBits(device, 0, 0, 0, 3, nullptr, dib.info(), &kEverywhere));
  EXPECT_EQ(0u, SetBits(device, 0, 0, 0, 3, dib.bits(), dib.info(), nullptr));
  EXPECT_TRUE(BandUntouched(device));
}

}  // namespace
}  // namespace qnv::test
