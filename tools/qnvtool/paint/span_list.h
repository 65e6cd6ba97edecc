// Encodes span regions in the styles of QNVOutput.
#pragma once

#include <cstdint>
#include <vector>

#include "qnvtool/layout/span_region.h"

namespace qnv::tool {

// The arguments `style`, `count` and `points` of one call.
struct SpanList {
  uint16_t style = 0;
  uint16_t count = 0;
  std::vector<int16_t> words;
};

// True when the encoding can hold the region: OS_ROW_SPANS needs one span on every row, the delta styles also
// need small steps from row to row; OS_SCANLINES, OS_BANDED_SPANS and OS_ROW_RECORDS hold any region.
bool CanEncode(const SpanRegion& region, uint16_t style);

// The region as lists of one style; OS_SCANLINES gives one list a row, the others one list in all. Empty regions
// give no list. Requires: CanEncode(region, style); coordinates that fit 16 bits.
std::vector<SpanList> EncodeSpans(const SpanRegion& region, uint16_t style);

// The shortest of the encodings that can hold the region.
uint16_t ShortestStyle(const SpanRegion& region);

}  // namespace qnv::tool
