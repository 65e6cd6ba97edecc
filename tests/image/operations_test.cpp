// Images combined with what the band holds: all ternary operations, and the extended ones.
#include <gtest/gtest.h>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

// ---- Ternary operations of images: each converted row goes through a transfer.

// One result bit for each of the eight combinations of pattern, source and destination.
uint32_t Rop3(uint32_t index, uint32_t p, uint32_t s, uint32_t d) {
  uint32_t result = 0;
  for (uint32_t k = 0; k < 8; ++k) {
    if ((index >> k & 1) == 0) continue;
    result |= ((k & 4) != 0 ? p : ~p) & ((k & 2) != 0 ? s : ~s) & ((k & 1) != 0 ? d : ~d);
  }
  return result & 0xFFFFFF;
}

constexpr uint32_t kInk = 0x00A05030;

uint8_t PatternByte(uint32_t x, uint32_t y) { return static_cast<uint8_t>((y % 8) * 31 + (x % 8) * 5 + 2); }

// All 256 indices on both depths. Pattern cells count from the band's corner, so the band lies off the page's corner.
TEST(ImageRops, EveryIndex) {
  uint8_t patternBytes[64];
  for (uint32_t i = 0; i < 64; ++i) patternBytes[i] = PatternByte(i % 8, i / 8);
  const SourceBitmap patternBitmap{0, 8, 8, 8, 1, 8, patternBytes};
  const Dib dib = PictureDib(4, kFourByThree, {});
  const std::string image = kFourByThree;
  for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
    for (bool solid : {true, false}) {
      for (uint32_t index = 0; index < 256; ++index) {
        TestDevice device({.bitsPerPixel = bandDepth, .width = 13, .height = 9, .left = 5, .top = 3});
        for (std::size_t i = 0; i < device.band().size(); ++i) {
          device.band().data()[i] = static_cast<uint8_t>(i * 83 + 19);
        }
        const PhysicalBrush brush =
            solid ? SolidBrush(device.handle(), kInk) : PatternBrush(device.handle(), patternBitmap);
        PlaneImage expected = BandImage(device);
        for (uint32_t row = 0; row < 6; ++row) {  // doubled down, from band row 1
          for (uint32_t column = 0; column < 4; ++column) {
            const uint32_t x = column + 2;
            const uint32_t y = row + 1;
            const uint32_t s =
                Physical(device, ImageColors()[static_cast<std::size_t>(image[row / 2 * 4 + column] - 'a')]);
            const uint32_t p = solid ? Physical(device, kInk) : Gray(PatternByte(x, y));
            expected.SetColor(x, y, Rop3(index, p, s, expected.Color(x, y)));
          }
        }
        EXPECT_EQ(1u, Stretch(device, dib, {7, 4, 4, 6, 0, 0, 4, 3}, {.rop = index << 16 | 0x1234, .brush = &brush}));
        EXPECT_TRUE(SameImage(expected, BandImage(device)))
            << "index " << std::hex << index << std::dec << ", " << bandDepth << " bits"
            << (solid ? ", solid brush" : ", pattern brush");
        EXPECT_TRUE(device.FencesIntact());
      }
    }
  }
}

// Only the whole code 0x00CC0020 is a plain copy; any other low word takes the way through the transfer and, where the
// source does not reach, the transfer sees black.
TEST(ImageRops, ColumnsBeyondTheSource) {
  struct Case {
    const char* name;
    uint32_t rop;
    const char* picture;  // 7 x 2
  };
  const Case cases[] = {
      {"plain copy leaves them", SRCCOPY,
       ".cd...."
       ".gh...."},
      {"copy by transfer paints them black", 0x00CC0000,
       ".cdkk.."
       ".ghkk.."},
      {"inverted source: white", NOTSRCCOPY,
       ".CDww.."
       ".GHww.."},
      {"minimum: black", ROP_MINIMUM,
       ".cdkk.."
       ".ghkk.."},
  };
  for (const Case& c : cases) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      TestDevice device({.bitsPerPixel = bandDepth, .width = 7, .height = 2, .fill = 0xFE});
      const Dib dib = PictureDib(4, "abcdefgh", {});
      EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 4, 2, 2, 0, 4, 2}, {.rop = c.rop}));
      // The images' white would show under the minimum as the band's own value.
      PictureInks inks = {{'k', 0}, {'w', 0xFFFFFF}};
      for (char letter : {'c', 'd', 'g', 'h'}) {
        const uint32_t color = Physical(device, ImageColors()[static_cast<std::size_t>(letter - 'a')]);
        uint32_t shown = color;
        if (c.rop == ROP_MINIMUM) {
          shown = 0;
          for (uint32_t shift : {0u, 8u, 16u}) shown |= std::min((color >> shift) & 0xFF, 0xFEu) << shift;
        }
        inks.push_back({letter, shown});
        inks.push_back({static_cast<char>(letter - 'a' + 'A'), ~color & 0xFFFFFF});
      }
      EXPECT_TRUE(BandIs(device, inks, c.picture)) << c.name << ", " << bandDepth << " bits";
    }
  }
}

TEST(ImageRops, BrushesThatPaintNothing) {
  for (uint16_t style : {uint16_t{BS_HOLLOW}, uint16_t{4}}) {
    PhysicalBrush brush{};
    brush.style = style;
    for (uint32_t rop : {PATCOPY, PATPAINT, MERGECOPY, 0x00B80000u}) {
      TestDevice device({.width = 7, .height = 2});
      const Dib dib = PictureDib(4, "abcdefgh", {});
      EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 4, 2, 0, 0, 4, 2}, {.rop = rop, .brush = &brush}));
      EXPECT_TRUE(BandUntouched(device)) << "style " << style << ", rop " << std::hex << rop;
    }
  }
}

// The rows are already in device coordinates: the origin counts once, and is back afterwards.
TEST(ImageRops, OriginCountsOnce) {
  for (uint32_t rop : {SRCCOPY, 0x00CC0000u, SRCAND, ROP_MINIMUM}) {
    TestDevice device({.width = 9, .height = 4, .left = -3, .top = 2, .fill = 0xFF});
    device.SetOrigin(-4, 3);
    const Dib dib = PictureDib(2, "abef", {});
    EXPECT_EQ(1u, Stretch(device, dib, {2, 0, 2, 2, 0, 0, 2, 2}, {.rop = rop, .clip = {2, 0, 4, 2}}));
    EXPECT_EQ(1u, Stretch(device, dib, {6, 0, 2, 2, 0, 0, 2, 2}, {.rop = rop, .clip = {7, 0, 9, 2}}));
    EXPECT_TRUE(BandIs(device, ImageInks(device),
                       "........."
                       ".ab...b.."
                       ".ef...f.."))
        << std::hex << rop;
  }
}

// ---- Extended operations: the minimum of band and image; every other one paints nothing.

TEST(ImageMerge, TheSmallerByteStays) {
  for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
    for (uint16_t depth : {uint16_t{8}, uint16_t{24}}) {
      TestDevice device({.bitsPerPixel = bandDepth, .width = 11, .height = 5});
      for (std::size_t i = 0; i < device.band().size(); ++i) device.band().data()[i] = static_cast<uint8_t>(i * 59 + 7);
      PlaneImage expected = BandImage(device);
      const std::string image = kFourByThree;
      for (uint32_t row = 0; row < 3; ++row) {
        for (uint32_t column = 0; column < 8; ++column) {  // doubled across
          const uint32_t s =
              Physical(device, ImageColors()[static_cast<std::size_t>(image[row * 4 + column / 2] - 'a')]);
          const uint32_t d = expected.Color(column + 2, row + 1);
          uint32_t smaller = 0;
          for (uint32_t shift : {0u, 8u, 16u}) {
            smaller |= std::min((s >> shift) & 0xFF, (d >> shift) & 0xFF) << shift;
          }
          expected.SetColor(column + 2, row + 1, smaller);
        }
      }
      const Dib dib = PictureDib(4, kFourByThree, {.bitCount = depth});
      EXPECT_EQ(1u, Stretch(device, dib, {2, 1, 8, 3, 0, 0, 4, 3}, {.rop = ROP_MINIMUM}));
      EXPECT_TRUE(SameImage(expected, BandImage(device))) << bandDepth << "-bit band, " << depth << "-bit image";
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
      {"black stays", 0x00, "......"},
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
      EXPECT_TRUE(SameImage(BandImage(copied), BandImage(merged))) << c.name << ", " << bandDepth << " bits";
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
