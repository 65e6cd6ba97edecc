// Turns three bytes into four digits at a time.
#include "calls/base64.h"

#include <cstdint>

namespace qnv::calls {

void AppendBase64(std::string& text, const void* bytes, std::size_t count) {
  static constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const auto* const at = static_cast<const uint8_t*>(bytes);
  for (std::size_t i = 0; i < count; i += 3) {
    const std::size_t left = count - i;
    const uint32_t second = left > 1 ? at[i + 1] : 0u, third = left > 2 ? at[i + 2] : 0u;
    const uint32_t three = static_cast<uint32_t>(at[i]) << 16 | second << 8 | third;
    text += kDigits[three >> 18];
    text += kDigits[three >> 12 & 63];
    text += left > 1 ? kDigits[three >> 6 & 63] : '=';
    text += left > 2 ? kDigits[three & 63] : '=';
  }
}

}  // namespace qnv::calls
