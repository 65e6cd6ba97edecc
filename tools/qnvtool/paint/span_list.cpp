// Encodes span regions as the lists of QNVOutput. qnvdrv10.h describes the encodings.
#include "qnvtool/paint/span_list.h"

#include <algorithm>

#include "qnvdrv10.h"

namespace qnv::tool {
namespace {

int16_t Word(int value) { return static_cast<int16_t>(value); }

void AppendSpans(std::vector<int16_t>& words, const SpanRow& row) {
  for (const Span& span : row) {
    words.push_back(Word(span.left));
    words.push_back(Word(span.right));
  }
}

// One list for each row.
std::vector<SpanList> Scanlines(const SpanRegion& region) {
  std::vector<SpanList> lists;
  for (std::size_t i = 0; i < region.rows.size(); ++i) {
    const SpanRow& row = region.rows[i];
    if (row.empty()) continue;
    SpanList list{OS_SCANLINES, static_cast<uint16_t>(row.size() + 1), {0, Word(region.top + static_cast<int>(i))}};
    AppendSpans(list.words, row);
    lists.push_back(std::move(list));
  }
  return lists;
}

// One record for each run of equal rows.
SpanList BandedSpans(const SpanRegion& region) {
  SpanList list{OS_BANDED_SPANS, 0, {}};
  for (std::size_t i = 0; i < region.rows.size();) {
    std::size_t end = i + 1;
    while (end < region.rows.size() && region.rows[end] == region.rows[i]) ++end;
    if (!region.rows[i].empty()) {
      const int16_t n = Word(static_cast<int>(region.rows[i].size()) * 2);
      list.words.insert(list.words.end(),
                        {n, Word(region.top + static_cast<int>(i)), Word(region.top + static_cast<int>(end))});
      AppendSpans(list.words, region.rows[i]);
      list.words.push_back(n);
      ++list.count;
    }
    i = end;
  }
  return list;
}

// Any number of spans on each row.
SpanList RowRecords(const SpanRegion& region) {
  SpanList list{OS_ROW_RECORDS, static_cast<uint16_t>(region.rows.size()), {Word(region.top)}};
  for (const SpanRow& row : region.rows) {
    list.words.push_back(Word(static_cast<int>(row.size()) * 2));
    AppendSpans(list.words, row);
  }
  return list;
}

// One span on each row.
SpanList RowSpans(const SpanRegion& region) {
  SpanList list{OS_ROW_SPANS, static_cast<uint16_t>(region.rows.size()), {Word(region.top)}};
  for (const SpanRow& row : region.rows) AppendSpans(list.words, row);
  return list;
}

// How far the edges of a region with one span on each row move from one row to the next.
struct Step {
  int left = 0;
  int right = 0;
  bool Within(int low, int high) const { return left >= low && left <= high && right >= low && right <= high; }
};

Step StepTo(const SpanRegion& region, std::size_t row) {
  const Span& before = region.rows[row - 1].front();
  const Span& after = region.rows[row].front();
  return {after.left - before.left, after.right - before.right};
}

// Byte or nibble deltas. Their bytes follow the first three words, two in a word, the first in the low half.
SpanList Deltas(const SpanRegion& region, uint16_t style) {
  const Span& first = region.rows.front().front();
  SpanList list{
      style, static_cast<uint16_t>(region.rows.size()), {Word(region.top), Word(first.left), Word(first.right)}};
  std::vector<int> bytes;
  for (std::size_t row = 1; row < region.rows.size(); ++row) {
    const Step step = StepTo(region, row);
    if (style == OS_BYTE_DELTAS) {
      bytes.insert(bytes.end(), {step.left & 0xFF, step.right & 0xFF});
    } else {
      bytes.push_back((step.left & 15) | (step.right & 15) << 4);
    }
  }
  if (bytes.size() % 2 != 0) bytes.push_back(0);
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    list.words.push_back(static_cast<int16_t>(static_cast<uint16_t>(bytes[i] | bytes[i + 1] << 8)));
  }
  return list;
}

// Whether all steps of a region fit the range of a delta.
bool StepsWithin(const SpanRegion& region, int low, int high) {
  for (std::size_t row = 1; row < region.rows.size(); ++row) {
    if (!StepTo(region, row).Within(low, high)) return false;
  }
  return true;
}

}  // namespace

bool CanEncode(const SpanRegion& region, uint16_t style) {
  if (style != OS_ROW_SPANS && style != OS_BYTE_DELTAS && style != OS_NIBBLE_DELTAS) return true;
  const bool oneEach =
      std::all_of(region.rows.begin(), region.rows.end(), [](const SpanRow& row) { return row.size() == 1; });
  if (!oneEach) return false;
  if (style == OS_BYTE_DELTAS) return StepsWithin(region, -128, 127);
  return style == OS_ROW_SPANS || StepsWithin(region, -8, 7);
}

std::vector<SpanList> EncodeSpans(const SpanRegion& region, uint16_t style) {
  if (region.empty()) return {};
  switch (style) {
    case OS_SCANLINES: return Scanlines(region);
    case OS_BANDED_SPANS: return {BandedSpans(region)};
    case OS_ROW_RECORDS: return {RowRecords(region)};
    case OS_ROW_SPANS: return {RowSpans(region)};
    default: return {Deltas(region, style)};
  }
}

// Encodes the region in every style that can hold it and compares the lengths.
uint16_t ShortestStyle(const SpanRegion& region) {
  uint16_t best = OS_SCANLINES;
  std::size_t size = region.rows.size() > 1 ? SIZE_MAX : 0;  // a single row needs no other style
  constexpr uint16_t kStyles[] = {OS_BANDED_SPANS, OS_ROW_RECORDS, OS_ROW_SPANS, OS_BYTE_DELTAS, OS_NIBBLE_DELTAS};
  for (const uint16_t style : kStyles) {
    if (size == 0 || !CanEncode(region, style)) continue;
    const std::vector<SpanList> lists = EncodeSpans(region, style);
    const std::size_t words = lists.empty() ? 0 : lists.front().words.size();
    if (words >= size) continue;
    best = style;
    size = words;
  }
  return best;
}

}  // namespace qnv::tool
