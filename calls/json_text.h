// Texts in quotes, as JSON takes them.
#pragma once

#include <string>
#include <string_view>

namespace qnv::calls {

// Quotes, backslashes and control characters are escaped. Bytes that are no UTF-8 stay as they are.
inline std::string JsonText(std::string_view text) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string quoted = "\"";
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F) {
      quoted += "\\u00";
      quoted += kDigits[byte >> 4];
      quoted += kDigits[byte & 15];
      continue;
    }
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted += '"';
}

}  // namespace qnv::calls
