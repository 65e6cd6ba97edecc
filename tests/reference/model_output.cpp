// Span lists: their encodings, and the spans on a device with one band.
#include "reference/band_model.h"

namespace qnv::reference {
namespace {

int Nibble(int bits) { return bits < 8 ? bits : bits - 16; }

void DecodeDeltas(const int16_t* points, int count, bool nibbles, SpanList& out) {
  int left = points[1];
  int right = points[2];
  const uint8_t* delta = reinterpret_cast<const uint8_t*>(points + 3);
  for (int row = 0, y = points[0];; ++y) {
    out.push_back({nibbles ? RowKind::kThinned : RowKind::kOneRow, y, y + 1, left, right});
    if (++row >= count) return;
    left += nibbles ? Nibble(delta[0] & 15) : static_cast<int8_t>(delta[0]);
    right += nibbles ? Nibble(delta[0] >> 4) : static_cast<int8_t>(delta[1]);
    delta += nibbles ? 1 : 2;
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
  const int elements = static_cast<int>(count & 0xFFFF);
  const auto addRow = [&](int y, const int16_t* ends) {
    out.push_back({RowKind::kOneRow, y, y + 1, ends[0], ends[1]});
  };
  switch (style) {
    case 4:
    case 104:
      for (int i = 1; i < elements; ++i) addRow(points[1], points + 2 * i);
      break;
    case 5:
    case 105:
      for (int record = 0; record < elements; ++record) {
        const int values = points[0];
        for (int i = 3; i < values + 3; i += 2) {
          out.push_back({RowKind::kBand, points[1], points[2], points[i], points[i + 1]});
        }
        points += values + 4;
      }
      break;
    case 205: {
      int y = *points++;
      for (int record = 0; record < elements; ++record, ++y) {
        const int values = *points++;
        for (int i = 0; i < values; i += 2) addRow(y, points + i);
        points += values;
      }
      break;
    }
    case 305:
      for (int row = 0; row < elements; ++row) addRow(points[0] + row, points + 1 + 2 * row);
      break;
    case 405:
    case 505: DecodeDeltas(points, elements, style == 505, out); break;
    default: break;
  }
  return out;
}

uint32_t BandModel::Output(const OutputArgs& args) {
  SelectFillPattern(pattern_, args.pen, args.brush, args.drawMode);
  if (pattern_.style == kNothingToPaint) return 1;
  const uint32_t style = args.style & 0xFFFF;
  if (IsMarkerStyle(style)) return 1;
  if (!IsSpanStyle(style)) return 0xFFFF;
  if (args.points == nullptr) return 1;
  if (args.clip == nullptr) return 0;
  PaintSpans(pattern_, DecodeSpans(style, args.count, args.points), ToRect(*args.clip));
  return 1;
}

void BandModel::PaintSpans(const FillPattern& pattern, const SpanList& spans, const Rect& callerClip) {
  if (!pattern.HasCells()) return;
  const auto map = [&](int value) { return scaled() ? map_->ToBand(value) : value; };
  const Rect shifted = Shift(callerClip, origin_);
  const Rect clip{map(shifted.left), map(shifted.top), map(shifted.right), map(shifted.bottom)};
  const Rect limit = Intersect(clip, rect_);
  for (const CallerSpan& span : spans) {
    const int left = std::max(map(span.left + origin_.x), limit.left);
    const int right = std::min(map(span.right + origin_.x), limit.right);
    int top = map(span.top + origin_.y);
    int bottom = top + 1;
    if (span.kind == RowKind::kBand) bottom = map(span.bottom + origin_.y);
    if (span.kind == RowKind::kThinned && scaled()) {
      top = map_->Kept(span.top + origin_.y);
      // A dropped row answers -1, which is no row even of a band that reaches above 0.
      bottom = top == -1 ? top : top + 1;
    }
    top = std::max(top, limit.top);
    bottom = std::min(bottom, limit.bottom);
    for (int y = top; y < bottom; ++y) {
      for (int x = left; x < right; ++x) {
        if (!pattern.Paints(x, y)) continue;
        const int column = x - rect_.left;
        const int row = y - rect_.top;
        Put(column, row, EvaluateRop2(pattern.rop2, pattern.Cell(x, y), plane_.Read(column, row)));
      }
    }
  }
}

}  // namespace qnv::reference
