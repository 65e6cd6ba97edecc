// Paints glyphs: one-bit rows, through the text colour and, unless transparent, the background colour.
#pragma once

#include <algorithm>
#include <cstdint>

#include "raster/band_view.h"
#include "raster/mappings.h"
#include "raster/rows/row_kernels.h"
#include "text/glyph_run.h"

namespace qnv {

struct TextColours {
  uint32_t text, background;  // packed
  bool transparent;
};

// A row of a glyph, gathered from its columns of bytes.
class GlyphRow {
 public:
  // The pixels [first, end) of the row; first lies in bit first % 8 of Bits()[0].
  GlyphRow(const PlacedGlyph& glyph, int32_t row, int32_t first, int32_t end) {
    const uint8_t* byte = glyph.bits + std::ptrdiff_t{first / 8} * glyph.height + row;
    const int32_t count = (end - 1) / 8 - first / 8 + 1;
    for (int32_t i = 0; i < count; ++i, byte += glyph.height) bits_[i] = *byte;
  }
  const uint8_t* Bits() const { return bits_; }

 private:
  uint8_t bits_[65536 / 8];  // widths have 16 bits
};

class BitRowPainter {
 public:
  BitRowPainter(const RowKernels& rows, const TextColours& colours, uint32_t bytesPerPixel)
      : rows_(rows), colours_(colours), is24_(bytesPerPixel == 3) {}

  void Paint(uint8_t* dst, const uint8_t* bits, std::size_t offset, std::size_t pixels) const {
    if (colours_.transparent) {
      (is24_ ? rows_.PaintBitsRow24 : rows_.PaintBitsRow8)(dst, bits, offset, pixels, colours_.text);
    } else {
      (is24_ ? rows_.ExpandBitsRow24 : rows_.ExpandBitsRow8)(dst, bits, offset, pixels, colours_.text,
                                                             colours_.background);
    }
  }

 private:
  const RowKernels& rows_;
  const TextColours colours_;
  const bool is24_;
};

// The part of a glyph that lies inside `limits`, as rows and columns of the glyph itself. Ends beyond 32767
// are cut there.
constexpr bool VisiblePart(const PlacedGlyph& glyph, const Rect& limits, Rect* part) {
  constexpr int32_t kFarthest = 32767;
  const int32_t right = std::min({WrapAdd(glyph.x, glyph.width), kFarthest, limits.right});
  const int32_t bottom = std::min({WrapAdd(glyph.y, glyph.height), kFarthest, limits.bottom});
  const int32_t left = std::max<int32_t>(glyph.x, limits.left);
  const int32_t top = std::max<int32_t>(glyph.y, limits.top);
  if (left >= right || top >= bottom) return false;
  *part = Shifted(Rect{left, top, right, bottom}, WrapSubtract(0, glyph.x), WrapSubtract(0, glyph.y));
  return true;
}

// Plain bands: each glyph row is one run of band pixels. limits: the text's clip, device space.
inline void PaintGlyph(const BandView& band, const PlainMapping&, const BitRowPainter& painter, const Rect& limits,
                       const PlacedGlyph& glyph) {
  Rect inside;
  Rect part;
  if (!RectIntersect(inside, limits, band.rect) || !VisiblePart(glyph, inside, &part)) return;
  uint8_t* dst = band.At(WrapAdd(glyph.x, part.left), WrapAdd(glyph.y, part.top));
  for (int32_t row = part.top; row < part.bottom; ++row, dst += band.stride) {
    const GlyphRow bits(glyph, row, part.left, part.right);
    painter.Paint(dst, bits.Bits(), static_cast<std::size_t>(part.left % 8),
                  static_cast<std::size_t>(part.right - part.left));
  }
}

// The resolution-mapping device: limits are in page pixels; rows are rounded onto the band, columns kept or
// dropped by its table.
void PaintGlyph(const BandView& band, const KeptMapping& mapping, const BitRowPainter& painter, const Rect& limits,
                const PlacedGlyph& glyph);

}  // namespace qnv
