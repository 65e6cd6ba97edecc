// Images on the resolution-mapping device: laid out in caller pixels, each kept row and column put in its band place.
#include <gtest/gtest.h>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

struct Resolutions {
  uint16_t a;
  uint16_t b;
};

constexpr Resolutions kHalved{720, 360};
constexpr Resolutions kTwoThirds{600, 400};
constexpr Resolutions kDoubled{360, 720};

struct ScaledImageCase {
  Resolutions resolutions;
  ImageCase image;
  const char* transferredRows = nullptr;  // where a transfer shows other rows than a copy
};

constexpr ImagePlace kWhole{0, 0, 10, 8, 0, 0, 10, 8};

const ScaledImageCase kScaledImageCases[] = {
    {kHalved, {"even rows and columns are kept", {10, 8}, kWhole, "acegi", "0246"}},
    {kHalved, {"from an odd place", {10, 8}, {1, 1, 10, 8, 0, 0, 10, 8}, ".bdfhj", ".1357"}},
    {kHalved, {"mirrored both ways", {10, 8}, {10, 8, -10, -8, 0, 0, 10, 8}, "jhfdb", "7531"}},
    {kHalved, {"clip, origin", {10, 8}, kWhole, "..ceg", ".135", {2, 1, 7, 6}, {0, 0}, {2, 1}}},
    {kHalved, {"odd from the band", {10, 8}, {9, 5, 10, 8, 0, 0, 10, 8}, "bdfhj", "1357", kEverywhere, {5, 3}}},
    {kHalved, {"even from the band", {10, 8}, {10, 6, 10, 8, 0, 0, 10, 8}, "acegi", "0246", kEverywhere, {5, 3}}},
    {kTwoThirds, {"every third one is dropped", {10, 8}, kWhole, "abdeghj", "013467"}},
    {kTwoThirds, {"counted from the mapped band", {10, 8}, kWhole, "cdfgij", "2356", kEverywhere, {1, 1}}},
    {kHalved, {"doubled image", {4, 3}, {0, 0, 8, 6, 0, 0, 4, 3}, "abcd", "012"}},
    // A copy drops a source row whose first covered row is not kept; a transfer looks at each row by itself.
    {kHalved, {"doubled image, from a dropped row", {4, 3}, {0, 1, 8, 6, 0, 0, 4, 3}, "abcd", "."}, ".012"},
    {kHalved, {"tripled image", {4, 3}, {0, 0, 12, 9, 0, 0, 4, 3}, "aabccd", "00.22"}, "00122"},
    {kDoubled, {"sparse", {4, 3}, {0, 0, 4, 3, 0, 0, 4, 3}, "a.b.c.d", "0.1.2"}},
    {kDoubled, {"cut by the band", {4, 3}, {4, 3, 4, 3, 0, 0, 4, 3}, "........a.b.c", "......0.1"}},
};

// In gray mode a copied pixel is grayed in the band, where blue comes first and weighs 30; a transferred one is grayed
// in the row, where red comes first. No table is grayed before.
TEST(ImageScaled, Cases) {
  for (const ScaledImageCase& c : kScaledImageCases) {
    for (uint32_t rop : {SRCCOPY, kCopyByTransfer}) {
      for (uint16_t depth : {uint16_t{4}, uint16_t{8}, uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
        for (bool topDown : {false, true}) {
          for (bool gray : {false, true}) {
            SCOPED_TRACE(std::string(c.image.name) + (rop == SRCCOPY ? ", copy, " : ", transfer, ") +
                         std::to_string(depth) + " bits" + (topDown ? ", top-down" : "") + (gray ? ", gray" : ""));
            ScaledDevice device({.bitsPerPixel = static_cast<uint16_t>(gray ? 0 : 24),
                                 .width = kImageColumns,
                                 .height = kImageRows,
                                 .resolutionA = c.resolutions.a,
                                 .resolutionB = c.resolutions.b,
                                 .left = c.image.band.left,
                                 .top = c.image.band.top});
            device.SetOrigin(c.image.origin.x, c.image.origin.y);
            PictureInks inks;
            for (uint32_t i = 0; i < 16; ++i) {
              const uint32_t color = ImageColors()[i];
              const uint32_t grayed = rop == SRCCOPY ? Regrayed(color) : GrayOf(color);
              inks.push_back({static_cast<char>('a' + i), gray ? grayed : color});
            }
            const bool transferred = rop != SRCCOPY && c.transferredRows != nullptr;
            const Dib dib = LetterDib(c.image.image, {.bitCount = depth, .topDown = topDown});
            EXPECT_EQ(1u, Stretch(device, dib, c.image.place, {.rop = rop, .clip = c.image.clip}));
            EXPECT_TRUE(
                BandIs(device, inks, BandPicture(c.image.columns, transferred ? c.transferredRows : c.image.rows)));
          }
        }
      }
    }
  }
}

// The pixels themselves, without the two lines of a case.
TEST(ImageScaled, PicturesWrittenOut) {
  const Dib dib = PictureDib(4, "abcdefghijkl", {});
  ScaledDevice halved({.width = 7, .height = 3, .resolutionA = 720, .resolutionB = 360});
  EXPECT_EQ(1u, Stretch(halved, dib, {1, 0, 12, 6, 0, 0, 4, 3}));
  EXPECT_TRUE(BandIs(halved, ImageInks(halved),
                     ".abbcdd"
                     ".effghh"
                     ".ijjkll"));
  ScaledDevice doubled({.width = 8, .height = 6, .resolutionA = 360, .resolutionB = 720});
  EXPECT_EQ(1u, Stretch(doubled, dib, {3, 2, -3, 1, 0, 0, 4, 3}));
  EXPECT_TRUE(BandIs(doubled, ImageInks(doubled),
                     "........"
                     "........"
                     "........"
                     "........"
                     "h.g.e..."));
}

// In gray mode a transfer of an image mixes the grayed row with the band as it is; the result is not grayed again.
TEST(ImageScaled, GrayModeDoesNotGrayTransfersTwice) {
  ScaledDevice device({.bitsPerPixel = 0, .width = 4, .height = 1});
  FillWithNoise(&device.band(), 1);
  const PlaneImage expected = Changed(device, BandImage(device), "abcd", "0",
                                      [](uint32_t source, uint32_t dest, uint32_t, uint32_t) { return source | dest; });
  EXPECT_EQ(1u, Stretch(device, LetterDib({4, 1}, {}), {0, 0, 4, 1, 0, 0, 4, 1}, {.rop = SRCPAINT}));
  EXPECT_TRUE(BandShows(device, expected));
  // Gray mode is on again afterwards.
  uint32_t color = 0;
  EXPECT_EQ(GrayOf(0x0000FF), QNVColorInfo(device.handle(), 0x0000FF, &color));
}

// A repeated row is the painted span of the first one, with what lies between its columns.
TEST(ImageScaled, RepeatedRowsCopyTheWholeSpan) {
  ScaledDevice device({.width = 9, .height = 5, .resolutionA = 360, .resolutionB = 720});
  FillWithNoise(&device.band(), 2);
  PlaneImage expected = BandImage(device);
  for (uint32_t x = 0; x < 3; ++x) expected.SetColor(2 + 2 * x, 0, ImageColors()[x]);
  for (uint32_t x = 2; x <= 6; ++x) expected.SetColor(x, 2, expected.Color(x, 0));
  EXPECT_EQ(1u, Stretch(device, LetterDib({3, 1}, {}), {1, 0, 3, 2, 0, 0, 3, 1}));
  EXPECT_TRUE(BandShows(device, expected));
}

TEST(ImageScaled, ExtendedCodesPaintNothing) {
  for (uint32_t rop : {ROP_MINIMUM, 0x02000000u, 0xFFFFFFFFu}) {
    for (uint16_t bits : {uint16_t{24}, uint16_t{0}}) {
      ScaledDevice device({.bitsPerPixel = bits, .width = 6, .height = 2, .fill = 0xFF});
      EXPECT_EQ(1u, Stretch(device, LetterDib({4, 2}, {}), {1, 0, 4, 2, 0, 0, 4, 2}, {.rop = rop})) << std::hex << rop;
      EXPECT_TRUE(BandUntouched(device)) << std::hex << rop;
    }
  }
}

// Operations with source, pattern and band: pattern cells count band pixels.
TEST(ImageScaled, Transfers) {
  uint8_t cells[64];
  for (uint32_t i = 0; i < 64; ++i) cells[i] = static_cast<uint8_t>(i * 4 + 1);
  const SourceBitmap bitmap{0, 8, 8, 8, 1, 8, cells};
  const Dib dib = LetterDib({10, 8}, {});
  for (uint32_t index = 0; index < 256; ++index) {
    ScaledDevice device({.width = 7, .height = 6, .resolutionA = 720, .resolutionB = 360});
    FillWithNoise(&device.band(), index);
    const PhysicalBrush brush = PatternBrush(device.handle(), bitmap);
    const auto change = [&](uint32_t source, uint32_t dest, uint32_t x, uint32_t y) {
      return Rop3Color(index, Gray(cells[y % 8 * 8 + x % 8]), source, dest);
    };
    const PlaneImage expected = Changed(device, BandImage(device), ".acegi", ".0246", change);
    EXPECT_EQ(1u, Stretch(device, dib, {2, 2, 10, 8, 0, 0, 10, 8}, {.rop = index << 16 | 1, .brush = &brush}));
    EXPECT_TRUE(BandShows(device, expected)) << "index " << std::hex << index;
  }
}

// A copy puts the whole clipped span of its row in place: where the source does not reach, the row is black.
TEST(ImageScaled, ColumnsBeyondTheSource) {
  for (uint32_t rop : {SRCCOPY, kCopyByTransfer}) {
    ScaledDevice device({.width = 7, .height = 2});
    const Dib dib = PictureDib(4, "abcdfghi", {});
    EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 4, 2, 2, 0, 4, 2}, {.rop = rop}));
    EXPECT_TRUE(BandIs(device, ImageInks(device), ".cdee.. .hiee..")) << std::hex << rop;
  }
}

// With equal resolutions and a source that reaches all over the destination the device is a plain color band.
TEST(ImageScaled, EqualResolutionsEqualThePlainDevice) {
  const Dib dib = LetterDib({10, 8}, {.bitCount = 8});
  const ImagePlace places[] = {
      {1, 1, 10, 8, 0, 0, 10, 8}, {-3, -2, 20, 13, 0, 0, 10, 8}, {12, 5, -7, -4, 2, 1, 6, 5}, {3, 2, 4, 3, 6, 0, 4, 8}};
  for (uint16_t resolution : {uint16_t{1}, uint16_t{90}, uint16_t{600}}) {
    for (uint32_t rop : {SRCCOPY, SRCAND, NOTSRCCOPY, kCopyByTransfer}) {
      for (const ImagePlace& place : places) {
        DeviceOptions options{.width = 13, .height = 6, .resolutionA = resolution, .resolutionB = resolution};
        TestDevice plain(options);
        ScaledDevice scaled(options);
        EXPECT_EQ(Stretch(plain, dib, place, {.rop = rop}), Stretch(scaled, dib, place, {.rop = rop}));
        EXPECT_TRUE(BandShows(scaled, BandImage(plain))) << resolution << " dots, rop " << std::hex << rop;
      }
    }
  }
}

TEST(ImageScaled, RunLengthData) {
  ScaledDevice device({.width = 4, .height = 2, .resolutionA = 720, .resolutionB = 360});
  RleWriter codes;
  codes.Run(6, 1).EndOfLine().Literal(6, {2, 3, 4, 5, 6, 7}).EndOfLine().Run(6, 8).EndOfLine();
  codes.Run(3, 9).Run(3, 10).EndOfBitmap();
  const Dib dib(DibInfo(6, 4, {.bitCount = 8, .compression = BI_RLE8}, FullTable(8)), codes.bytes());
  EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 6, 4, 0, 0, 6, 4}));
  EXPECT_TRUE(BandIs(device, ImageInks(device), "jjk. ceg."));
}

}  // namespace
}  // namespace qnv::test
