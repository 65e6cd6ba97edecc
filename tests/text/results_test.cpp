// What a text call returns besides what it paints: measured extents, and the results of text that cannot be seen.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

// ---- Calls with a negative count: the extent, no glyph.

struct MeasureCase {
  const char* name;
  std::string text;
  int16_t height;
  int16_t characterExtra;
  int32_t result;
};

const MeasureCase kMeasuringCases[] = {
    {"three characters", "aab", 4, 0, 0x00040007},
    {"one", "c", 4, 0, 0x0004000A},
    {"a code outside the table", "~", 4, 0, 0x00040003},
    {"with extra", "aab", 4, 2, 0x0004000D},
    {"the advance keeps its low 16 bits", "a", 4, 32767, 0x00048002},
    {"a negative advance does not reach the height", "aa", 4, -10, 0x0004FFF2},
    {"tall", "a", 300, 0, 0x012C0003},
};

TEST(TextMeasuring, Extents) {
  for (const MeasureCase& c : kMeasuringCases) {
    for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
      // Only the record's height differs: no glyph is looked at.
      std::vector<uint8_t> bytes(82 + 4 * 6, 0);
      bytes[20] = 9;
      bytes[22] = static_cast<uint8_t>(c.height);
      bytes[23] = static_cast<uint8_t>(c.height >> 8);
      bytes[24] = 1;
      bytes[29] = 'a';
      bytes[30] = 'd';
      bytes[32] = 3;
      const uint8_t widths[4] = {3, 1, 10, 2};
      for (std::size_t i = 0; i < 4; ++i) {
        bytes[82 + i * 6] = widths[i];
        bytes[82 + i * 6 + 2] = bytes[82 + i * 6 + 3] = bytes[82 + i * 6 + 4] = bytes[82 + i * 6 + 5] = 0xFF;
      }
      const Font font(bytes, 0);
      TestDevice device({.bitsPerPixel = depth, .width = 20, .height = 8});
      DRAWMODE mode = TextMode(OPAQUE);
      mode.CharacterExtra = c.characterExtra;
      mode.BreakErr = 77;
      EXPECT_EQ(c.result, MeasureText(device, c.text, font, mode)) << c.name;
      EXPECT_EQ(77, mode.BreakErr) << c.name;
      EXPECT_TRUE(BandUntouched(device)) << c.name;
    }
  }
}

TEST(TextMeasuring, CountZeroMeasuresNothing) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 20, .height = 8});
  DRAWMODE mode = TextMode(OPAQUE);
  mode.CharacterExtra = 5;
  mode.TBreakExtra = 9;
  mode.BreakErr = -3;
  const DRAWMODE before = mode;
  EXPECT_EQ(Extent(4, 0), DrawTextAt(device, 0, 0, "", font, mode));
  EXPECT_EQ(0, std::memcmp(&before, &mode, sizeof mode)) << "the error is written back as it was";
  EXPECT_TRUE(BandUntouched(device));
}

TEST(TextMeasuring, FixedPitch) {
  const Font font =
      FontBuilder({.height = 2, .firstChar = 'a', .lastChar = 'a', .variablePitch = false, .fixedWidth = 4})
          .Glyph('a', 4,
                 "####"
                 "####",
                 50)
          .Build();
  TestDevice device({.width = 20, .height = 8});
  DRAWMODE mode = TextMode(OPAQUE);
  EXPECT_EQ(Extent(2, 12), MeasureText(device, "axa", font, mode));
  EXPECT_TRUE(BandUntouched(device));
}

// Measuring agrees with drawing on every string.
TEST(TextMeasuring, EqualsTheDrawnAdvance) {
  const Font font = SmallFont().Build();
  const char* texts[] = {"a", "abcd", "dddd", "c", "cdbadcba", "\x01\xFF"};
  for (const char* text : texts) {
    for (int16_t extra : {int16_t{0}, int16_t{3}, int16_t{-1}}) {
      TestDevice device({.width = 20, .height = 8});
      DRAWMODE mode = TextMode(OPAQUE);
      mode.CharacterExtra = extra;
      mode.TBreakExtra = 11;
      mode.BreakCount = 3;
      mode.BreakErr = 1;
      const int32_t drawn = DrawTextAt(device, 0, 0, text, font, mode);
      EXPECT_EQ(Extent(4, drawn), MeasureText(device, text, font, mode)) << text << ", extra " << extra;
    }
  }
}

// ---- Text of which no row can be seen: nothing is painted, and every result is that of the same text seen.

struct UnseenCase {
  const char* name;
  std::string text;
  bool variablePitch;
  int16_t characterExtra;
  int16_t breakExtra, breakCount, breakError;
  std::vector<int16_t> charWidths;
};

const UnseenCase kUnseenCases[] = {
    {"widths of the table", "abcd~", true, 0, 0, 0, 0, {}},
    {"one width", "abcd~", false, 0, 0, 0, 0, {}},
    {"one width and extra", "abcd~", false, -3, 0, 0, 0, {}},
    {"the sum keeps 16 bits", "abc", false, 32767, 0, 0, 0, {}},
    {"spread", "adbdc", true, 1, 5, 2, 1, {}},
    {"spread, one width", "adbdc", false, 1, 5, 2, 1, {}},
    {"positions from the host", "abcd", true, 0, 0, 0, 0, {4, -6, 300, 9}},
    {"positions from the host, one width", "abcd", false, 2, 0, 0, 0, {4, -6, 300, 9}},
    {"positions from the host, spread", "addb", true, 2, 5, 2, 1, {4, 3, 0, 1}},
    {"one character", "d", true, 0, 5, 2, 1, {7}},
};

struct UnseenPlace {
  const char* name;
  int32_t y;
  BandRect clip;
};

const UnseenPlace kPlaces[] = {
    {"above the band", -4, kEverywhere},
    {"below the band", 4, kEverywhere},
    {"above the clip", 0, {0, 4, 100, 100}},
    {"an empty clip", 0, {0, 2, 100, 2}},
    {"a clip outside the band", 0, {200, 0, 300, 100}},
};

DRAWMODE ModeOf(const UnseenCase& c) {
  DRAWMODE mode = TextMode(OPAQUE);
  mode.CharacterExtra = c.characterExtra;
  mode.TBreakExtra = c.breakExtra;
  mode.BreakCount = c.breakCount;
  mode.BreakErr = c.breakError;
  return mode;
}

TEST(UnseenText, ResultsAreThoseOfSeenText) {
  for (const UnseenCase& c : kUnseenCases) {
    const Font font = SmallFont({.variablePitch = c.variablePitch, .fixedWidth = 5}).Build();
    const int16_t* widths = c.charWidths.empty() ? nullptr : c.charWidths.data();
    for (const UnseenPlace& place : kPlaces) {
      SCOPED_TRACE(std::string(c.name) + ", " + place.name);
      TestDevice seen({.width = 40, .height = 4}), unseen({.width = 40, .height = 4});
      DRAWMODE seenMode = ModeOf(c), unseenMode = ModeOf(c);
      const int32_t result = DrawTextAt(seen, 3, 0, c.text, font, seenMode, {.charWidths = widths});
      EXPECT_EQ(result,
                DrawTextAt(unseen, 3, place.y, c.text, font, unseenMode, {.clip = &place.clip, .charWidths = widths}));
      EXPECT_EQ(0, std::memcmp(&seenMode, &unseenMode, sizeof seenMode));
      EXPECT_FALSE(BandUntouched(seen));
      EXPECT_TRUE(BandUntouched(unseen));
      EXPECT_EQ(MeasureText(seen, c.text, font, seenMode, {.charWidths = widths}),
                MeasureText(unseen, c.text, font, unseenMode, {.clip = &place.clip, .charWidths = widths}));
      EXPECT_EQ(0, std::memcmp(&seenMode, &unseenMode, sizeof seenMode));
    }
  }
}

TEST(UnseenText, TwoByteResultsToo) {
  const Font font = FontBuilder({.height = 2, .twoByte = true}).Glyph(0, 1, "##").Glyph(9, 3, "######").Build();
  const int16_t widths[] = {5, -2, 40};
  for (const int16_t* charWidths : {static_cast<const int16_t*>(nullptr), widths}) {
    TestDevice device({.width = 20, .height = 2});
    DRAWMODE mode = TextMode();
    const int32_t unseen = TwoByteText(device, 0, 2, {9, 0, 9}, 3, font, mode, {.charWidths = charWidths});
    EXPECT_TRUE(BandUntouched(device));
    EXPECT_EQ(unseen, TwoByteText(device, 0, 0, {9, 0, 9}, 3, font, mode, {.charWidths = charWidths}));
    EXPECT_EQ(unseen, charWidths == nullptr ? 7 : 6);
  }
}

// The opaque rectangle does not depend on where the text is.
TEST(UnseenText, TheOpaqueRectangleIsFilledAllTheSame) {
  const Font font = SmallFont().Build();
  const BandRect opaque{1, 0, 4, 1};
  TestDevice device({.width = 5, .height = 1});
  DRAWMODE mode = TextMode();
  EXPECT_EQ(3, DrawTextAt(device, 0, 50, "a", font, mode, {.opaqueRect = &opaque, .options = ETO_OPAQUE}));
  EXPECT_TRUE(BandIs(device, TextInks(), ".BBB."));
}

}  // namespace
}  // namespace qnv::test
