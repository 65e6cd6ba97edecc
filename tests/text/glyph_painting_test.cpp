// Glyph bits: where each one lies in the font's memory and what it writes.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

bool BitAt(int width, int column, int row) { return (column * 7 + row * 3 + width) % 5 < 2; }

std::string GlyphPicture(int width, int height) {
  std::string picture;
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) picture += BitAt(width, column, row) ? '#' : '.';
  }
  return picture;
}

// Every width of up to three glyph columns, cut at every place by the clip rectangle.
TEST(GlyphPainting, EveryWidthAndCut) {
  constexpr int kHeight = 3;
  for (int width = 1; width <= 25; ++width) {
    const Font font = FontBuilder({.height = kHeight, .firstChar = 'a', .lastChar = 'a'})
                          .Glyph('a', width, GlyphPicture(width, kHeight))
                          .Build();
    for (int cut = 0; cut <= width; ++cut) {
      for (int keep : {1, 7, 8, 9, 30}) {
        TestDevice device({.bitsPerPixel = static_cast<uint16_t>(cut % 2 == 0 ? 24 : 8), .width = 31, .height = 5});
        DRAWMODE mode = TextMode(OPAQUE);
        const BandRect clip{2 + cut, 0, 2 + cut + keep, 5};
        PlaneImage expected = UntouchedBand(device);
        for (int row = 0; row < kHeight; ++row) {
          for (int column = cut; column < width && column < cut + keep; ++column) {
            expected.SetColor(static_cast<uint32_t>(2 + column), static_cast<uint32_t>(1 + row),
                              BitAt(width, column, row) ? kTextColor : kBackColor);
          }
        }
        EXPECT_EQ(width, DrawTextAt(device, 2, 1, "a", font, mode, {.clip = &clip}));
        EXPECT_TRUE(SameImage(expected, BandImage(device)))
            << "width " << width << ", cut " << cut << ", kept " << keep;
        EXPECT_TRUE(device.FencesIntact());
      }
    }
  }
}

// Rows skipped at the top move within each glyph column.
TEST(GlyphPainting, EveryRowCut) {
  constexpr int kHeight = 11;
  const Font font = FontBuilder({.height = kHeight, .firstChar = 'a', .lastChar = 'a'})
                        .Glyph('a', 17, GlyphPicture(17, kHeight))
                        .Build();
  for (int top = 0; top <= kHeight; ++top) {
    for (int rows : {1, 4, 20}) {
      TestDevice device({.width = 17, .height = 11});
      DRAWMODE mode = TextMode(OPAQUE);
      const BandRect clip{0, top, 17, top + rows};
      PlaneImage expected = UntouchedBand(device);
      for (int row = top; row < kHeight && row < top + rows; ++row) {
        for (int column = 0; column < 17; ++column) {
          expected.SetColor(static_cast<uint32_t>(column), static_cast<uint32_t>(row),
                            BitAt(17, column, row) ? kTextColor : kBackColor);
        }
      }
      DrawTextAt(device, 0, 0, "a", font, mode, {.clip = &clip});
      EXPECT_TRUE(SameImage(expected, BandImage(device))) << "top " << top << ", rows " << rows;
    }
  }
}

// A page printed in bands of any height shows the same glyph.
TEST(GlyphPainting, AcrossBands) {
  constexpr int kHeight = 11;
  const Font font = FontBuilder({.height = kHeight, .firstChar = 'a', .lastChar = 'a'})
                        .Glyph('a', 17, GlyphPicture(17, kHeight))
                        .Build();
  for (uint32_t bandRows : {1u, 3u, 5u}) {
    for (int32_t top = 0; top < 15; top += static_cast<int32_t>(bandRows)) {
      TestDevice device({.width = 20, .height = bandRows, .top = top});
      DRAWMODE mode = TextMode(TRANSPARENT);
      PlaneImage expected = UntouchedBand(device);
      for (int row = 0; row < kHeight; ++row) {
        const int bandRow = 2 + row - top;
        if (bandRow < 0 || bandRow >= static_cast<int>(bandRows)) continue;
        for (int column = 0; column < 17; ++column) {
          if (BitAt(17, column, row)) {
            expected.SetColor(static_cast<uint32_t>(1 + column), static_cast<uint32_t>(bandRow), kTextColor);
          }
        }
      }
      DrawTextAt(device, 1, 2, "a", font, mode);
      EXPECT_TRUE(SameImage(expected, BandImage(device))) << "band of " << bandRows << " rows at " << top;
      EXPECT_TRUE(device.FencesIntact());
    }
  }
}

struct ModeCase {
  const char* name;
  int16_t bkMode;
  const char* picture;  // 3 x 4
};

TEST(GlyphPainting, BackgroundModes) {
  const ModeCase cases[] = {
      {"transparent leaves clear bits alone", TRANSPARENT, "TTTT.TT.TTTT"},
      {"opaque paints them", OPAQUE, "TTTTBTTBTTTT"},
      {"0 paints them", 0, "TTTTBTTBTTTT"},
      {"3 paints them", 3, "TTTTBTTBTTTT"},
      {"-1 paints them", -1, "TTTTBTTBTTTT"},
  };
  const Font font = SmallFont().Build();
  for (const ModeCase& c : cases) {
    for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
      TestDevice device({.bitsPerPixel = depth, .width = 3, .height = 4});
      DRAWMODE mode = TextMode(c.bkMode);
      mode.Rop2 = R2_XORPEN;  // has no part in text
      DrawTextAt(device, 0, 0, "a", font, mode);
      EXPECT_TRUE(BandIs(device, TextInks(), c.picture)) << c.name << ", " << depth << " bits";
    }
  }
}

// The bytes of a color: bits 16..23 first; a gray band takes those alone.
TEST(GlyphPainting, ByteOrder) {
  const Font font = FontBuilder({.height = 1, .firstChar = 'a', .lastChar = 'a'}).Glyph('a', 2, "#.").Build();
  DRAWMODE mode = TextMode(OPAQUE);
  mode.TextColor = 0xEE112233;
  mode.bkColor = 0xDD445566;
  TestDevice color({.width = 2, .height = 1});
  DrawTextAt(color, 0, 0, "a", font, mode);
  const uint8_t colorBytes[8] = {0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0xCC, 0xCC};
  EXPECT_EQ(0, std::memcmp(colorBytes, color.band().data(), sizeof colorBytes));
  TestDevice gray({.bitsPerPixel = 8, .width = 2, .height = 1});
  DrawTextAt(gray, 0, 0, "a", font, mode);
  const uint8_t grayBytes[4] = {0x11, 0x44, 0xCC, 0xCC};
  EXPECT_EQ(0, std::memcmp(grayBytes, gray.band().data(), sizeof grayBytes));
}

struct RecordCase {
  const char* name;
  FontShape shape;
};

// Glyph offsets count from the block's base, the table from the record; the form of the table is the exact type.
TEST(GlyphPainting, FontRecords) {
  const RecordCase cases[] = {
      {"long table at the base", {}},
      {"short table at the base", {.table = TableForm::kShort}},
      {"long table at an odd offset", {.offset = 1001}},
      {"short table far into the block", {.table = TableForm::kShort, .offset = 40000}},
      {"another type bit beside the short one: long table", {.typeBits = 0x201}},
      {"a vector-like type: long table", {.typeBits = 0x8001}},
  };
  for (const RecordCase& c : cases) {
    const Font font = SmallFont(c.shape).Build();
    TestDevice device({.width = 16, .height = 4});
    DRAWMODE mode = TextMode();
    EXPECT_EQ(14, DrawTextAt(device, 1, 0, "acb", font, mode)) << c.name;
    EXPECT_TRUE(BandIs(device, TextInks(),
                       ".TTTT........TT."
                       ".T.T.TT....TT.T."
                       ".T.T...TTTT....."
                       ".TTT........TTT."))
        << c.name;
  }
}

// A long table can point past 64 KiB.
TEST(GlyphPainting, FarGlyphs) {
  std::vector<uint8_t> bytes(70001, 0);
  bytes[22] = 1;
  bytes[24] = 1;
  bytes[29] = bytes[30] = 'a';
  bytes[82] = 3;
  bytes[84] = 0x70;  // 70000
  bytes[85] = 0x11;
  bytes[86] = 0x01;
  bytes[70000] = 0xA0;
  const Font font(bytes, 0);
  TestDevice device({.width = 4, .height = 1});
  DRAWMODE mode = TextMode(OPAQUE);
  EXPECT_EQ(3, DrawTextAt(device, 0, 0, "a", font, mode));
  EXPECT_TRUE(BandIs(device, TextInks(), "TBT."));
}

TEST(GlyphPainting, LaterCellsCoverEarlierOnes) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 6, .height = 4});
  DRAWMODE mode = TextMode(OPAQUE);
  mode.CharacterExtra = -1;
  DrawTextAt(device, 0, 0, "ad", font, mode);
  EXPECT_TRUE(BandIs(device, TextInks(),
                     "TTBB.."
                     "TBBB.."
                     "TBBB.."
                     "TTBB.."));
}

TEST(GlyphPainting, HeightsThatPaintNothing) {
  for (int16_t height : {int16_t{0}, int16_t{-5}}) {
    std::vector<uint8_t> bytes(82 + 6, 0);
    bytes[22] = static_cast<uint8_t>(height);
    bytes[23] = static_cast<uint8_t>(height >> 8);
    bytes[24] = 1;
    bytes[29] = bytes[30] = 'a';
    bytes[82] = 3;
    bytes[84] = 88;
    const Font font(bytes, 0);
    TestDevice device({.width = 6, .height = 4});
    DRAWMODE mode = TextMode(OPAQUE);
    EXPECT_EQ(3, DrawTextAt(device, 0, 0, "a", font, mode));
    EXPECT_TRUE(BandUntouched(device)) << "height " << height;
  }
}

}  // namespace
}  // namespace qnv::test
