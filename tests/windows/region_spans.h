// The platform's own scan conversion of a figure, as the span lists that a host would hand to the library.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <vector>

namespace qnv::test {

// Spans of every row of a region: (left, right) pairs in the region's coordinates.
using RegionRows = std::map<int32_t, std::vector<int16_t>>;

RegionRows RowsOf(HRGN region);

struct SpanList {
  uint32_t count = 0;
  std::vector<int16_t> words;
};

// The encodings; all but the first two need exactly one span in every row. Nibble deltas also need edges that move
// by at most -8..7 from row to row. Every coordinate is moved by (-originX, -originY).
struct SpanOrigin {
  int32_t x = 0;
  int32_t y = 0;
};
SpanList BandedSpans(HRGN region, const SpanOrigin& origin = {});
SpanList RowRecords(HRGN region, const SpanOrigin& origin = {});
SpanList RowSpans(HRGN region, const SpanOrigin& origin = {});
SpanList ByteDeltas(HRGN region, const SpanOrigin& origin = {});
SpanList NibbleDeltas(HRGN region, const SpanOrigin& origin = {});

}  // namespace qnv::test
