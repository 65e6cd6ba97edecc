// The prepared fill of a device: a period of cells with a mask.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv::reference {

inline constexpr uint16_t kNothingToPaint = 0xFFFF;
inline constexpr uint16_t kMasked = 2;

struct FillPattern {
  uint32_t cells[16][16] = {};  // blue in bits 0..7
  uint8_t mask[16][16] = {};    // zero leaves the destination alone, when the style is kMasked
  int width = 0;                // the period, in cells; 0 has nothing to paint with
  int height = 0;
  uint16_t style = 0;
  uint16_t rop2 = 0;

  bool HasCells() const { return width > 0 && height > 0; }
  uint32_t Cell(int x, int y) const;  // any position, also a negative one
  bool Paints(int x, int y) const;
  // Spreads one cell of a brush over its block.
  void SetBlock(const PhysicalBrush& brush, int row, int column, uint32_t color, uint8_t maskByte);
  void SetScaledPeriod(const PhysicalBrush& brush);
  void SetSolid(uint32_t color);
};

void SelectFillPattern(FillPattern& pattern, const PhysicalPen* pen, const PhysicalBrush* brush,
                       const DRAWMODE* drawMode);

}  // namespace qnv::reference
