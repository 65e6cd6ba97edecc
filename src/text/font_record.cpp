// Widths of whole strings.
#include "text/font_record.h"

#include <algorithm>

namespace qnv {
namespace {

// Whether all codes lie at most `most` above `first`. The compiler makes vectors of a loop of known length.
template <int32_t kBlockCodes>
bool BlockIsInside(const uint8_t* codes, uint8_t first, uint8_t most) {
  uint8_t farthest = 0;
  for (int32_t i = 0; i < kBlockCodes; ++i) farthest = std::max(farthest, static_cast<uint8_t>(codes[i] - first));
  return farthest <= most;
}

bool AllInside(const uint8_t* codes, int32_t n, uint8_t first, uint8_t most) {
  bool isInside = true;
  int32_t i = 0;
  for (; i + 64 <= n; i += 64) isInside = BlockIsInside<64>(codes + i, first, most) && isInside;
  for (; i + 16 <= n; i += 16) isInside = BlockIsInside<16>(codes + i, first, most) && isInside;
  for (; i < n; ++i) isInside = static_cast<uint8_t>(codes[i] - first) <= most && isInside;
  return isInside;
}

// Adds the widths of codes that are all inside the table. entries: of code `first`.
template <std::size_t kEntryBytes>
uint32_t WidthOfInside(const uint8_t* codes, int32_t n, const uint8_t* entries, uint8_t first) {
  const auto width = [entries, first](uint8_t code) {
    uint16_t v;
    std::memcpy(&v, entries + kEntryBytes * code - kEntryBytes * first, sizeof v);
    return v;
  };
  // Two sums, which do not wait for each other.
  uint32_t even = 0, odd = 0;
  int32_t i = 0;
  for (; i + 4 <= n; i += 4) {
    even += width(codes[i]);
    odd += width(codes[i + 1]);
    even += width(codes[i + 2]);
    odd += width(codes[i + 3]);
  }
  for (; i < n; ++i) even += width(codes[i]);
  return even + odd;
}

}  // namespace

uint16_t FontRecord::TableWidthOf(const uint8_t* string, int32_t n) const {
  const uint8_t first = info_.dfFirstChar, last = info_.dfLastChar;
  const uint8_t* const entries = Entry(0);
  const bool isShort = HasShortTable();
  uint32_t sum = 0;
  if (first <= last && AllInside(string, n, first, static_cast<uint8_t>(last - first))) {
    sum = isShort ? WidthOfInside<4>(string, n, entries, first) : WidthOfInside<6>(string, n, entries, first);
  } else {
    for (int32_t i = 0; i < n; ++i) {
      const uint8_t code = string[i];
      const bool isInside = code >= first && code <= last;
      const std::size_t index = isInside ? code - first : info_.dfDefaultChar;
      sum += Read<uint16_t>(entries + (isShort ? 4 : 6) * index);
    }
  }
  return static_cast<uint16_t>(sum);
}

}  // namespace qnv
