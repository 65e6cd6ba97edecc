// Text whose positions the host gives: an array of advances.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

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
const WidthsCase kCases[] = {
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
  for (const WidthsCase& c : kCases) {
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
                     ".BT.TBT..TB.."
                     "............."));
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

}  // namespace
}  // namespace qnv::test
