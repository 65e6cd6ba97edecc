// The rectangle that a bit-block transfer paints and the source pixels that belong to it: how destination, clip, source
// and band limit each other, for all operations. Everything is in caller pixels with the origin added, the rectangle of
// the band included.
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

// The clip for a destination whose top left corner, origin added, is (left, top). Intended: when the destination begins
// left of or above 0, that edge of the clip moves outwards by as much.
constexpr Rect WidenedClip(const Rect& clip, int32_t left, int32_t top) {
  Rect widened = clip;
  if (left < 0) widened.left = WrapAdd(widened.left, left);
  if (top < 0) widened.top = WrapAdd(widened.top, top);
  return widened;
}

// Whether no pixel of the destination lies in the band, so that there is no area whatever the operation is. False does
// not mean that there is one.
bool LiesOutside(const BltArguments& a, Origin origin, const Rect& band);

// The area of an operation that reads no source. clip: with the origin added; four zeros do not limit. False when
// nothing is to be painted.
bool FillArea(const BltArguments& a, Origin origin, const Rect& clip, const Rect& band, TransferArea* area);

// The area of an operation that reads a source. Intended: where the clip cuts off the left or the top of the
// destination, the source still begins at (srcX, srcY); but the band does cut the source along with the destination.
bool CopyArea(const BltArguments& a, Origin origin, const Rect& clip, const Rect& band, TransferArea* area);

}  // namespace qnv
