// Makes brushes for the tag plane from the brushes of drawing calls.
#include "device/dual_plane/tag_brushes.h"

#include "color/color_forms.h"

namespace qnv {

bool MakeTagBrush(const PhysicalBrush* brush, const DRAWMODE& drawMode, uint8_t tag, PhysicalBrush* result) {
  const uint16_t style = brush != nullptr ? brush->style : uint16_t{BS_SOLID};
  *result = PhysicalBrush{};
  result->patternDepth = 8;
  result->colour = TagColor(tag);
  if (brush != nullptr) {
    result->hatch = brush->hatch;
    result->hatchScale[0] = brush->hatchScale[0];
    result->hatchScale[1] = brush->hatchScale[1];
  }
  switch (style) {
    case BS_SOLID:
    case BS_PATTERN: result->style = BS_SOLID; return true;
    case BS_HOLLOW: result->style = BS_HOLLOW; return true;
    case BS_HATCHED:
      result->style = drawMode.bkMode == OPAQUE ? BS_SOLID : BS_HATCHED;
      for (int i = 0; i < 64; ++i) result->cells[i] = (brush->cells[i] & kForeground) | TagColor(tag);
      return true;
    default: return false;
  }
}

}  // namespace qnv
