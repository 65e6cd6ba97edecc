// Glyph bits: where each one lies in the font's memory and what it writes.
#include <gtest/gtest.h>

#include "text/text_cells.h"

namespace qnv::test {
namespace {

// A glyph of no pattern that repeats within a byte.
std::string IrregularGlyph(int width, int height) {
  std::string picture;
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) picture += (column * 7 + row * 3 + width) % 5 < 2 ? '#' : '.';
  }
  return picture;
}

Font FontOf(int width, int height, std::string_view picture) {
  return FontBuilder({.height = static_cast<int16_t>(height), .firstChar = 'a', .lastChar = 'a'})
      .Glyph('a', width, picture)
      .Build();
}

// Every width of up to three glyph columns, cut at every place by the clip rectangle.
TEST(GlyphPainting, EveryWidthAndCut) {
  for (int width = 1; width <= 25; ++width) {
    const std::string picture = IrregularGlyph(width, 3);
    const Font font = FontOf(width, 3, picture);
    for (int cut = 0; cut <= width; ++cut) {
      for (int keep : {1, 7, 8, 9, 30}) {
        for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
          TestDevice device({.bitsPerPixel = depth, .width = 31, .height = 5});
          DRAWMODE mode = TextMode(OPAQUE);
          const BandRect clip{2 + cut, 0, 2 + cut + keep, 5};
          EXPECT_EQ(width, DrawTextAt(device, 2, 1, "a", font, mode, {.clip = &clip}));
          PlaneImage expected = UntouchedBand(device);
          PutCell(&expected, picture, width, 2, 1, clip);
          EXPECT_TRUE(BandShows(device, expected))
              << "width " << width << ", cut " << cut << ", kept " << keep << ", " << depth << " bits";
        }
      }
    }
  }
}

// Rows skipped at the top move within each glyph column.
TEST(GlyphPainting, EveryRowCut) {
  const std::string picture = IrregularGlyph(17, 11);
  const Font font = FontOf(17, 11, picture);
  for (int top = 0; top <= 11; ++top) {
    for (int rows : {1, 4, 20}) {
      TestDevice device({.width = 17, .height = 11});
      DRAWMODE mode = TextMode(OPAQUE);
      const BandRect clip{0, top, 17, top + rows};
      DrawTextAt(device, 0, 0, "a", font, mode, {.clip = &clip});
      PlaneImage expected = UntouchedBand(device);
      PutCell(&expected, picture, 17, 0, 0, clip);
      EXPECT_TRUE(BandShows(device, expected)) << "top " << top << ", rows " << rows;
    }
  }
}

// A page printed in bands of any height shows the same glyph.
TEST(GlyphPainting, AcrossBands) {
  const std::string picture = IrregularGlyph(17, 11);
  const Font font = FontOf(17, 11, picture);
  for (int32_t bandRows : {1, 3, 5}) {
    for (int32_t top = 0; top < 15; top += bandRows) {
      TestDevice device({.width = 20, .height = static_cast<uint32_t>(bandRows), .top = top});
      DRAWMODE mode = TextMode();
      DrawTextAt(device, 1, 2, "a", font, mode);
      PlaneImage expected = UntouchedBand(device);
      PutCell(&expected, picture, 17, 1, 2 - top, {0, 0, 20, bandRows}, ColorsOf(TRANSPARENT));
      EXPECT_TRUE(BandShows(device, expected)) << "band of " << bandRows << " rows at " << top;
    }
  }
}

// Every mode but TRANSPARENT paints the clear bits; the raster operation has no part in text.
TEST(GlyphPainting, BackgroundModes) {
  const Font font = SmallFont().Build();
  for (int bkMode : {TRANSPARENT, OPAQUE, 0, 3, -1}) {
    for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
      TestDevice device({.bitsPerPixel = depth, .width = 3, .height = 4});
      DRAWMODE mode = TextMode(static_cast<int16_t>(bkMode));
      mode.Rop2 = R2_XORPEN;
      DrawTextAt(device, 0, 0, "a", font, mode);
      EXPECT_TRUE(BandIs(device, TextInks(), bkMode == TRANSPARENT ? "TTT T.T T.T TTT" : "TTT TBT TBT TTT"))
          << "mode " << bkMode << ", " << depth << " bits";
    }
  }
}

// The bytes of a color: bits 16..23 first; a gray band takes those alone.
TEST(GlyphPainting, ByteOrder) {
  const Font font = FontOf(2, 1, "#.");
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

// Glyph offsets count from the block's base, the table from the record; the form of the table is the exact type.
TEST(GlyphPainting, FontRecords) {
  struct Case {
    const char* name;
    FontShape shape;
  };
  const Case cases[] = {
      {"long table at the base", {}},
      {"short table at the base", {.table = TableForm::kShort}},
      {"long table at an odd offset", {.offset = 1001}},
      {"short table far into the block", {.table = TableForm::kShort, .offset = 40000}},
      {"another type bit beside the short one: long table", {.typeBits = 0x201}},
      {"a vector-like type: long table", {.typeBits = 0x8001}},
  };
  for (const Case& c : cases) {
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
