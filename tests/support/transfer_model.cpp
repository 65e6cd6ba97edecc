// The model of one transferred pixel: pattern, source and destination through the truth table of the index.
#include "support/transfer_model.h"

#include <algorithm>

namespace qnv::test {
namespace {

// Cells are repeated at most twice each way, then the 8 x 8 of them begin again.
uint32_t CellAt(const PhysicalBrush& brush, int32_t column, int32_t row) {
  const int32_t fx = std::min<int32_t>(brush.hatchScale[0], 2);
  const int32_t fy = std::min<int32_t>(brush.hatchScale[1], 2);
  return brush.cells[row / fy % 8 * 8 + column / fx % 8];
}

PixelBytes PatternBytes(const TransferInputs& inputs, int32_t column, int32_t row, int bytesPerPixel) {
  const PhysicalBrush* brush = inputs.brush;
  const bool solid = brush != nullptr && brush->style == BS_SOLID && !TakesSolidFromPattern(inputs.rop);
  const uint32_t color = solid ? brush->colour : PatternColor(brush, *inputs.drawMode, column, row);
  if (bytesPerPixel == 3 || !solid) return BandBytesOf(color);
  return {static_cast<uint8_t>(color), 0, 0};
}

// `firstX` is the source column of the area's first column: on a gray band only that one is scaled by the depth.
PixelBytes SourceBytes(const TransferInputs& inputs, int32_t firstX, int32_t x, int32_t y, int bytesPerPixel) {
  const SourceImage& source = *inputs.source;
  if (source.oneBit()) {
    const uint32_t color = source.Bit(x, y) ? inputs.drawMode->bkColor : inputs.drawMode->TextColor;
    if (bytesPerPixel == 3) return BandBytesOf(color);
    return {static_cast<uint8_t>(color), 0, 0};
  }
  const uint8_t* row = source.Row(y);
  if (bytesPerPixel == 3) return {row[3 * x + 2], row[3 * x + 1], row[3 * x]};
  return {row[firstX * source.record()->bmBitsPixel / 8 + (x - firstX)], 0, 0};
}

}  // namespace

bool TakesSolidFromPattern(uint32_t rop) {
  const uint32_t upper = rop >> 16;
  return upper == 0xC0 || upper == 0xFB || upper == 0xE2;
}

PixelBytes BandBytesOf(uint32_t color) {
  return {static_cast<uint8_t>(color >> 16), static_cast<uint8_t>(color >> 8), static_cast<uint8_t>(color)};
}

uint32_t PatternColor(const PhysicalBrush* brush, const DRAWMODE& drawMode, int32_t column, int32_t row) {
  if (brush == nullptr) return 0;
  if (brush->style == BS_SOLID) return brush->colour;
  const uint32_t cell = CellAt(*brush, column, row);
  if (brush->style == BS_HATCHED) return drawMode.bkMode == OPAQUE && cell < 0x1000000 ? drawMode.bkColor : cell;
  if (brush->patternDepth != 1) return cell;
  return (cell & 0xFFFFFF) == 0xFFFFFF ? drawMode.bkColor : drawMode.TextColor;
}

std::optional<uint32_t> FillColor(const PhysicalBrush& brush, const DRAWMODE& drawMode, int32_t column, int32_t row) {
  if (brush.style == BS_HATCHED && drawMode.bkMode != OPAQUE && CellAt(brush, column, row) < 0x1000000) return {};
  return PatternColor(&brush, drawMode, column, row);
}

void FillExpected(PlaneImage* expected, const BandRect& area, const PhysicalBrush& brush, const DRAWMODE& drawMode,
                  int32_t phaseX, int32_t phaseY) {
  for (int32_t row = area.top; row < area.bottom; ++row) {
    for (int32_t column = area.left; column < area.right; ++column) {
      const std::optional<uint32_t> color = FillColor(brush, drawMode, column + phaseX, row + phaseY);
      if (!color) continue;
      const PixelBytes pen = BandBytesOf(*color);
      uint8_t* pixel = expected->At(column, row);
      for (std::size_t i = 0; i < static_cast<std::size_t>(expected->bytesPerPixel()); ++i) {
        pixel[i] = Rop3Byte(IndexOfRop2(drawMode.Rop2), 0, pen[i], pixel[i]);
      }
    }
  }
}

void PaintExpected(PlaneImage* expected, const BandRect& area, int32_t srcX, int32_t srcY,
                   const TransferInputs& inputs) {
  const uint8_t index = static_cast<uint8_t>(inputs.rop >> 16);
  const int bytesPerPixel = expected->bytesPerPixel();
  for (int32_t row = area.top; row < area.bottom; ++row) {
    for (int32_t column = area.left; column < area.right; ++column) {
      PixelBytes pattern{};
      PixelBytes source{};
      if (IndexUsesPattern(index)) pattern = PatternBytes(inputs, column, row, bytesPerPixel);
      if (IndexUsesSource(index)) {
        source = SourceBytes(inputs, srcX, srcX + column - area.left, srcY + row - area.top, bytesPerPixel);
      }
      uint8_t* pixel = expected->At(column, row);
      for (std::size_t i = 0; i < static_cast<std::size_t>(bytesPerPixel); ++i) {
        pixel[i] = Rop3Byte(index, pattern[i], source[i], pixel[i]);
      }
    }
  }
}

}  // namespace qnv::test
