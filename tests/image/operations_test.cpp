// Images combined with what the band holds: all ternary operations, and the extended ones.
#include <gtest/gtest.h>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

// ---- Ternary operations of images: each converted row goes through a transfer.

constexpr uint32_t kInk = 0x00A05030;

// All 256 indices on both depths. Pattern cells count from the band's corner, so the band lies off the page's corner.
TEST(ImageRops, EveryIndex) {
  uint8_t cells[64];
  for (uint32_t i = 0; i < 64; ++i) cells[i] = static_cast<uint8_t>(i / 8 * 31 + i % 8 * 5 + 2);
  const SourceBitmap patternBitmap{0, 8, 8, 8, 1, 8, cells};
  const Dib dib = LetterDib({4, 3}, {});
  for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
    for (bool solid : {true, false}) {
      for (uint32_t index = 0; index < 256; ++index) {
        TestDevice device({.bitsPerPixel = bandDepth, .width = 13, .height = 9, .left = 5, .top = 3});
        FillWithNoise(&device.band(), index);
        const PhysicalBrush brush =
            solid ? SolidBrush(device.handle(), kInk) : PatternBrush(device.handle(), patternBitmap);
        const auto change = [&](uint32_t source, uint32_t dest, uint32_t x, uint32_t y) {
          const uint32_t pattern = solid ? Physical(device, kInk) : Gray(cells[y % 8 * 8 + x % 8]);
          return Rop3Color(index, pattern, source, dest);
        };
        const PlaneImage expected = Changed(device, BandImage(device), "..abcd", ".001122", change);
        EXPECT_EQ(1u, Stretch(device, dib, {7, 4, 4, 6, 0, 0, 4, 3}, {.rop = index << 16 | 0x1234, .brush = &brush}));
        EXPECT_TRUE(BandShows(device, expected)) << "index " << std::hex << index << std::dec << ", " << bandDepth
                                                 << " bits" << (solid ? ", solid brush" : ", pattern brush");
      }
    }
  }
}

// Only the whole code 0x00CC0020 is a plain copy, which leaves alone what the source does not reach; every other one
// sees black there.
TEST(ImageRops, ColumnsBeyondTheSource) {
  for (uint32_t rop : {SRCCOPY, kCopyByTransfer, NOTSRCCOPY, SRCPAINT, ROP_MINIMUM}) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      TestDevice device({.bitsPerPixel = bandDepth, .width = 7, .height = 2});
      FillWithNoise(&device.band(), rop);
      const auto change = [&](uint32_t source, uint32_t dest, uint32_t x, uint32_t) {
        if (x >= 3) source = 0;
        return rop == ROP_MINIMUM ? MinimumColor(source, dest) : Rop3Color(rop >> 16, 0, source, dest);
      };
      const char* const columns = rop == SRCCOPY ? ".cd" : ".cdef";
      const PlaneImage expected = Changed(device, BandImage(device), columns, "01", change);
      EXPECT_EQ(1u, Stretch(device, LetterDib({4, 2}, {}), {1, 0, 4, 2, 2, 0, 4, 2}, {.rop = rop}));
      EXPECT_TRUE(BandShows(device, expected)) << "rop " << std::hex << rop << std::dec << ", " << bandDepth << " bits";
    }
  }
}

TEST(ImageRops, BrushesThatPaintNothing) {
  for (uint16_t style : {uint16_t{BS_HOLLOW}, uint16_t{4}}) {
    PhysicalBrush brush{};
    brush.style = style;
    for (uint32_t rop : {PATCOPY, PATPAINT, MERGECOPY, 0x00B80000u}) {
      TestDevice device({.width = 7, .height = 2});
      EXPECT_EQ(1u, Stretch(device, LetterDib({4, 2}, {}), {1, 0, 4, 2, 0, 0, 4, 2}, {.rop = rop, .brush = &brush}));
      EXPECT_TRUE(BandUntouched(device)) << "style " << style << ", rop " << std::hex << rop;
    }
  }
}

// The rows are already in device coordinates: the origin counts once, and is back afterwards.
TEST(ImageRops, OriginCountsOnce) {
  for (uint32_t rop : {SRCCOPY, kCopyByTransfer, SRCAND, ROP_MINIMUM}) {
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

TEST(ImageMinimum, TheSmallerByteStays) {
  for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
    for (uint16_t depth : {uint16_t{8}, uint16_t{24}}) {
      TestDevice device({.bitsPerPixel = bandDepth, .width = 11, .height = 5});
      FillWithNoise(&device.band(), depth);
      const PlaneImage expected =
          Changed(device, BandImage(device), "..aabbccdd", ".012",
                  [](uint32_t source, uint32_t dest, uint32_t, uint32_t) { return MinimumColor(source, dest); });
      const Dib dib = LetterDib({4, 3}, {.bitCount = depth});
      EXPECT_EQ(1u, Stretch(device, dib, {2, 1, 8, 3, 0, 0, 4, 3}, {.rop = ROP_MINIMUM}));
      EXPECT_TRUE(BandShows(device, expected)) << bandDepth << "-bit band, " << depth << "-bit image";
    }
  }
}

TEST(ImageMinimum, OverWhiteAndBlack) {
  for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
    const Dib dib = PictureDib(4, "abcdefgh", {.bitCount = 4});
    TestDevice white({.bitsPerPixel = bandDepth, .width = 6, .height = 2, .fill = 0xFF});
    EXPECT_EQ(1u, Stretch(white, dib, {1, 0, 4, 2, 0, 0, 4, 2}, {.rop = ROP_MINIMUM}));
    EXPECT_TRUE(BandIs(white, ImageInks(white), ".abcd. .efgh."));
    TestDevice black({.bitsPerPixel = bandDepth, .width = 6, .height = 2, .fill = 0x00});
    EXPECT_EQ(1u, Stretch(black, dib, {1, 0, 4, 2, 0, 0, 4, 2}, {.rop = ROP_MINIMUM}));
    EXPECT_TRUE(BandUntouched(black));
  }
}

TEST(ImageMinimum, OtherExtendedCodesPaintNothing) {
  for (uint32_t rop : {0x02000000u, 0x01000001u, 0x01CC0020u, 0x01000020u, 0x7FFFFFFFu, 0x80000000u, 0xFF000000u,
                       0xFFFFFFFFu, 0xFFCC0020u}) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      TestDevice device({.bitsPerPixel = bandDepth, .width = 6, .height = 2});
      EXPECT_EQ(1u, Stretch(device, LetterDib({4, 2}, {}), {1, 0, 4, 2, 0, 0, 4, 2}, {.rop = rop})) << std::hex << rop;
      EXPECT_TRUE(BandUntouched(device)) << std::hex << rop;
    }
  }
}

}  // namespace
}  // namespace qnv::test
