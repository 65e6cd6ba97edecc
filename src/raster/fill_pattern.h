// The prepared fill of a device: what pen, brush and draw mode come to, in packed colours.
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

struct FillPattern {
  uint32_t cells[kMaxPeriod][kMaxPeriod];  // packed colours; the top byte is not read
  uint8_t mask[kMaxPeriod][kMaxPeriod];    // 0 = the cell leaves the destination alone (hatched only)
  uint8_t width;                           // period in cells: 1 for a solid fill, 8 or 16 else; 0 paints nothing
  uint8_t height;
  uint16_t style;
  uint16_t rop2;
};

// Prepares *pattern for a call. A null draw mode leaves the pattern of the call before in force, rop2
// included; a hollow or unknown brush only turns its style into kFillNothing.
void SelectFillPattern(FillPattern* pattern, const PhysicalPen* pen, const PhysicalBrush* brush,
                       const DRAWMODE* drawMode);

}  // namespace qnv
