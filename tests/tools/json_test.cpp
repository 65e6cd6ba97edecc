// JSON values, as manifests hold them.
#include "qnvtool/base/json.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace qnv::test {
namespace {

using tool::JsonValue;
using Kind = JsonValue::Kind;

JsonValue Parsed(const std::string& text) {
  std::string error;
  const std::optional<JsonValue> value = tool::ParseJson(text, error);
  EXPECT_TRUE(value.has_value()) << text << ": " << error;
  return value.value_or(JsonValue());
}

std::string ErrorOf(const std::string& text) {
  std::string error;
  EXPECT_FALSE(tool::ParseJson(text, error).has_value()) << text;
  return error;
}

TEST(Json, ValuesOfAllKinds) {
  EXPECT_EQ(Parsed("null").kind, Kind::kNull);
  EXPECT_EQ(Parsed(" true ").kind, Kind::kTrue);
  EXPECT_EQ(Parsed("\tfalse\r\n").kind, Kind::kFalse);
  EXPECT_EQ(Parsed("\"\"").kind, Kind::kString);
  EXPECT_EQ(Parsed("[]").kind, Kind::kArray);
  EXPECT_EQ(Parsed("{}").kind, Kind::kObject);
  for (const char* number :
       {"0", "-0", "10", "-12", "-12.5", "0.25", "1.50", "1e3", "1E+3", "2.5e-7", "18446744073709551616"}) {
    EXPECT_EQ(Parsed(number).kind, Kind::kNumber);
    EXPECT_EQ(Parsed(number).text, number);
  }
  const JsonValue object = Parsed(R"({"a": [1, "x", [true]], "b": {"c": null}})");
  ASSERT_EQ(object.members.size(), 2U);
  const JsonValue* const a = object.Find("a");
  ASSERT_NE(a, nullptr);
  ASSERT_EQ(a->items.size(), 3U);
  EXPECT_EQ(a->items[0].text, "1");
  EXPECT_EQ(a->items[1].text, "x");
  EXPECT_EQ(a->items[2].items.at(0).kind, Kind::kTrue);
  ASSERT_NE(object.Find("b"), nullptr);
  EXPECT_EQ(object.Find("b")->members.at(0).value.kind, Kind::kNull);
  EXPECT_EQ(object.Find("c"), nullptr);
}

TEST(Json, Escapes) {
  EXPECT_EQ(Parsed(R"("\"\\\/\b\f\n\r\t")").text, "\"\\/\b\f\n\r\t");
  EXPECT_EQ(Parsed(R"("\u0041\u00e9\u20AC\uD83D\uDE00")").text, "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  EXPECT_EQ(Parsed("\"\xC3\xA9\xFF\"").text, "\xC3\xA9\xFF");
  for (const std::string text : {"", "plain", "\"quoted\" \\ back", "line\nend\ttab\x01\x7F", "\xC3\xA9\xFF"}) {
    EXPECT_EQ(Parsed(tool::JsonText(text)).text, text);
  }
  EXPECT_EQ(tool::JsonText("a\nb\x7F"), R"("a\u000ab\u007f")");
  EXPECT_EQ(tool::JsonText("\x1F\"\\"), R"("\u001f\"\\")");
  // All bytes from 0x80 on, in names too.
  std::string high;
  for (int byte = 0x80; byte <= 0xFF; ++byte) high += static_cast<char>(byte);
  EXPECT_EQ(Parsed(tool::JsonText(high)).text, high);
  EXPECT_EQ(Parsed("{" + tool::JsonText(high) + ":1}").members.at(0).name, high);
}

TEST(Json, MistakesAndTheirPlaces) {
  const std::vector<std::pair<std::string, std::string>> mistakes = {
      {"", "at byte 1: unexpected end of input; expected '[', '{', or a literal"},
      {"tru", "at byte 3: invalid literal"},
      {"01", "at byte 2: unexpected number literal; expected end of input"},
      {"-", "at byte 1: invalid number; expected digit after '-'"},
      {"1.", "at byte 2: invalid number; expected digit after '.'"},
      {"1e", "at byte 2: invalid number; expected '+', '-', or digit after exponent"},
      {"1e999", "at byte 5: number overflow parsing '1e999'"},
      {"nan", "at byte 2: invalid literal"},
      {"1 2", "at byte 3: unexpected number literal; expected end of input"},
      {"[1,]", "at byte 4: unexpected ']'; expected '[', '{', or a literal"},
      {"[1", "at byte 2: unexpected end of input; expected ']'"},
      {"{\"a\":1,}", "at byte 8: unexpected '}'; expected string literal"},
      {"{a:1}", "at byte 2: invalid literal; expected string literal"},
      {"{\"a\" 1}", "at byte 6: unexpected number literal; expected ':'"},
      {"{\"a\":1 \"b\":2}", "at byte 10: unexpected string literal; expected '}'"},
      {"{\"a\":1,\"a\":2}", "the name \"a\" for the second time"},
      {"// no comments\n1", "at byte 1: invalid literal"},
      {"\xEF\xBB\xBF{}", "at byte 1: invalid literal"},
      {"[\"\xE9\xFF\" x]", "at byte 7: invalid literal; expected ']'"},
      {"\"abc", "at byte 4: invalid string: missing closing quote"},
      {"\"a\nb\"", "at byte 3: invalid string: control character U+000A (LF) must be escaped to \\u000A or \\n"},
      {"\"\\x\"", "at byte 3: invalid string: forbidden character after backslash"},
      {"\"\\u12g4\"", "at byte 6: invalid string: '\\u' must be followed by 4 hex digits"},
      {"\"\\uD83D\"", "at byte 8: invalid string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF"},
      {"\"\\uD83D\\u0041\"", "at byte 13: invalid string: surrogate U+D800..U+DBFF must be followed by U+DC00..U+DFFF"},
      {"\"\\uDE00\"", "at byte 7: invalid string: surrogate U+DC00..U+DFFF must follow U+D800..U+DBFF"},
      {std::string(100, '['), "too many brackets"},
      {std::string(33, '[') + "1" + std::string(33, ']') + "]", "at byte 68: unexpected ']'; expected end of input"},
      {std::string(34, '[') + std::string(34, ']'), "too many brackets"},
      {std::string("1\0", 2), "at byte 2: a zero byte"},
  };
  for (const auto& [text, message] : mistakes) EXPECT_EQ(ErrorOf(text), message) << text;
}

}  // namespace
}  // namespace qnv::test
