#include "text/glyph_painter.h"

#include "raster/pick_bits.h"

namespace qnv {

namespace {

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

}  // namespace

BitPainter::BitPainter(const RowKernels& rows, uint32_t text, uint32_t background, bool transparent,
                       uint32_t bytesPerPixel)
    : rows_(rows), transparent_(transparent), is24_(bytesPerPixel == 3) {
  colours_.set = text;
  colours_.clear = background;
  for (uint32_t i = 0; i < sizeof colours_.setBytes; ++i) {
    const uint32_t shift = i % bytesPerPixel * 8;
    colours_.setBytes[i] = static_cast<uint8_t>(text >> shift);
    colours_.clearBytes[i] = static_cast<uint8_t>(background >> shift);
    colours_.changeBytes[i] = static_cast<uint8_t>(colours_.setBytes[i] ^ colours_.clearBytes[i]);
  }
  paintColumn_ =
      transparent ? (is24_ ? rows.PaintGlyph24 : rows.PaintGlyph8) : (is24_ ? rows.ExpandGlyph24 : rows.ExpandGlyph8);
}

void PaintGlyph(const BandView& band, const PlainMapping&, const BitPainter& painter, const Rect& limits,
                const PlacedGlyph& glyph) {
  Rect inside;
  Rect part;
  if (!RectIntersect(inside, limits, band.rect) || !VisiblePart(glyph, inside, &part)) return;
  uint8_t* dst = band.At(WrapAdd(glyph.x, part.left), WrapAdd(glyph.y, part.top));
  GlyphColumn column;
  column.bytes = glyph.bits + std::ptrdiff_t{part.left / 8} * glyph.height + part.top;
  column.rows = static_cast<std::size_t>(part.bottom - part.top);
  for (int32_t x = part.left; x < part.right; column.bytes += glyph.height) {
    column.offset = static_cast<std::size_t>(x % 8);
    column.pixels = std::min<std::size_t>(8 - column.offset, static_cast<std::size_t>(part.right - x));
    painter.PaintColumn(dst, band.stride, column);
    dst += column.pixels * band.bytesPerPixel;
    x += static_cast<int32_t>(column.pixels);
  }
}

void PaintGlyph(const BandView& band, const KeptMapping& mapping, const BitPainter& painter, const Rect& limits,
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
      painter.PaintRow(band.At(band.rect.left + run.bandColumn, y), picked, 0, static_cast<std::size_t>(run.count));
    }
  });
}

}  // namespace qnv
