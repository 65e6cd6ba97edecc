#include "text/glyph_painter.h"

#include "raster/pick_bits.h"

namespace qnv {

void PaintGlyph(const BandView& band, const KeptMapping& mapping, const BitRowPainter& painter, const Rect& limits,
                const PlacedGlyph& glyph) {
  Rect part;
  if (!VisiblePart(glyph, limits, &part)) return;
  const int32_t xPage = WrapAdd(glyph.x, part.left);
  const int32_t yPage = WrapAdd(glyph.y, part.top);
  const int32_t bandColumns = WrapSubtract(band.rect.right, band.rect.left);
  const auto bandColumnOf = [&](int32_t i) {
    int32_t column;
    return mapping.map->TableColumn(xPage + i, &column) ? WrapSubtract(column, band.rect.left) : -1;
  };
  KeptMapping::ForEachMappedRun(part.right - part.left, bandColumns, bandColumnOf, [&](const ColumnRun& run) {
    for (int32_t row = part.top; row < part.bottom; ++row) {
      const int32_t y = mapping.ToBand(yPage + (row - part.top));
      if (y < band.rect.top) continue;
      if (y >= band.rect.bottom) return;
      const GlyphRow bits(glyph, row, part.left, part.right);
      uint8_t picked[UINT8_MAX + 1];
      PickBits(picked, bits.Bits(), static_cast<std::size_t>(part.left % 8 + run.callerColumn), run.picks,
               static_cast<std::size_t>(run.count));
      painter.Paint(band.At(band.rect.left + run.bandColumn, y), picked, 0, static_cast<std::size_t>(run.count));
    }
  });
}

}  // namespace qnv
