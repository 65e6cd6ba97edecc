// Calls with a negative count: the extent, no glyph.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

struct MeasureCase {
  const char* name;
  std::string text;
  int16_t height;
  int16_t characterExtra;
  int32_t result;
};

const MeasureCase kCases[] = {
    {"three characters", "aab", 4, 0, 0x00040007},
    {"one", "c", 4, 0, 0x0004000A},
    {"a code outside the table", "~", 4, 0, 0x00040003},
    {"with extra", "aab", 4, 2, 0x0004000D},
    {"the advance keeps its low 16 bits", "a", 4, 32767, 0x00048002},
    {"a negative advance does not reach the height", "aa", 4, -10, 0x0004FFF2},
    {"tall", "a", 300, 0, 0x012C0003},
};

TEST(TextMeasuring, Extents) {
  for (const MeasureCase& c : kCases) {
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

}  // namespace
}  // namespace qnv::test
