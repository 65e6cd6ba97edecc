// Paints spans: chooses the row kernel of the fill once, then calls it for each row of a span.
#include "output/span_painter.h"

#include <algorithm>
#include <cstring>

#include "raster/rop3.h"
#include "raster/transfer_operations.h"

namespace qnv {

SpanPainter::SpanPainter(const BandView& band, const RowKernels& rows, const FillPattern& pattern, bool regray)
    : band_(band),
      rows_(rows),
      masks_(IndexOfRop2(pattern.rop2), &pattern, pattern.style == kFillHatched, band.bytesPerPixel),
      painted_(kWhiteness, &pattern, true, band.bytesPerPixel),
      hatched_(pattern.style == kFillHatched),
      regray_(regray) {
  const uint8_t index = IndexOfRop2(pattern.rop2);
  fills_ = !hatched_ && !RopUsesDestination(index);
  // In gray mode even an operation that keeps the pixel has an effect: the pixel becomes gray.
  paints_ = !masks_.IsEmpty() && (index != kDestination || regray);
}

void SpanPainter::Paint(int32_t y, int32_t left, int32_t right) {
  PaintBlock(y, 1, left, static_cast<std::size_t>(right - left));
}

void SpanPainter::PaintRows(int32_t top, int32_t bottom, int32_t left, int32_t right) {
  // Rows of one color that follow each other without padding are painted as one long row.
  std::size_t pixels = static_cast<std::size_t>(right - left);
  std::size_t rows = static_cast<std::size_t>(bottom - top);
  if (masks_.IsOneCell() && band_.IsWholeRow(right - left)) {
    pixels *= rows;
    rows = 1;
  }
  PaintBlock(top, rows, left, pixels);
}

// Rows of pixels from (left, top) on, one below the other.
void SpanPainter::PaintBlock(int32_t top, std::size_t rows, int32_t left, std::size_t pixels) {
  uint8_t* dst = band_.At(left, top);
  const std::size_t bytes = pixels * band_.bytesPerPixel;
  const std::size_t phase = masks_.PhaseOf(left);
  for (int32_t y = top; rows != 0; --rows, ++y, dst += band_.stride) {
    const TileMasks masks = masks_.At(masks_.RowOf(y), phase);
    if (fills_) {
      rows_.FillTileRow(dst, bytes, masks.xor2);
    } else {
      rows_.RopTileRow(dst, bytes, masks.and2, masks.xor2);
    }
    if (regray_) Regray(dst, pixels, y, left);
  }
}

void SpanPainter::Regray(uint8_t* dst, std::size_t pixels, int32_t y, int32_t left) {
  if (!hatched_) return rows_.image->RegrayRow24(dst, pixels);
  // The gaps of a hatch are not painted and keep their color: gray levels are computed beside the band, and a transfer
  // with the hatch as its mask brings in those of the painted pixels.
  static constexpr Tile kZeros{};
  constexpr std::size_t kMaxPixels = 256;
  uint8_t gray[kMaxPixels * 3];
  for (std::size_t done = 0; done < pixels; done += kMaxPixels) {
    const std::size_t count = std::min(kMaxPixels, pixels - done);
    uint8_t* part = dst + 3 * done;
    std::memcpy(gray, part, 3 * count);
    rows_.image->RegrayRow24(gray, count);
    const TileMasks painted = painted_.At(painted_.RowOf(y), painted_.PhaseOf(left + static_cast<int32_t>(done)));
    rows_.RopSourceTileRow(part, gray, 3 * count, TileMasks{kZeros.bytes, painted.and2, painted.xor2, kZeros.bytes});
  }
}

}  // namespace qnv
