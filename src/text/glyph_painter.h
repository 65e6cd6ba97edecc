// Paints glyphs: bits, through the text color and, unless transparent, the background color.
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
  // What two rows of bits, painted one over the other, come to.
  uint8_t Merge(uint8_t below, uint8_t above) const {
    return transparent_ ? static_cast<uint8_t>(below | above) : above;
  }

 private:
  BitColors colors_;
  const bool transparent_;
  void (*paintColumn_)(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColors& colors);
};

struct GlyphSpan {
  int32_t first, end;
};

// The pixels of a glyph's width or height that lie in [low, high). Ends beyond 32767 are cut there.
constexpr GlyphSpan VisibleSpan(int32_t begin, int32_t size, int32_t low, int32_t high) {
  constexpr int32_t kFarthest = 32767;
  if (size <= 0) return {low, low};  // a negative one could wrap to an end behind everything
  return {MaxOf(begin, low), std::min({WrapAdd(begin, size), kFarthest, high})};
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

// What of the text's clip a glyph can reach on the band, in the text's pixels; may be empty.
inline Rect ReachedLimits(const BandView& band, const PlainMapping&, const Rect& limits) {
  Rect inside;
  RectIntersect(inside, limits, band.rect);
  return inside;
}
inline Rect ReachedLimits(const BandView&, const KeptMapping&, const Rect& limits) { return limits; }

// limits: reached ones. A glyph is painted column by column of its bytes.
void PaintGlyph(const BandView& band, const PlainMapping& mapping, const BitPainter& painter, const Rect& limits,
                const PlacedGlyph& glyph);

// The resolution-mapping device: limits are in page pixels; rows are rounded onto the band, columns kept or
// dropped by its table.
void PaintGlyph(const BandView& band, const KeptMapping& mapping, const BitPainter& painter, const Rect& limits,
                const PlacedGlyph& glyph);

}  // namespace qnv
