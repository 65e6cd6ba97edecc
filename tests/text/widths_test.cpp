// Text whose advances do not simply come from the font: codes without a glyph, widths that the host gives, and extra
// pixels spread over break characters.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

// ---- Codes of one-byte fonts: unsigned, and shown as the default character when the table does not hold them.

struct DefaultCase {
  const char* name;
  uint8_t first, last, defaultChar;  // defaultChar relative to first
  std::string text;
  int32_t advance;
  const char* picture;  // one row of 16; each glyph is its index + 1 pixels wide, the last one clear
};

const DefaultCase kDefaultCharCases[] = {
    {"inside the table", 'a', 'c', 0, "abc", 6, ".T.TT..........."},
    {"below the first", 'a', 'c', 1, "`a`", 5, "T..T............"},
    {"above the last", 'a', 'c', 2, "da", 4, "TT.............."},
    {"far above, unsigned", 'a', 'c', 2, "\xFF\x80", 6, "TT.TT..........."},
    {"the first code of all", 'a', 'c', 2, std::string(1, '\0') + "b", 5, "TT.T............"},
    {"a table in the upper half", 200, 202, 0, "\xC8\xC9\xCA", 6, ".T.TT..........."},
    {"below a table in the upper half", 200, 202, 2, "\xC7z", 6, "TT.TT..........."},
    {"a table that ends at 255", 253, 255, 1, "\xFD\xFE\xFF\xFC", 8, ".T.TT.T........."},
    {"a table that starts at 0", 0, 2, 2, std::string("\x02\x00\x01\x03", 4), 9, "TT..T.TT........"},
};

TEST(DefaultChar, Codes) {
  for (TableForm table : {TableForm::kShort, TableForm::kLong}) {
    for (const DefaultCase& c : kDefaultCharCases) {
      const Font font =
          FontBuilder(
              {.height = 1, .firstChar = c.first, .lastChar = c.last, .defaultChar = c.defaultChar, .table = table})
              .Glyph(c.first, 1, ".")
              .Glyph(static_cast<uint16_t>(c.first + 1), 2, "#.")
              .Glyph(static_cast<uint16_t>(c.first + 2), 3, "##.")
              .Build();
      TestDevice device({.width = 16, .height = 1});
      DRAWMODE mode = TextMode();
      EXPECT_EQ(c.advance, DrawTextAt(device, 0, 0, c.text, font, mode)) << c.name;
      EXPECT_TRUE(BandIs(device, TextInks(), c.picture)) << c.name;
    }
  }
}

// ---- Text whose positions the host gives: an array of advances.

struct WidthsCase {
  const char* name;
  std::string text;
  std::vector<int16_t> widths;
  int16_t characterExtra;
  int32_t drawn;
  int32_t measured;
  const char* picture;  // first glyph row, 20 pixels
};

// The result is that of the last character alone plus the widths before it.
const WidthsCase kCharWidthsCases[] = {
    {"positions from the widths", "bab", {4, 6, 3}, 0, 11, 0x0004000B, "T...TTT...T........."},
    {"the last width has no part", "b", {1000}, 0, 1, 0x00040001, "T..................."},
    {"zero keeps the place", "bba", {0, 0, 0}, 0, 3, 0x00040003, "TTT................."},
    {"negative widths go back", "bdb", {9, -6, 0}, 0, 4, 0x00040004, "T..T................"},
    {"a negative width before the last", "ba", {-2, 5}, 0, 1, 0x00040001, "T..................."},
    {"far back: the sum borrows from the height", "aa", {-5, 5}, 0, -2, 0x0003FFFE, "TTT................."},
    {"extra counts once, in the result only", "bab", {4, 6, 3}, 2, 13, 0x0004000D, "T...TTT...T........."},
    {"codes outside the table", "~b", {5, 0}, 0, 6, 0x00040006, "TTT..T.............."},
};

TEST(CharWidths, DrawingAndMeasuring) {
  const Font font = SmallFont().Build();
  for (const WidthsCase& c : kCharWidthsCases) {
    for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
      TestDevice device({.bitsPerPixel = depth, .width = 20, .height = 1});
      DRAWMODE mode = TextMode();
      mode.CharacterExtra = c.characterExtra;
      EXPECT_EQ(c.measured, MeasureText(device, c.text, font, mode, {.charWidths = c.widths.data()})) << c.name;
      EXPECT_TRUE(BandUntouched(device)) << c.name;
      EXPECT_EQ(c.drawn, DrawTextAt(device, 0, 0, c.text, font, mode, {.charWidths = c.widths.data()})) << c.name;
      EXPECT_TRUE(BandIs(device, TextInks(), c.picture)) << c.name << ", " << depth << " bits";
    }
  }
}

// Exactly `count` widths are read.
TEST(CharWidths, WidthsAreFenced) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 20, .height = 1});
  DRAWMODE mode = TextMode();
  const FencedInput widths({4, 0, 6, 0, 3, 0});
  EXPECT_EQ(11,
            DrawTextAt(device, 0, 0, "bab", font, mode, {.charWidths = static_cast<const int16_t*>(widths.data())}));
  EXPECT_TRUE(widths.Unchanged());
}

// The sanitizers see a read that supposes alignment.
TEST(CharWidths, WidthsNeedNoAlignment) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 20, .height = 1});
  DRAWMODE mode = TextMode();
  alignas(2) const uint8_t bytes[] = {0xAA, 4, 0, 6, 0, 3, 0};
  const void* widths = bytes + 1;
  EXPECT_EQ(11, DrawTextAt(device, 0, 0, "bab", font, mode, {.charWidths = static_cast<const int16_t*>(widths)}));
}

TEST(CharWidths, CountZeroGivesZero) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 20, .height = 1});
  DRAWMODE mode = TextMode();
  mode.BreakErr = 12;
  const int16_t widths[1] = {4};
  EXPECT_EQ(0, DrawTextAt(device, 0, 0, "", font, mode, {.charWidths = widths}));
  EXPECT_EQ(12, mode.BreakErr);
  EXPECT_TRUE(BandUntouched(device));
}

// Each character is a run of its own: drawn ones all start from the caller's error, measured ones hand it on.
TEST(CharWidths, Justification) {
  const Font font = SmallFont().Build();
  const int16_t widths[3] = {2, 2, 2};
  TestDevice device({.width = 20, .height = 1});
  DRAWMODE mode = TextMode();
  mode.TBreakExtra = 5;
  mode.BreakCount = 2;
  mode.BreakErr = 1;
  const DRAWMODE before = mode;
  EXPECT_EQ(2 + 3 + 4, DrawTextAt(device, 0, 0, "ddd", font, mode, {.charWidths = widths})) << "3 for the last break";
  EXPECT_EQ(0, std::memcmp(&before, &mode, sizeof mode));
  EXPECT_EQ(Extent(4, 2 + 2) + 2, MeasureText(device, "dd", font, mode, {.charWidths = widths}))
      << "2 for the second break";
  EXPECT_EQ(1, mode.BreakErr);
}

TEST(CharWidths, ClipAndOrigin) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 13, .height = 4, .left = 50, .top = 20});
  device.SetOrigin(50, 21);
  DRAWMODE mode = TextMode(OPAQUE);
  const BandRect clip{1, 0, 11, 2};
  const int16_t widths[3] = {4, 5, 0};
  EXPECT_EQ(12, DrawTextAt(device, 0, -1, "aaa", font, mode, {.clip = &clip, .charWidths = widths}));
  EXPECT_TRUE(BandIs(device, TextInks(),
                     "............."
                     ".BT.TBT..TB.."
                     ".BT.TBT..TB.."));
}

// A character is passed over by its own width, not by the given one.
TEST(CharWidths, LeftwardTestOfOneByteFonts) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 20, .height = 1, .left = -12});
  DRAWMODE mode = TextMode();
  const int16_t widths[3] = {5, 4, 0};
  // 'a' at -12, at -7 and at -3: only the last one reaches column 0.
  DrawTextAt(device, -12, 0, "aaa", font, mode, {.charWidths = widths});
  EXPECT_TRUE(BandIs(device, TextInks(), ".........TTT........"));
}

// ---- Spreading extra pixels over the break characters of a line.

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
const JustificationCase kJustificationCases[] = {
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
  for (const JustificationCase& c : kJustificationCases) {
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
  for (const JustificationCase& c : kJustificationCases) {
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
