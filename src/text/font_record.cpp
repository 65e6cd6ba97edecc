// Widths of whole strings.
#include "text/font_record.h"

namespace qnv {

int32_t FontRecord::TableWidthOf(const uint8_t* string, int32_t n) const {
  const uint32_t first = info_.dfFirstChar, last = info_.dfLastChar, other = info_.dfDefaultChar;
  const uint8_t* const widths = Entry(0);
  const std::size_t entryBytes = HasShortTable() ? 4 : 6;
  uint32_t sum = 0;
  for (int32_t i = 0; i < n; ++i) {
    const uint32_t code = string[i];
    sum += Read<uint16_t>(widths + entryBytes * (code < first || code > last ? other : code - first));
  }
  return static_cast<int32_t>(sum);
}

}  // namespace qnv
