// Widths of whole strings.
#include "text/font_record.h"

#include <algorithm>

namespace qnv {
namespace {

// Codes that are compared with the table's range at once: the compiler makes vectors of that loop.
constexpr int32_t kBlockCodes = 32;

// Whether all codes of a block lie at most `most` codes above `first`.
bool AllInside(const uint8_t* codes, uint8_t first, uint8_t most) {
  uint8_t farthest = 0;
  for (int32_t i = 0; i < kBlockCodes; ++i) farthest = std::max(farthest, static_cast<uint8_t>(codes[i] - first));
  return farthest <= most;
}

// Adds the widths of a block whose codes are all inside the table. entries: of code `first`.
template <std::size_t kEntryBytes>
uint16_t BlockWidth(const uint8_t* codes, const uint8_t* entries, uint8_t first) {
  const auto width = [entries](uint32_t index) {
    uint16_t v;
    std::memcpy(&v, entries + kEntryBytes * index, sizeof v);
    return v;
  };
  // Sums of 16 bits, so that loading and adding are one instruction, and two of them, so that they do not wait for each
  // other.
  uint16_t even = 0, odd = 0;
  const auto add = [](uint16_t& sum, uint16_t v) { sum = static_cast<uint16_t>(sum + v); };
  for (int32_t i = 0; i < kBlockCodes; i += 4) {
    uint32_t four;
    std::memcpy(&four, codes + i, sizeof four);
    four -= first * 0x01010101u;
    add(even, width(four & 0xFF));
    add(odd, width(four >> 8 & 0xFF));
    add(even, width(four >> 16 & 0xFF));
    add(odd, width(four >> 24));
  }
  return static_cast<uint16_t>(even + odd);
}

}  // namespace

uint16_t FontRecord::TableWidthOf(const uint8_t* string, int32_t n) const {
  const uint8_t first = info_.dfFirstChar, last = info_.dfLastChar;
  const uint8_t* const entries = Entry(0);
  const bool isShort = HasShortTable();
  uint32_t sum = 0;
  const auto addOneByOne = [&](int32_t i, int32_t end) {
    for (; i < end; ++i) {
      const uint8_t code = string[i];
      const bool isInside = code >= first && code <= last;
      const std::size_t index = isInside ? code - first : info_.dfDefaultChar;
      sum += Read<uint16_t>(entries + (isShort ? 4 : 6) * index);
    }
  };
  int32_t i = 0;
  for (; i + kBlockCodes <= n; i += kBlockCodes) {
    const uint8_t* const codes = string + i;
    if (first <= last && AllInside(codes, first, static_cast<uint8_t>(last - first))) {
      sum += isShort ? BlockWidth<4>(codes, entries, first) : BlockWidth<6>(codes, entries, first);
    } else {
      addOneByOne(i, i + kBlockCodes);
    }
  }
  addOneByOne(i, n);
  return static_cast<uint16_t>(sum);
}

}  // namespace qnv
