// The layout of a run of characters: which glyph stands where, how far the run advances, and how the
// justification pixels fall on its break characters. What paints a glyph is the caller's.
#pragma once

#include <cstdint>
#include <type_traits>

#include "text/font_record.h"

namespace qnv {

// Where a one-bit glyph goes, device coordinates.
struct PlacedGlyph {
  const uint8_t* bits;  // columns of 8 pixels, `height` bytes each
  int32_t x, y;
  int32_t width, height;
};

// What of a draw mode a run needs.
struct Justification {
  int16_t breakExtra;  // TBreakExtra
  int16_t breakCount;
  int16_t characterExtra;
  int16_t* breakError;  // read, and written by a measuring run
};

// Paints nothing: a run whose glyphs cannot be seen still advances.
struct NoGlyphs {
  void operator()(const PlacedGlyph&) const {}
};

// Result of a measuring run.
constexpr int32_t TextExtent(int32_t height, int32_t advance) {
  return static_cast<int32_t>(static_cast<uint32_t>(height) << 16 | (static_cast<uint32_t>(advance) & 0xFFFF));
}

// One-byte characters. count > 0 draws; 0 and below measure over |count|.
template <class PaintGlyph>
int32_t RunOneByte(const FontRecord& font, const uint8_t* string, int32_t count, int32_t x, int32_t y,
                   const Justification& justification, PaintGlyph paint) {
  const bool drawing = count > 0;
  const int32_t n = count < 0 ? -count : count;
  const auto widthOf = [&](uint16_t index) -> int32_t {
    return font.IsVariablePitch() ? font.TableWidth(index) : font.FixedWidth();
  };
  const int16_t quotient = justification.breakCount != 0
                               ? static_cast<int16_t>(justification.breakExtra / justification.breakCount)
                               : int16_t{0};
  const int16_t rest = static_cast<int16_t>(justification.breakExtra - justification.breakCount * quotient);
  int16_t error = *justification.breakError;
  int32_t total = 0;
  int32_t walked = n;
  const bool equalSteps = !font.IsVariablePitch() && justification.breakExtra == 0;
  if (equalSteps && (!drawing || std::is_same_v<PaintGlyph, NoGlyphs>)) {
    walked = 0;
    total = WrapMultiply(n, font.FixedWidth() + justification.characterExtra);
  }
  for (int32_t i = 0; i < walked; ++i) {
    const uint16_t index = font.IndexOf(string[i]);
    const int32_t width = widthOf(index);
    int32_t extra = 0;
    if (justification.breakExtra != 0 && font.IsBreak(index)) {
      error = static_cast<int16_t>(error - rest);
      extra = quotient;
      if (error < 1) {
        extra = quotient + 1;
        error = static_cast<int16_t>(error + justification.breakCount);
      }
    }
    if (drawing && WrapAdd(x, width) >= 0) paint(PlacedGlyph{font.Glyph(index), x, y, width, font.Height()});
    const int32_t step = width + extra + justification.characterExtra;
    total = WrapAdd(total, step);
    x = WrapAdd(x, step);
  }
  if (drawing) return static_cast<int16_t>(total);
  *justification.breakError = error;
  return TextExtent(font.Height(), total);
}

// Two-byte characters: the code is the table index, widths are the table's, nothing is justified. Intended:
// a glyph counts as left of the page by `firstCharWidth`, not by its own width.
template <class PaintGlyph>
int32_t RunTwoByte(const FontRecord& font, const uint8_t* string, int32_t count, int32_t x, int32_t y,
                   int16_t firstCharWidth, int16_t* breakError, PaintGlyph paint) {
  const bool drawing = count > 0;
  const int32_t n = count < 0 ? -count : count;
  int32_t total = 0;
  for (int32_t i = 0; i < n; ++i) {
    const uint16_t code = static_cast<uint16_t>(string[std::ptrdiff_t{2} * i] | string[std::ptrdiff_t{2} * i + 1] << 8);
    const int32_t width = font.TableWidth(code);
    if (drawing && WrapAdd(x, firstCharWidth) >= 0) {
      paint(PlacedGlyph{font.Glyph(code), x, y, width, font.Height()});
    }
    total = WrapAdd(total, width);
    x = WrapAdd(x, width);
  }
  if (drawing) return static_cast<int16_t>(total);
  *breakError = 0;
  return TextExtent(font.Height(), total);
}

}  // namespace qnv
