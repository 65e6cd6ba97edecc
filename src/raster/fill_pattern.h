// The prepared fill of a device: pen, brush and draw mode of a call combined into a color or into cells, with the
// binary raster operation. Colors are packed (see color_forms.h).
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

// The largest width and height of a pattern, in cells.
inline constexpr int kMaxPeriod = 16;

// What a fill paints.
enum FillStyle : uint16_t {
  kFillSolid = 0,
  kFillPatterned = 1,
  kFillHatched = 2,       // cells may leave the band alone
  kFillNothing = 0xFFFF,  // hollow or unknown brush
};

// How a brush cell becomes a packed color.
enum class CellRule : uint8_t {
  kOwnColor,
  kTwoColors,    // one-bit patterns: white cells are the background, the others the text color
  kOpaqueHatch,  // cells between the lines are the background
};

// Cells stay in the form of the brush, and rows are converted when they are needed: most fills read few of them.
struct FillPattern {
  uint32_t brushCells[64];    // patterned and hatched: 8 rows of 8
  uint32_t color;             // solid: packed
  uint32_t background, text;  // colors of the draw mode, packed
  CellRule rule;
  uint8_t width;  // period in cells: 1 for a solid fill, 8 or 16 else; 0 paints nothing
  uint8_t height;
  uint16_t style;  // FillStyle
  uint16_t rop2;   // R2_...
};

// A row of a pattern, `width` cells.
struct PatternRow {
  uint32_t colors[kMaxPeriod];   // packed; the top byte has no meaning
  uint32_t painted[kMaxPeriod];  // all ones, or 0: the cell leaves the destination alone (hatched only)
};

// Reads a row of the pattern. Requires: row < pattern.height.
PatternRow ReadPatternRow(const FillPattern& pattern, uint32_t row);

// Makes *pattern a fill of one packed color.
void SelectSolid(FillPattern* pattern, uint32_t packed);

// Prepares *pattern for a call: from the brush or, without one, from the pen, or black without both. With a null draw
// mode the pattern of the call before stays in force, its raster operation included. A hollow or unknown brush changes
// only raster operation and style, the latter to kFillNothing.
void SelectFillPattern(FillPattern* pattern, const PhysicalPen* pen, const PhysicalBrush* brush,
                       const DRAWMODE* drawMode);

}  // namespace qnv
