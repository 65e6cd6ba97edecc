#include "raster/fill_pattern.h"

#include <algorithm>

#include "color/color_forms.h"

namespace qnv {
namespace {

// A solid fill is a pattern of one cell: nothing shows that it could be more.
void SelectSolid(FillPattern* pattern, uint32_t colour) {
  pattern->style = kFillSolid;
  pattern->width = pattern->height = 1;
  pattern->cells[0][0] = ExchangeRedBlue(colour);
  pattern->mask[0][0] = 0xFF;
}

struct Cell {
  uint32_t colour;  // packed
  uint8_t mask;
};

// Repeats each of the brush's 8 x 8 cells in a block of fx x fy pattern cells.
template <class CellOf>
void SelectReplicated(FillPattern* pattern, const PhysicalBrush& brush, CellOf cellOf) {
  // The record holds 16 cells a direction: a larger factor is cut to 2.
  const int fx = std::min<int>(brush.hatchScale[0], 2);
  const int fy = std::min<int>(brush.hatchScale[1], 2);
  pattern->width = static_cast<uint8_t>(8 * fx);
  pattern->height = static_cast<uint8_t>(8 * fy);
  for (int r = 0; r < 8 * fy; ++r) {
    for (int c = 0; c < 8 * fx; ++c) {
      const Cell cell = cellOf(brush.cells[r / fy * 8 + c / fx]);
      pattern->cells[r][c] = cell.colour;
      pattern->mask[r][c] = cell.mask;
    }
  }
}

}  // namespace

void SelectFillPattern(FillPattern* pattern, const PhysicalPen* pen, const PhysicalBrush* brush,
                       const DRAWMODE* drawMode) {
  if (drawMode == nullptr) return;
  pattern->rop2 = static_cast<uint16_t>(drawMode->Rop2);
  if (brush == nullptr) {
    SelectSolid(pattern, pen != nullptr ? pen->colour : 0);
    return;
  }
  const uint32_t background = ExchangeRedBlue(drawMode->bkColor);
  const uint32_t text = ExchangeRedBlue(drawMode->TextColor);
  switch (brush->style) {
    case BS_SOLID: SelectSolid(pattern, brush->colour); break;
    case BS_HATCHED: {
      pattern->style = kFillHatched;
      const bool opaque = drawMode->bkMode == OPAQUE;
      SelectReplicated(pattern, *brush, [=](uint32_t cell) {
        const uint8_t mark = static_cast<uint8_t>(cell >> 24);
        return opaque && mark == 0 ? Cell{background, 0xFF} : Cell{ExchangeRedBlue(cell), mark};
      });
      break;
    }
    case BS_PATTERN: {
      pattern->style = kFillPatterned;
      const bool oneBit = brush->patternDepth == 1;
      SelectReplicated(pattern, *brush, [=](uint32_t cell) {
        const uint32_t twoColour = (cell & kColourBits) == kWhite ? background : text;
        return Cell{oneBit ? twoColour : ExchangeRedBlue(cell), 0xFF};
      });
      break;
    }
    default: pattern->style = kFillNothing;
  }
}

}  // namespace qnv
