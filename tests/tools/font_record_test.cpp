// Font records, read back by the library itself.
#include "qnvtool/text/font_record.h"

#include <gtest/gtest.h>

#include "qnvtool/layout/text_lines.h"
#include "support/test_device.h"
#include "synthetic_font.h"

namespace qnv::test {
namespace {

using tool::Font;
using tool::FontRecord;
using tool::Glyph;

bool Ink(const Glyph& glyph, int column, int row) {
  if (column < 0 || row < 0 || column >= glyph.columns || row >= glyph.rows) return false;
  const auto stride = static_cast<std::size_t>(glyph.columns + 7) / 8;
  const auto at = static_cast<std::size_t>(row) * stride + static_cast<std::size_t>(column) / 8;
  return (glyph.bits[at] & 0x80 >> column % 8) != 0;
}

// Paints one character at (20, 20), top left of its cell, and compares every pixel with the glyph.
void CheckPainted(const FontRecord& record, const void* string, const Glyph& glyph, const char* name) {
  TestDevice device({.bitsPerPixel = 8, .width = 100, .height = 100, .fill = 0xFF});
  DRAWMODE mode = MakeDrawMode({.bkMode = TRANSPARENT});
  const int16_t width = static_cast<int16_t>(tool::CellWidth(glyph));
  QNVDevExtTextOut(device.handle(), 20, 20, &kEverywhere, string, 1, record.memory.data(), 0, &mode, nullptr, &width,
                   nullptr, 0);
  const int shift = glyph.left < 0 ? -glyph.left : 0;
  int wrong = 0;
  for (int y = 0; y < 100; ++y) {
    for (int x = 0; x < 100; ++x) {
      const bool expected = Ink(glyph, x - 20 - glyph.left - shift, y - 20 - record.ascent + glyph.top);
      const bool painted = *device.Pixel(static_cast<uint32_t>(x), static_cast<uint32_t>(y)) == 0;
      wrong += expected != painted ? 1 : 0;
    }
  }
  EXPECT_EQ(wrong, 0) << name;
}

TEST(FontRecord, OneByteCharactersPaintTheirGlyphs) {
  SyntheticFont source(24);
  Font font(std::make_unique<SyntheticFont>(24));
  for (const char c : {'A', 'j', '~', '\xE9', '\xFF'}) {
    const auto code = static_cast<uint8_t>(c);
    CheckPainted(font.latin(), &c, source.Load(code), std::to_string(code).c_str());
  }
}

TEST(FontRecord, TwoByteCharactersHaveDenseCodesAndPaintTheirGlyphs) {
  SyntheticFont source(19);
  Font font(std::make_unique<SyntheticFont>(19));
  const std::u32string text = U"\u20AC\u0416\U0001F600\u03B1";
  EXPECT_TRUE(font.Wide().empty());
  for (uint16_t i = 0; i < text.size(); ++i) EXPECT_EQ(font.WideCode(text[i]), i);
  for (const char32_t c : text) {
    const uint16_t code = font.WideCode(c);
    CheckPainted(font.Wide(), &code, source.Load(c), std::to_string(c).c_str());
  }
}

TEST(FontRecord, CellsHoldInkThatHangsOut) {
  const struct {
    int advance, left, columns, cell;
  } cases[] = {{4, -3, 9, 9}, {4, 2, 9, 11}, {4, 2, 2, 4}, {-4, 2, 0, 0}};
  for (const auto& c : cases) {
    const Glyph glyph{.advance = c.advance, .left = c.left, .columns = c.columns, .bits = {}};
    EXPECT_EQ(tool::CellWidth(glyph), c.cell) << c.advance << ' ' << c.left << ' ' << c.columns;
  }
}

TEST(FontRecord, CellsReachAsFarAsTheirGlyphs) {
  const Glyph tall{.advance = 8, .top = 15, .columns = 3, .rows = 20, .bits = tool::Bytes(20, 0xE0)};
  const FontRecord record = tool::MakeTwoByteRecord({tall}, 10, 2);
  EXPECT_EQ(record.ascent, 15);
  EXPECT_EQ(record.height, 20);
  const uint16_t code = 0;
  CheckPainted(record, &code, tall, "tall");
}

TEST(FontRecord, WidthsAreWhatTheLibraryMeasures) {
  Font font(std::make_unique<SyntheticFont>(24));
  const std::string text = "Sphinx of black quartz, judge my vow \xE4\xF6\xFC";
  int expected = 0;
  for (const char c : text) expected += font.Advance(static_cast<uint8_t>(c));
  TestDevice device({});
  DRAWMODE mode = MakeDrawMode();
  const int32_t extent =
      QNVDevExtTextOut(device.handle(), 0, 0, &kEverywhere, text.data(), -static_cast<int32_t>(text.size()),
                       font.latin().memory.data(), 0, &mode, nullptr, nullptr, nullptr, 0);
  EXPECT_EQ(extent & 0xFFFF, expected);
  EXPECT_EQ(extent >> 16, font.latin().height);
}

}  // namespace
}  // namespace qnv::test
