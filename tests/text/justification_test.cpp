// Spreading extra pixels over the break characters of a line.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

struct JustificationCase {
  const char* name;
  int16_t extra;  // TBreakExtra
  int16_t count;  // BreakCount
  int16_t error;  // BreakErr
  std::string text;
  int32_t total;
  int16_t errorAfter;   // written by a measuring call
  const char* picture;  // first row of bars, 24 pixels
  int16_t characterExtra = 0;
};

// 'b' is one pixel, 'd' the break of two.
const JustificationCase kCases[] = {
    {"5 over 2: three, then two", 5, 2, 1, "bdbdb", 12, 1, "T.....T....T............"},
    {"4 over 2: evenly", 4, 2, 1, "bdbdb", 11, 1, "T....T....T............."},
    {"5 over 3", 5, 3, 1, "bdbdbdb", 15, 1, "T....T....T...T........."},
    {"1 over 3", 1, 3, 1, "bdbdbdb", 11, 1, "T...T..T..T............."},
    {"an error of 0 gives one too many at once", 4, 2, 0, "bdbdb", 12, 2, "T.....T....T............"},
    {"a large error holds the remainder back", 5, 2, 100, "bdbdb", 11, 98, "T....T....T............."},
    {"more breaks than counted go on", 5, 2, 1, "bdbdbdb", 18, 2, "T.....T....T.....T......"},
    {"fewer breaks than counted", 5, 2, 1, "bdb", 7, 2, "T.....T................."},
    {"nothing to spread", 0, 2, 1, "bdbdb", 7, 1, "T..T..T................."},
    {"nothing to spread, whatever the error", 0, 2, -7, "bdb", 4, -7, "T..T...................."},
    {"taking pixels away", -3, 2, 1, "bdbdb", 5, 3, "T.T.T..................."},
    {"a count of 0 is not divided by", 5, 0, 0, "bdbdb", 9, -10, "T...T...T..............."},
    {"a negative count", 5, -2, 1, "bdbdb", 5, -5, "T.T.T..................."},
    {"only the break character takes part", 6, 1, 1, "bab", 5, 1, "TTTTT..................."},
    {"with extra after every character", 5, 2, 1, "bdbdb", 17, 1, "T.......T......T........", 1},
    {"first and last", 4, 2, 1, "dbd", 9, 1, "....T..................."},
    {"the error wraps in 16 bits", 5, 2, -32768, "bdb", 6, 32767, "T....T.................."},
};

TEST(Justification, DrawingSpreadsAndLeavesTheDrawModeAlone) {
  const Font font = SmallFont().Build();
  for (const JustificationCase& c : kCases) {
    TestDevice device({.width = 24, .height = 1});
    DRAWMODE mode = TextMode();
    mode.TBreakExtra = c.extra;
    mode.BreakCount = c.count;
    mode.BreakErr = c.error;
    mode.CharacterExtra = c.characterExtra;
    const DRAWMODE before = mode;
    EXPECT_EQ(c.total, DrawTextAt(device, 0, 0, c.text, font, mode)) << c.name;
    EXPECT_TRUE(BandIs(device, TextInks(), c.picture)) << c.name;
    EXPECT_EQ(0, std::memcmp(&before, &mode, sizeof mode)) << c.name;
  }
}

TEST(Justification, MeasuringReturnsTheSameTotalAndWritesTheError) {
  const Font font = SmallFont().Build();
  for (const JustificationCase& c : kCases) {
    TestDevice device({.width = 24, .height = 1});
    DRAWMODE mode = TextMode();
    mode.TBreakExtra = c.extra;
    mode.BreakCount = c.count;
    mode.BreakErr = c.error;
    mode.CharacterExtra = c.characterExtra;
    DRAWMODE expected = mode;
    expected.BreakErr = c.errorAfter;
    EXPECT_EQ(Extent(4, c.total), MeasureText(device, c.text, font, mode)) << c.name;
    EXPECT_EQ(c.errorAfter, mode.BreakErr) << c.name;
    EXPECT_EQ(0, std::memcmp(&expected, &mode, sizeof mode)) << c.name << ": more than the error was written";
    EXPECT_TRUE(BandUntouched(device)) << c.name;
  }
}

// A code outside the table takes part when the default character is the break character.
TEST(Justification, TheMappedCodeDecides) {
  FontShape shape;
  shape.defaultChar = 'd' - 'a';
  const Font font = SmallFont(shape).Build();
  TestDevice device({.width = 24, .height = 1});
  DRAWMODE mode = TextMode();
  mode.TBreakExtra = 5;
  mode.BreakCount = 2;
  mode.BreakErr = 1;
  EXPECT_EQ(12, DrawTextAt(device, 0, 0, "b b~b", font, mode));
  EXPECT_TRUE(BandIs(device, TextInks(), "T.....T....T............"));
}

// A line measured in pieces carries the error from one to the next and comes out whole.
TEST(Justification, ErrorCarriesOverMeasuredPieces) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 24, .height = 1});
  DRAWMODE mode = TextMode();
  mode.TBreakExtra = 5;
  mode.BreakCount = 3;
  mode.BreakErr = 1;
  EXPECT_EQ(Extent(4, 5), MeasureText(device, "bd", font, mode));
  EXPECT_EQ(Extent(4, 5), MeasureText(device, "bd", font, mode));
  EXPECT_EQ(Extent(4, 5), MeasureText(device, "bdb", font, mode));
  EXPECT_EQ(1, mode.BreakErr);
}

}  // namespace
}  // namespace qnv::test
