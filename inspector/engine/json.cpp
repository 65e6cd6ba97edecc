// Reads questions. A library for JSON would make the module of the page a quarter larger, for questions of a dozen words.
#include "inspector/engine/json.h"

#include <cstdlib>

#include "calls/base64.h"

namespace qnv::inspector {

class JsonValue::Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  bool ReadAll(JsonValue* value) {
    if (!Read(value, 0)) return false;
    SkipSpace();
    return at_ == text_.size();
  }

 private:
  static constexpr int kMaxDepth = 8;

  bool Read(JsonValue* value, int depth) {
    SkipSpace();
    if (at_ == text_.size() || depth > kMaxDepth) return false;
    switch (text_[at_]) {
      case '{': return ReadObject(value, depth);
      case '[': return ReadList(value, depth);
      case '"': value->kind_ = Kind::kText; return ReadText(&value->text_);
      case 't': return ReadWord(value, "true", Kind::kBool, 1);
      case 'f': return ReadWord(value, "false", Kind::kBool, 0);
      case 'n': return ReadWord(value, "null", Kind::kNull, 0);
      default: return ReadNumber(value);
    }
  }
  bool ReadObject(JsonValue* value, int depth) {
    value->kind_ = Kind::kObject;
    ++at_;
    if (Take('}')) return true;
    do {
      SkipSpace();
      std::pair<std::string, JsonValue> member;
      if (!ReadText(&member.first) || !Take(':') || !Read(&member.second, depth + 1)) return false;
      value->members_.push_back(std::move(member));
    } while (Take(','));
    return Take('}');
  }
  bool ReadList(JsonValue* value, int depth) {
    value->kind_ = Kind::kList;
    ++at_;
    if (Take(']')) return true;
    do {
      value->items_.emplace_back();
      if (!Read(&value->items_.back(), depth + 1)) return false;
    } while (Take(','));
    return Take(']');
  }
  bool ReadText(std::string* text) {
    if (at_ == text_.size() || text_[at_] != '"') return false;
    for (++at_; at_ < text_.size(); ++at_) {
      char c = text_[at_];
      if (c == '"') {
        ++at_;
        return true;
      }
      if (c == '\\') {
        if (++at_ == text_.size()) return false;
        c = text_[at_];
        switch (c) {
          case 'n': c = '\n'; break;
          case 't': c = '\t'; break;
          case 'r': c = '\r'; break;
          case 'b': c = '\b'; break;
          case 'f': c = '\f'; break;
          case 'u':
            if (!ReadUnit(text)) return false;
            continue;
          default: break;
        }
      }
      *text += c;
    }
    return false;
  }
  // Four digits behind \u; at_ is left on the last one. Halves of pairs stay apart: no name or line holds such letters.
  bool ReadUnit(std::string* text) {
    uint32_t unit = 0;
    for (int i = 0; i < 4; ++i) {
      if (++at_ == text_.size()) return false;
      const char c = text_[at_];
      const int digit = c >= '0' && c <= '9' ? c - '0' : (c | 32) >= 'a' && (c | 32) <= 'f' ? (c | 32) - 'a' + 10 : -1;
      if (digit < 0) return false;
      unit = unit << 4 | static_cast<uint32_t>(digit);
    }
    const auto add = [&](uint32_t byte) { *text += static_cast<char>(byte); };
    if (unit < 0x80) {
      add(unit);
    } else if (unit < 0x800) {
      add(0xC0 | unit >> 6);
      add(0x80 | (unit & 63));
    } else {
      add(0xE0 | unit >> 12);
      add(0x80 | (unit >> 6 & 63));
      add(0x80 | (unit & 63));
    }
    return true;
  }
  bool ReadWord(JsonValue* value, std::string_view word, Kind kind, double number) {
    if (text_.substr(at_, word.size()) != word) return false;
    at_ += word.size();
    value->kind_ = kind;
    value->number_ = number;
    return true;
  }
  bool ReadNumber(JsonValue* value) {
    const std::size_t end = text_.find_first_not_of("+-.0123456789eE", at_);
    const std::string number(text_.substr(at_, end == std::string_view::npos ? end : end - at_));
    char* stop = nullptr;
    value->kind_ = Kind::kNumber;
    value->number_ = std::strtod(number.c_str(), &stop);
    at_ += number.size();
    return !number.empty() && *stop == '\0';
  }
  void SkipSpace() {
    while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\n' || text_[at_] == '\t' || text_[at_] == '\r'))
      ++at_;
  }
  bool Take(char c) {
    SkipSpace();
    if (at_ == text_.size() || text_[at_] != c) return false;
    ++at_;
    return true;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

bool JsonValue::Parse(std::string_view text, JsonValue* value) { return Reader(text).ReadAll(value); }

const JsonValue& JsonValue::operator[](std::string_view name) const {
  static const JsonValue kNone;
  for (const auto& [member, value] : members_) {
    if (member == name) return value;
  }
  return kNone;
}

int64_t JsonValue::Whole(int64_t otherwise) const {
  constexpr double kLimit = 9007199254740992.0;  // all whole numbers up to this are exact
  if (kind_ != Kind::kNumber || !(number_ > -kLimit && number_ < kLimit)) return otherwise;
  return static_cast<int64_t>(number_);
}

JsonWriter& JsonWriter::Base64(std::string_view name, const void* bytes, std::size_t count) {
  Name(name);
  Separate();
  out_ += '"';
  calls::AppendBase64(out_, bytes, count);
  out_ += '"';
  return *this;
}

}  // namespace qnv::inspector
