// Paints glyphs: set bits in the text color and, unless the background is transparent, clear bits in the background
// color.
#pragma once

#include <algorithm>
#include <cstdint>

#include "raster/band_view.h"
#include "raster/mappings.h"
#include "raster/rows/row_kernels.h"
#include "text/glyph_run.h"

namespace qnv {

// The colors of a call and the kernels that paint bits in them.
class BitPainter {
 public:
  // text, background: packed. transparent: clear bits are not painted.
  BitPainter(const RowKernels& rows, uint32_t text, uint32_t background, bool transparent, uint32_t bytesPerPixel);

  void PaintColumn(uint8_t* dst, std::size_t stride, const GlyphColumn& column) const {
    paintColumn_(dst, stride, column, colors_);
  }
  // True when of several rows painted over each other only the last is visible, because it also paints its clear bits.
  bool ShowsLast() const { return !transparent_; }
  // The row of bits that paints the same pixels as `below` followed by `above`.
  uint8_t Merge(uint8_t below, uint8_t above) const {
    return transparent_ ? static_cast<uint8_t>(below | above) : above;
  }

 private:
  BitColors colors_;
  const bool transparent_;
  void (*paintColumn_)(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors);
};

// A half-open range of rows or columns in the text's pixels.
struct GlyphSpan {
  int32_t first, end;
};

// The part of [begin, begin + size), the columns or rows of a glyph, that lies in [low, high). Ends beyond 32767 are
// cut there.
constexpr GlyphSpan VisibleSpan(int32_t begin, int32_t size, int32_t low, int32_t high) {
  constexpr int32_t kMaxEnd = 32767;
  if (size <= 0) return {low, low};  // the end of a negative size could wrap to a large number
  return {MaxOf(begin, low), std::min({WrapAdd(begin, size), kMaxEnd, high})};
}

// The part of a glyph that lies inside `limits`, as rows and columns of the glyph itself.
constexpr bool VisiblePart(const PlacedGlyph& glyph, const Rect& limits, Rect* part) {
  const GlyphSpan columns = VisibleSpan(glyph.x, glyph.width, limits.left, limits.right);
  const GlyphSpan rows = VisibleSpan(glyph.y, glyph.height, limits.top, limits.bottom);
  if (columns.first >= columns.end || rows.first >= rows.end) return false;
  *part = Shifted(Rect{columns.first, rows.first, columns.end, rows.end}, WrapSubtract(0, glyph.x),
                  WrapSubtract(0, glyph.y));
  return true;
}

// The part of the clip in which glyphs are painted, in caller pixels; may be empty. On a plain band it is exactly the
// part inside the band. On a resolution-mapping band it may be a little larger; pixels are compared with the band again
// after they are mapped.
inline Rect ReachedLimits(const BandView& band, const PlainMapping&, const Rect& limits) {
  Rect inside;
  RectIntersect(inside, limits, band.rect);
  return inside;
}
Rect ReachedLimits(const BandView& band, const KeptMapping& mapping, const Rect& limits);

// Paints the part of a glyph that lies inside `limits`, which come from ReachedLimits.
void PaintGlyph(const BandView& band, const PlainMapping& mapping, const BitPainter& painter, const Rect& limits,
                const PlacedGlyph& glyph);

// The same on the resolution-mapping device, with limits in page pixels. Rows are mapped by rounding, several to one
// band row if need be; columns are kept or dropped by the table of the mapping.
void PaintGlyph(const BandView& band, const KeptMapping& mapping, const BitPainter& painter, const Rect& limits,
                const PlacedGlyph& glyph);

}  // namespace qnv
