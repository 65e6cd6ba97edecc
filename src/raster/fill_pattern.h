// The prepared fill of a device: what pen, brush and draw mode come to, in packed colors.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

inline constexpr int kMaxPeriod = 16;

enum FillStyle : uint16_t {
  kFillSolid = 0,
  kFillPatterned = 1,
  kFillHatched = 2,       // the mask counts
  kFillNothing = 0xFFFF,  // hollow or unknown brush
};

// How a brush cell becomes a packed color.
enum class CellRule : uint8_t {
  kOwnColor,
  kTwoColors,    // one-bit patterns: white cells are the background, the others the text color
  kOpaqueHatch,  // cells between the lines are the background
};

// What is prepared is kept as the brush gave it: a fill reads a few of its rows, most often one or eight.
struct FillPattern {
  uint32_t brushCells[64];  // patterned and hatched: 8 rows of 8
  uint32_t color;           // solid: packed
  uint32_t background, text;
  CellRule rule;
  uint8_t width;  // period in cells: 1 for a solid fill, 8 or 16 else; 0 paints nothing
  uint8_t height;
  uint16_t style;
  uint16_t rop2;
};

// A row of pattern cells.
struct PatternRow {
  uint32_t colors[kMaxPeriod];   // packed; the top byte is not to be read
  uint32_t painted[kMaxPeriod];  // all ones, or 0: the cell leaves the destination alone (hatched only)
};

// Requires: row < pattern.height.
PatternRow ReadPatternRow(const FillPattern& pattern, uint32_t row);

// A fill of one color.
void SelectSolid(FillPattern* pattern, uint32_t packed);

// Prepares *pattern for a call. A null draw mode leaves the pattern of the call before in force, rop2
// included; a hollow or unknown brush only turns its style into kFillNothing.
void SelectFillPattern(FillPattern* pattern, const PhysicalPen* pen, const PhysicalBrush* brush,
                       const DRAWMODE* drawMode);

}  // namespace qnv
