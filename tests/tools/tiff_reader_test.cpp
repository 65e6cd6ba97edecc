// TIFF pictures of every kind, several in a file, and what becomes of damaged ones.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tiff_sample.h"

namespace qnv::test::picture_formats {
namespace {

TEST(TiffReader, EveryKindShowsItsColors) {
  struct Case {
    const char* name;
    TiffSample file;
    int bitCount;
  };
  const Case cases[] = {
      {"1 bit", {.photometric = PHOTOMETRIC_MINISBLACK, .bits = 1, .samples = 1}, 1},
      {"1 bit, white is 0", {.photometric = PHOTOMETRIC_MINISWHITE, .bits = 1, .samples = 1}, 1},
      {"fax",
       {.photometric = PHOTOMETRIC_MINISWHITE, .bits = 1, .samples = 1, .compression = COMPRESSION_CCITTFAX4},
       1},
      {"reversed bits",
       {.photometric = PHOTOMETRIC_MINISBLACK, .bits = 1, .samples = 1, .fillOrder = FILLORDER_LSB2MSB},
       1},
      {"2 bits", {.photometric = PHOTOMETRIC_MINISBLACK, .bits = 2, .samples = 1}, 4},
      {"4 bits", {.photometric = PHOTOMETRIC_MINISBLACK, .bits = 4, .samples = 1, .compression = COMPRESSION_LZW}, 4},
      {"gray", {.photometric = PHOTOMETRIC_MINISBLACK, .samples = 1}, 8},
      {"gray, white is 0", {.photometric = PHOTOMETRIC_MINISWHITE, .samples = 1}, 8},
      {"palette of 1 bit", {.photometric = PHOTOMETRIC_PALETTE, .bits = 1, .samples = 1}, 1},
      {"palette of 2 bits", {.photometric = PHOTOMETRIC_PALETTE, .bits = 2, .samples = 1}, 4},
      {"palette of 4 bits", {.photometric = PHOTOMETRIC_PALETTE, .bits = 4, .samples = 1}, 4},
      {"palette", {.photometric = PHOTOMETRIC_PALETTE, .samples = 1, .compression = COMPRESSION_PACKBITS}, 8},
      {"RGB", {}, 24},
      {"RGB, one strip", {.rowsPerStrip = 18}, 24},
      {"RGB, big endian", {.mode = "wb"}, 24},
      {"RGB, BigTIFF", {.mode = "w8"}, 24},
      {"RGB, LZW", {.compression = COMPRESSION_LZW}, 24},
      {"RGB, deflate", {.compression = COMPRESSION_ADOBE_DEFLATE}, 24},
      {"planes", {.planar = PLANARCONFIG_SEPARATE}, 24},
      {"tiles", {.tile = 16}, 24},
      {"tiles of 16 bits", {.bits = 16, .tile = 16}, 24},
      {"tiles, compressed", {.compression = COMPRESSION_LZW, .tile = 16}, 24},
      {"tiles of gray", {.photometric = PHOTOMETRIC_MINISBLACK, .samples = 1, .tile = 16}, 24},
      {"CMYK", {.photometric = PHOTOMETRIC_SEPARATED, .samples = 4}, 24},
      {"16 bits", {.bits = 16}, 24},
      {"16 bits, big endian", {.bits = 16, .mode = "wb"}, 24},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const WholePicture picture = ReadWhole(TiffBytes({c.file}), kDecoders);
    EXPECT_EQ(picture.bitCount, c.bitCount);
    ExpectColors(picture, [&](int x, int y) { return c.file.Color(x, y); });
    const bool cmyk = c.file.photometric == PHOTOMETRIC_SEPARATED;
    EXPECT_EQ(picture.notes, cmyk ? std::vector<std::string>{"its CMYK colors are converted without a color profile"}
                                  : std::vector<std::string>{});
  }
}

TEST(TiffReader, AlphaIsLaidOverWhite) {
  const TiffSample file{.samples = 4, .alpha = EXTRASAMPLE_UNASSALPHA};
  const WholePicture picture = ReadWhole(TiffBytes({file}), kDecoders);
  EXPECT_EQ(picture.notes, std::vector<std::string>{"its transparency is laid over white"});
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const uint32_t color = ColorOf(picture, x, y);
      const uint32_t expected = OverWhite(file.Color(x, y), file.Value(x, y, 3));
      for (int shift = 0; shift < 24; shift += 8) {
        // libtiff multiplies by alpha and rounds before the paper is added.
        ASSERT_NEAR(static_cast<int>(color >> shift & 0xFF), static_cast<int>(expected >> shift & 0xFF), 1);
      }
    }
  }
}

TEST(TiffReader, OrientationIsRespected) {
  for (const TiffSample& kind :
       {TiffSample{}, TiffSample{.photometric = PHOTOMETRIC_PALETTE, .samples = 1}, TiffSample{.bits = 16},
        TiffSample{.photometric = PHOTOMETRIC_PALETTE, .bits = 4, .samples = 1}, TiffSample{.tile = 16},
        TiffSample{.photometric = PHOTOMETRIC_MINISBLACK, .bits = 1, .samples = 1}}) {
    for (int number = 1; number <= 8; ++number) {
      SCOPED_TRACE(testing::Message() << "orientation " << number << ", bits " << kind.bits);
      TiffSample file = kind;
      file.orientation = static_cast<uint16_t>(number);
      const WholePicture picture = ReadWhole(TiffBytes({file}), kDecoders);
      ASSERT_EQ(picture.width, number < 5 ? file.width : file.height);
      const int right = file.width - 1;
      const int bottom = file.height - 1;
      ExpectColors(picture, [&](int x, int y) {
        const std::pair<int, int> source[] = {{x, y}, {right - x, y},  {right - x, bottom - y}, {x, bottom - y},
                                              {y, x}, {y, bottom - x}, {right - y, bottom - x}, {right - y, x}};
        return file.Color(source[number - 1].first, source[number - 1].second);
      });
    }
  }
}

TEST(TiffReader, EveryPictureIsAPage) {
  const std::vector<TiffSample> pages{
      {.dpi = 254}, {.width = 3, .height = 2}, {.photometric = PHOTOMETRIC_MINISBLACK, .bits = 1, .samples = 1}};
  std::vector<std::string> notes;
  const auto pictures = tool::OpenPictures(tool::InputOf(TiffBytes(pages, 1), "x.tif"), kDecoders,
                                           [&](const std::string& note) { notes.push_back(note); });
  ASSERT_EQ(pictures->count(), 2);  // the second is marked as a thumbnail
  EXPECT_EQ(pictures->Open(0)->xPixelsPerMetre(), 10000);
  EXPECT_EQ(pictures->Open(0)->yPixelsPerMetre(), 20000);
  EXPECT_EQ(pictures->Open(1)->width(), 21);
  EXPECT_EQ(pictures->Open(1)->Rows()->Window(0, 1).info[14], 1);  // bits a pixel
  EXPECT_TRUE(notes.empty());
}

// What comes before the break is printed.
TEST(TiffReader, DirectoriesMayBreakOff) {
  FileBytes file = TiffBytes({{}, {}, {}});
  file.resize(file.size() - 600);  // in the rows of the third picture, whose directory follows them
  std::vector<std::string> notes;
  const auto pictures = tool::OpenPictures(tool::InputOf(file, "x.tif"), kDecoders,
                                           [&](const std::string& note) { notes.push_back(note); });
  EXPECT_EQ(pictures->count(), 2);
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_TRUE(notes[0].starts_with("of its pictures only the first 2 can be read: ")) << notes[0];
  ExpectColors(ReadWhole(file, kDecoders), [](int x, int y) { return TiffSample{}.Color(x, y); });
}

TEST(TiffReader, FilesMayBreakOffAnywhere) {
  for (const TiffSample& file :
       {TiffSample{}, TiffSample{.compression = COMPRESSION_LZW}, TiffSample{.tile = 16}, TiffSample{.bits = 16},
        TiffSample{
            .photometric = PHOTOMETRIC_MINISWHITE, .bits = 1, .samples = 1, .compression = COMPRESSION_CCITTFAX4}}) {
    const FileBytes whole = TiffBytes({file});
    // Directories stand at the end, so most cut files are refused.
    EXPECT_LT(ReadOfCutFiles(whole), static_cast<int>(whole.size()) / 2);
    EXPECT_GT(RefusedOfDamagedFiles(whole, 4, {0xFF}), 4);
  }
}

}  // namespace
}  // namespace qnv::test::picture_formats
