// Text as people write it: glyphs, their order and their positions in real fonts, and the pixels that come out.
#include "qnvtool/text/shaped_font.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "qnvtool/layout/text_layout.h"
#include "qnvtool/layout/text_lines.h"
#include "qnvtool/layout/verbatim_rows.h"
#include "qnvtool/paint/band_printer.h"
#include "qnvtool/text/text_properties.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

using tool::LineBreak;
using tool::TextForm;

// The ink of a glyph in a line: pixels from the start of the line to its left edge, and above the baseline of the line.
struct Cell {
  const tool::GlyphSheet* sheet = nullptr;
  uint16_t code = 0;
  int x = 0;
  int rise = 0;
  bool operator==(const Cell&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Cell& cell) {
  return out << "code " << cell.code << " at " << cell.x << " +" << cell.rise;
}

std::vector<Cell> CellsOf(const std::vector<tool::TextRun>& runs) {
  std::vector<Cell> cells;
  int x = 0;
  for (const tool::TextRun& run : runs) {
    x += run.gap;
    for (std::size_t i = 0; i < run.codes.size(); ++i) {
      cells.push_back({run.sheet.get(), run.codes[i], x, run.rise});
      x += run.widths[i];
    }
  }
  return cells;
}

// A glyph by a character that has it as its own, and the pen position of its origin.
struct Expected {
  char32_t character;
  int pen;  // 1/64 pixels
};

class ShapedFonts : public testing::Test {
 protected:
  // At 32 pixels an em, a unit of a font with 2048 units an em is 1/64 pixel.
  std::unique_ptr<tool::Font> Open(const std::string& name, const std::string& fallback = "sans") {
    return tool::OpenShapedFont(system_, name, fallback, 32, 72);
  }

  static std::vector<Cell> Cells(tool::Font& font, const std::u32string& text, TextForm form = TextForm::kFlow) {
    return CellsOf(font.Shape(text, form)->Runs({0, text.size()}).runs);
  }

  static std::vector<Cell> Placed(tool::Font& font, const std::vector<Expected>& expected) {
    std::vector<Cell> cells;
    for (const Expected& one : expected) {
      Cell cell = Cells(font, {one.character}).at(0);
      cell.x += (one.pen + 32) >> 6;
      cells.push_back(cell);
    }
    return cells;
  }

  std::string notes_;
  std::shared_ptr<tool::FontSystem> system_ =
      std::make_shared<tool::FontSystem>([this](const std::string& note) { notes_ += note + '\n'; });
};

// The advances are those of the font's tables.
TEST_F(ShapedFonts, AdvancesAndClusters) {
  struct Case {
    const char* name;
    const char* font;
    std::u32string text;
    TextForm form;
    std::vector<int32_t> advances;
    const char* insides;  // 'i' where a character belongs to the cluster before it
  };
  const Case cases[] = {
      {"ligature", "DejaVu Sans", U"fi", TextForm::kFlow, {1290, 0}, ".i"},
      {"kerning", "DejaVu Sans", U"AVAf", TextForm::kFlow, {1270, 1270, 1328, 721}, "...."},
      {"columns have neither", "DejaVu Sans", U"fiAV", TextForm::kColumns, {721, 569, 1401, 1401}, "...."},
      {"combining mark", "DejaVu Sans", U"e\u0301n", TextForm::kFlow, {1260, 0, 1298}, ".i."},
      {"soft hyphen", "DejaVu Sans", U"l\u00ADl", TextForm::kFlow, {569, 0, 569}, "..."},
      {"Arabic", "DejaVu Sans", U"\u0633\u0644\u0627\u0645", TextForm::kFlow, {1716, 1222, 0, 1268}, "..i."},
      {"Hebrew", "DejaVu Sans", U"\u05E9\u05DC\u05D5\u05DD", TextForm::kFlow, {1451, 1164, 558, 1359}, "...."},
      {"Devanagari",
       "Lohit Devanagari",
       U"\u0915\u093F\u0915\u094D\u0937",
       TextForm::kFlow,
       {2 * (266 + 749), 0, 2 * 657, 0, 0},
       ".i.ii"},  // 1024 units an em
      {"nothing", "DejaVu Sans", U"", TextForm::kFlow, {}, ""},
  };
  for (const Case& c : cases) {
    const auto font = Open(c.font);
    const auto shaped = font->Shape(c.text, c.form);
    EXPECT_EQ(shaped->advances(), c.advances) << c.name;
    std::string insides;
    for (const LineBreak one : shaped->breaks()) insides += one == LineBreak::kInside ? 'i' : '.';
    EXPECT_EQ(insides, c.insides) << c.name;
  }
}

// Glyphs in visual order, each where the sum of the advances puts it.
TEST_F(ShapedFonts, Positions) {
  struct Case {
    const char* name;
    std::u32string text;
    bool rightToLeft;
    std::vector<Expected> glyphs;
  };
  const int space = 651;
  const Case cases[] = {
      {"ligature", U"afi", false, {{'a', 0}, {0xFB01, 1255}}},
      {"kerning", U"AVA", false, {{'A', 0}, {'V', 1270}, {'A', 2540}}},
      {"Hebrew in a line from left to right",
       U"a \u05E9\u05DC\u05D5\u05DD b",
       false,
       {{'a', 0},
        {0x05DD, 1255 + space},
        {0x05D5, 1255 + space + 1359},
        {0x05DC, 1255 + space + 1359 + 558},
        {0x05E9, 1255 + space + 1359 + 558 + 1164},
        {'b', 1255 + space + 1359 + 558 + 1164 + 1451 + space}}},
      {"joined Arabic letters with a ligature",  // presentation forms name the glyphs
       U"a \u0633\u0644\u0627\u0645 b",
       false,
       {{'a', 0},
        {0x0645, 1255 + space},
        {0xFEFC, 1255 + space + 1268},
        {0xFEB3, 1255 + space + 1268 + 1222},
        {'b', 1255 + space + 1268 + 1222 + 1716 + space}}},
      {"Latin in a line from right to left",
       U"\u05D5 ab",
       true,
       {{'a', 0}, {'b', 1255}, {0x05D5, 1255 + 1300 + space}}},
      {"a number in a line from right to left",
       U"\u05D5 12",
       true,
       {{'1', 0}, {'2', 1303}, {0x05D5, 2 * 1303 + space}}},
      {"brackets are mirrored", U"(\u05D5)", true, {{'(', 0}, {0x05D5, 799}, {')', 799 + 558}}},
  };
  const auto font = Open("DejaVu Sans");
  for (const Case& c : cases) {
    const auto shaped = font->Shape(c.text, TextForm::kFlow);
    EXPECT_EQ(shaped->rightToLeft(), c.rightToLeft) << c.name;
    const std::vector<Cell> cells = CellsOf(shaped->Runs({0, c.text.size()}).runs);
    EXPECT_EQ(cells, Placed(*font, c.glyphs)) << c.name;
  }
}

// The vowel sign I is written before the letter that it follows in the text, and two letters become one.
TEST_F(ShapedFonts, DevanagariIsReordered) {
  const auto font = Open("Lohit Devanagari");
  const std::vector<Cell> letter = Cells(*font, U"\u0915");
  const std::vector<Cell> syllable = Cells(*font, U"\u0915\u093F");
  ASSERT_EQ(letter.size(), 1u);
  ASSERT_EQ(syllable.size(), 2u);
  EXPECT_NE(syllable[0].code, letter[0].code);
  EXPECT_EQ(syllable[1], (Cell{letter[0].sheet, letter[0].code, letter[0].x + ((2 * 266 + 32) >> 6), 0}));
  EXPECT_EQ(Cells(*font, U"\u0915\u094D\u0937").size(), 1u);
}

// A mark is placed over or below its letter, also left of where the letter began.
TEST_F(ShapedFonts, MarksLieAtTheirLetters) {
  const auto font = Open("DejaVu Sans");
  // The mark comes first: its glyph is 163 units left of the letter's origin.
  const Cell letter = Cells(*font, U"\u05DC").at(0);
  const auto cells = Cells(*font, U"\u05DC\u05B8");
  ASSERT_EQ(cells.size(), 2u);
  EXPECT_EQ(cells[1], letter);
  EXPECT_EQ(cells[0].rise, 0);
  EXPECT_LT(cells[0].x, letter.x + 18);
  // The vowel below the letter in the middle of a word is 350 units lower than by itself.
  const auto word = Cells(*font, U"\u0628\u0650\u0633\u0645");
  ASSERT_EQ(word.size(), 4u);
  EXPECT_EQ(word[2].rise, -5);
  EXPECT_EQ(word[3].rise, 0);
}

// A part of a text that is cut inside a kerned or joined pair looks as if the rest were not there, and the parts of a
// text have the letters of the whole.
TEST_F(ShapedFonts, PartsAreShapedAnew) {
  const auto font = Open("DejaVu Sans");
  const std::u32string text = U"AVA \u0633\u0644\u0627\u0645 AV";
  const auto shaped = font->Shape(text, TextForm::kFlow);
  EXPECT_EQ(CellsOf(shaped->Runs({1, 3}).runs), Cells(*font, U"VA"));
  EXPECT_EQ(CellsOf(shaped->Runs({0, 1}).runs), Cells(*font, U"A"));
  EXPECT_EQ(CellsOf(shaped->Runs({4, 8}).runs), Cells(*font, U"\u0633\u0644\u0627\u0645"));
  EXPECT_EQ(CellsOf(shaped->Runs({9, 11}).runs), Cells(*font, U"AV"));
  EXPECT_EQ(shaped->Runs({9, 11}).width, (1270 + 1401 + 63) / 64);
  // Cut after the first letter, both sides keep the forms in which they join.
  EXPECT_EQ(CellsOf(shaped->Runs({4, 5}).runs), Placed(*font, {{0xFEB3, 0}}));
  EXPECT_EQ(CellsOf(shaped->Runs({5, 8}).runs), Placed(*font, {{0x0645, 0}, {0xFEFC, 1268}}));
}

TEST_F(ShapedFonts, ExtraSpaceIsSpreadAndHyphensEndTheLine) {
  const auto font = Open("DejaVu Sans");
  const std::u32string text = U"a b c d";
  const auto line = font->Shape(text, TextForm::kFlow)
                        ->Runs({0, text.size(), false, (1255 + 1300 + 1126 + 1300 + 3 * 651 + 63) / 64 + 10, 3});
  const int space = 651;
  EXPECT_EQ(CellsOf(line.runs), Placed(*font, {{'a', 0},
                                               {'b', 1255 + space + 3 * 64},
                                               {'c', 1255 + 1300 + 2 * space + 6 * 64},
                                               {'d', 1255 + 1300 + 1126 + 3 * space + 10 * 64}}));
  EXPECT_EQ(line.width, (1255 + 1300 + 1126 + 1300 + 3 * space + 63) / 64 + 10);
  EXPECT_EQ(CellsOf(font->Shape(U"ab", TextForm::kFlow)->Runs({0, 1, true}).runs),
            Placed(*font, {{'a', 0}, {'-', 1255}}));
  EXPECT_EQ(CellsOf(font->Shape(U"\u05D5\u05D5", TextForm::kFlow)->Runs({0, 1, true}).runs),
            Placed(*font, {{'-', 0}, {0x05D5, 739}}));
}

TEST_F(ShapedFonts, OtherFontsFillGaps) {
  const auto mono = Open("DejaVu Serif", "sans");
  const auto sans = Open("DejaVu Sans");
  // DejaVu Serif has no Hebrew letters; the font that is found has the advance of one that is installed.
  EXPECT_FALSE(tool::FindFontByCharacters(U"\u05D5", "sans").file.path.empty());
  EXPECT_EQ(mono->Shape(U"\u05D5\u05D5", TextForm::kFlow)->advances(),
            Open(tool::FindFontByCharacters(U"\u05D5", "sans").file.path)
                ->Shape(U"\u05D5\u05D5", TextForm::kFlow)
                ->advances());
  // Ideographs, a letter of which belongs to no other script around it.
  const auto ideographs = sans->Shape(U"x\u65E5\u672C\u3002", TextForm::kFlow)->advances();
  EXPECT_EQ(ideographs, (std::vector<int32_t>{1212, 2048, 2048, 2048}));
  EXPECT_EQ(notes_, "");
  // What no font has is a box of the font itself, and said once for each script.
  const auto none = sans->Shape(U"\U00013000 \U00013001 \U000F0000", TextForm::kFlow)->advances();
  EXPECT_EQ(none, (std::vector<int32_t>{1229, 651, 1229, 651, 1229}));
  EXPECT_EQ(notes_,
            "no installed font has Egyptian hieroglyphs (such as U+13000); boxes stand for it\n"
            "no installed font has U+F0000; boxes stand for it and for others like it\n");
}

TEST_F(ShapedFonts, NamesOfFonts) {
  Open("serif");
  Open("DejaVu Sans:bold");
  Open("dejavu sans mono");
  EXPECT_EQ(notes_, "");
  const std::string sans = tool::FindFontByName("No Such Font").family;
  Open("No Such Font");
  Open("No Such Font");
  EXPECT_EQ(notes_, "font \"No Such Font\" is not installed; " + sans + " is used\n");
  EXPECT_EQ(UsageErrorOf([&] { Open("./none.ttf"); }), "./none.ttf: no such font file");
  EXPECT_EQ(InputErrorOf([&] { Open("/proc/version"); }), "/proc/version: is no scalable font");
  const auto large = [&] { tool::OpenShapedFont(system_, "serif", "serif", 200, 4800); };
  EXPECT_EQ(UsageErrorOf(large), "text of 200 points has more than 4096 pixels at 4800 dpi");
}

// Where lines may end: '|' before a character that may begin one.
std::string Breaks(const std::u32string& text) {
  std::string result;
  for (const LineBreak one : tool::UnicodeBreaks(text)) result += one == LineBreak::kAllowed ? '|' : '.';
  return result;
}

TEST(TextProperties, LineBreaks) {
  EXPECT_EQ(Breaks(U"ab cd"), "...|.");
  EXPECT_EQ(Breaks(U"a\u00A0b"), "...");
  EXPECT_EQ(Breaks(U"a-b"), "..|");
  EXPECT_EQ(Breaks(U"x -b --opt -1"), "..|..|.....|.");
  EXPECT_EQ(Breaks(U"a\u00ADb"), "..|");
  EXPECT_EQ(Breaks(U"http://a/b"), ".......|.|");
  // Ideographs may be parted, but not closing marks from what they close, nor opening ones from what they open.
  EXPECT_EQ(Breaks(U"\u65E5\u672C\u3002\u300C\u306F\u300D\u3002\u4E2D"), ".|.|...|");
  EXPECT_EQ(Breaks(U"\u65E5ab\u672C"), ".|.|");
  EXPECT_EQ(Breaks(U"\uD55C\uAD6D \uB9D0"), ".|.|");
  EXPECT_EQ(Breaks(U""), "");
}

TEST(TextProperties, ScriptsAndDirections) {
  const auto scripts = tool::ScriptsOf(U" (\u05D0\u05B8 1\u0627 a");
  std::string names;
  for (const tool::ScriptTag script : scripts) names += tool::ScriptName(script)[0];
  EXPECT_EQ(names, "HHHHHHAAL");
  EXPECT_EQ(tool::ScriptName(tool::ScriptOf(U'\u0905')), "Devanagari");
  EXPECT_EQ(tool::ScriptName(tool::ScriptOf(U'\U00010000')), "the script Linb");
  EXPECT_EQ(tool::ScriptOf(U'.'), tool::kCommonScript);

  using Levels = std::vector<uint8_t>;
  EXPECT_EQ(tool::DirectionsOf(U"a \u05D0 1", true).levels, (Levels{0, 0, 1, 1, 2}));
  EXPECT_FALSE(tool::DirectionsOf(U"a \u05D0", true).rightToLeft);
  EXPECT_EQ(tool::DirectionsOf(U"\u05D0 a", true).levels, (Levels{1, 1, 2}));
  EXPECT_TRUE(tool::DirectionsOf(U"\u05D0 a", true).rightToLeft);
  EXPECT_EQ(tool::DirectionsOf(U"\u05D0 a", false).levels, (Levels{1, 0, 0}));
  EXPECT_EQ(tool::DirectionsOf(U"abc", true).levels, (Levels{0, 0, 0}));
}

class ShapedPages : public ShapedFonts {
 protected:
  tool::FontShelf fonts_{[this](tool::FontRole role, double points) {
    return tool::OpenShapedFont(system_, role == tool::FontRole::kListing ? "DejaVu Sans Mono" : "DejaVu Sans", "sans",
                                points, 150);
  }};
  tool::PageSetup setup_{.sheet = {150, 500, 400, {20, 10, 480, 390}}, .fonts = &fonts_, .points = 12, .header = false};

  static std::vector<tool::TextLine> Lines(const tool::Page& page) {
    std::vector<tool::TextLine> lines;
    for (const auto& item : page.items) lines.push_back(std::get<tool::TextLine>(item));
    return lines;
  }
};

TEST_F(ShapedPages, IdeographsBreakWhereTheyMay) {
  std::u32string text;
  for (int i = 0; i < 20; ++i) text += U"\u65E5\u672C\u8A9E\u3002\u300C\u306F\u300D";
  const auto page = tool::LayOutText({{tool::TextBlock::Kind::kParagraph, 0, 0, text}}, setup_, "x").front();
  const auto lines = Lines(page);
  ASSERT_EQ(lines.size(), 8u);  // 18 of 25 pixels in 460
  std::u32string whole;
  for (const auto& line : lines) {
    EXPECT_EQ(line.left, 20);
    EXPECT_TRUE(line.text[0] != 0x3002 && line.text[0] != 0x300D) << whole.size();
    EXPECT_NE(line.text.back(), char32_t{0x300C}) << whole.size();
    EXPECT_EQ(line.width, static_cast<int>(line.text.size()) * 25);
    EXPECT_GE(line.text.size(), &line == &lines.back() ? 1u : 16u);
    whole += line.text;
  }
  EXPECT_EQ(whole, text);
}

TEST_F(ShapedPages, LinesFromRightToLeftLieAtTheRightEdge) {
  std::u32string text;
  for (int i = 0; i < 12; ++i) text += U"\u05E9\u05DC\u05D5\u05DD \u05D0\u05D1 ";
  const auto blocks = tool::ParseTextBlocks(text + U"\n\n- " + text + U"\n", false);
  const auto lines = Lines(tool::LayOutText(blocks, setup_, "x").front());
  ASSERT_EQ(lines.size(), 7u);  // three, a bullet, and three
  EXPECT_EQ(lines[3].text, U"\u2022");
  EXPECT_EQ(lines[3].left + lines[3].width, 480);
  const int indent = tool::MakeLine(U"\u2022\u2002", *fonts_.Get(tool::FontRole::kBody, 12), 0, 0).width;
  for (const std::size_t i : {0u, 1u, 4u, 5u}) {
    EXPECT_EQ(lines[i].left, 20) << i;
    EXPECT_EQ(lines[i].width, i < 3 ? 460 : 460 - indent) << i;  // justified
  }
  EXPECT_EQ(lines[2].left + lines[2].width, 480);
  EXPECT_EQ(lines[6].left + lines[6].width, 480 - indent);
  EXPECT_GT(lines[2].left, 20);
}

// Tabs lead to columns, whatever the width of what is before them; long lines continue after a mark.
TEST_F(ShapedPages, Listings) {
  const auto font = fonts_.Get(tool::FontRole::kListing, 12 * 0.9);
  const int64_t column = font->Advance(U' ');  // 13.6 pixels: 33 columns in a line
  ASSERT_EQ(460 * 64 / column, 33);
  const auto at = [&](int64_t columns) { return 20 + static_cast<int>((columns * column + 32) / 64); };
  const std::u32string text =
      U"a\tb\t\tc\n\u65E5\u672C\td\nfi\t\u05E9\u05DC e\n0123456789012345678901234567890123456789\n\ta\n\u65E5x\n";
  tool::TextLayout layout(setup_, "x", false);
  for (const auto& block : tool::ParseTextBlocks(text, true)) layout.Set(block);
  layout.Finish();
  tool::Page page;
  ASSERT_TRUE(layout.Next(page));
  struct Place {
    std::u32string text;
    int left;
    int row;
    bool operator==(const Place&) const = default;
  };
  std::vector<Place> places;
  for (const auto& line : Lines(page)) {
    places.push_back({line.text, line.left, (line.baseline - 10 - font->ascent()) / font->lineHeight()});
  }
  const std::vector<Place> expected{
      {U"a", at(0), 0},
      {U"b", at(8), 0},
      {U"c", at(24), 0},
      {U"\u65E5\u672C", at(0), 1},
      {U"d", at(8), 1},
      {U"fi", at(0), 2},
      {U"\u05E9\u05DC e", at(8), 2},
      {U"012345678901234567890123456789012", at(0), 3},
      {U"\u21AA", at(0), 4},
      {U"3456789", at(2), 4},
      {U"a", at(8), 5},
      {U"\u65E5x", at(0), 6},
  };
  ASSERT_EQ(places.size(), expected.size());
  for (std::size_t i = 0; i < places.size(); ++i) EXPECT_TRUE(places[i] == expected[i]) << "item " << i;
  // An ideograph takes two columns.
  EXPECT_EQ(font->Shape(U"\u65E5x", TextForm::kColumns)->advances(),
            (std::vector<int32_t>{static_cast<int32_t>(2 * column), static_cast<int32_t>(column)}));
}

TEST_F(ShapedPages, LineNumbers) {
  const auto font = fonts_.Get(tool::FontRole::kListing, 12 * 0.9);
  const int64_t column = font->Advance(U' ');
  tool::TextLayout layout(setup_, "x", true);
  layout.Set({tool::TextBlock::Kind::kVerbatim, 0, 0, std::u32string(30, U'x'), 7});
  layout.Set({tool::TextBlock::Kind::kVerbatim, 0, 0, U"", 12345});
  layout.Set({tool::TextBlock::Kind::kVerbatim, 0, 0, U"y", 123456});
  layout.Finish();
  tool::Page page;
  ASSERT_TRUE(layout.Next(page));
  std::u32string shown;
  for (const auto& line : Lines(page)) shown += line.text + U'/';
  EXPECT_EQ(shown, U"7/" + std::u32string(26, U'x') + U"/\u21AA/xxxx/12345/123456/y/");
  const auto lines = Lines(page);
  const int text = 20 + static_cast<int>((7 * column + 63) / 64);
  const int numberEnd = 20 + static_cast<int>((5 * column + 63) / 64);
  EXPECT_EQ(lines[0].left + lines[0].width, numberEnd);
  EXPECT_EQ(lines[1].left, text);
  EXPECT_EQ(lines[2].left + lines[2].width, numberEnd);
  EXPECT_EQ(lines[3].left, text);
  EXPECT_EQ(lines[5].left + lines[5].width, numberEnd);  // one digit in the margin
  EXPECT_LT(lines[5].left, 20);
}

// Whatever the characters and the width: no character is lost or shown twice, and no line is too wide unless it is one
// letter.
TEST_F(ShapedPages, AnyTextIsSetWithoutLoss) {
  const std::u32string pool =
      U"ab fi-/ .,() 12 \u00AD\u200B\u00A0\u0301\u0323\u0628\u0650\u0633\u0644\u0627\u0645\u0640 "
      U"\u05E9\u05DC\u05B8\u05D5 "
      U"\u0915\u094D\u0937\u093F\u0930 \u1112\u1161\u11AB\uD55C \u65E5\u672C\u3002\u300C\u300D "
      U"\u200D\u200C\u200E\u200F\u202B"
      U"\u202C\u2067\u2069\uFE0F\U0001F468\U00013000\uFFFD\uFFFE\U0010FFFF";
  const auto font = fonts_.Get(tool::FontRole::kBody, 12);
  uint32_t state = 1;
  const auto next = [&](std::size_t count) {
    state = state * 1664525 + 1013904223;
    return static_cast<std::size_t>(state >> 8) % count;
  };
  const auto isKept = [](char32_t c) { return c != ' ' && !tool::IsBreakControl(c); };
  for (int number = 0; number < 600; ++number) {
    std::u32string text;
    for (std::size_t i = next(60); i > 0; --i) text += pool[next(pool.size())];
    const int width = 1 + static_cast<int>(next(400));
    const tool::Paragraph paragraph(text, *font, width);
    const auto shaped = font->Shape(text, TextForm::kFlow);
    std::u32string shown;
    std::size_t at = 0;
    for (std::size_t i = 0; i < paragraph.lines(); ++i) {
      tool::TextLine line = paragraph.Line(i, 0, 0, true);
      if (!line.text.empty() && line.text.back() == tool::kSoftHyphen) line.text.pop_back();
      for (const char32_t c : line.text) {
        if (isKept(c)) shown += c;
      }
      for (const Cell& cell : CellsOf(line.runs)) {
        const auto record = cell.sheet->Record();
        const std::size_t first = record->memory[82 + 2] | record->memory[82 + 3] << 8 |
                                  static_cast<std::size_t>(record->memory[82 + 4]) << 16;
        ASSERT_LT(82u + cell.code * 6u, first) << number;  // the table ends where the first glyph begins
      }
      // The clusters of the line, which its text gives the number of.
      while (at < text.size() && tool::IsPlainSpace(text, shaped->breaks(), at)) ++at;
      ASSERT_TRUE(at == text.size() || shaped->breaks()[at] != LineBreak::kInside) << number;
      int clusters = 0;
      for (std::size_t kept = 0; kept < line.text.size() && at < text.size(); ++at) {
        if (tool::IsBreakControl(text[at])) continue;
        ASSERT_EQ(text[at], line.text[kept]) << number;
        ++kept;
        clusters += shaped->breaks()[at] != LineBreak::kInside && shaped->advances()[at] > 0 ? 1 : 0;
      }
      while (at < text.size() && (tool::IsBreakControl(text[at]) || shaped->breaks()[at] == LineBreak::kInside)) ++at;
      EXPECT_TRUE(line.width <= width || clusters <= 1) << number << ": " << line.width << " in " << width;
    }
    text.erase(std::remove_if(text.begin(), text.end(), [&](char32_t c) { return !isKept(c); }), text.end());
    EXPECT_EQ(shown, text) << number;
  }
}

// Every pixel of a printed page is ink of the cells, laid over each other at their places.
TEST_F(ShapedPages, PixelsAreTheInkOfTheCells) {
  const auto blocks = tool::ParseTextBlocks(
      U"# AV \u0627\u0644\u0633\u0644\u0627\u0645\n\nfi \u05DC\u05B8 \u0628\u0650\u0633\u0645 \u0915\u093F "
      U"e\u0301q\u0323 "
      U"j\u65E5\u672C and more words, so that lines are justified and broken\n\n\tlisting\t\u65E5x\n",
      false);
  const tool::Page page = tool::LayOutText(blocks, setup_, "x").front();
  std::vector<uint8_t> expected(500 * 400, 0xFF);
  int cells = 0;
  for (const auto& line : Lines(page)) {
    for (const Cell& cell : CellsOf(line.runs)) {
      const auto record = cell.sheet->Record();
      const uint8_t* const entry = record->memory.data() + 82 + cell.code * 6;
      const int columns = entry[0] | entry[1] << 8;
      const uint8_t* const bits = record->memory.data() + (entry[2] | entry[3] << 8 | entry[4] << 16 | entry[5] << 24);
      const int top = line.baseline - cell.rise - record->ascent;
      for (int y = 0; y < record->height; ++y) {
        for (int x = 0; x < columns; ++x) {
          if ((bits[x / 8 * record->height + y] & 0x80 >> x % 8) == 0) continue;
          expected.at(static_cast<std::size_t>((top + y) * 500 + line.left + cell.x + x)) = 0;
        }
      }
      ++cells;
    }
  }
  EXPECT_EQ(cells, 75);
  const auto device = tool::ParseDevice("gray", 150);
  for (const int bandRows : {0, 37}) {
    std::vector<uint8_t> printed;
    tool::BandPrinter printer(tool::LinkedRasteriser(), device, 500, 400, bandRows);
    printer.Print(page, [&](const tool::BandView& band) {
      for (int i = 0; i < band.rows; ++i) {
        const uint8_t* const row = band.pixels + static_cast<std::size_t>(i) * band.stride;
        printed.insert(printed.end(), row, row + 500);
      }
    });
    EXPECT_TRUE(printed == expected) << "bands of " << bandRows;
  }
}

}  // namespace
}  // namespace qnv::test
