// Spans of the dual-plane device: the same list is painted into the tag plane with a brush that carries the graphics
// tag where the figure puts ink, then into the color band.
#include "device/dual_plane/dual_plane_device.h"
#include "device/dual_plane/tag_brushes.h"
#include "device/dual_plane/tag_rules.h"
#include "output/span_style.h"

namespace qnv {
namespace {

// A hatch whose lines are the cells of `brush` that put ink on the paper. The other cells are its gaps, which leave the
// tag plane alone. paper: the color that the operation paints without effect.
PhysicalBrush InkBrush(const PhysicalBrush& brush, const DRAWMODE& drawMode, uint32_t paper) {
  const bool backgroundInk = drawMode.bkColor != paper;
  const bool textInk = drawMode.TextColor != paper;
  const bool opaque = drawMode.bkMode == OPAQUE;
  return MakeCellBrush(brush, BS_HATCHED, 8, kForeground | TagColor(QNV_TAG_GRAPHICS), 0, [&](uint32_t cell) {
    const uint32_t color = cell & kColorBits;
    if (brush.style == BS_HATCHED && (cell & kForeground) == 0) return opaque && backgroundInk;
    if (brush.style == BS_PATTERN && brush.patternDepth == 1) return color == kWhite ? backgroundInk : textInk;
    return color != paper;
  });
}

// Whether a figure changes tags, and how.
enum class Marking : uint8_t { kNothing, kBrush, kRefused };

// The brush that tags a figure painted with `brush` under a rule; written to *result for Marking::kBrush only.
Marking MakeMarkingBrush(const PhysicalBrush& brush, const DRAWMODE& drawMode, TagRule rule, PhysicalBrush* result) {
  if (rule != TagRule::kAlways) {
    const uint32_t paper = SkipColor(rule);
    switch (brush.style) {
      case BS_SOLID:
        if (brush.colour == paper) return Marking::kNothing;
        break;
      case BS_HOLLOW: return Marking::kNothing;
      case BS_HATCHED:
        if (brush.colour == paper && drawMode.bkColor == paper) return Marking::kNothing;
        [[fallthrough]];
      case BS_PATTERN: *result = InkBrush(brush, drawMode, paper); return Marking::kBrush;
      default: return Marking::kRefused;
    }
  }
  return MakeTagBrush(&brush, drawMode, QNV_TAG_GRAPHICS, result) ? Marking::kBrush : Marking::kRefused;
}

}  // namespace

int16_t DualPlaneDevice::Output(const OutputArguments& a) {
  return TagOutput(a) ? colorDevice_->Output(a) : int16_t{0};
}

bool DualPlaneDevice::TagOutput(const OutputArguments& a) {
  if (planeUniform_) return true;
  const SpanStyle style = SpanStyleOf(a.style);
  if (style == SpanStyle::kBracket) return true;
  if (style == SpanStyle::kUnknown) return false;
  // Intended: only the tags follow the null pen; the band is painted with its color.
  if (a.pen != nullptr && a.pen->style == PS_NULL) return true;
  // Without a draw mode the operation is that of an earlier call, and the tags stay as they are.
  if (a.drawMode == nullptr) return true;
  const TagRule rule = TagRuleOfRop2(static_cast<uint8_t>(a.drawMode->Rop2 - 1));
  if (rule == TagRule::kNever) return true;

  PhysicalBrush solid{};  // of the pen; without pen and brush the figure is black
  if (a.pen != nullptr) solid.colour = a.pen->colour;
  const PhysicalBrush& brush = a.pen != nullptr || a.brush == nullptr ? solid : *a.brush;
  PhysicalBrush marking;
  switch (MakeMarkingBrush(brush, *a.drawMode, rule, &marking)) {
    case Marking::kNothing: return true;
    case Marking::kRefused: return false;
    case Marking::kBrush: break;
  }
  DRAWMODE mode = *a.drawMode;
  mode.Rop2 = R2_COPYPEN;
  mode.bkColor = TagColor(QNV_TAG_GRAPHICS);
  // A hatch whose gaps are tagged too has become a solid brush above. Gaps that are left must stay untouched.
  mode.bkMode = TRANSPARENT;
  return tagDevice_->Output(OutputArguments{a.style, a.count, a.points, nullptr, &marking, &mode, a.clip}) != 0;
}

}  // namespace qnv
