// Reads JSON with the parser of nlohmann-json. It is asked for events, because its own values drop what is needed here:
// repeated names, and numbers as they are written.
#include "qnvtool/base/json.h"

#include <fmt/core.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace qnv::tool {
namespace {

using Library = nlohmann::json;

constexpr std::size_t kMaxDepth = 32;

// The parser refuses bytes that are no UTF-8, but names of files may hold any. So it gets every byte from 0x80 on as
// one of the last characters of Unicode, U+10FF80 to U+10FFFF, which have no meaning and these four bytes:
std::string Hidden(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return {'\xF4', '\x8F', static_cast<char>(0xBC | byte >> 6), static_cast<char>(0x80 | (byte & 0x3F))};
}

std::string Hide(std::string_view text) {
  std::string hidden;
  for (const char c : text) {
    if (static_cast<unsigned char>(c) < 0x80) {
      hidden += c;
    } else {
      hidden += Hidden(c);
    }
  }
  return hidden;
}

// Undoes Hide.
std::string Show(std::string_view hidden) {
  std::string text;
  for (std::size_t i = 0; i < hidden.size(); ++i) {
    const std::string_view four = hidden.substr(i, 4);
    const bool isByte = four.size() == 4 && four.substr(0, 2) == "\xF4\x8F" && (four[2] == '\xBE' || four[2] == '\xBF');
    text += isByte ? static_cast<char>((four[2] & 3) << 6 | (four[3] & 0x3F)) : hidden[i];
    if (isByte) i += 3;
  }
  return text;
}

// The byte, counted from 1, that leads to the first `position` bytes of the hidden text.
std::size_t PlaceOf(std::string_view text, std::size_t position) {
  std::size_t place = 0;
  for (std::size_t bytes = 0; bytes < position && place < text.size(); ++place) {
    bytes += static_cast<unsigned char>(text[place]) < 0x80 ? 1U : 4U;
  }
  return std::max<std::size_t>(place, 1);
}

// Takes the events. Each function returns false to end the parsing.
class Builder {
 public:
  explicit Builder(std::string_view text) : text_(text) {}

  bool null() { return Add(JsonValue::Kind::kNull); }
  bool boolean(bool value) { return Add(value ? JsonValue::Kind::kTrue : JsonValue::Kind::kFalse); }
  // Told of whole numbers with a minus only.
  bool number_integer(Library::number_integer_t value) { return AddNumber(value == 0 ? "-0" : std::to_string(value)); }
  bool number_unsigned(Library::number_unsigned_t value) { return AddNumber(std::to_string(value)); }
  bool number_float(Library::number_float_t, const std::string& written) { return AddNumber(written); }
  bool string(const std::string& value) { return Add(JsonValue::Kind::kString, Show(value)); }
  bool binary(const Library::binary_t&) { return Fail("no value"); }
  bool start_object(std::size_t) { return Open(JsonValue::Kind::kObject); }
  bool start_array(std::size_t) { return Open(JsonValue::Kind::kArray); }
  bool end_object() { return Close(); }
  bool end_array() { return Close(); }
  bool key(const std::string& hidden) {
    std::string name = Show(hidden);
    if (open_.back()->Find(name) != nullptr) return Fail(fmt::format("the name \"{}\" for the second time", name));
    open_.back()->members.push_back({std::move(name), JsonValue()});
    return true;
  }
  // what: "[json.exception.KIND.NUMBER] parse error at line L, column C: syntax error while parsing THING - REASON",
  // where the reason may contain all that was read of a string.
  bool parse_error(std::size_t position, const std::string& read, const Library::exception& error) {
    std::string what = error.what();
    const std::string lastRead = "; last read: '" + read + "'";
    if (const std::size_t at = what.find(lastRead); at != std::string::npos) what.erase(at, lastRead.size());
    const std::size_t reason = what.find(" - "), kind = what.find("] ");
    const std::size_t begin = reason != std::string::npos ? reason + 3 : kind != std::string::npos ? kind + 2 : 0;
    return Fail(fmt::format("at byte {}: {}", PlaceOf(text_, position), what.substr(begin)));
  }

  JsonValue& value() { return root_; }
  const std::string& error() const { return error_; }

 private:
  bool Fail(std::string what) {
    error_ = std::move(what);
    return false;
  }

  bool AddNumber(std::string written) { return Add(JsonValue::Kind::kNumber, std::move(written)); }

  JsonValue& Place() {
    if (open_.empty()) return root_;
    JsonValue& parent = *open_.back();
    return parent.kind == JsonValue::Kind::kArray ? parent.items.emplace_back() : parent.members.back().value;
  }

  bool Add(JsonValue::Kind kind, std::string text = {}) {
    JsonValue& value = Place();
    value.kind = kind;
    value.text = std::move(text);
    return true;
  }

  bool Open(JsonValue::Kind kind) {
    if (open_.size() > kMaxDepth) return Fail("too many brackets");
    JsonValue& value = Place();
    value.kind = kind;
    open_.push_back(&value);  // stays where it is: only the innermost one grows
    return true;
  }

  bool Close() {
    open_.pop_back();
    return true;
  }

  const std::string_view text_;
  JsonValue root_;
  std::vector<JsonValue*> open_;
  std::string error_;
};

}  // namespace

const JsonValue* JsonValue::Find(std::string_view name) const {
  const auto found =
      std::find_if(members.begin(), members.end(), [&](const JsonMember& member) { return member.name == name; });
  return found == members.end() ? nullptr : &found->value;
}

std::optional<JsonValue> ParseJson(std::string_view text, std::string& error) {
  // The parser would take it for the end.
  if (const std::size_t zero = text.find('\0'); zero != std::string_view::npos) {
    error = fmt::format("at byte {}: a zero byte", zero + 1);
    return std::nullopt;
  }
  Builder builder(text);
  if (Library::sax_parse(Hide(text), &builder)) return std::move(builder.value());
  error = builder.error();
  return std::nullopt;
}

}  // namespace qnv::tool
