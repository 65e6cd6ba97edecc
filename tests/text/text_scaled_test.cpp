// Text on the resolution-mapping device: laid out in caller pixels, each glyph pixel mapped to at most one band pixel.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

constexpr uint32_t kColumns = 13;
constexpr uint32_t kRows = 6;
constexpr const char* kNothing = ".............";

struct ScaledCase {
  const char* name = "";
  uint16_t resolutionA = 360;
  uint16_t resolutionB = 360;
  std::string text = "c";
  int32_t x = 0;
  int32_t y = 0;
  int32_t advance = 10;
  BandRect clip = kEverywhere;
  int32_t bandLeft = 0;
  int32_t bandTop = 0;
  int32_t originX = 0;
  int32_t originY = 0;
  const char* picture = kNothing;
};

// The glyph 'c':  #........#  /  .##....##.  /  ...####...  /  ........##
const ScaledCase kCases[] = {
    {.name = "equal resolutions",
     .x = 1,
     .y = 1,
     .picture = "............."
                ".TBBBBBBBBT.."
                ".BTTBBBBTTB.."
                ".BBBTTTTBBB.."
                ".BBBBBBBBTT.."},
    // Odd columns are dropped; rows 0, 1, 2, 3 land on 0, 1, 1, 2 and the later one stays.
    {.name = "halved",
     .resolutionA = 720,
     .picture = "TBBBB........"
                "BBTTB........"
                "BBBBT........"},
    {.name = "halved, starting on an odd column and row",
     .resolutionA = 720,
     .x = 1,
     .y = 1,
     .picture = "............."
                ".TBBTB......."
                ".BBBBT......."},
    // Every row has a band row of its own, every other band row stays; columns take the last place of theirs.
    {.name = "doubled",
     .resolutionB = 720,
     .text = "a",
     .advance = 3,
     .picture = ".T.T.T......."
                "............."
                ".T.B.T......."
                "............."
                ".T.B.T......."},
    {.name = "doubled, columns in the second inch",
     .resolutionB = 720,
     .text = "a",
     .x = 359,
     .advance = 3,
     .bandLeft = 716,
     .picture = "...T.T.T....."
                "............."
                "...T.B.T....."
                "............."
                "...T.B.T....."},
    // Of three columns the third is dropped; rows 0..3 land on 0, 1, 1, 2.
    {.name = "two thirds",
     .resolutionA = 600,
     .resolutionB = 400,
     .picture = "TBBBBBT......"
                "BBTTTBB......"
                "BBBBBBT......"},
    {.name = "clip in caller pixels",
     .resolutionA = 720,
     .clip = {3, 1, 8, 4},
     .picture = "............."
                "..TT........."
                "..BB........."},
    {.name = "clip outside the mapped band", .resolutionA = 720, .clip = {26, 0, 100, 100}},
    {.name = "the clip is met with the mapped band",
     .resolutionA = 720,
     .x = 20,
     .picture = "..........TBB"
                "..........BBT"
                "..........BBB"},
    {.name = "origin in caller pixels",
     .resolutionA = 720,
     .text = "a",
     .x = 1,
     .y = 1,
     .advance = 3,
     .originX = 3,
     .originY = 1,
     .picture = "............."
                "..TT........."
                "..TT........."
                "..TT........."},
    {.name = "band further down the page",
     .resolutionA = 720,
     .text = "a",
     .x = 20,
     .y = 40,
     .advance = 3,
     .bandLeft = 8,
     .bandTop = 21,
     .picture = "..TT........."
                "..TT........."},
    {.name = "left of the page is passed over", .resolutionA = 720, .text = "a", .x = -4, .advance = 3, .bandLeft = -6},
};

TEST(TextScaled, Cases) {
  for (TableForm table : {TableForm::kShort, TableForm::kLong}) {
    const Font font = SmallFont({.table = table}).Build();
    for (const ScaledCase& c : kCases) {
      ScaledDevice device({.width = kColumns,
                           .height = kRows,
                           .resolutionA = c.resolutionA,
                           .resolutionB = c.resolutionB,
                           .left = c.bandLeft,
                           .top = c.bandTop});
      device.SetOrigin(c.originX, c.originY);
      DRAWMODE mode = TextMode(OPAQUE);
      EXPECT_EQ(c.advance, DrawTextAt(device, c.x, c.y, c.text, font, mode, {.clip = &c.clip})) << c.name;
      EXPECT_TRUE(BandIs(device, TextInks(), c.picture)) << c.name;
    }
  }
}

TEST(TextScaled, TransparentGapsStay) {
  const Font font = SmallFont().Build();
  ScaledDevice device({.width = kColumns, .height = kRows, .resolutionB = 720});
  DRAWMODE mode = TextMode(TRANSPARENT);
  DrawTextAt(device, 0, 0, "a", font, mode);
  EXPECT_TRUE(BandIs(device, TextInks(),
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
          PlaneImage planes[2];
          int32_t results[2];
          for (int i = 0; i < 2; ++i) {
            TestDevice device({.kind = static_cast<uint16_t>(i == 0 ? QNV_KIND_SCALED : QNV_KIND_RASTER),
                               .width = 25,
                               .height = 20,
                               .resolutionA = resolution,
                               .resolutionB = resolution});
            device.SetOrigin(origin, origin);
            DRAWMODE mode = TextMode(OPAQUE);
            results[i] = DrawTextAt(device, 1, 2, "acbd", font, mode,
                                    {.clip = withClip ? &kEverywhere : nullptr,
                                     .charWidths = withWidths ? widths : nullptr,
                                     .opaqueRect = &opaque,
                                     .options = ETO_OPAQUE});
            planes[i] = BandImage(device);
            EXPECT_TRUE(device.FencesIntact());
          }
          EXPECT_EQ(results[1], results[0]);
          EXPECT_TRUE(SameImage(planes[1], planes[0])) << resolution << " dots, origin " << origin
                                                       << (withClip ? ", clip" : "") << (withWidths ? ", widths" : "");
        }
      }
    }
  }
}

// Without a clip rectangle the limits are the description's numbers in caller pixels, exchanged.
TEST(TextScaled, LimitsWithoutAClipRectangle) {
  const Font font = FontBuilder({.height = 4, .firstChar = 'a', .lastChar = 'a'})
                        .Glyph('a', 10, "########################################")
                        .Build();
  ScaledDevice device({.width = 40, .height = 20, .resolutionA = 720});
  DRAWMODE mode = TextMode();
  // Columns stop before caller column 19, rows before caller row 39.
  EXPECT_EQ(10, DrawTextAt(device, 12, 37, "a", font, mode, {.clip = nullptr}));
  PlaneImage expected = UntouchedBand(device);
  // Rows 37 and 38 both are band row 19; columns 12, 14, 16, 18.
  for (uint32_t column = 6; column <= 9; ++column) expected.SetColor(column, 19, kTextColor);
  EXPECT_TRUE(SameImage(expected, BandImage(device)));
}

TEST(TextScaled, OpaqueRectangle) {
  const Font font = SmallFont().Build();
  ScaledDevice device({.width = kColumns, .height = kRows, .resolutionA = 720});
  DRAWMODE mode = TextMode();
  const BandRect rect{2, 1, 9, 6};
  DrawTextAt(device, 4, 2, "a", font, mode, {.opaqueRect = &rect, .options = ETO_OPAQUE});
  PictureInks inks = TextInks();
  inks.push_back({'O', kBackColor});
  // The fill keeps even rows and columns: 2 and 4 down, 2..8 across. Text rows 2..5 land on 1, 2, 2, 3.
  EXPECT_TRUE(BandIs(device, inks,
                     "............."
                     ".OTTO........"
                     ".OTTO........"
                     "..TT........."));
}

TEST(TextScaled, MeasuringIsInCallerPixels) {
  const Font font = SmallFont().Build();
  ScaledDevice device({.width = kColumns, .height = kRows, .resolutionA = 720});
  DRAWMODE mode = TextMode(OPAQUE);
  mode.TBreakExtra = 5;
  mode.BreakCount = 2;
  mode.BreakErr = 1;
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
  ScaledDevice device({.width = kColumns, .height = kRows, .resolutionA = 720});
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
    for (std::size_t i = 0; i < device.band().size(); ++i) device.band().data()[i] = static_cast<uint8_t>(i * 3);
    PlaneImage expected = BandImage(device);
    const char* const rows[4] = {"###", "#.#", "#.#", "###"};
    for (uint32_t row = 0; row < 4; ++row) {
      for (uint32_t column = 0; column < 3; ++column) {
        if (rows[row][column] == '#') {
          expected.SetColor(column + 1, row + 1, Regrayed(kTextColor));
        } else if (bkMode == OPAQUE) {
          expected.SetColor(column + 1, row + 1, Regrayed(kBackColor));
        }
      }
    }
    DRAWMODE mode = TextMode(bkMode);
    DrawTextAt(device, 1, 1, "a", font, mode);
    EXPECT_TRUE(SameImage(expected, BandImage(device))) << "bkMode " << bkMode;
  }
}

}  // namespace
}  // namespace qnv::test
