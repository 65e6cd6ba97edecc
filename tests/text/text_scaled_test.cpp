// Text on the resolution-mapping device: laid out in caller pixels, each glyph pixel mapped to at most one band pixel.
#include <gtest/gtest.h>

#include "support/random_bytes.h"
#include "text/text_cells.h"

namespace qnv::test {
namespace {

// The columns and rows of a glyph are mapped each by themselves, so a case writes what the band shows as two lines: of
// every band column the glyph's column, of every band row the glyph's row; '.' stays untouched.
struct ScaledCase {
  const char* name;
  uint16_t resolutionA, resolutionB;
  char code;
  int32_t x, y;
  std::string_view columns;
  std::string_view rows;
  BandRect clip = kEverywhere;
  BandCorner band{};
  DrawingOrigin origin{};
};

// On a band of 13 x 6.
const ScaledCase kScaledCases[] = {
    {"equal resolutions", 360, 360, 'c', 1, 1, ".0123456789", ".0123"},
    // Odd columns are dropped; rows 0, 1, 2, 3 land on 0, 1, 1, 2 and the later one stays.
    {"halved", 720, 360, 'c', 0, 0, "02468", "023"},
    {"halved, from an odd column and row", 720, 360, 'c', 1, 1, ".13579", ".13"},
    // Every row has a band row of its own, every other band row stays; columns take the last place of theirs.
    {"doubled", 360, 720, 'a', 0, 0, ".0.1.2", "0.1.2"},
    {"doubled, columns in the second inch", 360, 720, 'a', 359, 0, "...0.1.2", "0.1.2", kEverywhere, {716, 0}},
    // Of three columns the third is dropped; rows 0, 1, 2, 3 land on 0, 1, 1, 2.
    {"two thirds", 600, 400, 'c', 0, 0, "0134679", "023"},
    {"clip in caller pixels", 720, 360, 'c', 0, 0, "..46", ".23", {3, 1, 8, 4}},
    {"clip outside the mapped band", 720, 360, 'c', 0, 0, "", "", {26, 0, 100, 100}},
    {"the clip is met with the mapped band", 720, 360, 'c', 20, 0, "..........024", "023"},
    {"origin in caller pixels", 720, 360, 'a', 1, 1, "..02", ".023", kEverywhere, {0, 0}, {3, 1}},
    {"band further down the page", 720, 360, 'c', 20, 40, "..02468", "23", kEverywhere, {8, 21}},
    // The band's top, row 4, is row 2 of the page; that row lands above it.
    {"three fifths, a row just above the band", 300, 500, 'c', -2, 0, "2.3.45.6.78.9", ".3", kEverywhere, {0, 4}},
    {"left of the page is passed over", 720, 360, 'a', -4, 0, "", "", kEverywhere, {-6, 0}},
};

TEST(TextScaled, Cases) {
  for (TableForm table : {TableForm::kShort, TableForm::kLong}) {
    const Font font = SmallFont({.table = table}).Build();
    for (const ScaledCase& c : kScaledCases) {
      ScaledDevice device({.width = 13,
                           .height = 6,
                           .resolutionA = c.resolutionA,
                           .resolutionB = c.resolutionB,
                           .left = c.band.left,
                           .top = c.band.top});
      device.SetOrigin(c.origin.x, c.origin.y);
      const SmallGlyph& glyph = kSmallGlyphs[c.code - 'a'];
      DRAWMODE mode = TextMode(OPAQUE);
      EXPECT_EQ(glyph.width, DrawTextAt(device, c.x, c.y, {&c.code, 1}, font, mode, {.clip = &c.clip})) << c.name;
      std::string picture;
      for (char row : c.rows) {
        std::string line(13, '.');
        for (std::size_t x = 0; x < c.columns.size(); ++x) {
          if (row == '.' || c.columns[x] == '.') continue;
          const int pixel = (row - '0') * glyph.width + c.columns[x] - '0';
          line[x] = glyph.picture[static_cast<std::size_t>(pixel)] == '#' ? 'T' : 'B';
        }
        picture += line;
      }
      EXPECT_TRUE(BandIs(device, TextInks(), picture)) << c.name;
    }
  }
}

// The pixels themselves, without the two lines of a case.
TEST(TextScaled, PicturesWrittenOut) {
  const Font font = SmallFont().Build();
  ScaledDevice halved({.width = 13, .height = 6, .resolutionA = 720});
  DRAWMODE opaque = TextMode(OPAQUE);
  DrawTextAt(halved, 0, 0, "cac", font, opaque);
  EXPECT_TRUE(BandIs(halved, TextInks(),
                     "TBBBBTTBBBBT."
                     "BBTTBTTBTTBB."
                     "BBBBTTTBBBBT."));
  ScaledDevice doubled({.width = 13, .height = 6, .resolutionB = 720});
  // What lands in one place adds up where gaps are left alone.
  DRAWMODE transparent = TextMode(TRANSPARENT);
  DrawTextAt(halved, 0, 6, "c", font, transparent);
  EXPECT_TRUE(BandIs(halved, TextInks(),
                     "TBBBBTTBBBBT."
                     "BBTTBTTBTTBB."
                     "BBBBTTTBBBBT."
                     "T............"
                     ".TTTT........"
                     "....T........"));
  DrawTextAt(doubled, 0, 0, "a", font, transparent);
  EXPECT_TRUE(BandIs(doubled, TextInks(),
                     ".T.T.T......."
                     "............."
                     ".T...T......."
                     "............."
                     ".T...T......."));
}

// With equal resolutions the device is a plain one, limits without a clip rectangle included.
TEST(TextScaled, EqualResolutionsEqualThePlainDevice) {
  const Font font = SmallFont().Build();
  const BandRect opaque{2, 1, 9, 5};
  const int16_t widths[4] = {5, 3, 11, 2};
  for (uint16_t resolution : {uint16_t{1}, uint16_t{300}, uint16_t{720}}) {
    for (int32_t origin : {0, 3}) {
      for (bool withClip : {true, false}) {
        for (bool withWidths : {true, false}) {
          DeviceOptions options{.width = 25, .height = 20, .resolutionA = resolution, .resolutionB = resolution};
          TestDevice plain(options);
          ScaledDevice scaled(options);
          DRAWMODE mode = TextMode(OPAQUE);
          const TextSetup setup{.clip = withClip ? &kEverywhere : nullptr,
                                .charWidths = withWidths ? widths : nullptr,
                                .opaqueRect = &opaque,
                                .options = ETO_OPAQUE};
          plain.SetOrigin(origin, origin);
          scaled.SetOrigin(origin, origin);
          EXPECT_EQ(DrawTextAt(plain, 1, 2, "acbd", font, mode, setup),
                    DrawTextAt(scaled, 1, 2, "acbd", font, mode, setup));
          EXPECT_TRUE(BandShows(scaled, BandImage(plain)))
              << resolution << " dots, origin " << origin << (withClip ? ", clip" : "")
              << (withWidths ? ", widths" : "");
        }
      }
    }
  }
}

// Without a clip rectangle the limits are the description's numbers in caller pixels, exchanged.
TEST(TextScaled, LimitsWithoutAClipRectangle) {
  const Font font =
      FontBuilder({.height = 4, .firstChar = 'a', .lastChar = 'a'}).Glyph('a', 10, std::string(40, '#')).Build();
  ScaledDevice device({.width = 40, .height = 20, .resolutionA = 720});
  DRAWMODE mode = TextMode();
  // Columns stop before caller column 19, rows before caller row 39.
  EXPECT_EQ(10, DrawTextAt(device, 12, 37, "a", font, mode, {.clip = nullptr}));
  // Rows 37 and 38 both are band row 19; columns 12, 14, 16, 18.
  PlaneImage expected = UntouchedBand(device);
  PutRect(&expected, {6, 19, 10, 20}, kTextColor);
  EXPECT_TRUE(BandShows(device, expected));
}

TEST(TextScaled, OpaqueRectangle) {
  const Font font = SmallFont().Build();
  ScaledDevice device({.width = 13, .height = 6, .resolutionA = 720});
  DRAWMODE mode = TextMode();
  const BandRect rect{2, 1, 9, 6};
  DrawTextAt(device, 4, 2, "a", font, mode, {.opaqueRect = &rect, .options = ETO_OPAQUE});
  // The fill keeps even rows and columns: 2 and 4 down, 2..8 across. Text rows 2..5 land on 1, 2, 2, 3.
  EXPECT_TRUE(BandIs(device, TextInks(), "............. .BTTB........ .BTTB........ ..TT........."));
}

TEST(TextScaled, MeasuringIsInCallerPixels) {
  const Font font = SmallFont().Build();
  ScaledDevice device({.width = 13, .height = 6, .resolutionA = 720});
  DRAWMODE mode = TextMode(OPAQUE, {5, 2, 1});
  EXPECT_EQ(Extent(4, 12), MeasureText(device, "bdbdb", font, mode));
  EXPECT_EQ(1, mode.BreakErr);
  EXPECT_TRUE(BandUntouched(device));
}

// A two-byte font needs no widths, and takes the same mapping.
TEST(TextScaled, TwoByteFont) {
  const Font font = FontBuilder({.height = 2, .twoByte = true})
                        .Glyph(300, 9,
                               "#.......#"
                               ".#######.")
                        .Build();
  ScaledDevice device({.width = 13, .height = 6, .resolutionA = 720});
  DRAWMODE mode = TextMode(OPAQUE);
  EXPECT_EQ(18, TwoByteText(device, 0, 4, {300, 300}, 2, font, mode));
  // Columns 0, 2 .. 16 of the two cells; rows 4 and 5 land on 2 and 3.
  EXPECT_TRUE(BandIs(device, TextInks(),
                     "............."
                     "............."
                     "TBBBTBBBB...."
                     "BTTTBTTTT...."));
}

// In gray mode a text pixel is grayed where it lies, its first byte weighing 30.
TEST(TextScaled, GrayMode) {
  const Font font = SmallFont().Build();
  for (int16_t bkMode : {int16_t{TRANSPARENT}, int16_t{OPAQUE}}) {
    ScaledDevice device({.bitsPerPixel = 0, .width = 4, .height = 5});
    FillWithNoise(&device.band(), 3);
    PlaneImage expected = BandImage(device);
    CellColors colors{.text = Regrayed(kTextColor), .background = Regrayed(kBackColor)};
    if (bkMode == TRANSPARENT) colors.background.reset();
    PutText(&expected, "a", 1, 1, {0, 0, 4, 5}, colors);
    DRAWMODE mode = TextMode(bkMode);
    DrawTextAt(device, 1, 1, "a", font, mode);
    EXPECT_TRUE(BandShows(device, expected)) << "bkMode " << bkMode;
  }
}

}  // namespace
}  // namespace qnv::test
