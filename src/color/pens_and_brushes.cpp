// Realises pens and brushes: copies the fields of the logical record, converts the color, and draws the 64 cells of
// hatches and patterns.
#include "color/pens_and_brushes.h"

#include <cstddef>

#include "color/color_forms.h"
#include "color/hatch_table.h"

namespace qnv {
namespace {

// Fills the 64 cells of a brush from the eight rows of a hatch bitmap.
void HatchCells(const uint8_t (&rows)[8], uint32_t line, uint32_t gap, uint32_t* cells) {
  for (int row = 0; row < 8; ++row) {
    for (int column = 0; column < 8; ++column) {
      const bool isGap = (rows[row] >> (7 - column) & 1) != 0;
      cells[row * 8 + column] = isGap ? gap : line | kForeground;
    }
  }
}

// The cell of one pixel of a bitmap row. Every depth other than 24 and 8 is read as one bit a pixel: a set bit is a
// white background cell, a clear bit a black foreground cell.
uint32_t PatternCell(const uint8_t* row, int column, uint16_t depth) {
  switch (depth) {
    case 24: {
      const uint8_t* pixel = row + std::ptrdiff_t{3} * column;
      return static_cast<uint32_t>(pixel[0] | pixel[1] << 8 | pixel[2] << 16) | kForeground;
    }
    case 8: return Replicated(row[column]) | kForeground;
    default: return (row[0] >> (7 - column) & 1) != 0 ? kWhite : kForeground;
  }
}

// Fills the cells and the depth of a brush from the top left 8 x 8 pixels of a bitmap. False without bitmap or bits.
bool PatternCells(const SourceBitmap* bitmap, PhysicalBrush* brush) {
  if (bitmap == nullptr || bitmap->bmBits == nullptr) return false;
  const uint8_t bitsPixel = bitmap->bmBitsPixel;
  brush->patternDepth = bitsPixel == 24 || bitsPixel == 8 ? bitsPixel : 1;
  const auto* row = static_cast<const uint8_t*>(bitmap->bmBits);
  for (int r = 0; r < 8; ++r, row += bitmap->bmWidthBytes) {
    for (int c = 0; c < 8; ++c) brush->cells[r * 8 + c] = PatternCell(row, c, brush->patternDepth);
  }
  if (brush->patternDepth == 1) brush->colour = 0;
  return true;
}

}  // namespace

uint32_t RealizePen(const LogicalPen& logical, uint32_t physicalColor, PhysicalPen* pen) {
  // Styled pens are drawn solid: the host cuts dashes into spans itself.
  const uint16_t style = logical.style == PS_NULL ? PS_NULL : PS_SOLID;
  *pen = {style, logical.widthX, logical.widthY, physicalColor};
  return kRealised;
}

uint32_t RealizeBrush(const LogicalBrush& logical, const BrushRules& rules, PhysicalBrush* brush) {
  const uint32_t color = PhysicalColor(static_cast<uint32_t>(logical.colour), rules.gray);
  const uint16_t style = logical.style;
  const int16_t hatch = logical.hatch;
  brush->style = style;
  brush->hatch = static_cast<uint16_t>(hatch);
  brush->patternDepth = 0;
  brush->hatchScale[0] = brush->hatchScale[1] = rules.hatchScale;
  brush->colour = color;
  switch (style) {
    case BS_SOLID: return kRealisedSolid;
    case BS_HOLLOW: return kRealised;
    case BS_HATCHED:
      if (hatch >= 0 && hatch < kHatchCount) {
        // Built here and copied: the record is packed, so nothing may point at its cells.
        uint32_t cells[64];
        HatchCells(kHatchRows[hatch], color, logical.background, cells);
        for (int i = 0; i < 64; ++i) brush->cells[i] = cells[i];
      }
      return kRealised;
    case BS_PATTERN: return PatternCells(reinterpret_cast<const SourceBitmap*>(logical.colour), brush) ? kRealised : 0;
    default: return 0;
  }
}

}  // namespace qnv
