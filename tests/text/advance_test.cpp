// How far the pen moves and what a call returns, drawn and measured: widths of the font, codes without a glyph, widths
// that the host gives, extra pixels after characters and spread over break characters, and text that cannot be seen.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

// Every glyph of a fixed-pitch font is this wide, whatever its table says.
constexpr int16_t kFixedWidth = 5;

enum Pitch { kVariable, kFixed };

struct AdvanceCase {
  const char* name;
  Pitch pitch;
  std::string text;
  Spacing spacing;
  int32_t advance;
  std::string picture;                // the top row, on a band of 24 x 1
  int16_t errorAfter = 0;             // written by a measuring call
  std::vector<int16_t> charWidths{};  // none: the font's
};

const AdvanceCase kAdvanceCases[] = {
    {"one character", kVariable, "a", {}, 3, "TTT"},
    {"a wide one", kVariable, "c", {}, 10, "T........T"},
    {"widths from the table", kVariable, "baab", {}, 8, "TTTTTTTT"},
    {"a space leaves room", kVariable, "bdb", {}, 4, "T..T"},
    {"a code outside the table", kVariable, "~", {}, 3, "TTT"},
    {"extra after every character", kVariable, "aab", {.characterExtra = 2}, 13, "TTT..TTT..T"},
    {"negative extra draws closer", kVariable, "aa", {.characterExtra = -2}, 2, "TTTT"},
    {"the pen may walk backwards", kVariable, "ba", {.characterExtra = -1}, 2, "TTT"},
    {"a negative advance", kVariable, "aa", {.characterExtra = -10}, -14, "TTT"},
    {"the total keeps 16 bits, signed", kVariable, "a", {.characterExtra = 32767}, -32766, "TTT"},
    {"the total wraps", kVariable, "aa", {.characterExtra = 32767}, 4, "TTT"},
    {"no break keeps the error", kVariable, "aab", {.breakError = 77}, 7, "TTTTTTT", 77},

    {"one width", kFixed, "abdc", {}, 20, "TTT..T.........T"},
    {"one width, a code outside the table", kFixed, "z~a", {}, 15, "TTT..TTT..TTT"},
    {"one width and extra", kFixed, "ab~", {.characterExtra = -3}, 6, "TTT.TTT"},
    {"one width, the sum keeps 16 bits", kFixed, "abc", {.characterExtra = 32767}, -32756, "TTT"},
    {"one width, spread", kFixed, "adbdc", {5, 2, 1, 1}, 35, "TTT............T", 1},

    // The result is that of the last character alone plus the widths before it.
    {"positions from the host", kVariable, "bab", {}, 11, "T...TTT...T", 0, {4, 6, 3}},
    {"the last width has no part", kVariable, "b", {}, 1, "T", 0, {1000}},
    {"zero keeps the place", kVariable, "bba", {}, 3, "TTT", 0, {0, 0, 0}},
    {"negative widths go back", kVariable, "bdb", {}, 4, "T..T", 0, {9, -6, 0}},
    {"a negative width before the last", kVariable, "ba", {}, 1, "T", 0, {-2, 5}},
    {"far back: the sum borrows from the height", kVariable, "aa", {}, -2, "TTT", 0, {-5, 5}},
    {"extra counts in the result only", kVariable, "bab", {.characterExtra = 2}, 13, "T...TTT...T", 0, {4, 6, 3}},
    {"positions, a code outside the table", kVariable, "~b", {}, 6, "TTT..T", 0, {5, 0}},
    {"positions, spread", kVariable, "addb", {5, 2, 1, 2}, 10, "TTT....T", 1, {4, 3, 0, 1}},
    {"positions, one width", kFixed, "abcd", {.characterExtra = 2}, 305, "TTT.T", 0, {4, -6, 300, 9}},

    // Justification: 'b' is one pixel, 'd' the break of two.
    {"5 over 2: three, then two", kVariable, "bdbdb", {5, 2, 1}, 12, "T.....T....T", 1},
    {"4 over 2: evenly", kVariable, "bdbdb", {4, 2, 1}, 11, "T....T....T", 1},
    {"5 over 3", kVariable, "bdbdbdb", {5, 3, 1}, 15, "T....T....T...T", 1},
    {"1 over 3", kVariable, "bdbdbdb", {1, 3, 1}, 11, "T...T..T..T", 1},
    {"an error of 0 gives one too many at once", kVariable, "bdbdb", {4, 2, 0}, 12, "T.....T....T", 2},
    {"a large error holds the remainder back", kVariable, "bdbdb", {5, 2, 100}, 11, "T....T....T", 98},
    {"more breaks than counted go on", kVariable, "bdbdbdb", {5, 2, 1}, 18, "T.....T....T.....T", 2},
    {"fewer breaks than counted", kVariable, "bdb", {5, 2, 1}, 7, "T.....T", 2},
    {"nothing to spread", kVariable, "bdbdb", {0, 2, 1}, 7, "T..T..T", 1},
    {"nothing to spread, whatever the error", kVariable, "bdb", {0, 2, -7}, 4, "T..T", -7},
    {"taking pixels away", kVariable, "bdbdb", {-3, 2, 1}, 5, "T.T.T", 3},
    {"a count of 0 is not divided by", kVariable, "bdbdb", {5, 0, 0}, 9, "T...T...T", -10},
    {"a negative count", kVariable, "bdbdb", {5, -2, 1}, 5, "T.T.T", -5},
    {"only the break character takes part", kVariable, "bab", {6, 1, 1}, 5, "TTTTT", 1},
    {"spread, with extra after every character", kVariable, "bdbdb", {5, 2, 1, 1}, 17, "T.......T......T", 1},
    {"breaks first and last", kVariable, "dbd", {4, 2, 1}, 9, "....T", 1},
    {"the error wraps in 16 bits", kVariable, "bdb", {5, 2, -32768}, 6, "T....T", 32767},
};

struct UnseenPlace {
  const char* name;
  int32_t y;
  BandRect clip;
};

const UnseenPlace kUnseenPlaces[] = {
    {"above the band", -4, kEverywhere},
    {"below the band", 4, kEverywhere},
    {"above the clip", 0, {0, 4, 100, 100}},
    {"an empty clip", 0, {0, 2, 100, 2}},
    {"a clip outside the band", 0, {200, 0, 300, 100}},
};

TEST(TextAdvance, DrawnMeasuredAndUnseen) {
  for (const AdvanceCase& c : kAdvanceCases) {
    // Exactly as many widths are read as there are characters.
    std::vector<uint8_t> widthBytes(2 * c.charWidths.size());
    if (!widthBytes.empty()) std::memcpy(widthBytes.data(), c.charWidths.data(), widthBytes.size());
    const FencedInput fencedWidths(widthBytes);
    const int16_t* widths = c.charWidths.empty() ? nullptr : static_cast<const int16_t*>(fencedWidths.data());
    // With widths their sum is added to the measured extent of the last character.
    const int32_t extent = widths == nullptr ? Extent(4, c.advance) : (4 << 16) + c.advance;
    const DRAWMODE given = TextMode(TRANSPARENT, c.spacing);
    DRAWMODE measured = given;
    measured.BreakErr = c.errorAfter;
    for (TableForm table : {TableForm::kShort, TableForm::kLong}) {
      const Font font =
          SmallFont({.variablePitch = c.pitch == kVariable, .fixedWidth = kFixedWidth, .table = table}).Build();
      for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
        SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(depth) + " bits");
        TestDevice device({.bitsPerPixel = depth, .width = 24, .height = 1});
        DRAWMODE mode = given;
        EXPECT_EQ(extent, MeasureText(device, c.text, font, mode, {.charWidths = widths}));
        EXPECT_EQ(c.errorAfter, mode.BreakErr);
        EXPECT_EQ(0, std::memcmp(&measured, &mode, sizeof mode)) << "more than the error was written";
        for (const UnseenPlace& place : kUnseenPlaces) {
          const TextSetup setup{.clip = &place.clip, .charWidths = widths};
          mode = given;
          EXPECT_EQ(c.advance, DrawTextAt(device, 3, place.y, c.text, font, mode, setup)) << place.name;
          EXPECT_EQ(extent, MeasureText(device, c.text, font, mode, setup)) << place.name;
          EXPECT_EQ(c.errorAfter, mode.BreakErr) << place.name;
        }
        EXPECT_TRUE(BandUntouched(device)) << "what is measured or cannot be seen was painted";

        mode = given;
        EXPECT_EQ(c.advance, DrawTextAt(device, 0, 0, c.text, font, mode, {.charWidths = widths}));
        EXPECT_EQ(0, std::memcmp(&given, &mode, sizeof mode)) << "a drawing call changed the draw mode";
        std::string picture = c.picture;
        picture.resize(24, '.');
        EXPECT_TRUE(BandIs(device, TextInks(), picture));
      }
    }
    EXPECT_TRUE(fencedWidths.Unchanged());
  }
}

// Codes of one-byte fonts are unsigned, and shown as the default character when the table does not hold them.
TEST(TextAdvance, DefaultCharacter) {
  struct Case {
    const char* name;
    uint8_t first, last, defaultChar;  // defaultChar relative to first
    std::string text;
    int32_t advance;
    const char* picture;  // one row of 16; each glyph is its index + 1 pixels wide, the last one clear
  };
  const Case cases[] = {
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
  for (TableForm table : {TableForm::kShort, TableForm::kLong}) {
    for (const Case& c : cases) {
      const FontShape shape{
          .height = 1, .firstChar = c.first, .lastChar = c.last, .defaultChar = c.defaultChar, .table = table};
      const Font font = FontBuilder(shape)
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

// A code outside the table takes part in justification when the default character is the break character.
TEST(TextAdvance, TheMappedCodeDecidesAboutBreaks) {
  const Font font = SmallFont({.defaultChar = 'd' - 'a'}).Build();
  TestDevice device({.width = 24, .height = 1});
  DRAWMODE mode = TextMode(TRANSPARENT, {5, 2, 1});
  EXPECT_EQ(12, DrawTextAt(device, 0, 0, "b b~b", font, mode));
  EXPECT_TRUE(BandIs(device, TextInks(), "T.....T....T............"));
}

// A line measured in pieces carries the error from one to the next and comes out whole.
TEST(TextAdvance, ErrorCarriesOverMeasuredPieces) {
  const Font font = SmallFont().Build();
  TestDevice device({});
  DRAWMODE mode = TextMode(TRANSPARENT, {5, 3, 1});
  EXPECT_EQ(Extent(4, 5), MeasureText(device, "bd", font, mode));
  EXPECT_EQ(Extent(4, 5), MeasureText(device, "bd", font, mode));
  EXPECT_EQ(Extent(4, 5), MeasureText(device, "bdb", font, mode));
  EXPECT_EQ(1, mode.BreakErr);
}

// With widths each character is a run of its own: drawn ones all start from the caller's error, measured ones hand it
// on.
TEST(TextAdvance, JustificationWithWidths) {
  const Font font = SmallFont().Build();
  const int16_t widths[3] = {2, 2, 2};
  TestDevice device({});
  DRAWMODE mode = TextMode(TRANSPARENT, {5, 2, 1});
  const DRAWMODE before = mode;
  EXPECT_EQ(2 + 3 + 4, DrawTextAt(device, 0, 0, "ddd", font, mode, {.charWidths = widths})) << "3 for the last break";
  EXPECT_EQ(2 + 3 + 2, DrawTextAt(device, 0, 0, "dd", font, mode, {.charWidths = widths})) << "3 for the last break";
  EXPECT_EQ(0, std::memcmp(&before, &mode, sizeof mode));
  EXPECT_EQ(Extent(4, 2 + 2) + 2, MeasureText(device, "dd", font, mode, {.charWidths = widths}))
      << "2 for the second break";
  EXPECT_EQ(1, mode.BreakErr);
}

// The sanitizers see a read that supposes alignment.
TEST(TextAdvance, WidthsNeedNoAlignment) {
  const Font font = SmallFont().Build();
  TestDevice device({});
  DRAWMODE mode = TextMode();
  alignas(2) const uint8_t bytes[] = {0xAA, 4, 0, 6, 0, 3, 0};
  const void* widths = bytes + 1;
  EXPECT_EQ(11, DrawTextAt(device, 0, 0, "bab", font, mode, {.charWidths = static_cast<const int16_t*>(widths)}));
}

TEST(TextAdvance, WidthsWithClipAndOrigin) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 13, .height = 4, .left = 50, .top = 20});
  device.SetOrigin(50, 21);
  DRAWMODE mode = TextMode(OPAQUE);
  const BandRect clip{1, 0, 11, 2};
  const int16_t widths[3] = {4, 5, 0};
  EXPECT_EQ(12, DrawTextAt(device, 0, -1, "aaa", font, mode, {.clip = &clip, .charWidths = widths}));
  EXPECT_TRUE(BandIs(device, TextInks(), "............. .BT.TBT..TB.. .BT.TBT..TB.."));
}

// A character is passed over by its own width, not by the given one.
TEST(TextAdvance, WidthsAndTheLeftwardTest) {
  const Font font = SmallFont().Build();
  TestDevice device({.width = 20, .height = 1, .left = -12});
  DRAWMODE mode = TextMode();
  const int16_t widths[3] = {5, 4, 0};
  // 'a' at -12, at -7 and at -3: only the last one reaches column 0.
  DrawTextAt(device, -12, 0, "aaa", font, mode, {.charWidths = widths});
  EXPECT_TRUE(BandIs(device, TextInks(), ".........TTT........"));
}

// A count of 0 measures nothing and writes the error back as it was; with widths it is a drawing call's 0.
TEST(TextAdvance, CountZero) {
  const Font font = SmallFont().Build();
  TestDevice device({});
  DRAWMODE mode = TextMode(OPAQUE, {9, 0, -3, 5});
  const DRAWMODE before = mode;
  const int16_t widths[1] = {4};
  EXPECT_EQ(Extent(4, 0), DrawTextAt(device, 0, 0, "", font, mode));
  EXPECT_EQ(0, DrawTextAt(device, 0, 0, "", font, mode, {.charWidths = widths}));
  EXPECT_EQ(0, std::memcmp(&before, &mode, sizeof mode));
  EXPECT_TRUE(BandUntouched(device));
}

// Measuring looks at the record and at the table's widths, at no glyph.
TEST(TextAdvance, MeasuringNeedsNoGlyphs) {
  for (int16_t height : {int16_t{4}, int16_t{300}}) {
    std::vector<uint8_t> bytes(82 + 6, 0xFF);
    std::memcpy(&bytes[22], &height, sizeof height);
    bytes[0] = bytes[1] = 0;
    bytes[24] = 1;
    bytes[29] = bytes[30] = 'a';
    bytes[82] = 3;
    bytes[83] = 0;
    TestDevice device({});
    DRAWMODE mode = TextMode(OPAQUE);
    EXPECT_EQ(Extent(height, 6), MeasureText(device, "aa", Font(bytes, 0), mode));
    EXPECT_TRUE(BandUntouched(device));
  }
}

TEST(TextAdvance, ResultIsTheAdvanceWhereverTheTextLies) {
  const Font font = SmallFont().Build();
  for (int32_t x : {-2000, -3, 0, 7, 5000, 40000}) {
    TestDevice device({.width = 20, .height = 4});
    DRAWMODE mode = TextMode();
    EXPECT_EQ(13, DrawTextAt(device, x, 0, "ac", font, mode)) << x;
    EXPECT_EQ(13, DrawTextAt(device, 0, x - 8, "ac", font, mode)) << x;
  }
}

// Widths beside the band are added up many at a time: strings of every length, all codes inside the table or one of
// them outside, tables of both forms, and one that holds no code at all.
TEST(TextAdvance, LongStringsBesideTheBand) {
  struct Range {
    uint8_t first, last, defaultChar;
  };
  TestDevice device({.width = 20, .height = 4});
  uint32_t state = 1;
  const auto below = [&state](uint32_t end) {
    state = state * 1664525 + 1013904223;
    return (state >> 8) % end;
  };
  for (const Range& range :
       {Range{0, 255, 0}, Range{32, 126, 3}, Range{200, 255, 55}, Range{65, 65, 0}, Range{90, 60, 7}}) {
    const uint32_t entries = range.first <= range.last ? range.last - range.first + 1u : 8;
    for (const std::size_t entryBytes : {std::size_t{4}, std::size_t{6}}) {
      const std::size_t table = entryBytes == 4 ? 49 : 82;
      std::vector<uint8_t> bytes(table + entries * entryBytes, 0xEE);
      bytes[0] = 0;
      bytes[1] = entryBytes == 4 ? 0x02 : 0x00;
      bytes[22] = 4;
      bytes[23] = 0;
      bytes[24] = 1;
      bytes[29] = range.first;
      bytes[30] = range.last;
      bytes[31] = range.defaultChar;
      for (std::size_t i = 0; i < entries; ++i) {
        bytes[table + i * entryBytes] = static_cast<uint8_t>(below(256));
        bytes[table + i * entryBytes + 1] = static_cast<uint8_t>(below(256));
      }
      const Font font(bytes, 0);
      for (int32_t length = 0; length <= 140; ++length) {
        // A code outside the table at a place of the string, or nowhere.
        const int32_t stranger = static_cast<int32_t>(below(180));
        std::string text;
        uint16_t expected = 0;
        for (int32_t i = 0; i < length; ++i) {
          const uint8_t code = static_cast<uint8_t>(i == stranger ? below(256) : range.first + below(entries));
          const bool inside = range.first <= code && code <= range.last;
          const std::size_t at = table + entryBytes * (inside ? code - range.first : range.defaultChar);
          expected = static_cast<uint16_t>(expected + (bytes[at] | bytes[at + 1] << 8));
          text += static_cast<char>(code);
        }
        SCOPED_TRACE(testing::Message() << length << " codes, table from " << int{range.first} << ", entries of "
                                        << entryBytes << " bytes");
        DRAWMODE mode = TextMode();
        EXPECT_EQ(length == 0 ? Extent(4, 0) : static_cast<int16_t>(expected),
                  DrawTextAt(device, 0, 100, text, font, mode));
        EXPECT_EQ(Extent(4, expected), MeasureText(device, text, font, mode));
      }
    }
  }
  EXPECT_TRUE(BandUntouched(device));
}

// ---- The call's other arguments.

int32_t CallWith(const TestDevice& device, const char* text, int32_t count, const void* fontBase, uint32_t fontOffset,
                 DRAWMODE* mode) {
  return QNVDevExtTextOut(device.handle(), 0, 0, &kEverywhere, text, count, fontBase, fontOffset, mode, nullptr,
                          nullptr, nullptr, 0);
}

// The count is a signed 16-bit number in a wider slot, the font's offset an unsigned one.
TEST(TextArguments, OnlyTheLowSixteenBits) {
  const Font font = SmallFont({.offset = 300}).Build();
  TestDevice device({.width = 20, .height = 4});
  DRAWMODE mode = TextMode();
  EXPECT_EQ(Extent(4, 7), CallWith(device, "aab", 0x0000FFFD, font.base(), 300, &mode));
  EXPECT_EQ(Extent(4, 7), CallWith(device, "aab", 0x7777FFFD, font.base(), 300, &mode));
  EXPECT_EQ(Extent(4, 0), CallWith(device, "aab", 0x00050000, font.base(), 300, &mode));
  EXPECT_TRUE(BandUntouched(device));
  EXPECT_EQ(6, CallWith(device, "aab", 0x12340002, font.base(), 300, &mode));
  EXPECT_EQ(7, CallWith(device, "aab", static_cast<int32_t>(0xFFFF0003), font.base(), 300, &mode));
  EXPECT_EQ(7, CallWith(device, "aab", 3, font.base(), 0xABCD0000u + 300, &mode));
}

TEST(TextArguments, NullPointersAreRefused) {
  const Font font = SmallFont().Build();
  TestDevice device({});
  DRAWMODE mode = TextMode();
  EXPECT_EQ(0, CallWith(device, nullptr, 3, font.base(), 0, &mode));
  EXPECT_EQ(0, CallWith(device, nullptr, -3, font.base(), 0, &mode));
  EXPECT_EQ(0, CallWith(device, "aaa", 3, nullptr, 0, &mode));
  EXPECT_EQ(0, CallWith(device, "aaa", 3, font.base(), 0, nullptr));
  EXPECT_EQ(Extent(4, 0), CallWith(device, nullptr, 0, font.base(), 0, &mode));
  EXPECT_TRUE(BandUntouched(device));
}

}  // namespace
}  // namespace qnv::test
