// The model of prepared fills: the cells of each brush style and how they repeat.
#include "reference/fill_pattern.h"

#include "reference/arithmetic.h"

namespace qnv::reference {

uint32_t FillPattern::Cell(int x, int y) const { return cells[FloorMod(y, height)][FloorMod(x, width)]; }

bool FillPattern::Paints(int x, int y) const {
  return style != kMasked || mask[FloorMod(y, height)][FloorMod(x, width)] != 0;
}

void FillPattern::SetSolid(uint32_t color) {
  style = 0;
  width = height = 1;
  cells[0][0] = color;
}

void SelectFillPattern(FillPattern& pattern, const PhysicalPen* pen, const PhysicalBrush* brush,
                       const DRAWMODE* drawMode) {
  if (drawMode == nullptr) return;
  pattern.rop2 = static_cast<uint16_t>(drawMode->Rop2);
  if (brush == nullptr) return pattern.SetSolid(pen == nullptr ? 0 : SwapRedBlue(pen->colour));
  if (brush->style == BS_SOLID) return pattern.SetSolid(SwapRedBlue(brush->colour));
  if (brush->style == BS_HATCHED) {
    pattern.style = kMasked;
    pattern.SetCells(*brush, [&](uint32_t cell) -> FillPattern::MaskedColor {
      if (drawMode->bkMode == OPAQUE && cell < 0x1000000) return {SwapRedBlue(drawMode->bkColor), true};
      return {SwapRedBlue(cell), (cell >> 24) != 0};
    });
  } else if (brush->style == BS_PATTERN) {
    pattern.style = 1;
    pattern.SetCells(*brush, [&](uint32_t cell) -> FillPattern::MaskedColor {
      if (brush->patternDepth != 1) return {SwapRedBlue(cell), true};
      return {SwapRedBlue((cell & 0xFFFFFF) == 0xFFFFFF ? drawMode->bkColor : drawMode->TextColor), true};
    });
  } else {
    pattern.style = kNothingToPaint;
  }
}

}  // namespace qnv::reference
