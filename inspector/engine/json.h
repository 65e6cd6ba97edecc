// The JSON of questions and answers: a small reader, and a writer that appends to a string.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "calls/json_text.h"
#include "calls/text.h"

namespace qnv::inspector {

class JsonValue {
 public:
  enum class Kind : uint8_t { kNull, kBool, kNumber, kText, kList, kObject };

  // False for text that is not JSON, or nested deeper than questions are.
  static bool Parse(std::string_view text, JsonValue* value);

  Kind kind() const { return kind_; }
  // The member of an object, or a null value.
  const JsonValue& operator[](std::string_view name) const;
  const std::vector<JsonValue>& items() const { return items_; }
  const std::string& text() const { return text_; }
  bool IsNumber() const { return kind_ == Kind::kNumber; }
  bool IsTrue() const { return kind_ == Kind::kBool && number_ != 0; }
  // A whole number; `otherwise` for other values and numbers out of range.
  int64_t Whole(int64_t otherwise = 0) const;

 private:
  class Reader;

  Kind kind_ = Kind::kNull;
  double number_ = 0;
  std::string text_;
  std::vector<JsonValue> items_;
  std::vector<std::pair<std::string, JsonValue>> members_;
};

class JsonWriter {
 public:
  explicit JsonWriter(std::string* out) : out_(*out) { out_.clear(); }

  JsonWriter& Object() { return Begin('{'); }
  JsonWriter& EndObject() { return End('}'); }
  JsonWriter& List() { return Begin('['); }
  JsonWriter& EndList() { return End(']'); }
  JsonWriter& Name(std::string_view name) {
    Separate();
    out_ += calls::JsonText(name);
    out_ += ':';
    first_ = true;
    return *this;
  }
  JsonWriter& Value(std::string_view text) {
    Separate();
    out_ += calls::JsonText(text);
    return *this;
  }
  JsonWriter& Value(const char* text) { return Value(std::string_view(text)); }
  JsonWriter& Value(const std::string& text) { return Value(std::string_view(text)); }
  JsonWriter& Value(bool value) { return Raw(value ? "true" : "false"); }
  template <std::integral T>
  JsonWriter& Value(T number) {
    Separate();
    calls::AppendText(out_, number);
    return *this;
  }
  JsonWriter& Null() { return Raw("null"); }
  template <class T>
  JsonWriter& Member(std::string_view name, T value) {
    return Name(name).Value(value);
  }
  // Bytes as base64.
  JsonWriter& Base64(std::string_view name, const void* bytes, std::size_t count);
  template <class T>
  JsonWriter& Base64(std::string_view name, const std::vector<T>& values) {
    return Base64(name, values.data(), values.size() * sizeof(T));
  }

 private:
  JsonWriter& Raw(std::string_view text) {
    Separate();
    out_ += text;
    return *this;
  }
  JsonWriter& Begin(char bracket) {
    Separate();
    out_ += bracket;
    first_ = true;
    return *this;
  }
  JsonWriter& End(char bracket) {
    out_ += bracket;
    first_ = false;
    return *this;
  }
  void Separate() {
    if (!first_) out_ += ',';
    first_ = false;
  }

  std::string& out_;
  bool first_ = true;
};

}  // namespace qnv::inspector
