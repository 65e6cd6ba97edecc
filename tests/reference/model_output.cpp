// Spans.
#include "reference/band_model.h"

namespace qnv::reference {

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
