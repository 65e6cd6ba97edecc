// Where a bit-block transfer paints and what it reads there. One rule for all transfer operations, in the
// coordinates of the caller; the band's rectangle is given in the same units.
#pragma once

#include <cstdint>

#include "raster/blt_arguments.h"
#include "raster/paint_state.h"
#include "raster/rect.h"

namespace qnv {

struct TransferArea {
  Rect rect;           // to paint, never empty
  int32_t srcX, srcY;  // source pixel of (rect.left, rect.top); 0 when no source is read
};

// The clip that a destination with its top-left corner at (left, top), origin added, is cut by. Intended: a destination
// that begins left of or above 0 moves that edge of the clip outwards by as much.
constexpr Rect WidenedClip(const Rect& clip, int32_t left, int32_t top) {
  Rect widened = clip;
  if (left < 0) widened.left = WrapAdd(widened.left, left);
  if (top < 0) widened.top = WrapAdd(widened.top, top);
  return widened;
}

// The area of an operation that reads no source. clip: with the origin added; all zeros = none. False when nothing is
// to be painted.
bool FillArea(const BltArguments& a, Origin origin, const Rect& clip, const Rect& band, TransferArea* area);

// The same for operations that read a source. Intended: what the clip cuts off on the left or top does not shift the
// source, except for the part of a destination that lies left of or above 0.
bool CopyArea(const BltArguments& a, Origin origin, const Rect& clip, const Rect& band, TransferArea* area);

}  // namespace qnv
