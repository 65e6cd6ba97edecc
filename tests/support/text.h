// Names of test cases, put together from words and numbers.
#pragma once

#include <string>

namespace qnv::test {

inline std::string ToText(const char* text) { return text; }
inline std::string ToText(const std::string& text) { return text; }
template <class Number>
std::string ToText(Number number) {
  return std::to_string(number);
}

// Text("index ", 7, ", ", name): for SCOPED_TRACE.
template <class... Parts>
std::string Text(const Parts&... parts) {
  return (std::string() + ... + ToText(parts));
}

}  // namespace qnv::test
