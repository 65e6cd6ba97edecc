// Extended operations: the minimum of band and image; every other one paints nothing.
#include <gtest/gtest.h>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

TEST(ImageMerge, TheSmallerByteStays) {
  for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
    for (uint16_t depth : {uint16_t{8}, uint16_t{24}}) {
      TestDevice device({.bitsPerPixel = bandDepth, .width = 11, .height = 5});
      for (std::size_t i = 0; i < device.band().size(); ++i) device.band().data()[i] = static_cast<uint8_t>(i * 59 + 7);
      PicturePlane expected = CurrentBand(device);
      const std::string image = kFourByThree;
      for (uint32_t row = 0; row < 3; ++row) {
        for (uint32_t column = 0; column < 8; ++column) {  // doubled across
          const uint32_t s =
              Physical(device, ImageColours()[static_cast<std::size_t>(image[row * 4 + column / 2] - 'a')]);
          const uint32_t d = expected.Get(column + 2, row + 1);
          uint32_t smaller = 0;
          for (uint32_t shift : {0u, 8u, 16u}) {
            smaller |= std::min((s >> shift) & 0xFF, (d >> shift) & 0xFF) << shift;
          }
          expected.Put(column + 2, row + 1, smaller);
        }
      }
      const Dib dib = PictureDib(4, kFourByThree, {.bitCount = depth});
      EXPECT_EQ(1u, Stretch(device, dib, {2, 1, 8, 3, 0, 0, 4, 3}, {.rop = ROP_MINIMUM}));
      EXPECT_TRUE(SamePlane(expected, CurrentBand(device))) << bandDepth << "-bit band, " << depth << "-bit image";
      EXPECT_TRUE(device.FencesIntact());
    }
  }
}

struct FillCase {
  const char* name;
  uint8_t fill;
  const char* picture;  // 6 x 2
};

TEST(ImageMerge, OverWhiteAndBlack) {
  const FillCase cases[] = {
      {"white leaves the image", 0xFF,
       ".abcd."
       ".efgh."},
      {"black stays", 0x00,
       "......"
       "......"},
  };
  for (const FillCase& c : cases) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      TestDevice device({.bitsPerPixel = bandDepth, .width = 6, .height = 2, .fill = c.fill});
      const Dib dib = PictureDib(4, "abcdefgh", {.bitCount = 4});
      EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 4, 2, 0, 0, 4, 2}, {.rop = ROP_MINIMUM}));
      EXPECT_TRUE(BandIs(device, ImageInks(device), c.picture)) << c.name << ", " << bandDepth << " bits";
    }
  }
}

// Repeated rows, clip and band place: the same pixels as a copy paints.
TEST(ImageMerge, PlacesAreThoseOfACopy) {
  struct Case {
    const char* name;
    ImagePlace place;
    BandRect clip;
  };
  const Case cases[] = {
      {"tripled", {-2, -1, 12, 9, 0, 0, 4, 3}, kEverywhere},
      {"clipped", {0, 0, 12, 9, 0, 0, 4, 3}, {4, 1, 9, 5}},
      {"mirrored both ways", {12, 5, -11, -5, 0, 0, 4, 3}, kEverywhere},
      {"shrunk", {3, 2, 3, 2, 0, 0, 4, 3}, kEverywhere},
  };
  for (const Case& c : cases) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      TestDevice merged({.bitsPerPixel = bandDepth, .width = 13, .height = 6, .left = -1, .top = -1, .fill = 0xFF});
      TestDevice copied({.bitsPerPixel = bandDepth, .width = 13, .height = 6, .left = -1, .top = -1, .fill = 0xFF});
      merged.SetOrigin(-1, 1);
      copied.SetOrigin(-1, 1);
      const Dib dib = PictureDib(4, kFourByThree, {});
      EXPECT_EQ(1u, Stretch(merged, dib, c.place, {.rop = ROP_MINIMUM, .clip = c.clip})) << c.name;
      EXPECT_EQ(1u, Stretch(copied, dib, c.place, {.clip = c.clip})) << c.name;
      EXPECT_TRUE(SamePlane(CurrentBand(copied), CurrentBand(merged))) << c.name << ", " << bandDepth << " bits";
    }
  }
}

TEST(ImageMerge, OtherExtendedCodesPaintNothing) {
  for (uint32_t rop : {0x02000000u, 0x01000001u, 0x01CC0020u, 0x01000020u, 0x7FFFFFFFu, 0x80000000u, 0xFF000000u,
                       0xFFFFFFFFu, 0xFFCC0020u}) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      TestDevice device({.bitsPerPixel = bandDepth, .width = 6, .height = 2});
      const Dib dib = PictureDib(4, "abcdefgh", {});
      EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 4, 2, 0, 0, 4, 2}, {.rop = rop})) << std::hex << rop;
      EXPECT_TRUE(BandUntouched(device)) << std::hex << rop;
    }
  }
}

}  // namespace
}  // namespace qnv::test
