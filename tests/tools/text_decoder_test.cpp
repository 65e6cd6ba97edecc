// Texts in all encodings: decoding at every cut, detection, and the split into lines.
#include "qnvtool/text/text_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "qnvtool/layout/text_document.h"
#include "qnvtool/text/iconv_decoder.h"
#include "qnvtool/text/text_reader.h"
#include "synthetic_font.h"
#include "tool_errors.h"

namespace qnv::test {
namespace {

using tool::TextPiece;

const uint8_t* EncodedBytes(const std::string& bytes) { return reinterpret_cast<const uint8_t*>(bytes.data()); }

// Decodes in blocks of `block` bytes. Faulty sequences come out as '?'.
std::u32string Decode(tool::TextDecoder& decoder, const std::string& bytes, std::size_t block) {
  std::u32string out;
  for (std::size_t at = 0; at < bytes.size(); at += block) {
    decoder.Decode(EncodedBytes(bytes) + at, std::min(block, bytes.size() - at), false, out);
  }
  decoder.Decode(nullptr, 0, true, out);
  std::replace(out.begin(), out.end(), tool::kInvalid, U'?');
  return out;
}

TEST(TextDecoder, EveryEncodingAtEveryCut) {
  struct Case {
    const char* name;
    const char* encoding;
    std::string bytes;
    std::u32string text;
  };
  const Case cases[] = {
      {"all lengths", "UTF-8", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z", U"a\u00E9\u20AC\U0001F600z"},
      {"limits of the ranges", "utf8", "\xC2\x80\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
       U"\u0080\u0800\uD7FF\uE000\U00010000\U0010FFFF"},
      {"stray continuations", "UTF-8", "\x80\xBFz", U"??z"},
      {"overlong", "UTF-8", "\xC0\xAF\xE0\x80\xAF\xF0\x80\x80\xAFz", U"?????????z"},
      {"surrogate", "UTF-8", "\xED\xA0\x80z", U"???z"},
      {"beyond the last", "UTF-8", "\xF4\x90\x80\x80\xF5z", U"?????z"},
      {"one for a sequence that breaks off", "UTF-8", "\xE2\x82z\xF0\x9F\x98\xC3\xA9", U"?z?\u00E9"},
      {"cut off at the end", "UTF-8", "a\xE2\x82", U"a?"},
      {"Latin-1", "ISO-8859-1", "caf\xE9\x80", U"caf\u00E9\u0080"},
      {"low byte first", "UTF-16LE", std::string("a\0\xAC\x20\x3D\xD8\x00\xDE", 8), U"a\u20AC\U0001F600"},
      {"high byte first", "UTF-16BE", std::string("\0a\x20\xAC\xD8\x3D\xDE\x00", 8), U"a\u20AC\U0001F600"},
      {"lone surrogates", "UTF-16BE", std::string("\xD8\x3D\0a\xDE\0\xD8\x3D\xD8\x3D\xDE\x00", 12), U"?a??\U0001F600"},
      {"half a unit", "UTF-16LE", std::string("a\0b", 3), U"a?"},
      {"half a pair", "UTF-16LE", std::string("a\0\x3D\xD8", 4), U"a?"},
      {"four bytes", "UTF-32LE", std::string("\0\xF6\1\0\0\0\x11\0\0\xD8\0\0", 12), U"\U0001F600??"},
      {"four bytes, high first", "UTF-32BE", std::string("\0\1\xF6\0\0\0\0z", 8), U"\U0001F600z"},
  };
  for (const Case& c : cases) {
    for (std::size_t block = 1; block <= c.bytes.size() + 1; ++block) {
      const auto decoder = tool::OpenBuiltInDecoder(c.encoding);
      ASSERT_NE(decoder, nullptr) << c.name;
      EXPECT_EQ(Decode(*decoder, c.bytes, block), c.text) << c.name << ", blocks of " << block;
    }
  }
  EXPECT_EQ(tool::OpenBuiltInDecoder("UTF-7"), nullptr);
}

TEST(TextDecoder, OtherEncodingsThroughIconv) {
  struct Case {
    const char* encoding;
    std::string bytes;
    std::u32string text;
  };
  const Case cases[] = {
      {"KOI8-R", "\xF0\xD2\xC9\xD7\xC5\xD4", U"\u041F\u0440\u0438\u0432\u0435\u0442"},
      {"WINDOWS-1252", "\x80 \x93x\x94 \x81", U"\u20AC \u201Cx\u201D ?"},
      {"SHIFT_JIS", "\x93\xFA\x96{", U"\u65E5\u672C"},
      {"SHIFT_JIS", "a\x93", U"a?"},
      {"GB18030", "\xC4\xE3\x81\x30\x81\x30", U"\u4F60\u0080"},
      {"ISO-2022-JP", "\x1B$BF|K\\\x1B(Bz", U"\u65E5\u672Cz"},
      {"UTF-16", std::string("\xFE\xFF\0a\x20\xAC", 6), U"a\u20AC"},
  };
  for (const Case& c : cases) {
    for (std::size_t block = 1; block <= c.bytes.size() + 1; ++block) {
      const auto decoder = tool::OpenIconvDecoder(c.encoding);
      ASSERT_NE(decoder, nullptr) << c.encoding;
      EXPECT_EQ(Decode(*decoder, c.bytes, block), c.text) << c.encoding << ", blocks of " << block;
    }
  }
  // More than one buffer of the conversion.
  EXPECT_EQ(Decode(*tool::OpenIconvDecoder("KOI8-R"), std::string(5000, '\xD2'), 5000),
            std::u32string(5000, U'\u0440'));
  EXPECT_EQ(tool::OpenIconvDecoder("no-such-encoding"), nullptr);
}

std::string Detect(const std::string& bytes) {
  return tool::DetectEncoding(EncodedBytes(bytes), bytes.size(), "x.txt");
}

TEST(TextDecoder, Detection) {
  const auto with = [](const char* text, std::size_t size) { return std::string(text, size); };
  EXPECT_EQ(Detect("plain"), "UTF-8");
  EXPECT_EQ(Detect(""), "UTF-8");
  EXPECT_EQ(Detect("caf\xE9"), "UTF-8");
  EXPECT_EQ(Detect("\xEF\xBB\xBFx"), "UTF-8");
  EXPECT_EQ(Detect(with("\xFF\xFE\0\0a\0\0\0", 8)), "UTF-32LE");
  EXPECT_EQ(Detect(with("\0\0\xFE\xFF\0\0\0a", 8)), "UTF-32BE");
  EXPECT_EQ(Detect(with("\xFF\xFEz\0", 4)), "UTF-16LE");
  EXPECT_EQ(Detect(with("\xFE\xFF\0z", 4)), "UTF-16BE");
  EXPECT_EQ(Detect(with("a\0\n\0", 4)), "UTF-16LE");
  EXPECT_EQ(Detect(with("\0a\0\n", 4)), "UTF-16BE");
  // Ideographs with a space among them.
  EXPECT_EQ(Detect(with("\xE5\x65\x2C\x67\x9E\x8A\x20\0\xE5\x65\x2C\x67", 12)), "UTF-16LE");

  EXPECT_EQ(InputErrorOf([&] { Detect(with("ab\0c", 4)); }), "x.txt: is no text: zero byte at offset 2");
  EXPECT_EQ(InputErrorOf([&] { Detect(with("\0\1\2\3", 4)); }), "x.txt: is no text: zero byte at offset 0");
  EXPECT_EQ(InputErrorOf([&] { Detect(with("a\0\0b", 4)); }), "x.txt: is no text: zero byte at offset 1");
  EXPECT_EQ(InputErrorOf([&] { Detect(with("a\0b", 3)); }), "x.txt: is no text: zero byte at offset 1");
  EXPECT_EQ(InputErrorOf([&] { Detect(std::string(30, 'a') + with("\0", 1) + "a"); }),
            "x.txt: is no text: zero byte at offset 30");
}

// A source that gives `block` bytes at a time.
tool::ByteSource SourceOf(const std::string& bytes, std::size_t block) {
  return [&bytes, block, at = std::size_t{0}](uint8_t* to, std::size_t capacity) mutable {
    const std::size_t count = std::min({capacity, block, bytes.size() - at});
    std::copy_n(EncodedBytes(bytes) + at, count, to);
    at += count;
    return count;
  };
}

// "number:text" of each piece, ended by '|' for a line, 'F' for a form feed and '+' at the bound.
std::string Pieces(const std::string& bytes, std::size_t block) {
  tool::TextReader reader(SourceOf(bytes, block), nullptr, "x.txt");
  std::string result;
  for (TextPiece piece; reader.Next(piece);) {
    result += std::to_string(piece.line) + ':';
    for (const char32_t c : piece.text) result += c == 0xFFFD ? '?' : c < 0x80 ? static_cast<char>(c) : '*';
    result += "|F+"[static_cast<int>(piece.end)];
  }
  if (reader.invalid() != 0) {
    result += ' ' + std::to_string(reader.invalid()) + '@' + std::to_string(reader.firstInvalidLine());
  }
  return result;
}

TEST(TextReader, LinesAtEveryCut) {
  struct Case {
    const char* name;
    std::string bytes;
    const char* pieces;
  };
  const Case cases[] = {
      {"nothing", "", ""},
      {"one empty line", "\n", "1:|"},
      {"no end at the end", "a\nb", "1:a|2:b|"},
      {"line feeds", "a\n\nb\n", "1:a|2:|3:b|"},
      {"carriage returns", "a\rb\r\rc\r", "1:a|2:b|3:|4:c|"},
      {"both", "a\r\n\r\nb\r\n", "1:a|2:|3:b|"},
      {"line feed, then return", "a\n\rb", "1:a|2:|3:b|"},
      {"the other ones",
       "a\xC2\x85"
       "b\xE2\x80\xA8"
       "c\xE2\x80\xA9"
       "d",
       "1:a|2:b|3:c|4:d|"},
      {"controls go, tabs stay", "a\x01\x1B\x7F\tb", "1:a\tb|"},
      {"colors of terminals go", "\x1B[1;31mred\x1B[0m [x\x1B]y\x1B[3\nz", "1:red [x]y|2:z|"},
      {"a byte order mark goes",
       "\xEF\xBB\xBF"
       "a\xEF\xBB\xBF",
       "1:a*|"},
      {"only a byte order mark", "\xEF\xBB\xBF", ""},
      {"form feeds", "a\fb\n\f\nc\f\r\nd\f\re", "1:aF1:b|2:F3:cF4:dF5:e|"},
      {"form feeds that follow each other", "\f\f\n\na", "1:F1:F2:|3:a|"},
      {"faulty bytes", "a\n\xE9 \xE9\n\xFF", "1:a|2:? ?|3:?| 3@2"},
      {"U+FFFD itself", "\xEF\xBF\xBD", "1:?|"},
  };
  for (const Case& c : cases) {
    for (const std::size_t block : {1u, 2u, 3u, 100u}) {
      EXPECT_EQ(Pieces(c.bytes, block), c.pieces) << c.name << ", blocks of " << block;
    }
  }
}

TEST(TextReader, LongLinesComeInPieces) {
  const std::size_t bound = tool::TextReader::kMaxPiece;
  const std::string line(2 * bound, 'x');
  const std::string a(bound, 'x');
  EXPECT_EQ(Pieces(line + "\nb", 1 << 20), "1:" + a + "+1:" + a + "+1:|2:b|");
  EXPECT_EQ(Pieces(line, 1 << 20), "1:" + a + "+1:" + a + "+");
}

class TextDocuments : public testing::Test {
 protected:
  // The text of all lines of each page, with a bar between pages.
  std::u32string Print(const std::string& bytes, const std::string& path, const tool::TextOptions& options = {}) {
    notes_.clear();
    tool::TextDocument document(SourceOf(bytes, 7), options, setup_, path,
                                [&](const std::string& note) { notes_ += note; });
    std::u32string result;
    for (tool::Page page; document.Next(page);) {
      if (!result.empty()) result += U'|';
      for (const auto& item : page.items) result += std::get<tool::TextLine>(item).text + U'/';
    }
    return result;
  }

  tool::FontShelf fonts_ = SyntheticShelf(100);
  tool::PageSetup setup_{.sheet = {100, 600, 800, {50, 50, 550, 750}}, .fonts = &fonts_, .points = 10, .header = false};
  std::string notes_;
};

TEST_F(TextDocuments, NamesAndOptionsDecideHowTheyAreSet) {
  const std::string text = "# a\nb\n";
  for (const char* name : {"x.txt", "x.TXT", "dir.c/x.text", "x.md", "x.markdown"}) {
    EXPECT_EQ(Print(text, name), U"a/b/") << name;
    EXPECT_EQ(Print(text, name, {.setting = tool::TextOptions::Setting::kVerbatim}), U"# a/b/") << name;
  }
  for (const char* name : {"x.c", "x.log", "Makefile", "standard input", "dir.txt/x"}) {
    EXPECT_EQ(Print(text, name), U"# a/b/") << name;
    EXPECT_EQ(Print(text, name, {.setting = tool::TextOptions::Setting::kFlow}), U"a/b/") << name;
  }
}

TEST_F(TextDocuments, EncodingsAndNotes) {
  EXPECT_EQ(Print("caf\xC3\xA9", "x.txt"), U"caf\u00E9/");
  EXPECT_EQ(notes_, "");
  EXPECT_EQ(Print("caf\xE9 x", "x.txt", {.encoding = "latin1"}), U"caf\u00E9 x/");
  EXPECT_EQ(Print("caf\xE9 x", "x.txt"), U"caf\uFFFD x/");
  EXPECT_EQ(notes_,
            "1 sequence of bytes is no character and is shown as U+FFFD, the first in line 1; --encoding says what the "
            "text is in");
  Print("\n\ncaf\xE9\n\xE9", "x.txt");
  EXPECT_EQ(notes_,
            "2 sequences of bytes are no characters and are shown as U+FFFD, the first in line 3; --encoding says what "
            "the text is in");
  const auto unknown = [&] { Print("x", "x.txt", {.encoding = "KOI8-R"}); };
  EXPECT_NE(UsageErrorOf(unknown).find("--encoding KOI8-R: is unknown; this program knows UTF-8"), std::string::npos);
  EXPECT_EQ(Print("\xC4\xC1", "x.txt", {.encoding = "KOI8-R", .openDecoder = tool::OpenIconvDecoder}),
            U"\u0434\u0430/");
  const auto worse = [&] { tool::CheckEncoding({.encoding = "none", .openDecoder = tool::OpenIconvDecoder}); };
  EXPECT_EQ(UsageErrorOf(worse), "--encoding none: is unknown; 'iconv -l' lists the names");
}

// Pages come out before the text ends, so that a text of any length needs the memory of a few pages.
TEST_F(TextDocuments, PagesComeBeforeTheTextEnds) {
  std::size_t read = 0;
  const auto endless = [&](uint8_t* to, std::size_t capacity) {
    for (std::size_t i = 0; i < capacity; ++i) to[i] = read++ % 20 == 19 ? '\n' : 'x';
    return capacity;
  };
  tool::TextDocument document(endless, {}, setup_, "x.log", [](const std::string&) {});
  tool::Page page;
  for (int i = 0; i < 100; ++i) {
    ASSERT_TRUE(document.Next(page));
    ASSERT_EQ(page.items.size(),
              700u / static_cast<std::size_t>(fonts_.Get(tool::FontRole::kListing, 9)->lineHeight()));
  }
  EXPECT_LT(read, 200000u);
}

}  // namespace
}  // namespace qnv::test
