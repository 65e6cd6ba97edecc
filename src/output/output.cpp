// Output: prepares the fill, cuts the clip to the band and hands the span list to its decoder.
#include "output/output.h"

#include "output/span_lists.h"

namespace qnv {
namespace {

// False when no span of the list can lie inside the limits. It is asked before anything is prepared: a page has many
// bands, and a call paints in few of them. True where that is not known without reading more of the list.
template <class Mapping>
bool ReachesRows(const Mapping&, const Rect& limits, Origin origin, SpanStyle style, const OutputArguments& a) {
  if (limits.left >= limits.right || limits.top >= limits.bottom) return false;
  if (!Mapping::kOneToOne || style == SpanStyle::kBandedSpans) return true;
  constexpr int32_t kFar = 1 << 30;
  if (origin.y < -kFar || origin.y > kFar) return true;  // numbers could wrap
  // The row that the list begins with, and how many there are: one after another, without gaps.
  const bool oneRow = style == SpanStyle::kScanlines;
  const int32_t first = SpanWords(a.points).At(oneRow ? 1 : 0) + origin.y;
  return first < limits.bottom && first + (oneRow || a.count == 0 ? 1 : a.count) > limits.top;
}

// Output on a band that a mapping leads to.
template <class Mapping>
int16_t PaintOutputOn(const PaintState& paint, const BandView& band, const Mapping& mapping, bool regray,
                      ScratchBuffer& scratch, const OutputArguments& a) {
  // The order of these checks decides the result: with a hollow brush even an unknown style returns 1.
  SelectFillPattern(&paint.fillPattern, a.pen, a.brush, a.drawMode);
  if (paint.fillPattern.style == kFillNothing) return 1;
  const SpanStyle style = SpanStyleOf(a.style);
  if (style == SpanStyle::kBracket) return 1;
  if (style == SpanStyle::kUnknown) return -1;
  if (a.points == nullptr) return 1;
  if (a.clip == nullptr) return 0;
  // Edge deltas paint their first row whatever the count says.
  if (a.count == 0 && style != SpanStyle::kByteDeltas && style != SpanStyle::kNibbleDeltas) return 1;
  const Rect clip = Shifted(*a.clip, paint.origin.x, paint.origin.y);
  // Clip and band together, in band pixels; may be empty or inverted.
  const Rect limits{MaxOf(band.rect.left, mapping.ToBand(clip.left)), MaxOf(band.rect.top, mapping.ToBand(clip.top)),
                    MinOf(band.rect.right, mapping.ToBand(clip.right)),
                    MinOf(band.rect.bottom, mapping.ToBand(clip.bottom))};
  if (!ReachesRows(mapping, limits, paint.origin, style, a)) return 1;
  SpanPainter painter(band, paint.rows, paint.fillPattern, regray);
  if (!painter.Paints()) return 1;
  SpanLists<Mapping>(mapping, painter, limits, paint.origin, scratch).Paint(style, a.count, a.points);
  return 1;
}

}  // namespace

int16_t PaintOutput(const PaintState& paint, const BandView& band, ScratchBuffer& scratch, const OutputArguments& a) {
  return PaintOutputOn(paint, band, PlainMapping{}, false, scratch, a);
}

int16_t PaintOutputKept(const PaintState& paint, const BandView& band, const KeptMapping& mapping, bool regray,
                        ScratchBuffer& scratch, const OutputArguments& a) {
  return PaintOutputOn(paint, band, mapping, regray, scratch, a);
}

}  // namespace qnv
