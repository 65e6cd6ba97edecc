// The prepared fill of a device: a period of cells with a mask.
#pragma once

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
  void SetSolid(uint32_t color);
  // cellOf(cell) gives each of the brush's 8 x 8 cells its color and mask; they are spread by the brush's scale.
  struct MaskedColor {
    uint32_t color;
    bool paints;
  };
  void SetCells(const PhysicalBrush& brush, const auto& cellOf) {
    const int across = brush.hatchScale[0] < 2 ? brush.hatchScale[0] : 2;
    const int down = brush.hatchScale[1] < 2 ? brush.hatchScale[1] : 2;
    width = 8 * across;
    height = 8 * down;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const MaskedColor cell = cellOf(brush.cells[y / down * 8 + x / across]);
        cells[y][x] = cell.color;
        mask[y][x] = cell.paints ? 255 : 0;
      }
    }
  }
};

void SelectFillPattern(FillPattern& pattern, const PhysicalPen* pen, const PhysicalBrush* brush,
                       const DRAWMODE* drawMode);

}  // namespace qnv::reference
