// Text output: fills the opaque rectangle of a call, lays its characters out and paints their glyphs. Works in the
// text's pixels, which are page pixels; a mapping leads to the band.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "color/color_forms.h"
#include "raster/band_view.h"
#include "raster/paint_state.h"
#include "text/glyph_painter.h"
#include "text/glyph_run.h"
#include "text/text_arguments.h"
#include "text/text_clip.h"

namespace qnv {

// The characters of a call. Without charWidths they are one run; with charWidths each character is a run of its own,
// placed by the widths.
class TextRuns {
 public:
  TextRuns(Origin origin, const TextArguments& a)
      : a_(a),
        font_(a.fontBase, a.fontOffset),
        x_(WrapAdd(a.x, origin.x)),
        y_(WrapAdd(a.y, origin.y)),
        breakError_(a.drawMode->BreakErr) {}

  // False when no row of any glyph lies inside `limits`.
  bool CanBeSeen(const Rect& limits) const {
    const GlyphSpan rows = VisibleSpan(y_, font_.Height(), limits.top, limits.bottom);
    return limits.left < limits.right && rows.first < rows.end;
  }

  // Paints the glyphs, or, for a count of 0 and below, measures and updates BreakErr of the draw mode. Returns the
  // result of the call.
  template <class PaintGlyph>
  int32_t Lay(PaintGlyph paint) {
    const auto* string = static_cast<const uint8_t*>(a_.string);
    const int32_t count = a_.count;
    if (a_.charWidths == nullptr) return Run(string, count, x_, paint);
    if (count == 0) return 0;
    const int32_t step = count > 0 ? 1 : -1;
    const int32_t n = count * step;
    // When nothing is painted, the result depends on the last character and the widths alone.
    const bool onlyLast = count > 0 && std::is_same_v<PaintGlyph, NoGlyphs>;
    const int32_t bytes = font_.IsTwoByte() ? 2 : 1;
    int32_t advance = 0;
    for (int32_t i = 0; i < n - 1; ++i) {
      if (!onlyLast) Run(string + std::ptrdiff_t{i} * bytes, step, WrapAdd(x_, advance), paint);
      advance = WrapAdd(advance, WidthAt(i));
    }
    return WrapAdd(Run(string + std::ptrdiff_t{n - 1} * bytes, step, WrapAdd(x_, advance), paint), advance);
  }

 private:
  // charWidths[i]; the array need not be aligned.
  int16_t WidthAt(int32_t i) const {
    int16_t width;
    std::memcpy(&width, static_cast<const uint8_t*>(static_cast<const void*>(a_.charWidths)) + std::ptrdiff_t{2} * i,
                sizeof width);
    return width;
  }

  // One run from x on: its advance or, when measuring, its extent.
  template <class PaintGlyph>
  int32_t Run(const uint8_t* string, int32_t count, int32_t x, PaintGlyph& paint) {
    const Justification justification{a_.drawMode->TBreakExtra, a_.drawMode->BreakCount, a_.drawMode->CharacterExtra,
                                      &breakError_};
    const int32_t result = font_.IsTwoByte()
                               ? RunTwoByte(font_, string, count, x, y_,
                                            a_.charWidths != nullptr ? WidthAt(0) : int16_t{0}, &breakError_, paint)
                               : RunOneByte(font_, string, count, x, y_, justification, paint);
    if (count <= 0) a_.drawMode->BreakErr = breakError_;
    return result;
  }

  const TextArguments& a_;
  const FontRecord font_;
  const int32_t x_, y_;  // top left of the first character cell, origin added
  int16_t breakError_;   // carried from run to run
};

// The band that a call paints, and how the text's pixels relate to it.
template <class Mapping>
struct TextTarget {
  const BandView& band;
  const Mapping& mapping;  // from the text's pixels to the band
  Rect bandInText;         // the band's rectangle in the text's pixels
  Rect unclipped;          // what limits glyphs of a call without a clip, in the text's pixels
  bool regray;             // colors are painted as their gray levels
};

// What limits the glyphs of a call without a clip. Intended: the width of the page limits the rows and its height the
// columns, each less one.
constexpr Rect UnclippedText(uint32_t pageWidth, uint32_t pageHeight) {
  return {0, 0, static_cast<int32_t>(pageHeight - 1), static_cast<int32_t>(pageWidth - 1)};
}

// Text output on a band. fillRect(rect, drawMode) fills a rectangle, in caller coordinates, with the background color
// of the draw mode; it is called at most once, before any glyph is painted. Returns the advance of a text that is
// drawn, the extent of one that is measured, and 0 for a call without font, draw mode or string.
template <class Mapping, class FillRect>
int32_t ExtTextOutOn(const PaintState& paint, const TextTarget<Mapping>& target, const TextArguments& a,
                     FillRect fillRect) {
  if (a.fontBase == nullptr || a.drawMode == nullptr || (a.string == nullptr && a.count != 0)) return 0;
  const TextClip clip = TextClipOf(a);
  if (clip.fills) fillRect(clip.opaque, *a.drawMode);

  const BandView& band = target.band;
  Rect limits = target.unclipped;
  if (clip.clips) RectIntersect(limits, Shifted(clip.clip, paint.origin.x, paint.origin.y), target.bandInText);
  const Rect reached = ReachedLimits(band, target.mapping, limits);

  TextRuns runs(paint.origin, a);
  if (!runs.CanBeSeen(reached)) return runs.Lay(NoGlyphs{});

  const auto packed = [&](uint32_t color) {
    const uint32_t exchanged = ExchangeRedBlue(color);
    return target.regray ? GrayLevel(exchanged) : exchanged;
  };
  const BitPainter painter(paint.rows, packed(a.drawMode->TextColor), packed(a.drawMode->bkColor),
                           a.drawMode->bkMode == TRANSPARENT, band.bytesPerPixel);
  return runs.Lay([&](const PlacedGlyph& glyph) { PaintGlyph(band, target.mapping, painter, reached, glyph); });
}

}  // namespace qnv
