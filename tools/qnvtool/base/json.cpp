// Reads JSON strictly: no comments, no trailing commas, no repeated names.
#include "qnvtool/base/json.h"

#include <fmt/core.h>

#include <algorithm>
#include <utility>

namespace qnv::tool {
namespace {

constexpr int kMaxDepth = 32;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

void AppendUtf8(char32_t code, std::string& text) {
  const auto append = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
  if (code < 0x80) {
    append(code);
  } else if (code < 0x800) {
    append(0xC0 | code >> 6);
    append(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    append(0xE0 | code >> 12);
    append(0x80 | (code >> 6 & 0x3F));
    append(0x80 | (code & 0x3F));
  } else {
    append(0xF0 | code >> 18);
    append(0x80 | (code >> 12 & 0x3F));
    append(0x80 | (code >> 6 & 0x3F));
    append(0x80 | (code & 0x3F));
  }
}

// Every function returns false after a mistake, which error_ tells.
class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  bool Whole(JsonValue& value) {
    if (!Value(value, 0)) return false;
    SkipSpaces();
    return at_ == text_.size() || Fail("more follows behind the value");
  }

  const std::string& error() const { return error_; }

 private:
  bool Fail(const char* what) {
    if (error_.empty()) error_ = fmt::format("{} at byte {}", what, at_ + 1);
    return false;
  }

  char Next() const { return at_ < text_.size() ? text_[at_] : '\0'; }

  bool Skip(char c) {
    if (Next() != c || at_ == text_.size()) return false;
    ++at_;
    return true;
  }

  void SkipSpaces() {
    while (at_ < text_.size() && (Next() == ' ' || Next() == '\t' || Next() == '\n' || Next() == '\r')) ++at_;
  }

  bool Word(std::string_view word) {
    if (text_.substr(at_, word.size()) != word) return Fail("no value");
    at_ += word.size();
    return true;
  }

  bool Value(JsonValue& value, int depth) {
    using Kind = JsonValue::Kind;
    if (depth > kMaxDepth) return Fail("too many brackets");
    SkipSpaces();
    switch (Next()) {
      case '{': return Object(value, depth);
      case '[': return Array(value, depth);
      case '"': value.kind = Kind::kString; return String(value.text);
      case 't': value.kind = Kind::kTrue; return Word("true");
      case 'f': value.kind = Kind::kFalse; return Word("false");
      case 'n': value.kind = Kind::kNull; return Word("null");
      default: value.kind = Kind::kNumber; return Number(value.text);
    }
  }

  bool Object(JsonValue& value, int depth) {
    value.kind = JsonValue::Kind::kObject;
    ++at_;
    SkipSpaces();
    if (Skip('}')) return true;
    do {
      SkipSpaces();
      const std::size_t begin = at_;
      std::string name;
      if (Next() != '"') return Fail("no name in quotes");
      if (!String(name)) return false;
      if (value.Find(name) != nullptr) {
        at_ = begin;
        return Fail("a name for the second time");
      }
      SkipSpaces();
      if (!Skip(':')) return Fail("no colon");
      value.members.push_back({std::move(name), JsonValue()});
      if (!Value(value.members.back().value, depth + 1)) return false;
      SkipSpaces();
    } while (Skip(','));
    return Skip('}') || Fail("no comma and no }");
  }

  bool Array(JsonValue& value, int depth) {
    value.kind = JsonValue::Kind::kArray;
    ++at_;
    SkipSpaces();
    if (Skip(']')) return true;
    do {
      value.items.emplace_back();
      if (!Value(value.items.back(), depth + 1)) return false;
      SkipSpaces();
    } while (Skip(','));
    return Skip(']') || Fail("no comma and no ]");
  }

  bool Number(std::string& number) {
    const std::size_t begin = at_;
    const auto digits = [&] {
      const std::size_t first = at_;
      while (IsDigit(Next())) ++at_;
      return at_ > first;
    };
    Skip('-');
    const bool zero = Next() == '0';
    const std::size_t first = at_;
    if (!digits() || (zero && at_ > first + 1)) {
      at_ = begin;
      return Fail("no value");
    }
    if (Skip('.') && !digits()) return Fail("no digit");
    if (Skip('e') || Skip('E')) {
      if (!Skip('+')) Skip('-');
      if (!digits()) return Fail("no digit");
    }
    number = text_.substr(begin, at_ - begin);
    return true;
  }

  bool FourDigits(char32_t& code) {
    code = 0;
    for (int i = 0; i < 4; ++i) {
      const char c = Next();
      const char lower = static_cast<char>(c | 0x20);
      if (IsDigit(c)) {
        code = code << 4 | static_cast<char32_t>(c - '0');
      } else if (lower >= 'a' && lower <= 'f') {
        code = code << 4 | static_cast<char32_t>(lower - 'a' + 10);
      } else {
        return Fail("no four digits behind \\u");
      }
      ++at_;
    }
    return true;
  }

  bool Escape(std::string& text) {
    constexpr std::string_view kNames = "\"\\/bfnrt";
    constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
    const char c = Next();
    if (const std::size_t index = kNames.find(c); c != '\0' && index != std::string_view::npos) {
      ++at_;
      text += kMeanings[index];
      return true;
    }
    if (!Skip('u')) return Fail("no escape that JSON knows");
    char32_t code = 0;
    if (!FourDigits(code)) return false;
    if (code >= 0xD800 && code < 0xDC00) {
      char32_t low = 0;
      if (!Skip('\\') || !Skip('u')) return Fail("half of a surrogate pair");
      if (!FourDigits(low)) return false;
      if (low < 0xDC00 || low > 0xDFFF) return Fail("half of a surrogate pair");
      code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
    } else if (code >= 0xDC00 && code <= 0xDFFF) {
      return Fail("half of a surrogate pair");
    }
    AppendUtf8(code, text);
    return true;
  }

  bool String(std::string& text) {
    ++at_;
    for (;;) {
      if (at_ == text_.size()) return Fail("no closing quote");
      const char c = text_[at_];
      if (static_cast<unsigned char>(c) < 0x20) return Fail("a control character in quotes");
      ++at_;
      if (c == '"') return true;
      if (c != '\\') {
        text += c;
      } else if (!Escape(text)) {
        return false;
      }
    }
  }

  const std::string_view text_;
  std::size_t at_ = 0;
  std::string error_;
};

}  // namespace

const JsonValue* JsonValue::Find(std::string_view name) const {
  const auto found =
      std::find_if(members.begin(), members.end(), [&](const JsonMember& member) { return member.name == name; });
  return found == members.end() ? nullptr : &found->value;
}

std::optional<JsonValue> ParseJson(std::string_view text, std::string& error) {
  Parser parser(text);
  JsonValue value;
  if (parser.Whole(value)) return value;
  error = parser.error();
  return std::nullopt;
}

std::string JsonText(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      result += '\\';
      result += c;
    } else if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      result += fmt::format("\\u{:04x}", static_cast<int>(c));
    } else {
      result += c;
    }
  }
  return result + "\"";
}

}  // namespace qnv::tool
