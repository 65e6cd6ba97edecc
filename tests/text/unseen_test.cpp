// Text of which no row can be seen: nothing is painted, and every result is that of the same text seen.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

struct UnseenCase {
  const char* name;
  std::string text;
  bool variablePitch;
  int16_t characterExtra;
  int16_t breakExtra, breakCount, breakError;
  std::vector<int16_t> charWidths;
};

const UnseenCase kCases[] = {
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
  for (const UnseenCase& c : kCases) {
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
