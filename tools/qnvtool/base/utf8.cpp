// Decodes UTF-8 strictly: no overlong forms, no surrogates.
#include "qnvtool/base/utf8.h"

#include <fmt/core.h>

#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

// A character and the bytes that it takes.
struct Decoded {
  char32_t code = 0;
  std::size_t length = 0;  // 0: not well-formed
};

// Decodes the character that begins at offset `at`.
Decoded DecodeOne(const Bytes& file, std::size_t at) {
  const uint8_t lead = file[at];
  if (lead < 0x80) return {lead, 1};
  const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || at + length > file.size()) return {};
  char32_t code = lead & (0xFFu >> (length + 1));
  for (std::size_t i = 1; i < length; ++i) {
    if ((file[at + i] & 0xC0) != 0x80) return {};
    code = code << 6 | (file[at + i] & 0x3Fu);
  }
  constexpr char32_t kMinCode[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
  if (code < kMinCode[length] || code > 0x10FFFF || surrogate) return {};
  return {code, length};
}

// Whether a character is kept; other control characters are dropped.
bool Printable(char32_t code) {
  if (code == '\n' || code == '\t' || code == '\f') return true;
  return code >= 0x20 && (code < 0x7F || code > 0x9F);
}

}  // namespace

std::u32string DecodeTextFile(const Bytes& file, const std::string& name) {
  std::size_t at = 0;
  if (file.size() >= 3 && file[0] == 0xEF && file[1] == 0xBB && file[2] == 0xBF) at = 3;
  std::u32string text;
  text.reserve(file.size());
  while (at < file.size()) {
    if (file[at] == 0) {
      throw ToolError(ExitCode::kBadInput, fmt::format("{}: is no text: zero byte at offset {}", name, at));
    }
    const Decoded one = DecodeOne(file, at);
    if (one.length == 0) {
      throw ToolError(ExitCode::kBadInput,
                      fmt::format("{}: is no UTF-8 text: byte {:#04x} at offset {}", name, file[at], at));
    }
    if (one.code == '\r') {
      const bool pair = at + 1 < file.size() && file[at + 1] == '\n';
      if (!pair) text.push_back('\n');
    } else if (Printable(one.code)) {
      text.push_back(one.code);
    }
    at += one.length;
  }
  return text;
}

}  // namespace qnv::tool
