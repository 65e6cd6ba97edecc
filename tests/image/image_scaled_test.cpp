// Images on the resolution-mapping device: laid out in caller pixels, each kept row and column put in its band place.
#include <gtest/gtest.h>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

// 10 x 8: letter x + 3 y, counted round.
constexpr const char* kTenByEight =
    "abcdefghij"
    "defghijklm"
    "ghijklmnop"
    "jklmnopabc"
    "mnopabcdef"
    "pabcdefghi"
    "cdefghijkl"
    "fghijklmno";

struct ScaledCase {
  const char* name = "";
  uint16_t resolutionA = 720;
  uint16_t resolutionB = 360;
  int32_t width = 10;
  const char* image = kTenByEight;
  ImagePlace place{0, 0, 10, 8, 0, 0, 10, 8};
  const char* copied = kNoImage;      // by SRCCOPY
  const char* transferred = nullptr;  // by any other code of the same index; as copied unless given
  BandRect clip = kEverywhere;
  int32_t bandLeft = 0;
  int32_t bandTop = 0;
  int32_t originX = 0;
  int32_t originY = 0;
};

const ScaledCase kCases[] = {
    {.name = "halved: even rows and columns are kept",
     .copied = "acegi........"
               "gikmo........"
               "moace........"
               "cegik........"},
    {.name = "halved, from an odd place",
     .place = {1, 1, 10, 8, 0, 0, 10, 8},
     .copied = "............."
               ".egikm......."
               ".kmoac......."
               ".acegi......."
               ".gikmo......."},
    {.name = "halved, mirrored both ways",
     .place = {10, 8, -10, -8, 0, 0, 10, 8},
     .copied = "omkig........"
               "igeca........"
               "caomk........"
               "mkige........"},
    {.name = "halved, clip and origin in caller pixels",
     .copied = "............."
               "..fhj........"
               "..lnp........"
               "..bdf........",
     .clip = {2, 1, 7, 6},
     .originX = 2,
     .originY = 1},
    {.name = "halved, band elsewhere: odd distance to the band's corner",
     .place = {9, 5, 10, 8, 0, 0, 10, 8},
     .copied = "egikm........"
               "kmoac........"
               "acegi........"
               "gikmo........",
     .bandLeft = 5,
     .bandTop = 3},
    {.name = "halved, band elsewhere: even distance to the band's corner",
     .place = {10, 6, 10, 8, 0, 0, 10, 8},
     .copied = "acegi........"
               "gikmo........"
               "moace........"
               "cegik........",
     .bandLeft = 5,
     .bandTop = 3},
    {.name = "two thirds: every third row and column is dropped",
     .resolutionA = 600,
     .resolutionB = 400,
     .copied = "abdeghj......"
               "deghjkm......"
               "jkmnpac......"
               "mnpacdf......"
               "cdfgijl......"
               "fgijlmo......"},
    {.name = "two thirds, counted from the mapped band's corner",
     .resolutionA = 600,
     .resolutionB = 400,
     .copied = "ijlmop......."
               "lmopbc......."
               "bcefhi......."
               "efhikl.......",
     .bandLeft = 1,
     .bandTop = 1},
    {.name = "doubled image, halved",
     .width = 4,
     .image = kFourByThree,
     .place = {0, 0, 8, 6, 0, 0, 4, 3},
     .copied = "abcd........."
               "efgh........."
               "ijkl........."},
    // A copy drops a source row whose first covered row is not kept; a transfer looks at each row by itself.
    {.name = "doubled image, halved, each source row starting on a dropped row",
     .width = 4,
     .image = kFourByThree,
     .place = {0, 1, 8, 6, 0, 0, 4, 3},
     .copied = kNoImage,
     .transferred = "............."
                    "abcd........."
                    "efgh........."
                    "ijkl........."},
    {.name = "tripled image, halved",
     .width = 4,
     .image = kFourByThree,
     .place = {0, 0, 12, 9, 0, 0, 4, 3},
     .copied = "aabccd......."
               "aabccd......."
               "............."
               "iijkkl......."
               "iijkkl.......",
     .transferred = "aabccd......."
                    "aabccd......."
                    "eefggh......."
                    "iijkkl......."
                    "iijkkl......."},
    {.name = "doubled resolution: sparse",
     .resolutionA = 360,
     .resolutionB = 720,
     .width = 4,
     .image = kFourByThree,
     .place = {0, 0, 4, 3, 0, 0, 4, 3},
     .copied = "a.b.c.d......"
               "............."
               "e.f.g.h......"
               "............."
               "i.j.k.l......"},
    {.name = "doubled resolution, cut by the band",
     .resolutionA = 360,
     .resolutionB = 720,
     .width = 4,
     .image = kFourByThree,
     .place = {1, 1, 4, 3, 0, 0, 4, 3},
     .copied = "............."
               "............."
               "..a.b.c.d...."
               "............."
               "..e.f.g.h...."},
};

struct OperationCase {
  const char* name;
  uint32_t rop;
};

const OperationCase kOperations[] = {{"copy", SRCCOPY}, {"transfer", 0x00CC0000}};

DeviceOptions Options(const ScaledCase& c, uint16_t bitsPerPixel) {
  return {.kind = QNV_KIND_SCALED,
          .bitsPerPixel = bitsPerPixel,
          .width = kImageColumns,
          .height = kImageRows,
          .resolutionA = c.resolutionA,
          .resolutionB = c.resolutionB,
          .left = c.bandLeft,
          .top = c.bandTop};
}

TEST(ImageScaled, Cases) {
  for (const ScaledCase& c : kCases) {
    for (const OperationCase& operation : kOperations) {
      for (uint16_t depth : {uint16_t{4}, uint16_t{8}, uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
        for (bool topDown : {false, true}) {
          TestDevice device(Options(c, 24));
          device.SetOrigin(c.originX, c.originY);
          const Dib dib = PictureDib(c.width, c.image, {.bitCount = depth, .topDown = topDown});
          EXPECT_EQ(1u, Stretch(device, dib, c.place, {.rop = operation.rop, .clip = c.clip})) << c.name;
          const bool transferred = operation.rop != SRCCOPY && c.transferred != nullptr;
          EXPECT_TRUE(BandIs(device, ImageInks(device), transferred ? c.transferred : c.copied))
              << c.name << ", " << operation.name << ", " << depth << " bits" << (topDown ? ", top-down" : "");
        }
      }
    }
  }
}

// Gray mode: a copied pixel is grayed in the band, where blue comes first and weighs 30; a transferred one is grayed in
// the row, where red comes first. No table is grayed before.
TEST(ImageScaled, GrayMode) {
  for (const ScaledCase& c : kCases) {
    for (const OperationCase& operation : kOperations) {
      for (uint16_t depth : {uint16_t{8}, uint16_t{24}}) {
        TestDevice device(Options(c, 0));
        device.SetOrigin(c.originX, c.originY);
        const Dib dib = PictureDib(c.width, c.image, {.bitCount = depth});
        EXPECT_EQ(1u, Stretch(device, dib, c.place, {.rop = operation.rop, .clip = c.clip})) << c.name;
        PictureInks inks;
        for (uint32_t i = 0; i < 16; ++i) {
          const uint32_t color = ImageColors()[i];
          inks.push_back({static_cast<char>('a' + i), operation.rop == SRCCOPY ? Regrayed(color) : GrayOf(color)});
        }
        const bool transferred = operation.rop != SRCCOPY && c.transferred != nullptr;
        EXPECT_TRUE(BandIs(device, inks, transferred ? c.transferred : c.copied))
            << c.name << ", " << operation.name << ", " << depth << " bits";
      }
    }
  }
}

// In gray mode a transfer of an image mixes the grayed row with the band as it is; the result is not grayed again.
TEST(ImageScaled, GrayModeDoesNotGrayTransfersTwice) {
  ScaledDevice device({.bitsPerPixel = 0, .width = 4, .height = 1});
  for (uint32_t i = 0; i < 12; ++i) device.band().data()[i] = static_cast<uint8_t>(16 * i + 5);
  PlaneImage expected = BandImage(device);
  for (uint32_t x = 0; x < 4; ++x) expected.SetColor(x, 0, expected.Color(x, 0) | GrayOf(ImageColors()[x]));
  const Dib dib = PictureDib(4, "abcd", {});
  EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 4, 1, 0, 0, 4, 1}, {.rop = SRCPAINT}));
  EXPECT_TRUE(SameImage(expected, BandImage(device)));
  // Gray mode is on again afterwards.
  uint32_t color = 0;
  EXPECT_EQ(GrayOf(0x0000FF), QNVColorInfo(device.handle(), 0x0000FF, &color));
}

// A repeated row is the painted span of the first one, with what lies between its columns.
TEST(ImageScaled, RepeatedRowsCopyTheWholeSpan) {
  ScaledDevice device({.width = 9, .height = 5, .resolutionA = 360, .resolutionB = 720});
  for (std::size_t i = 0; i < device.band().size(); ++i) device.band().data()[i] = static_cast<uint8_t>(i);
  PlaneImage expected = BandImage(device);
  for (uint32_t x = 0; x < 3; ++x) expected.SetColor(2 + 2 * x, 0, ImageColors()[x]);
  for (uint32_t x = 2; x <= 6; ++x) expected.SetColor(x, 2, expected.Color(x, 0));
  const Dib dib = PictureDib(3, "abc", {});
  EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 3, 2, 0, 0, 3, 1}));
  EXPECT_TRUE(SameImage(expected, BandImage(device)));
}

TEST(ImageScaled, ExtendedCodesPaintNothing) {
  for (uint32_t rop : {ROP_MINIMUM, 0x02000000u, 0xFFFFFFFFu}) {
    for (uint16_t bits : {uint16_t{24}, uint16_t{0}}) {
      ScaledDevice device({.bitsPerPixel = bits, .width = 6, .height = 2, .fill = 0xFF});
      const Dib dib = PictureDib(4, "abcdefgh", {});
      EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 4, 2, 0, 0, 4, 2}, {.rop = rop})) << std::hex << rop;
      EXPECT_TRUE(BandUntouched(device)) << std::hex << rop;
    }
  }
}

// Operations with source, pattern and band: pattern cells count band pixels.
TEST(ImageScaled, Transfers) {
  struct Case {
    const char* name;
    uint32_t rop;
    uint32_t (*apply)(uint32_t p, uint32_t s, uint32_t d);
  };
  const Case cases[] = {
      {"SRCAND", SRCAND, [](uint32_t, uint32_t s, uint32_t d) { return s & d; }},
      {"SRCINVERT", SRCINVERT, [](uint32_t, uint32_t s, uint32_t d) { return s ^ d; }},
      {"NOTSRCCOPY", NOTSRCCOPY, [](uint32_t, uint32_t s, uint32_t) { return ~s; }},
      {"MERGECOPY", MERGECOPY, [](uint32_t p, uint32_t s, uint32_t) { return p & s; }},
      {"PATCOPY", PATCOPY, [](uint32_t p, uint32_t, uint32_t) { return p; }},
      {"DSTINVERT", DSTINVERT, [](uint32_t, uint32_t, uint32_t d) { return ~d; }},
      {"general", 0x00B80000, [](uint32_t p, uint32_t s, uint32_t d) { return p ^ (s & (d ^ p)); }},
      {"BLACKNESS", BLACKNESS, [](uint32_t, uint32_t, uint32_t) { return 0u; }},
  };
  uint8_t patternBytes[64];
  for (uint32_t i = 0; i < 64; ++i) patternBytes[i] = static_cast<uint8_t>(i * 4 + 1);
  const SourceBitmap bitmap{0, 8, 8, 8, 1, 8, patternBytes};
  const std::string image = kTenByEight;
  for (const Case& c : cases) {
    ScaledDevice device({.width = 7, .height = 6, .resolutionA = 720, .resolutionB = 360});
    for (std::size_t i = 0; i < device.band().size(); ++i) device.band().data()[i] = static_cast<uint8_t>(i * 77 + 9);
    const PhysicalBrush brush = PatternBrush(device.handle(), bitmap);
    PlaneImage expected = BandImage(device);
    for (uint32_t row = 1; row < 5; ++row) {
      for (uint32_t column = 1; column < 6; ++column) {
        const std::size_t letter = (row - 1) * 2 * 10 + (column - 1) * 2;
        const uint32_t s = ImageColors()[static_cast<std::size_t>(image[letter] - 'a')];
        const uint32_t p = Gray(patternBytes[row % 8 * 8 + column % 8]);
        expected.SetColor(column, row, c.apply(p, s, expected.Color(column, row)));
      }
    }
    const Dib dib = PictureDib(10, kTenByEight, {});
    EXPECT_EQ(1u, Stretch(device, dib, {2, 2, 10, 8, 0, 0, 10, 8}, {.rop = c.rop, .brush = &brush})) << c.name;
    EXPECT_TRUE(SameImage(expected, BandImage(device))) << c.name;
  }
}

// A copy puts the whole clipped span of its row in place: where the source does not reach, the row is black.
TEST(ImageScaled, ColumnsBeyondTheSource) {
  for (uint32_t rop : {SRCCOPY, 0x00CC0000u}) {
    ScaledDevice device({.width = 7, .height = 2});
    const Dib dib = PictureDib(4, "abcdfghi", {});
    EXPECT_EQ(1u, Stretch(device, dib, {1, 0, 4, 2, 2, 0, 4, 2}, {.rop = rop}));
    EXPECT_TRUE(BandIs(device, ImageInks(device),
                       ".cdee.."
                       ".hiee.."))
        << std::hex << rop;
  }
}

// With equal resolutions and a source that reaches all over the destination the device is a plain color band.
TEST(ImageScaled, EqualResolutionsEqualThePlainDevice) {
  const ImagePlace places[] = {
      {1, 1, 10, 8, 0, 0, 10, 8}, {-3, -2, 20, 13, 0, 0, 10, 8}, {12, 5, -7, -4, 2, 1, 6, 5}, {3, 2, 4, 3, 6, 0, 4, 8}};
  for (uint16_t resolution : {uint16_t{1}, uint16_t{90}, uint16_t{600}}) {
    for (uint32_t rop : {SRCCOPY, SRCAND, NOTSRCCOPY, 0x00CC0000u}) {
      for (const ImagePlace& place : places) {
        PlaneImage planes[2];
        uint32_t results[2];
        for (int i = 0; i < 2; ++i) {
          TestDevice device({.kind = static_cast<uint16_t>(i == 0 ? QNV_KIND_SCALED : QNV_KIND_RASTER),
                             .width = 13,
                             .height = 6,
                             .resolutionA = resolution,
                             .resolutionB = resolution});
          const Dib dib = PictureDib(10, kTenByEight, {.bitCount = 8});
          results[i] = Stretch(device, dib, place, {.rop = rop});
          planes[i] = BandImage(device);
          EXPECT_TRUE(device.FencesIntact());
        }
        EXPECT_EQ(results[1], results[0]);
        EXPECT_TRUE(SameImage(planes[1], planes[0])) << resolution << " dots, rop " << std::hex << rop;
      }
    }
  }
}

TEST(ImageScaled, RunLengthData) {
  ScaledDevice device({.width = 4, .height = 2, .resolutionA = 720, .resolutionB = 360});
  const Dib dib(DibInfo(6, 4, {.bitCount = 8, .compression = BI_RLE8}, FullTable(8)),
                RleWriter()
                    .Run(6, 1)
                    .EndOfLine()
                    .Literal(6, {2, 3, 4, 5, 6, 7})
                    .EndOfLine()
                    .Run(6, 8)
                    .EndOfLine()
                    .Run(3, 9)
                    .Run(3, 10)
                    .EndOfBitmap()
                    .bytes());
  EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 6, 4, 0, 0, 6, 4}));
  EXPECT_TRUE(BandIs(device, ImageInks(device),
                     "jjk."
                     "ceg."));
}

}  // namespace
}  // namespace qnv::test
