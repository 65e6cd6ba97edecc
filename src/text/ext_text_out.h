// Text output of a device class.
#pragma once

#include <cstdint>

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

// mapping: from the text's pixels to the band. bandInPage: the band's rectangle in the text's pixels.
// regray: the band holds gray levels of what is painted.
template <class Mapping>
int32_t ExtTextOutOn(Device& device, const BandState& state, const BandView& band, const Mapping& mapping,
                     const Rect& bandInPage, bool regray, const TextArguments& a) {
  const int32_t count = a.count;
  if (a.fontBase == nullptr || a.drawMode == nullptr || (a.string == nullptr && count != 0)) return 0;
  const TextClip clip = PrepareTextClip(device, a);

  // Intended: without a clip the page's width limits the rows and its height the columns, both less one.
  Rect limits{0, 0, static_cast<int32_t>(state.description.height - 1),
              static_cast<int32_t>(state.description.width - 1)};
  if (clip.has) RectIntersect(limits, Shifted(clip.rect, state.originX, state.originY), bandInPage);

  const auto packed = [regray](uint32_t colour) {
    const uint32_t exchanged = ExchangeRedBlue(colour);
    return regray ? GrayLevel(exchanged) : exchanged;
  };
  const BitPainter painter(*state.rows, packed(a.drawMode->TextColor), packed(a.drawMode->bkColor),
                           a.drawMode->bkMode == TRANSPARENT, band.bytesPerPixel);
  const auto paint = [&](const PlacedGlyph& glyph) { PaintGlyph(band, mapping, painter, limits, glyph); };

  const FontRecord font(a.fontBase, a.fontOffset);
  const int32_t y = WrapAdd(a.y, state.originY);
  int16_t breakError = a.drawMode->BreakErr;
  const Justification justification{a.drawMode->TBreakExtra, a.drawMode->BreakCount, a.drawMode->CharacterExtra,
                                    &breakError};
  const auto run = [&](const uint8_t* string, int32_t characters, int32_t x) {
    const int32_t result = font.IsTwoByte()
                               ? RunTwoByte(font, string, characters, x, y,
                                            a.charWidths != nullptr ? a.charWidths[0] : int16_t{0}, &breakError, paint)
                               : RunOneByte(font, string, characters, x, y, justification, paint);
    if (characters <= 0) a.drawMode->BreakErr = breakError;
    return result;
  };

  int32_t x = WrapAdd(a.x, state.originX);
  const auto* string = static_cast<const uint8_t*>(a.string);
  if (a.charWidths == nullptr) return run(string, count, x);
  if (count == 0) return 0;
  const int32_t step = count > 0 ? 1 : -1;
  const int32_t n = count * step;
  int32_t advance = 0;
  for (int32_t i = 0;; ++i) {
    const int32_t last = run(string, step, x);
    if (i == n - 1) return WrapAdd(last, advance);
    advance = WrapAdd(advance, a.charWidths[i]);
    x = WrapAdd(x, a.charWidths[i]);
    string += font.IsTwoByte() ? 2 : 1;
  }
}

}  // namespace qnv
