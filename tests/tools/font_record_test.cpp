// Font records, read back by the library itself.
#include "qnvtool/text/font_record.h"

#include <gtest/gtest.h>

#include "qnvtool/text/plain_font.h"
#include "support/test_device.h"
#include "synthetic_font.h"

namespace qnv::test {
namespace {

using tool::FontRecord;
using tool::Glyph;
using tool::PlainFont;

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
  PlainFont font(std::make_unique<SyntheticFont>(24));
  for (const char c : {'A', 'j', '~', '\xE9', '\xFF'}) {
    const auto code = static_cast<uint8_t>(c);
    CheckPainted(*font.latin(), &c, source.Load(code), std::to_string(code).c_str());
  }
}

TEST(FontRecord, TwoByteCharactersHaveDenseCodesAndPaintTheirGlyphs) {
  SyntheticFont source(19);
  PlainFont font(std::make_unique<SyntheticFont>(19));
  const std::u32string text = U"\u20AC\u0416\U0001F600\u03B1";
  std::vector<tool::TextRun> runs;
  for (const char32_t c : text) font.Append(runs, c);
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_EQ(runs[0].codes, (std::vector<uint16_t>{0, 1, 2, 3}));
  const auto record = runs[0].sheet->Record();
  for (uint16_t code = 0; code < text.size(); ++code) {
    CheckPainted(*record, &code, source.Load(text[code]), std::to_string(code).c_str());
    EXPECT_EQ(runs[0].widths[code], font.CellOf(text[code]));
  }
}

// A record that was handed out stays as it is while further characters are used; a full sheet is followed by another.
TEST(FontRecord, SheetsGrowAndRecordsDoNotChange) {
  PlainFont font(std::make_unique<SyntheticFont>(9));
  std::vector<tool::TextRun> runs;
  font.Append(runs, 0x4E00);
  const auto first = runs[0].sheet->Record();
  const tool::Bytes before = first->memory;
  for (char32_t i = 1; i < tool::GlyphSheet::kMaxGlyphs; ++i) font.Append(runs, 0x4E00 + i);
  EXPECT_EQ(first->memory, before);
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_EQ(runs[0].codes.back(), tool::GlyphSheet::kMaxGlyphs - 1);
  EXPECT_GT(runs[0].sheet->Record()->memory.size(), before.size());
  EXPECT_EQ(runs[0].sheet->Record(), runs[0].sheet->Record());
  font.Append(runs, 0x6000);
  ASSERT_EQ(runs.size(), 2u);
  EXPECT_EQ(runs[1].codes, (std::vector<uint16_t>{0}));
  EXPECT_NE(runs[1].sheet, runs[0].sheet);
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
  PlainFont font(std::make_unique<SyntheticFont>(24));
  const std::string text = "Sphinx of black quartz, judge my vow \xE4\xF6\xFC";
  int expected = 0;
  for (const char c : text) expected += font.CellOf(static_cast<uint8_t>(c));
  TestDevice device({});
  DRAWMODE mode = MakeDrawMode();
  const int32_t extent =
      QNVDevExtTextOut(device.handle(), 0, 0, &kEverywhere, text.data(), -static_cast<int32_t>(text.size()),
                       font.latin()->memory.data(), 0, &mode, nullptr, nullptr, nullptr, 0);
  EXPECT_EQ(extent & 0xFFFF, expected);
  EXPECT_EQ(extent >> 16, font.latin()->height);
}

}  // namespace
}  // namespace qnv::test
