// How far the pen moves and what a drawing call returns.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

struct AdvanceCase {
  const char* name;
  std::string text;
  int16_t characterExtra;
  int32_t result;
  const char* picture;  // 20 x 4
};

const AdvanceCase kVariableCases[] = {
    {"one character", "a", 0, 3,
     "TTT................."
     "T.T................."
     "T.T................."
     "TTT................."},
    {"widths from the table", "baab", 0, 8,
     "TTTTTTTT............"
     "TT.TT.TT............"
     ".T.TT.T............."
     "TTTTTTTT............"},
    {"a space leaves room", "bdb", 0, 4,
     "T..T................"
     "T..T................"
     "...................."
     "T..T................"},
    {"extra after every character", "aab", 2, 13,
     "TTT..TTT..T........."
     "T.T..T.T..T........."
     "T.T..T.T............"
     "TTT..TTT..T........."},
    {"negative extra draws closer", "aa", -2, 2,
     "TTTT................"
     "TTTT................"
     "TTTT................"
     "TTTT................"},
    {"the pen may walk backwards", "ba", -1, 2,
     "TTT................."
     "T.T................."
     "T.T................."
     "TTT................."},
    {"the total keeps 16 bits, signed", "a", 32767, -32766,
     "TTT................."
     "T.T................."
     "T.T................."
     "TTT................."},
    {"the total wraps", "aa", 32767, 4,
     "TTT................."
     "T.T................."
     "T.T................."
     "TTT................."},
};

TEST(TextAdvance, VariablePitch) {
  for (TableForm table : {TableForm::kShort, TableForm::kLong}) {
    const Font font = SmallFont({.table = table}).Build();
    for (const AdvanceCase& c : kVariableCases) {
      TestDevice device({.width = 20, .height = 4});
      DRAWMODE mode = TextMode();
      mode.CharacterExtra = c.characterExtra;
      const DRAWMODE before = mode;
      EXPECT_EQ(c.result, DrawTextAt(device, 0, 0, c.text, font, mode)) << c.name;
      EXPECT_TRUE(BandIs(device, TextInks(), c.picture)) << c.name;
      EXPECT_EQ(0, std::memcmp(&before, &mode, sizeof mode)) << c.name << ": a drawing call changed the draw mode";
    }
  }
}

// A fixed-pitch font takes every width from its record, whatever its table says.
TEST(TextAdvance, FixedPitch) {
  const Font font =
      FontBuilder({.height = 2, .firstChar = 'a', .lastChar = 'b', .variablePitch = false, .fixedWidth = 4})
          .Glyph('a', 4,
                 "##.."
                 "...#",
                 99)
          .Glyph('b', 4,
                 ".##."
                 "#...",
                 1)
          .Build();
  struct Case {
    const char* name;
    std::string text;
    int16_t characterExtra;
    int32_t result;
    const char* picture;  // 14 x 2
  };
  const Case cases[] = {
      {"two", "ab", 0, 8,
       "TT...TT......."
       "...TT........."},
      {"with extra", "ba", 1, 10,
       ".TT..TT......."
       "T.......T....."},
      {"codes outside the table advance like the default", "z~a", 0, 12,
       "TT..TT..TT...."
       "...T...T...T.."},
  };
  for (const Case& c : cases) {
    TestDevice device({.width = 14, .height = 2});
    DRAWMODE mode = TextMode();
    mode.CharacterExtra = c.characterExtra;
    EXPECT_EQ(c.result, DrawTextAt(device, 0, 0, c.text, font, mode)) << c.name;
    EXPECT_TRUE(BandIs(device, TextInks(), c.picture)) << c.name;
  }
}

// The position has no part in the result.
TEST(TextAdvance, ResultIsTheAdvanceWhereverTheTextLies) {
  const Font font = SmallFont().Build();
  const int32_t positions[] = {-2000, -3, 0, 7, 5000, 40000};
  for (int32_t x : positions) {
    TestDevice device({.width = 20, .height = 4});
    DRAWMODE mode = TextMode();
    EXPECT_EQ(13, DrawTextAt(device, x, 0, "ac", font, mode)) << x;
    EXPECT_EQ(13, DrawTextAt(device, 0, x - 8, "ac", font, mode)) << x;
  }
}

// The count is a signed 16-bit number in a wider slot.
TEST(TextAdvance, OnlyTheLowSixteenBitsOfTheCount) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 20, .height = 4});
  DRAWMODE mode = TextMode();
  const auto call = [&](int32_t count) {
    return QNVDevExtTextOut(device.handle(), 0, 0, &kEverywhere, "aab", count, font.base(), font.offset(), &mode,
                            nullptr, nullptr, nullptr, 0);
  };
  EXPECT_EQ(Extent(4, 7), call(0x0000FFFD));
  EXPECT_EQ(Extent(4, 7), call(0x7777FFFD));
  EXPECT_EQ(Extent(4, 0), call(0x00050000));
  EXPECT_TRUE(BandUntouched(device));
  EXPECT_EQ(6, call(0x12340002));
  EXPECT_EQ(7, call(static_cast<int32_t>(0xFFFF0003)));
}

// Only the low half of the font's offset counts.
TEST(TextAdvance, OnlyTheLowSixteenBitsOfTheFontOffset) {
  const Font font = SmallFont({.offset = 300}).Build();
  TestDevice device({.width = 20, .height = 4});
  DRAWMODE mode = TextMode();
  EXPECT_EQ(7, QNVDevExtTextOut(device.handle(), 0, 0, &kEverywhere, "aab", 3, font.base(), 0xABCD0000u + 300, &mode,
                                nullptr, nullptr, nullptr, 0));
}

TEST(TextAdvance, NullPointersAreRefused) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 20, .height = 4});
  DRAWMODE mode = TextMode();
  EXPECT_EQ(0, QNVDevExtTextOut(device.handle(), 0, 0, &kEverywhere, nullptr, 3, font.base(), 0, &mode, nullptr,
                                nullptr, nullptr, 0));
  EXPECT_EQ(0, QNVDevExtTextOut(device.handle(), 0, 0, &kEverywhere, nullptr, -3, font.base(), 0, &mode, nullptr,
                                nullptr, nullptr, 0));
  EXPECT_EQ(0, QNVDevExtTextOut(device.handle(), 0, 0, &kEverywhere, "aaa", 3, nullptr, 0, &mode, nullptr, nullptr,
                                nullptr, 0));
  EXPECT_EQ(0, QNVDevExtTextOut(device.handle(), 0, 0, &kEverywhere, "aaa", 3, font.base(), 0, nullptr, nullptr,
                                nullptr, nullptr, 0));
  EXPECT_EQ(Extent(4, 0), QNVDevExtTextOut(device.handle(), 0, 0, &kEverywhere, nullptr, 0, font.base(), 0, &mode,
                                           nullptr, nullptr, nullptr, 0));
  EXPECT_TRUE(BandUntouched(device));
}

}  // namespace
}  // namespace qnv::test
