// Span output of a device class.
#pragma once

#include <cstdint>

#include "device/band_state.h"
#include "output/output_arguments.h"
#include "output/span_lists.h"

namespace qnv {

// 1 understood, -1 unknown style, 0 without a clip.
template <class Mapping>
int16_t OutputOn(BandState& state, const BandView& band, const Mapping& mapping, bool regray,
                 const OutputArguments& a) {
  SelectFillPattern(&state.fillPattern, a.pen, a.brush, a.drawMode);
  if (state.fillPattern.style == kFillNothing) return 1;
  const SpanStyle style = SpanStyleOf(a.style);
  if (style == SpanStyle::kBracket) return 1;
  if (style == SpanStyle::kUnknown) return -1;
  if (a.points == nullptr) return 1;
  if (a.clip == nullptr) return 0;
  // Edge deltas paint their first row whatever the count says.
  if (a.count == 0 && style != SpanStyle::kByteDeltas && style != SpanStyle::kNibbleDeltas) return 1;
  const Rect clip = Shifted(*a.clip, state.originX, state.originY);
  const Rect limits{MaxOf(band.rect.left, mapping.ToBand(clip.left)), MaxOf(band.rect.top, mapping.ToBand(clip.top)),
                    MinOf(band.rect.right, mapping.ToBand(clip.right)),
                    MinOf(band.rect.bottom, mapping.ToBand(clip.bottom))};
  SpanPainter painter(band, *state.rows, state.fillPattern, regray);
  if (!painter.Paints()) return 1;
  SpanLists<Mapping>(mapping, painter, limits, state.originX, state.originY, state.scratch)
      .Paint(style, a.count, a.points);
  return 1;
}

}  // namespace qnv
