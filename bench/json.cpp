// Reads and writes JSON. The reader refuses everything that is not well-formed.
#include "json.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace qnv::bench {
namespace {

// A string with quotes, backslashes and control characters escaped.
void WriteString(std::string& out, const std::string& text) {
  out += '"';
  for (const char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(static_cast<unsigned char>(c)));
      out += escape;
    } else {
      out += c;
    }
  }
  out += '"';
}

// Appends a code point below 0x10000.
void AppendUtf8(std::string& out, uint32_t code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

}  // namespace

// A recursive reader; at_ is the place in the text.
class JsonReader {
 public:
  explicit JsonReader(std::string_view text) : text_(text) {}

  bool ReadDocument(Json& value, std::string& error) {
    if (ReadValue(value, 0)) {
      SkipSpace();
      if (at_ == text_.size()) return true;
    }
    error = "not well-formed at byte " + std::to_string(at_);
    return false;
  }

 private:
  static constexpr int kMaxDepth = 64;  // of nesting

  void SkipSpace() {
    while (at_ < text_.size() && std::string_view(" \t\r\n").find(text_[at_]) != std::string_view::npos) ++at_;
  }

  // Moves past a token if it comes next.
  bool Take(std::string_view token) {
    if (text_.substr(at_, token.size()) != token) return false;
    at_ += token.size();
    return true;
  }

  bool ReadValue(Json& value, int depth) {
    if (depth > kMaxDepth) return false;
    SkipSpace();
    if (at_ == text_.size()) return false;
    switch (text_[at_]) {
      case '{': return ReadObject(value, depth);
      case '[': return ReadArray(value, depth);
      case '"': value.type_ = Json::Type::kString; return ReadString(value.text_);
      case 't': value = Json(true); return Take("true");
      case 'f': value = Json(false); return Take("false");
      case 'n': value = Json(); return Take("null");
      default: return ReadNumber(value);
    }
  }

  bool ReadObject(Json& value, int depth) {
    value = Json::Object();
    ++at_;
    SkipSpace();
    if (Take("}")) return true;
    for (;;) {
      SkipSpace();
      std::string name;
      if (!ReadString(name)) return false;
      SkipSpace();
      if (!Take(":")) return false;
      Json member;
      if (!ReadValue(member, depth + 1)) return false;
      value.Set(std::move(name), std::move(member));
      SkipSpace();
      if (Take("}")) return true;
      if (!Take(",")) return false;
    }
  }

  bool ReadArray(Json& value, int depth) {
    value = Json::Array();
    ++at_;
    SkipSpace();
    if (Take("]")) return true;
    for (;;) {
      Json item;
      if (!ReadValue(item, depth + 1)) return false;
      value.Add(std::move(item));
      SkipSpace();
      if (Take("]")) return true;
      if (!Take(",")) return false;
    }
  }

  bool ReadString(std::string& text) {
    if (!Take("\"")) return false;
    while (at_ < text_.size()) {
      const char c = text_[at_++];
      if (c == '"') return true;
      if (static_cast<unsigned char>(c) < 0x20) return false;
      if (c != '\\') {
        text += c;
        continue;
      }
      if (at_ == text_.size()) return false;
      const char kind = text_[at_++];
      constexpr std::string_view kKinds = "\"\\/bfnrt";
      constexpr std::string_view kMeanings = "\"\\/\b\f\n\r\t";
      const std::size_t index = kKinds.find(kind);
      if (index != std::string_view::npos) {
        text += kMeanings[index];
      } else if (kind != 'u' || !ReadCode(text)) {
        return false;
      }
    }
    return false;
  }

  // The four digits of an escape.
  bool ReadCode(std::string& text) {
    uint32_t code = 0;
    for (int i = 0; i < 4; ++i, ++at_) {
      if (at_ == text_.size()) return false;
      const std::size_t digit = std::string_view("0123456789abcdef").find(static_cast<char>(text_[at_] | 0x20));
      if (digit == std::string_view::npos) return false;
      code = code * 16 + static_cast<uint32_t>(digit);
    }
    AppendUtf8(text, code);
    return true;
  }

  bool ReadNumber(Json& value) {
    const std::size_t start = at_;
    while (at_ < text_.size() && std::string_view("+-.0123456789eE").find(text_[at_]) != std::string_view::npos) ++at_;
    const std::string digits(text_.substr(start, at_ - start));
    char* end = nullptr;
    value = Json(std::strtod(digits.c_str(), &end));
    return !digits.empty() && *end == '\0';
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

Json Json::Array() {
  Json value;
  value.type_ = Type::kArray;
  return value;
}

Json Json::Object() {
  Json value;
  value.type_ = Type::kObject;
  return value;
}

bool Json::Parse(std::string_view text, Json& value, std::string& error) {
  value = Json();
  return JsonReader(text).ReadDocument(value, error);
}

void Json::Set(std::string name, Json value) {
  names_.push_back(std::move(name));
  items_.push_back(std::move(value));
}

const Json& Json::operator[](std::string_view name) const {
  static const Json nothing;
  for (std::size_t i = 0; i < names_.size(); ++i) {
    if (names_[i] == name) return items_[i];
  }
  return nothing;
}

std::string Json::Write(int openLevels) const {
  std::string out;
  WriteTo(out, openLevels, 0);
  out += '\n';
  return out;
}

void Json::WriteTo(std::string& out, int openLevels, int depth) const {
  switch (type_) {
    case Type::kNull: out += "null"; return;
    case Type::kBoolean: out += number_ != 0 ? "true" : "false"; return;
    case Type::kString: WriteString(out, text_); return;
    case Type::kNumber: {
      char digits[40];
      std::snprintf(digits, sizeof digits, "%.6g", std::isfinite(number_) ? number_ : 0.0);
      out += digits;
      return;
    }
    case Type::kArray:
    case Type::kObject: break;
  }
  const bool object = type_ == Type::kObject;
  const bool open = openLevels > 0 && !items_.empty();
  const std::string indent = open ? "\n" + std::string(2 * static_cast<std::size_t>(depth) + 2, ' ') : "";
  out += object ? '{' : '[';
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (i > 0) out += open ? "," : ", ";
    out += indent;
    if (object) {
      WriteString(out, names_[i]);
      out += ": ";
    }
    items_[i].WriteTo(out, openLevels - 1, depth + 1);
  }
  if (open) out += "\n" + std::string(2 * static_cast<std::size_t>(depth), ' ');
  out += object ? '}' : ']';
}

}  // namespace qnv::bench
