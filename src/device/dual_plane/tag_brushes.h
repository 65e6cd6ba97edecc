// Brushes for the tag plane, made from the brush of a call. The tag stands where the color did, so that the code that
// paints an 8-bit band also writes tags.
#pragma once

#include <cstdint>

#include "color/pens_and_brushes.h"
#include "qnvdrv10.h"

namespace qnv {

// A tag as a color.
constexpr uint32_t TagColor(uint8_t tag) { return tag * 0x010101u; }

// Writes to *result a brush that paints the tag wherever `brush` paints anything; a null brush paints everywhere. The
// gaps of a hatch on a transparent background stay gaps. False for a style above 3.
bool MakeTagBrush(const PhysicalBrush* brush, const DRAWMODE& drawMode, uint8_t tag, PhysicalBrush* result);

// A brush with the given style and depth whose cells are `painting` where paints(cell of `brush`) is true and `other`
// elsewhere. Hatch number and scale are copied, so that both brushes have the same period.
template <class Paints>
PhysicalBrush MakeCellBrush(const PhysicalBrush& brush, uint16_t style, uint16_t depth, uint32_t painting,
                            uint32_t other, Paints paints) {
  PhysicalBrush result{};
  result.style = style;
  result.hatch = brush.hatch;
  result.patternDepth = depth;
  result.hatchScale[0] = brush.hatchScale[0];
  result.hatchScale[1] = brush.hatchScale[1];
  for (int i = 0; i < 64; ++i) result.cells[i] = paints(brush.cells[i]) ? painting : other;
  return result;
}

}  // namespace qnv
