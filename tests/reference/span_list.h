// Span lists as the host writes them, taken apart without any clipping.
#pragma once

#include <cstdint>
#include <vector>

namespace qnv::reference {

enum class RowKind {
  kOneRow,   // the row is mapped by itself
  kBand,     // top and bottom are mapped, the rows between follow
  kThinned,  // a row that the band does not keep is dropped
};

struct CallerSpan {
  RowKind kind;
  int top, bottom;  // bottom exclusive; top + 1 unless kBand
  int left, right;
};

using SpanList = std::vector<CallerSpan>;

bool IsSpanStyle(uint32_t style);
bool IsMarkerStyle(uint32_t style);

// In painting order. Null points give no spans.
SpanList DecodeSpans(uint32_t style, uint32_t count, const int16_t* points);

}  // namespace qnv::reference
