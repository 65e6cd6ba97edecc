// The span encodings of Output and the style words that select them.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

enum class SpanStyle : uint8_t {
  kUnknown,
  kBracket,       // 80, 81: begin and end of a group, nothing to paint
  kScanlines,     // 4, 104
  kBandedSpans,   // 5, 105
  kRowRecords,    // 205
  kRowSpans,      // 305
  kByteDeltas,    // 405
  kNibbleDeltas,  // 505
};

constexpr SpanStyle SpanStyleOf(uint16_t style) {
  switch (style) {
    case OS_BEGINNSCAN:
    case OS_ENDNSCAN: return SpanStyle::kBracket;
    case OS_SCANLINES:
    case OS_SCANLINES + 100: return SpanStyle::kScanlines;
    case OS_BANDED_SPANS:
    case OS_BANDED_SPANS + 100: return SpanStyle::kBandedSpans;
    case OS_ROW_RECORDS: return SpanStyle::kRowRecords;
    case OS_ROW_SPANS: return SpanStyle::kRowSpans;
    case OS_BYTE_DELTAS: return SpanStyle::kByteDeltas;
    case OS_NIBBLE_DELTAS: return SpanStyle::kNibbleDeltas;
    default: return SpanStyle::kUnknown;
  }
}

}  // namespace qnv
