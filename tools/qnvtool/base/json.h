// JSON values, as manifests and reports of jobs hold them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calls/json_text.h"

namespace qnv::tool {

struct JsonMember;

struct JsonValue {
  enum class Kind { kNull, kFalse, kTrue, kNumber, kString, kArray, kObject };
  Kind kind = Kind::kNull;
  std::string text;                 // UTF-8; of a number as it is written
  std::vector<JsonValue> items;     // of an array
  std::vector<JsonMember> members;  // of an object, each name once

  bool isString() const { return kind == Kind::kString; }
  // The member of this name; null where there is none.
  const JsonValue* Find(std::string_view name) const;
};

struct JsonMember {
  std::string name;
  JsonValue value;
};

// Parses one value, which must be all that the text holds. On a mistake returns nothing and says in `error` what is
// wrong, mostly with the byte, counted from 1. Texts may hold bytes that are no UTF-8.
std::optional<JsonValue> ParseJson(std::string_view text, std::string& error);

using calls::JsonText;

}  // namespace qnv::tool
