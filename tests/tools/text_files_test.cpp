// From the bytes of a text file to lines: decoding, structure, line breaking.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "qnvtool/base/utf8.h"
#include "qnvtool/layout/text_blocks.h"
#include "qnvtool/text/line_breaker.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

using tool::BrokenLine;
using tool::TextBlock;
using Kind = TextBlock::Kind;

std::u32string Decode(const std::string& bytes) { return tool::DecodeTextFile({bytes.begin(), bytes.end()}, "x.txt"); }

TEST(Utf8, DecodesAllLengthsNormalisesLinesAndDropsControls) {
  EXPECT_EQ(Decode("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), U"a\u00E9\u20AC\U0001F600");
  EXPECT_EQ(Decode("\xEF\xBB\xBF"
                   "a\r\nb\rc\nd\te\x01\x7F"
                   "f\fg\xC2\x85h"),
            U"a\nb\nc\nd\tef\fgh");
}

TEST(Utf8, NamesWhatIsWrong) {
  struct Case {
    const char* name;
    std::string bytes;
    const char* part;
  };
  const Case cases[] = {
      {"zero byte", std::string("ab\0c", 4), "zero byte at offset 2"},
      {"Latin-1", "caf\xE9 au lait", "byte 0xe9 at offset 3"},
      {"stray continuation", "\x80", "byte 0x80 at offset 0"},
      {"overlong", "\xC0\xAF", "byte 0xc0 at offset 0"},
      {"overlong of three", "\xE0\x80\xAF", "byte 0xe0 at offset 0"},
      {"surrogate", "\xED\xA0\x80", "byte 0xed at offset 0"},
      {"too large", "\xF4\x90\x80\x80", "byte 0xf4 at offset 0"},
      {"cut off", "a\xE2\x82", "byte 0xe2 at offset 1"},
  };
  for (const Case& c : cases) {
    EXPECT_NE(InputErrorOf([&] { Decode(c.bytes); }).find(c.part), std::string::npos) << c.name;
  }
}

std::string Shape(const std::vector<TextBlock>& blocks) {
  std::string shape;
  for (const TextBlock& block : blocks) {
    shape += "PHLVB"[static_cast<int>(block.kind)];
    if (block.kind == Kind::kHeading) shape += std::to_string(block.level);
    shape += '(' + std::string(block.text.begin(), block.text.end()) + ')';
  }
  return shape;
}

TEST(TextBlocks, StructureOfAFile) {
  struct Case {
    const char* name;
    const char32_t* text;
    const char* shape;
  };
  const Case cases[] = {
      {"lines join", U"a b\n  c\n\nd\n", "P(a b c)P(d)"},
      {"headings stand alone", U"# One\ntext\n### Three\n#no\n", "H1(One)P(text)H3(Three)P(#no)"},
      {"four marks are text", U"#### x", "P(#### x)"},
      {"items take the lines below", U"- a\n  b\n- c\n\nd", "L(a b)L(c)P(d)"},
      {"a dash is no item", U"a\n-b", "P(a -b)"},
      {"indented lines stay", U"a\n\n    x  y\n\tz\n\nb", "P(a)V(x  y)V(    z)P(b)"},
      {"indented lines inside a paragraph join", U"a\n    b", "P(a b)"},
      {"form feeds", U"a\n\f\nb\fc", "P(a)B()P(b)B()P(c)"},
      {"nothing", U"\n \n\t\n", ""},
  };
  for (const Case& c : cases) EXPECT_EQ(Shape(tool::ParseTextBlocks(c.text, false)), c.shape) << c.name;
}

TEST(TextBlocks, LinesOfIdeographsJoinWithoutSpaces) {
  const auto blocks = tool::ParseTextBlocks(U"\u65E5\u672C\n  \u8A9E\u3002\nabc\n\u3042\n\uD55C\n\uAD6D\n", false);
  ASSERT_EQ(blocks.size(), 1u);
  EXPECT_EQ(blocks[0].text, U"\u65E5\u672C\u8A9E\u3002 abc \u3042 \uD55C \uAD6D");
}

// A line that comes in pieces is one line; a paragraph that is too long is continued in another one.
TEST(TextBlocks, LongLinesAndParagraphs) {
  const std::size_t bound = tool::TextReader::kMaxPiece;
  std::u32string line(bound - 1, U'x');
  line += U" y\tz";
  auto blocks = tool::ParseTextBlocks(U"a\n" + line + U"\nb\n\n    " + line + U"\nc", false);
  ASSERT_EQ(blocks.size(), 4u);
  EXPECT_EQ(blocks[0].text, U"a " + std::u32string(bound - 1, U'x') + U" y z b");
  EXPECT_FALSE(blocks[1].continues);
  EXPECT_TRUE(blocks[2].continues);
  EXPECT_EQ(blocks[1].text + blocks[2].text, line);
  EXPECT_EQ(blocks[2].line, 5);
  EXPECT_EQ(Shape({blocks[3]}), "P(c)");

  blocks = tool::ParseTextBlocks(line + U"\n", true);
  ASSERT_EQ(blocks.size(), 2u);
  EXPECT_EQ(blocks[0].text + blocks[1].text, line);
  EXPECT_TRUE(blocks[1].continues);
  blocks = tool::ParseTextBlocks(std::u32string(bound, U'x') + U"\n\nb", true);
  EXPECT_EQ(blocks.size(), 3u);  // the empty line, but no empty rest of the first one

  std::u32string paragraph;
  for (int i = 0; i < 30; ++i) paragraph.append(10000, U'x').append(1, U'\n');
  blocks = tool::ParseTextBlocks(paragraph, false);
  ASSERT_EQ(blocks.size(), 2u);
  EXPECT_LE(blocks[0].text.size(), tool::TextBlockParser::kMaxParagraph);
  EXPECT_EQ(std::count(blocks[0].text.begin(), blocks[0].text.end(), U'x') +
                std::count(blocks[1].text.begin(), blocks[1].text.end(), U'x'),
            300000);
}

TEST(TextBlocks, EmptyLinesBeforeListingsCount) {
  const auto blocks = tool::ParseTextBlocks(U"    a\n\n\n    b\n", false);
  ASSERT_EQ(blocks.size(), 2u);
  EXPECT_EQ(blocks[0].spaceBefore, 0);
  EXPECT_EQ(blocks[1].spaceBefore, 2);
}

TEST(TextBlocks, VerbatimKeepsEverything) {
  EXPECT_EQ(Shape(tool::ParseTextBlocks(U"# a\n\n\tb\tc\n", true)), "V(# a)V()V(\tb\tc)");
}

// Every character is ten pixels wide, a space five.
std::vector<BrokenLine> Break(const std::u32string& text, int width) {
  std::vector<int32_t> advances;
  for (const char32_t c : text) advances.push_back(tool::IsBreakControl(c) ? 0 : c == ' ' ? 5 : 10);
  return tool::BreakLines(text, advances, tool::PlainBreaks(text), 10, width);
}

std::vector<std::u32string> Lines(const std::u32string& text, int width) {
  std::vector<std::u32string> lines;
  for (const BrokenLine& line : Break(text, width)) {
    lines.push_back(text.substr(line.begin, line.end - line.begin) + (line.hyphen ? U"~" : U""));
  }
  return lines;
}

TEST(LineBreaker, WhereLinesEnd) {
  struct Case {
    const char* name;
    std::u32string text;
    int width;
    std::vector<std::u32string> lines;
  };
  const Case cases[] = {
      {"nothing", U"", 100, {}},
      {"only spaces", U"   ", 100, {}},
      {"fits exactly", U"aaa bb", 55, {U"aaa bb"}},
      {"one pixel short", U"aaa bb", 54, {U"aaa", U"bb"}},
      {"spaces at the ends go", U"  aaa   bb  ", 30, {U"aaa", U"bb"}},
      {"spaces hang over the edge", U"aaa    bbb", 30, {U"aaa", U"bbb"}},
      {"after hyphens", U"ab-cd-ef", 60, {U"ab-cd-", U"ef"}},
      {"not after a minus", U"a -b", 25, {U"a", U"-b"}},
      {"dashes stay together", U"ab--cd", 40, {U"ab--", U"cd"}},
      {"soft hyphen shows at the end", U"abc\u00ADdef", 45, {U"abc\u00AD~", U"def"}},
      {"soft hyphen without room for the hyphen", U"ab\u00ADcd\u00ADef", 59, {U"ab\u00ADcd\u00AD~", U"ef"}},
      {"soft hyphen takes no room inside", U"abc\u00ADdef", 60, {U"abc\u00ADdef"}},
      {"zero-width space", U"abc\u200Bdef", 40, {U"abc\u200B", U"def"}},
      {"no-break space holds", U"a b\u00A0c", 30, {U"a", U"b\u00A0c"}},
      {"long words are cut", U"abcdefgh", 30, {U"abc", U"def", U"gh"}},
      {"long word after a short one", U"a bcdefg", 30, {U"a", U"bcd", U"efg"}},
      {"a character wider than the line", U"abc", 5, {U"a", U"b", U"c"}},
      {"ideographs", U"\u4E00\u4E01\u4E02", 20, {U"\u4E00\u4E01", U"\u4E02"}},
      {"before the first ideograph", U"b aa\u2E80", 35, {U"b aa", U"\u2E80"}},
      {"closing marks follow", U"\u4E00\u4E01\u3002", 20, {U"\u4E00", U"\u4E01\u3002"}},
  };
  for (const Case& c : cases) EXPECT_EQ(Lines(c.text, c.width), c.lines) << c.name;
}

TEST(LineBreaker, WidthsAndSpaces) {
  const auto lines = Break(U"aa bb cc  dd", 80);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[0].width, 70);
  EXPECT_EQ(lines[0].spaces, 2);
  EXPECT_FALSE(lines[0].last);
  EXPECT_EQ(lines[1].width, 20);
  EXPECT_EQ(lines[1].spaces, 0);
  EXPECT_TRUE(lines[1].last);

  const auto hyphenated = Break(U"abc\u00ADdef", 45);
  ASSERT_EQ(hyphenated.size(), 2u);
  EXPECT_TRUE(hyphenated[0].hyphen);
  EXPECT_EQ(hyphenated[0].width, 40);
}

std::size_t Visible(const std::u32string& text, const BrokenLine& line) {
  std::size_t count = 0;
  for (std::size_t i = line.begin; i < line.end; ++i) count += tool::IsBreakControl(text[i]) ? 0u : 1u;
  return count;
}

// Whatever the width, no character is lost or said twice, and no line but a single character is too wide.
TEST(LineBreaker, EveryWidthKeepsTheText) {
  const std::u32string text =
      U"The well-known \u00ABquick\u00BB brown fox\u00ADtrot \u4E00\u4E01 jumps -- over   the lazy dog.";
  for (int width = 1; width < 700; ++width) {
    std::size_t at = 0;
    for (const BrokenLine& line : Break(text, width)) {
      EXPECT_EQ(text.substr(at, line.begin - at).find_first_not_of(U' '), std::u32string::npos) << width;
      ASSERT_GT(line.end, line.begin) << width;
      EXPECT_TRUE(line.width <= width || Visible(text, line) == 1) << width;
      at = line.end;
    }
    EXPECT_EQ(text.substr(at).find_first_not_of(U' '), std::u32string::npos) << width;
  }
}

}  // namespace
}  // namespace qnv::test
