// Codes of one-byte fonts: unsigned, and shown as the default character when the table does not hold them.
#include <gtest/gtest.h>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

struct DefaultCase {
  const char* name;
  uint8_t first, last, defaultChar;  // defaultChar relative to first
  std::string text;
  int32_t advance;
  const char* picture;  // one row of 16; each glyph is its index + 1 pixels wide, the last one clear
};

const DefaultCase kCases[] = {
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
    for (const DefaultCase& c : kCases) {
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

}  // namespace
}  // namespace qnv::test
