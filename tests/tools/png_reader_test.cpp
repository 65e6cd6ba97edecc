// PNG pictures of every kind, and what becomes of damaged ones.
#include <gtest/gtest.h>

#include <utility>

#include "png_sample.h"

namespace qnv::test::picture_formats {
namespace {

TEST(PngReader, EveryKindShowsItsColors) {
  struct Case {
    int type;
    std::vector<int> depths;
    bool mayHaveKey;
  };
  const Case cases[] = {{PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}, true},
                        {PNG_COLOR_TYPE_PALETTE, {1, 2, 4, 8}, true},
                        {PNG_COLOR_TYPE_RGB, {8, 16}, true},
                        {PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}, false},
                        {PNG_COLOR_TYPE_RGB_ALPHA, {8, 16}, false}};
  for (const Case& c : cases) {
    for (const int depth : c.depths) {
      for (const bool interlaced : {false, true}) {
        for (const bool hasKey : {false, true}) {
          if (hasKey && !c.mayHaveKey) continue;
          SCOPED_TRACE(testing::Message() << "type " << c.type << ", depth " << depth << ", interlaced " << interlaced
                                          << ", key " << hasKey);
          const PngSample file{.type = c.type, .depth = depth, .interlaced = interlaced, .hasKey = hasKey};
          const WholePicture picture = ReadWhole(file.Bytes(), kDecoders);
          const bool color = c.type == PNG_COLOR_TYPE_RGB || c.type == PNG_COLOR_TYPE_RGB_ALPHA;
          EXPECT_EQ(picture.bitCount, color ? 24 : depth == 16 ? 8 : depth == 2 ? 4 : depth);
          ExpectColors(picture, [&](int x, int y) { return file.Color(x, y); });
          const bool transparent = hasKey || (c.type & PNG_COLOR_MASK_ALPHA) != 0;
          EXPECT_EQ(picture.notes.size(), transparent ? picture.notes.size() : 0);
          for (const std::string& note : picture.notes) EXPECT_EQ(note, "its transparency is laid over white");
          EXPECT_EQ(picture.notes.empty(), !transparent);
        }
      }
    }
  }
}

TEST(PngReader, SmallSidesInterlaced) {
  for (const auto& [width, height] : {std::pair{1, 1}, {1, 9}, {9, 1}, {4, 4}, {5, 3}, {33, 17}}) {
    const PngSample file{.interlaced = true, .width = width, .height = height};
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    ExpectColors(ReadWhole(file.Bytes(), kDecoders), [&](int x, int y) { return file.Color(x, y); });
  }
}

TEST(PngReader, ResolutionIsRead) {
  const WholePicture picture = ReadWhole(PngSample{.pixelsPerMetre = 11811}.Bytes(), kDecoders);
  EXPECT_EQ(picture.xPixelsPerMetre, 11811);
  EXPECT_EQ(picture.yPixelsPerMetre, 23622);
  EXPECT_EQ(ReadWhole(PngSample{}.Bytes(), kDecoders).xPixelsPerMetre, 0);
}

TEST(PngReader, FilesMayBreakOffAnywhere) {
  for (const int type : {PNG_COLOR_TYPE_RGB, PNG_COLOR_TYPE_GRAY}) {
    const PngSample file{.type = type, .height = 40};
    const int pictures = ExpectCutFilesAreRead(file.Bytes(), [&](int x, int y) { return file.Color(x, y); });
    EXPECT_GT(pictures, 100);
  }
  // The white of a palette is its lightest color, so only that nothing breaks is asked here and for interlaced ones.
  for (const PngSample& file : {PngSample{.type = PNG_COLOR_TYPE_PALETTE, .depth = 4}, PngSample{.interlaced = true},
                                PngSample{.depth = 16, .hasKey = true}}) {
    EXPECT_GT(ReadOfCutFiles(file.Bytes()), 50);
  }
}

TEST(PngReader, DamagedBytesDoNoHarm) {
  const FileBytes whole = PngSample{.type = PNG_COLOR_TYPE_PALETTE, .depth = 4, .hasKey = true}.Bytes();
  EXPECT_GT(RefusedOfDamagedFiles(whole, 8, {0x00, 0x01, 0x7F, 0x80, 0xFF}), 50);
}

}  // namespace
}  // namespace qnv::test::picture_formats
