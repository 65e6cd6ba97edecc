// The words of pages and their places.
#include "qnvtool/layout/page_words.h"

#include <gtest/gtest.h>

#include "qnvtool/layout/text_layout.h"
#include "qnvtool/layout/text_lines.h"
#include "qnvtool/text/shaped_font.h"
#include "synthetic_font.h"

namespace qnv::test {
namespace {

using tool::PageWord;

TEST(PageWords, OfThePlainFont) {
  tool::PlainFont font(std::make_unique<SyntheticFont>(20));
  const auto cell = [&](char32_t c) { return font.CellOf(c); };
  const std::u32string text = U"ab c\u20ACd";
  const int natural = cell('a') + cell('b') + cell(' ') + cell('c') + cell(0x20AC) + cell('d');
  tool::Page page;
  page.items.emplace_back(tool::MakeLine(text, *font.Shape(text, tool::TextForm::kFlow),
                                         {0, text.size(), false, natural + 10, 1}, font, 100, 50));
  page.items.emplace_back(tool::MakeLine(U"  x\u00A0y ", font, 7, 90));
  const std::vector<PageWord> words = tool::WordsOf(page);
  ASSERT_EQ(words.size(), 4u);
  EXPECT_TRUE(words[0].text == U"ab");
  EXPECT_EQ(words[0].left, 100);
  EXPECT_EQ(words[0].baseline, 50);
  EXPECT_EQ(words[0].width, cell('a') + cell('b'));
  EXPECT_EQ(words[0].ascent, 20);
  EXPECT_EQ(words[0].descent, 6);
  EXPECT_FALSE(words[0].rightToLeft);
  EXPECT_TRUE(words[1].text == U"c\u20ACd");
  EXPECT_EQ(words[1].left, 100 + words[0].width + cell(' ') + 10);
  EXPECT_EQ(words[1].width, cell('c') + cell(0x20AC) + cell('d'));
  EXPECT_TRUE(words[2].text == U"x");
  EXPECT_EQ(words[2].left, 7 + 2 * cell(' '));
  EXPECT_TRUE(words[3].text == U"y");
  EXPECT_EQ(words[3].left, words[2].left + cell('x') + cell(0xA0));
}

// Of seven pixels over three spaces the first takes three and the others two.
TEST(PageWords, ExtraPixelsLieWhereTheRasteriserPutsThem) {
  tool::PlainFont font(std::make_unique<SyntheticFont>(20));
  const std::u32string text = U"a a a a";
  const auto shaped = font.Shape(text, tool::TextForm::kFlow);
  const int natural = shaped->Runs({0, text.size()}).width;
  tool::Page page;
  page.items.emplace_back(tool::MakeLine(text, *shaped, {0, text.size(), false, natural + 7, 3}, font, 0, 50));
  std::vector<int> gaps;
  int end = 0;
  for (const PageWord& word : tool::WordsOf(page)) {
    gaps.push_back(word.left - end);
    end = word.left + word.width;
  }
  const int space = font.CellOf(' ');
  EXPECT_EQ(gaps, (std::vector<int>{0, space + 3, space + 2, space + 2}));
}

TEST(PageWords, OfShapedText) {
  const auto system = std::make_shared<tool::FontSystem>([](const std::string& note) { ADD_FAILURE() << note; });
  // A unit of the font is 1/64 pixel.
  const auto font = tool::OpenShapedFont(system, "DejaVu Sans", "sans", 32, 72);
  const int space = 651;
  const auto px = [](int units) { return (units + 32) / 64; };
  tool::Page page;
  page.items.emplace_back(tool::MakeLine(U"afi \u05E9\u05DC\u05D5\u05DD AV", *font, 100, 50));
  const std::u32string hyphenated = U"ab\u00ADcd";
  page.items.emplace_back(
      tool::MakeLine(hyphenated, *font->Shape(hyphenated, tool::TextForm::kFlow), {0, 3, true}, *font, 0, 90));
  const std::vector<PageWord> words = tool::WordsOf(page);
  ASSERT_EQ(words.size(), 4u);
  EXPECT_TRUE(words[0].text == U"afi");
  EXPECT_EQ(words[0].left, 100);
  EXPECT_EQ(words[0].width, px(1255 + 1290));
  EXPECT_TRUE(words[1].text == U"\u05E9\u05DC\u05D5\u05DD");
  EXPECT_TRUE(words[1].rightToLeft);
  const int hebrew = 1255 + 1290 + space;
  EXPECT_EQ(words[1].left, 100 + px(hebrew));
  EXPECT_EQ(words[1].width, px(hebrew + 4532) - px(hebrew));
  EXPECT_TRUE(words[2].text == U"AV");
  EXPECT_FALSE(words[2].rightToLeft);
  EXPECT_EQ(words[2].left, 100 + px(hebrew + 4532 + space));
  EXPECT_EQ(words[2].width, px(hebrew + 4532 + space + 1270 + 1401) - px(hebrew + 4532 + space));
  EXPECT_TRUE(words[3].text == U"ab\u00AD");
  EXPECT_EQ(words[3].left, 0);
  EXPECT_EQ(words[3].width, (1255 + 1300 + 739 + 63) / 64);
}

}  // namespace
}  // namespace qnv::test
