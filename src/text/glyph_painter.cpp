// Paints glyphs. Their bits lie in columns of eight pixels, so the plain devices paint column by column straight from
// the font. The resolution-mapping device first gathers the pixels it keeps into columns of the same form.
#include "text/glyph_painter.h"

#include <cstring>

namespace qnv {
namespace {

// Rows of a glyph that are gathered at a time.
constexpr int32_t kMaxRows = 64;
// Glyphs with more rows than this for each band row are painted by PaintMerged, which merges rows before it gathers
// columns.
constexpr int64_t kManyRows = 8;

// In each byte of a word: when the bit 0x80 >> from is set in `bytes`, sets the bit 0x80 >> to in `out`.
template <class Word>
void MoveBit(uint8_t* out, const uint8_t* bytes, uint32_t from, uint32_t to) {
  constexpr Word kOnes = static_cast<Word>(0x01010101);
  Word source, moved;
  std::memcpy(&source, bytes, sizeof source);
  std::memcpy(&moved, out, sizeof moved);
  moved = static_cast<Word>(moved | (source >> (7 - from) & kOnes) << (7 - to));
  std::memcpy(out, &moved, sizeof moved);
}

// Gathers up to eight pixel columns of a glyph into one byte for each row. indices: the columns, counted from column
// `first` of the glyph. top, rows: the rows of the glyph to gather.
void GatherColumns(uint8_t* out, const PlacedGlyph& glyph, int32_t first, const uint16_t* indices, uint32_t pixels,
                   int32_t top, int32_t rows) {
  std::memset(out, 0, kMaxRows);
  for (uint32_t to = 0; to < pixels; ++to) {
    const uint32_t column = static_cast<uint32_t>(first) + indices[to];
    const uint8_t* bytes = glyph.bits + static_cast<std::ptrdiff_t>(column / 8) * glyph.height + top;
    int32_t row = 0;
    for (; row + 4 <= rows; row += 4) MoveBit<uint32_t>(out + row, bytes + row, column % 8, to);
    for (; row < rows; ++row) MoveBit<uint8_t>(out + row, bytes + row, column % 8, to);
  }
}

// Paints gathered rows at column x of the band. bandRows: the band row of each, ascending; rows that share a band row
// are merged into one first. `bytes` is overwritten.
void PaintGathered(const BandView& band, const BitPainter& painter, int32_t x, std::size_t pixels, uint8_t* bytes,
                   const int32_t* bandRows, int32_t rows) {
  for (int32_t row = 0; row < rows;) {
    const int32_t first = bandRows[row];
    std::size_t count = 1;
    bytes[0] = bytes[row++];
    for (; row < rows; ++row) {
      const int32_t next = first + static_cast<int32_t>(count);
      // A row of its own, one more on the same band row, or the beginning of another block.
      if (bandRows[row] == next) {
        bytes[count++] = bytes[row];
      } else if (bandRows[row] == next - 1) {
        bytes[count - 1] = painter.Merge(bytes[count - 1], bytes[row]);
      } else {
        break;
      }
    }
    painter.PaintColumn(band.At(x, first), band.stride, GlyphColumn{bytes, count, 0, pixels});
  }
}

// The rows of a column of bytes combined with OR into one.
uint8_t MergedRows(const uint8_t* bytes, int32_t rows) {
  uint64_t merged = 0;
  int32_t row = 0;
  for (; row + 8 <= rows; row += 8) {
    uint64_t eight;
    std::memcpy(&eight, bytes + row, sizeof eight);
    merged |= eight;
  }
  for (; row < rows; ++row) merged |= bytes[row];
  merged |= merged >> 32;
  merged |= merged >> 16;
  return static_cast<uint8_t>(merged | merged >> 8);
}

// The first row of the glyph after `first` that is mapped to another band row, or `end`. y: the page row of the glyph's
// row 0. The rows of one band row are consecutive, so the end is found with doubling steps and then by bisection.
int32_t EndOfBandRow(const KeptMapping& mapping, int32_t y, int32_t first, int32_t end) {
  const int32_t bandRow = mapping.ToBand(WrapAdd(y, first));
  const auto isSame = [&](int32_t row) { return mapping.ToBand(WrapAdd(y, row)) == bandRow; };
  int32_t same = first, step = 1;
  for (; step < end - same && isSame(same + step); step *= 2) same += step;
  int32_t other = step < end - same ? same + step : end;
  while (other - same > 1) {
    const int32_t middle = same + (other - same) / 2;
    (isSame(middle) ? same : other) = middle;
  }
  return other;
}

// Paints a glyph that has many rows for each band row: merges the glyph rows of a band row, then paints the result.
// part: the visible part, in rows and columns of the glyph.
void PaintMerged(const BandView& band, const KeptMapping& mapping, const BitPainter& painter, const Rect& part,
                 const PlacedGlyph& glyph) {
  for (int32_t top = part.top, end; top < part.bottom; top = end) {
    end = EndOfBandRow(mapping, glyph.y, top, part.bottom);
    const int32_t y = mapping.ToBand(WrapAdd(glyph.y, top));
    if (y < band.rect.top || y >= band.rect.bottom) continue;
    const int32_t first = painter.ShowsLast() ? end - 1 : top;
    mapping.ForEachTableRun(WrapAdd(glyph.x, part.left), part.right - part.left, band.rect.left, band.rect.right,
                            [&](const ColumnRun& run) {
                              int32_t byteColumn = -1;
                              uint8_t merged = 0;
                              for (int32_t done = 0; done < run.count; done += 8) {
                                const int32_t pixels = MinOf(run.count - done, 8);
                                uint8_t bits = 0;
                                for (int32_t i = 0; i < pixels; ++i) {
                                  const int32_t column = part.left + run.callerColumn + run.indices[done + i];
                                  if (column / 8 != byteColumn) {
                                    byteColumn = column / 8;
                                    merged = MergedRows(glyph.bits + std::ptrdiff_t{byteColumn} * glyph.height + first,
                                                        end - first);
                                  }
                                  bits = static_cast<uint8_t>(bits | (merged >> (7 - column % 8) & 1) << (7 - i));
                                }
                                painter.PaintColumn(band.At(band.rect.left + run.bandColumn + done, y), band.stride,
                                                    GlyphColumn{&bits, 1, 0, static_cast<std::size_t>(pixels)});
                              }
                            });
  }
}

}  // namespace

BitPainter::BitPainter(const RowKernels& rows, uint32_t text, uint32_t background, bool transparent,
                       uint32_t bytesPerPixel)
    : transparent_(transparent) {
  colors_.set = text;
  colors_.clear = background;
  for (uint32_t i = 0; i < sizeof colors_.setBytes; ++i) {
    const uint32_t shift = i % bytesPerPixel * 8;
    colors_.setBytes[i] = static_cast<uint8_t>(text >> shift);
    colors_.clearBytes[i] = static_cast<uint8_t>(background >> shift);
    colors_.changeBytes[i] = static_cast<uint8_t>(colors_.setBytes[i] ^ colors_.clearBytes[i]);
  }
  // The kernel is chosen once per call, not once per glyph.
  const bool is24 = bytesPerPixel == 3;
  paintColumn_ =
      transparent ? (is24 ? rows.PaintGlyph24 : rows.PaintGlyph8) : (is24 ? rows.ExpandGlyph24 : rows.ExpandGlyph8);
}

void PaintGlyph(const BandView& band, const PlainMapping&, const BitPainter& painter, const Rect& limits,
                const PlacedGlyph& glyph) {
  Rect part;
  if (!VisiblePart(glyph, limits, &part)) return;
  uint8_t* dst = band.At(WrapAdd(glyph.x, part.left), WrapAdd(glyph.y, part.top));
  GlyphColumn column;
  column.bytes = glyph.bits + std::ptrdiff_t{part.left / 8} * glyph.height + part.top;
  column.rows = static_cast<std::size_t>(part.bottom - part.top);
  // Whole bytes of the font; the first and the last may be partly clipped.
  for (int32_t x = part.left; x < part.right; column.bytes += glyph.height) {
    column.offset = static_cast<std::size_t>(x % 8);
    column.pixels = std::min<std::size_t>(8 - column.offset, static_cast<std::size_t>(part.right - x));
    painter.PaintColumn(dst, band.stride, column);
    dst += column.pixels * band.bytesPerPixel;
    x += static_cast<int32_t>(column.pixels);
  }
}

Rect ReachedLimits(const BandView& band, const KeptMapping& mapping, const Rect& limits) {
  const CoordinateMap& map = *mapping.map;
  const int64_t a = map.a(), b = map.b();
  if (b == 0 || band.rect.left >= band.rect.right || band.rect.top >= band.rect.bottom) return Rect{0, 0, 0, 0};
  Rect reached = limits;
  // Cuts [low, high) to the page pixels of the band pixels [bandFirst, bandEnd). Both mappings round, one to the
  // nearest pixel and the other within each inch, so two band pixels and a page pixel more on either side are enough.
  // No mapped coordinate overflows, because the limits do not begin before row and column -32,768 of the band.
  const auto cut = [&](int32_t& low, int32_t& high, int32_t bandFirst, int32_t bandEnd) {
    const int64_t first = (int64_t{bandFirst} - 2) * a / b - 1;
    const int64_t end = (int64_t{bandEnd} + 2) * a / b + 2;
    if (first > low) low = first < high ? static_cast<int32_t>(first) : high;
    if (end < high) high = end > low ? static_cast<int32_t>(end) : low;
  };
  cut(reached.top, reached.bottom, band.rect.top, band.rect.bottom);
  cut(reached.left, reached.right, band.rect.left, band.rect.right);
  return reached;
}

void PaintGlyph(const BandView& band, const KeptMapping& mapping, const BitPainter& painter, const Rect& limits,
                const PlacedGlyph& glyph) {
  Rect part;
  if (!VisiblePart(glyph, limits, &part)) return;
  const int64_t bandRows = int64_t{band.rect.bottom} - band.rect.top;
  if (part.bottom - part.top > kManyRows * (bandRows + 1)) return PaintMerged(band, mapping, painter, part, glyph);
  for (int32_t row = part.top; row < part.bottom;) {
    // The next rows of the glyph that lie in the band, `top` being the first of them.
    int32_t rowsOfBand[kMaxRows];
    int32_t rows = 0;
    int32_t top = row;
    for (; row < part.bottom && rows < kMaxRows; ++row) {
      const int32_t y = mapping.ToBand(WrapAdd(glyph.y, row));
      if (y >= band.rect.bottom) {
        part.bottom = row;
      } else if (y >= band.rect.top) {
        rowsOfBand[rows++] = y;
      } else {
        top = row + 1;
      }
    }
    // The columns of the glyph that the band keeps, in runs; each run is gathered and painted eight columns at a time.
    mapping.ForEachTableRun(
        WrapAdd(glyph.x, part.left), part.right - part.left, band.rect.left, band.rect.right,
        [&](const ColumnRun& run) {
          for (int32_t done = 0; done < run.count; done += 8) {
            const uint32_t pixels = static_cast<uint32_t>(MinOf(run.count - done, 8));
            uint8_t bytes[kMaxRows];
            GatherColumns(bytes, glyph, part.left + run.callerColumn, run.indices + done, pixels, top, rows);
            PaintGathered(band, painter, band.rect.left + run.bandColumn + done, pixels, bytes, rowsOfBand, rows);
          }
        });
  }
}

}  // namespace qnv
