// Brushes for the tag plane, made from the brush of a call: they carry a tag instead of a color.
#pragma once

#include <cstdint>

#include "color/pens_and_brushes.h"
#include "qnvdrv10.h"

namespace qnv {

constexpr uint32_t TagColor(uint8_t tag) { return tag * 0x010101u; }

// A brush that paints the tag wherever `brush` paints at all (null: everywhere): hatches on a transparent
// background keep their gaps. False for a style above 3.
bool MakeTagBrush(const PhysicalBrush* brush, const DRAWMODE& drawMode, uint8_t tag, PhysicalBrush* result);

// A brush of style `style` with 64 cells chosen by paints(cell): `painting` where true, `other` elsewhere.
// Hatch and scale are the brush's own, so that both tile alike.
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
