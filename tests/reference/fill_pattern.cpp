// The model of prepared fills: the cells of each brush style and how they repeat.
#include "reference/fill_pattern.h"

#include <algorithm>

#include "reference/arithmetic.h"

namespace qnv::reference {
namespace {

int Scale(uint8_t factor) { return std::min<int>(factor, 2); }

}  // namespace

uint32_t FillPattern::Cell(int x, int y) const { return cells[FloorMod(y, height)][FloorMod(x, width)]; }

bool FillPattern::Paints(int x, int y) const {
  return style != kMasked || mask[FloorMod(y, height)][FloorMod(x, width)] != 0;
}

void FillPattern::SetBlock(const PhysicalBrush& brush, int row, int column, uint32_t color, uint8_t maskByte) {
  const int across = Scale(brush.hatchScale[0]);
  const int down = Scale(brush.hatchScale[1]);
  for (int y = row * down; y < row * down + down; ++y) {
    for (int x = column * across; x < column * across + across; ++x) {
      cells[y][x] = color;
      mask[y][x] = maskByte;
    }
  }
}

void FillPattern::SetScaledPeriod(const PhysicalBrush& brush) {
  width = 8 * Scale(brush.hatchScale[0]);
  height = 8 * Scale(brush.hatchScale[1]);
}

void FillPattern::SetSolid(uint32_t color) {
  style = 0;
  width = 8;
  height = 8;
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) {
      cells[y][x] = color;
      mask[y][x] = 255;
    }
  }
}

void SelectFillPattern(FillPattern& pattern, const PhysicalPen* pen, const PhysicalBrush* brush,
                       const DRAWMODE* drawMode) {
  if (drawMode == nullptr) return;
  pattern.rop2 = static_cast<uint16_t>(drawMode->Rop2);
  const uint32_t background = SwapRedBlue(drawMode->bkColor);
  const uint32_t text = SwapRedBlue(drawMode->TextColor);

  if (brush == nullptr) {
    pattern.SetSolid(pen == nullptr ? 0 : SwapRedBlue(pen->colour));
    return;
  }
  if (brush->style == BS_SOLID) {
    pattern.SetSolid(SwapRedBlue(brush->colour));
    return;
  }
  if (brush->style != BS_HATCHED && brush->style != BS_PATTERN) {
    pattern.style = kNothingToPaint;
    return;
  }

  const bool hatched = brush->style == BS_HATCHED;
  pattern.style = hatched ? kMasked : 1;
  pattern.SetScaledPeriod(*brush);
  for (int row = 0; row < 8; ++row) {
    for (int column = 0; column < 8; ++column) {
      const uint32_t cell = brush->cells[row * 8 + column];
      uint32_t color = SwapRedBlue(cell);
      uint8_t mask = 255;
      if (hatched) {
        if (drawMode->bkMode == OPAQUE && cell < 0x1000000) {
          color = background;
        } else {
          mask = static_cast<uint8_t>(cell >> 24);
        }
      } else if (brush->patternDepth == 1) {
        color = (cell & 0xFFFFFF) == 0xFFFFFF ? background : text;
      }
      pattern.SetBlock(*brush, row, column, color, mask);
    }
  }
}

}  // namespace qnv::reference
