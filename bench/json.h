// The part of JSON that the reports need: values are built, written, and read back for comparison.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qnv::bench {

class Json {
 public:
  enum class Type { kNull, kBoolean, kNumber, kString, kArray, kObject };

  Json() = default;
  Json(bool value) : type_(Type::kBoolean), number_(value ? 1 : 0) {}
  Json(double value) : type_(Type::kNumber), number_(value) {}
  Json(std::string value) : type_(Type::kString), text_(std::move(value)) {}
  Json(const char* value) : type_(Type::kString), text_(value) {}
  static Json Array();
  static Json Object();

  // False, with a sentence in `error`, for anything but one complete value.
  static bool Parse(std::string_view text, Json& value, std::string& error);
  // The value as text. Members and items have lines of their own down to `openLevels` levels; deeper ones share the
  // line of their parent.
  std::string Write(int openLevels) const;

  Type type() const { return type_; }
  double number(double otherwise = 0) const { return type_ == Type::kNumber ? number_ : otherwise; }
  bool boolean() const { return type_ == Type::kBoolean && number_ != 0; }
  const std::string& text() const { return text_; }                 // empty unless a string
  const std::vector<Json>& items() const { return items_; }         // of an object: its members' values
  const std::vector<std::string>& names() const { return names_; }  // of an object's members

  void Add(Json item) { items_.push_back(std::move(item)); }
  void Set(std::string name, Json value);
  // A null value when there is no such member.
  const Json& operator[](std::string_view name) const;

 private:
  friend class JsonReader;
  void WriteTo(std::string& out, int openLevels, int depth) const;

  Type type_ = Type::kNull;
  double number_ = 0;
  std::string text_;
  std::vector<Json> items_;
  std::vector<std::string> names_;
};

}  // namespace qnv::bench
