// Text output of a device class.
#pragma once

#include <cstdint>
#include <type_traits>

#include "color/color_forms.h"
#include "device/device.h"
#include "text/glyph_painter.h"
#include "text/glyph_run.h"

namespace qnv {

// Fills a rectangle of caller coordinates with the draw mode's background colour, through the device's own
// brush and transfer. What lies left of or above 0 is cut off first; the rest is its own clip.
void FillOpaqueRect(Device& device, const Rect& rect, const DRAWMODE& drawMode);

// Steps on which clip and opaque rectangle depend; both are in caller coordinates.
struct TextClip {
  bool has = false;
  Rect rect{};
};

// Applies ETO_CLIPPED and ETO_OPAQUE: narrows *clip and fills what is to be filled.
TextClip PrepareTextClip(Device& device, const TextArguments& a);

// The characters of a call: one run, or with charWidths a run for each.
class TextRuns {
 public:
  TextRuns(const BandState& state, const TextArguments& a)
      : a_(a),
        font_(a.fontBase, a.fontOffset),
        x_(WrapAdd(a.x, state.originX)),
        y_(WrapAdd(a.y, state.originY)),
        breakError_(a.drawMode->BreakErr) {}

  // False when the rows of all glyphs lie outside.
  bool CanBeSeen(const Rect& limits) const {
    const GlyphSpan rows = VisibleSpan(y_, font_.Height(), limits.top, limits.bottom);
    return limits.left < limits.right && rows.first < rows.end;
  }

  // The call's result; glyphs are painted, or the draw mode's break error brought up to date.
  template <class PaintGlyph>
  int32_t Lay(PaintGlyph paint) {
    const auto* string = static_cast<const uint8_t*>(a_.string);
    const int32_t count = a_.count;
    if (a_.charWidths == nullptr) return Run(string, count, x_, paint);
    if (count == 0) return 0;
    const int32_t step = count > 0 ? 1 : -1;
    const int32_t n = count * step;
    // Of runs that neither paint nor measure only the last one is heard of.
    const bool onlyLast = count > 0 && std::is_same_v<PaintGlyph, NoGlyphs>;
    const int32_t bytes = font_.IsTwoByte() ? 2 : 1;
    int32_t advance = 0;
    for (int32_t i = 0; i < n - 1; ++i) {
      if (!onlyLast) Run(string + i * bytes, step, WrapAdd(x_, advance), paint);
      advance = WrapAdd(advance, a_.charWidths[i]);
    }
    return WrapAdd(Run(string + (n - 1) * bytes, step, WrapAdd(x_, advance), paint), advance);
  }

 private:
  template <class PaintGlyph>
  int32_t Run(const uint8_t* string, int32_t count, int32_t x, PaintGlyph& paint) {
    const Justification justification{a_.drawMode->TBreakExtra, a_.drawMode->BreakCount, a_.drawMode->CharacterExtra,
                                      &breakError_};
    const int32_t result =
        font_.IsTwoByte() ? RunTwoByte(font_, string, count, x, y_,
                                       a_.charWidths != nullptr ? a_.charWidths[0] : int16_t{0}, &breakError_, paint)
                          : RunOneByte(font_, string, count, x, y_, justification, paint);
    if (count <= 0) a_.drawMode->BreakErr = breakError_;
    return result;
  }

  const TextArguments& a_;
  const FontRecord font_;
  const int32_t x_, y_;
  int16_t breakError_;
};

// mapping: from the text's pixels to the band. bandInPage: the band's rectangle in the text's pixels.
// regray: the band holds gray levels of what is painted.
template <class Mapping>
int32_t ExtTextOutOn(Device& device, const BandState& state, const BandView& band, const Mapping& mapping,
                     const Rect& bandInPage, bool regray, const TextArguments& a) {
  if (a.fontBase == nullptr || a.drawMode == nullptr || (a.string == nullptr && a.count != 0)) return 0;
  const TextClip clip = PrepareTextClip(device, a);

  // Intended: without a clip the page's width limits the rows and its height the columns, both less one.
  Rect limits{0, 0, static_cast<int32_t>(state.description.height - 1),
              static_cast<int32_t>(state.description.width - 1)};
  if (clip.has) RectIntersect(limits, Shifted(clip.rect, state.originX, state.originY), bandInPage);
  const Rect reached = ReachedLimits(band, mapping, limits);

  TextRuns runs(state, a);
  if (!runs.CanBeSeen(reached)) return runs.Lay(NoGlyphs{});

  const auto packed = [regray](uint32_t colour) {
    const uint32_t exchanged = ExchangeRedBlue(colour);
    return regray ? GrayLevel(exchanged) : exchanged;
  };
  const BitPainter painter(*state.rows, packed(a.drawMode->TextColor), packed(a.drawMode->bkColor),
                           a.drawMode->bkMode == TRANSPARENT, band.bytesPerPixel);
  return runs.Lay([&](const PlacedGlyph& glyph) { PaintGlyph(band, mapping, painter, reached, glyph); });
}

}  // namespace qnv
