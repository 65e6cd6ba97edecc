// Puts texts and numbers together, without the formatting library of the tools: what is here is compiled for every
// target, WebAssembly too.
#pragma once

#include <charconv>
#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace qnv::calls {

// A number with hexadecimal digits, at least so many of them.
struct Hex {
  uint64_t value;
  int digits = 1;
  bool upper = true;
};

inline void AppendText(std::string& text, std::string_view part) { text += part; }
inline void AppendText(std::string& text, char part) { text += part; }
void AppendText(std::string& text, const Hex& hex);
template <std::integral T>
void AppendText(std::string& text, T number) {
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  text.append(digits, end);
}

// The parts behind one another. By value, because fields of packed records cannot be referred to.
template <class... Parts>
std::string Text(Parts... parts) {
  std::string text;
  (AppendText(text, parts), ...);
  return text;
}

}  // namespace qnv::calls
