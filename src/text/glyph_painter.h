// Paints glyphs: bits, through the text colour and, unless transparent, the background colour.
#pragma once

#include <algorithm>
#include <cstdint>

#include "raster/band_view.h"
#include "raster/mappings.h"
#include "raster/rows/row_kernels.h"
#include "text/glyph_run.h"

namespace qnv {

// The colours of a call and the kernels that paint bits in them.
class BitPainter {
 public:
  // text, background: packed. transparent: clear bits are not painted.
  BitPainter(const RowKernels& rows, uint32_t text, uint32_t background, bool transparent, uint32_t bytesPerPixel);

  void PaintRow(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels) const {
    if (transparent_) {
      (is24_ ? rows_.PaintBitsRow24 : rows_.PaintBitsRow8)(dst, bits, offset, pixels, colours_.set);
    } else {
      (is24_ ? rows_.ExpandBitsRow24 : rows_.ExpandBitsRow8)(dst, bits, offset, pixels, colours_.set, colours_.clear);
    }
  }

  void PaintColumn(uint8_t* dst, std::size_t stride, const GlyphColumn& column) const {
    paintColumn_(dst, stride, column, colours_);
  }

 private:
  const RowKernels& rows_;
  BitColours colours_;
  const bool transparent_;
  const bool is24_;
  void (*paintColumn_)(uint8_t* dst, std::size_t stride, const GlyphColumn& column, const BitColours& colours);
};

// The part of a glyph that lies inside `limits`, as rows and columns of the glyph itself. Ends beyond 32767
// are cut there.
constexpr bool VisiblePart(const PlacedGlyph& glyph, const Rect& limits, Rect* part) {
  constexpr int32_t kFarthest = 32767;
  const int32_t right = std::min({WrapAdd(glyph.x, glyph.width), kFarthest, limits.right});
  const int32_t bottom = std::min({WrapAdd(glyph.y, glyph.height), kFarthest, limits.bottom});
  const int32_t left = MaxOf(glyph.x, limits.left);
  const int32_t top = MaxOf(glyph.y, limits.top);
  if (left >= right || top >= bottom) return false;
  *part = Shifted(Rect{left, top, right, bottom}, WrapSubtract(0, glyph.x), WrapSubtract(0, glyph.y));
  return true;
}

// limits: the text's clip, device space. A glyph is painted column by column of its bytes.
void PaintGlyph(const BandView& band, const PlainMapping& mapping, const BitPainter& painter, const Rect& limits,
                const PlacedGlyph& glyph);

// The resolution-mapping device: limits are in page pixels; rows are rounded onto the band, columns kept or
// dropped by its table.
void PaintGlyph(const BandView& band, const KeptMapping& mapping, const BitPainter& painter, const Rect& limits,
                const PlacedGlyph& glyph);

}  // namespace qnv
