// Which pixels a span list tags.
#include "reference/dual_plane_model.h"

namespace qnv::reference {
namespace {

struct Brush {
  uint16_t style;
  uint32_t color;
  const PhysicalBrush* record;  // null for a pen's color and for no brush at all
};

// Pens paint as solid brushes; without a pen and a brush the fill is black.
Brush FillOf(const OutputArgs& args) {
  if (args.pen != nullptr) return {BS_SOLID, args.pen->colour, nullptr};
  if (args.brush == nullptr) return {BS_SOLID, 0, nullptr};
  return {args.brush->style, args.brush->colour, args.brush};
}

// Does this cell of a hatched or pattern brush put ink on paper of this color?
bool CellPutsInk(const PhysicalBrush& brush, uint32_t cell, const DRAWMODE& mode, uint32_t paper) {
  if (brush.style == BS_PATTERN) {
    if (brush.patternDepth != 1) return (cell & 0xFFFFFF) != paper;
    return ((cell & 0xFFFFFF) == kWhite ? mode.bkColor : mode.TextColor) != paper;
  }
  if ((cell >> 24) != 0) return (cell & 0xFFFFFF) != paper;
  return mode.bkMode == OPAQUE && mode.bkColor != paper;
}

}  // namespace

uint32_t DualPlaneModel::Output(const OutputArgs& args) {
  if (!uniform_ && !MarkOutput(args)) return 0;
  return color_.Output(args);
}

// False where the call must not reach the color plane.
bool DualPlaneModel::MarkOutput(const OutputArgs& args) {
  const uint32_t style = args.style & 0xFFFF;
  if (IsMarkerStyle(style)) return true;
  if (!IsSpanStyle(style)) return false;
  if (args.pen != nullptr && args.pen->style == PS_NULL) return true;
  if (args.drawMode == nullptr) return true;  // nothing says what the call does to the paper
  const DRAWMODE& mode = *args.drawMode;
  const Brush brush = FillOf(args);
  // Of the operation's code only the low byte counts.
  const Marking marking = MarkingOf(static_cast<uint8_t>(mode.Rop2 - 1));
  if (marking == Marking::kNever) return true;
  if (brush.style > BS_PATTERN) return false;
  if (brush.style == BS_HOLLOW) return true;

  FillPattern ink;
  ink.rop2 = R2_COPYPEN;
  ink.SetSolid(QNV_TAG_GRAPHICS);
  const auto markWhere = [&](const auto& paints) {
    ink.style = kMasked;
    ink.SetCells(*brush.record, [&](uint32_t cell) -> FillPattern::MaskedColor {
      return {QNV_TAG_GRAPHICS, paints(cell)};
    });
  };
  if (marking == Marking::kAlways) {
    if (brush.style == BS_HATCHED && mode.bkMode != OPAQUE) markWhere([](uint32_t cell) { return (cell >> 24) != 0; });
  } else {
    const uint32_t paper = marking == Marking::kUnlessWhite ? kWhite : kBlack;
    if (brush.style == BS_SOLID && brush.color == paper) return true;
    if (brush.style == BS_HATCHED && brush.color == paper && mode.bkColor == paper) return true;
    if (brush.style != BS_SOLID) {
      markWhere([&](uint32_t cell) { return CellPutsInk(*brush.record, cell, mode, paper); });
    }
  }
  if (args.points == nullptr) return true;
  if (args.clip == nullptr) return false;
  tags_.PaintSpans(ink, DecodeSpans(style, args.count, args.points), ToRect(*args.clip));
  return true;
}

}  // namespace qnv::reference
