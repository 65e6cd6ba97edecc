// Prepares the fill of a call from pen, brush and draw mode, and reads its rows as packed colors.
#include "raster/fill_pattern.h"

#include <algorithm>
#include <cstring>

#include "color/color_forms.h"

namespace qnv {
namespace {

// A pattern has at most 16 cells in each direction: larger factors count as 2.
int Replication(uint8_t factor) { return std::min<int>(factor, 2); }

// Stores the cells of a hatch or pattern brush and what is needed to color them.
void SelectCells(FillPattern* pattern, const PhysicalBrush& brush, CellRule rule, const DRAWMODE& drawMode) {
  std::memcpy(pattern->brushCells, brush.cells, sizeof pattern->brushCells);
  pattern->rule = rule;
  pattern->background = ExchangeRedBlue(drawMode.bkColor);
  pattern->text = ExchangeRedBlue(drawMode.TextColor);
  // Each of the brush's 8 x 8 cells is repeated in a block of pattern cells.
  pattern->width = static_cast<uint8_t>(8 * Replication(brush.hatchScale[0]));
  pattern->height = static_cast<uint8_t>(8 * Replication(brush.hatchScale[1]));
}

// A cell as it is painted; painted is false where the band stays as it is.
struct Cell {
  uint32_t color;
  bool painted;
};

// The color of a cell of the brush under the rule of the pattern.
Cell ReadCell(const FillPattern& pattern, uint32_t cell) {
  const bool marked = cell >> 24 != 0;
  switch (pattern.rule) {
    case CellRule::kTwoColors: return {(cell & kColorBits) == kWhite ? pattern.background : pattern.text, true};
    case CellRule::kOpaqueHatch: return {marked ? ExchangeRedBlue(cell) : pattern.background, true};
    case CellRule::kOwnColor: break;
  }
  return {ExchangeRedBlue(cell), marked || pattern.style != kFillHatched};
}

}  // namespace

// A solid fill is a pattern of one cell.
void SelectSolid(FillPattern* pattern, uint32_t packed) {
  pattern->style = kFillSolid;
  pattern->width = pattern->height = 1;
  pattern->color = packed;
}

PatternRow ReadPatternRow(const FillPattern& pattern, uint32_t row) {
  PatternRow result;
  if (pattern.style == kFillSolid) {
    result.colors[0] = pattern.color;
    result.painted[0] = UINT32_MAX;
    return result;
  }
  const uint32_t* const cells = pattern.brushCells + std::size_t{8} * (pattern.height == 8 ? row : row / 2);
  for (std::size_t i = 0; i < 8; ++i) {
    const Cell cell = ReadCell(pattern, cells[i]);
    result.colors[i] = cell.color;
    result.painted[i] = cell.painted ? UINT32_MAX : 0;
  }
  if (pattern.width == 8) return result;
  // Each cell twice, from the right, so that no cell is overwritten before it is read.
  for (std::size_t i = 16; i-- > 0;) {
    result.colors[i] = result.colors[i / 2];
    result.painted[i] = result.painted[i / 2];
  }
  return result;
}

void SelectFillPattern(FillPattern* pattern, const PhysicalPen* pen, const PhysicalBrush* brush,
                       const DRAWMODE* drawMode) {
  if (drawMode == nullptr) return;
  // From here on the call decides, and also later calls with a null draw mode.
  pattern->rop2 = static_cast<uint16_t>(drawMode->Rop2);
  if (brush == nullptr) {
    SelectSolid(pattern, pen != nullptr ? ExchangeRedBlue(pen->colour) : 0);
    return;
  }
  switch (brush->style) {
    case BS_SOLID: SelectSolid(pattern, ExchangeRedBlue(brush->colour)); break;
    case BS_HATCHED:
      pattern->style = kFillHatched;
      SelectCells(pattern, *brush, drawMode->bkMode == OPAQUE ? CellRule::kOpaqueHatch : CellRule::kOwnColor,
                  *drawMode);
      break;
    case BS_PATTERN:
      pattern->style = kFillPatterned;
      SelectCells(pattern, *brush, brush->patternDepth == 1 ? CellRule::kTwoColors : CellRule::kOwnColor, *drawMode);
      break;
    default: pattern->style = kFillNothing;
  }
}

}  // namespace qnv
