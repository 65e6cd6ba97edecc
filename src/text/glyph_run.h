// Lays out a run of characters: where each glyph stands, how far the run advances, and how the extra pixels of
// justified text are distributed over its break characters. The caller passes the function that paints a glyph. Widths,
// heights and advances are in the text's pixels.
#pragma once

#include <cstdint>
#include <type_traits>

#include "text/font_record.h"

namespace qnv {

// A glyph and its place, origin added.
struct PlacedGlyph {
  const uint8_t* bits;  // columns of 8 pixels, `height` bytes each
  int32_t x, y;         // top left
  int32_t width, height;
};

// The fields of a draw mode that distribute extra pixels.
struct Justification {
  int16_t breakExtra;      // TBreakExtra: pixels to distribute over the line
  int16_t breakCount;      // break characters of the line
  int16_t characterExtra;  // added after every character
  int16_t* breakError;     // remainder from the run before; updated only by a measuring run
};

// For runs whose glyphs cannot be seen: they still advance.
struct NoGlyphs {
  void operator()(const PlacedGlyph&) const {}
};

// The result of a measuring run: the height in the upper 16 bits, the low 16 bits of the advance in the lower.
constexpr int32_t TextExtent(int32_t height, int32_t advance) {
  return static_cast<int32_t>(static_cast<uint32_t>(height) << 16 | (static_cast<uint32_t>(advance) & 0xFFFF));
}

// A run of one-byte characters at (x, y). count > 0 draws them and returns the advance cut to 16 bits; 0 and below
// measure |count| characters and return the extent.
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
  int16_t error = *justification.breakError;  // when it falls below 1, a break gets one more pixel
  int32_t total = 0;
  int32_t walked = n;
  // Where nothing is painted or justified, the advance is a sum.
  if (justification.breakExtra == 0 && (!drawing || std::is_same_v<PaintGlyph, NoGlyphs>)) {
    walked = 0;
    total = font.IsVariablePitch()
                ? WrapAdd(font.TableWidthOf(string, n), WrapMultiply(n, justification.characterExtra))
                : WrapMultiply(n, font.FixedWidth() + justification.characterExtra);
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

// A run of two-byte characters. The code is the index into the character table, widths are those of the table, and
// nothing is justified. Intended: whether a glyph lies left of the page is decided by `firstCharWidth`, not by its own
// width.
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
