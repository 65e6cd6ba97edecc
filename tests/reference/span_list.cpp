// Decodes the encodings of span lists into spans.
#include "reference/span_list.h"

#include <cstring>

#include "qnvdrv10.h"

namespace qnv::reference {
namespace {

void OneRow(const int16_t* points, int count, SpanList& out) {
  for (int i = 1; i < count; ++i) {
    out.push_back({RowKind::kOneRow, points[1], points[1] + 1, points[2 * i], points[2 * i + 1]});
  }
}

void Banded(const int16_t* points, int count, SpanList& out) {
  for (int record = 0; record < count; ++record) {
    const int values = points[0];
    for (int pair = 0; pair < (values + 1) / 2; ++pair) {
      out.push_back({RowKind::kBand, points[1], points[2], points[3 + 2 * pair], points[4 + 2 * pair]});
    }
    points += values + 4;
  }
}

void RowRecords(const int16_t* points, int count, SpanList& out) {
  int y = *points++;
  for (int record = 0; record < count; ++record, ++y) {
    const int values = points[0];
    for (int i = 0; i < values; i += 2) {
      out.push_back({RowKind::kOneRow, y, y + 1, points[1 + i], points[2 + i]});
    }
    points += values + 1;
  }
}

void RowSpans(const int16_t* points, int count, SpanList& out) {
  const int y = points[0];
  for (int row = 0; row < count; ++row) {
    out.push_back({RowKind::kOneRow, y + row, y + row + 1, points[1 + 2 * row], points[2 + 2 * row]});
  }
}

int Nibble(int bits) { return bits < 8 ? bits : bits - 16; }

void Deltas(const int16_t* points, int count, bool nibbles, SpanList& out) {
  int y = points[0];
  int left = points[1];
  int right = points[2];
  const uint8_t* delta = reinterpret_cast<const uint8_t*>(points + 3);
  for (int row = 0;; ++y) {
    out.push_back({nibbles ? RowKind::kThinned : RowKind::kOneRow, y, y + 1, left, right});
    if (++row >= count) return;
    if (nibbles) {
      left += Nibble(*delta & 15);
      right += Nibble(*delta >> 4);
      delta += 1;
    } else {
      left += static_cast<int8_t>(delta[0]);
      right += static_cast<int8_t>(delta[1]);
      delta += 2;
    }
  }
}

}  // namespace

bool IsMarkerStyle(uint32_t style) { return style == OS_BEGINNSCAN || style == OS_ENDNSCAN; }

bool IsSpanStyle(uint32_t style) {
  return style == 4 || style == 104 || style == 5 || style == 105 || style == 205 || style == 305 || style == 405 ||
         style == 505;
}

SpanList DecodeSpans(uint32_t style, uint32_t count, const int16_t* points) {
  SpanList out;
  if (points == nullptr) return out;
  const int elements = static_cast<int>(count & 0xFFFF);
  switch (style) {
    case 4:
    case 104: OneRow(points, elements, out); break;
    case 5:
    case 105: Banded(points, elements, out); break;
    case 205: RowRecords(points, elements, out); break;
    case 305: RowSpans(points, elements, out); break;
    case 405: Deltas(points, elements, false, out); break;
    case 505: Deltas(points, elements, true, out); break;
    default: break;
  }
  return out;
}

}  // namespace qnv::reference
