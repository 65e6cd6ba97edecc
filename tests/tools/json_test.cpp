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
  for (const char* number : {"0", "-0", "10", "-12.5", "0.25", "1e3", "1E+3", "2.5e-7"}) {
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
  EXPECT_EQ(tool::JsonText("a\nb"), R"("a\u000ab")");
}

TEST(Json, MistakesAndTheirPlaces) {
  const std::vector<std::pair<std::string, std::string>> mistakes = {
      {"", "no value at byte 1"},
      {"tru", "no value at byte 1"},
      {"01", "no value at byte 1"},
      {"-", "no value at byte 1"},
      {"1.", "no digit at byte 3"},
      {"1e", "no digit at byte 3"},
      {"nan", "no value at byte 1"},
      {"1 2", "more follows behind the value at byte 3"},
      {"[1,]", "no value at byte 4"},
      {"[1", "no comma and no ] at byte 3"},
      {"{\"a\":1,}", "no name in quotes at byte 8"},
      {"{a:1}", "no name in quotes at byte 2"},
      {"{\"a\" 1}", "no colon at byte 6"},
      {"{\"a\":1 \"b\":2}", "no comma and no } at byte 8"},
      {"{\"a\":1,\"a\":2}", "a name for the second time at byte 8"},
      {"\"abc", "no closing quote at byte 5"},
      {"\"a\nb\"", "a control character in quotes at byte 3"},
      {"\"\\x\"", "no escape that JSON knows at byte 3"},
      {"\"\\u12g4\"", "no four digits behind \\u at byte 6"},
      {"\"\\uD83D\"", "half of a surrogate pair at byte 8"},
      {"\"\\uD83D\\u0041\"", "half of a surrogate pair at byte 14"},
      {"\"\\uDE00\"", "half of a surrogate pair at byte 8"},
      {std::string(100, '['), "too many brackets at byte 34"},
  };
  for (const auto& [text, message] : mistakes) EXPECT_EQ(ErrorOf(text), message) << text;
  EXPECT_EQ(ErrorOf(std::string("1\0", 2)), "more follows behind the value at byte 2");
}

}  // namespace
}  // namespace qnv::test
