// The rectangle that a bit-block transfer paints, and the source pixel where it begins.
#include "raster/transfer_geometry.h"

namespace qnv {
namespace {

// The destination with the origin added.
Rect Destination(const BltArguments& a, Origin origin) {
  const int32_t x = WrapAdd(a.destX, origin.x);
  const int32_t y = WrapAdd(a.destY, origin.y);
  return {x, y, WrapAdd(x, a.width), WrapAdd(y, a.height)};
}

}  // namespace

bool LiesOutside(const BltArguments& a, Origin origin, const Rect& band) {
  // Clip and source only make the destination smaller.
  const int32_t top = WrapAdd(a.destY, origin.y);
  if (top >= band.bottom || WrapAdd(top, a.height) <= band.top) return true;
  const int32_t left = WrapAdd(a.destX, origin.x);
  return left >= band.right || WrapAdd(left, a.width) <= band.left;
}

bool FillArea(const BltArguments& a, Origin origin, const Rect& clip, const Rect& band, TransferArea* area) {
  Rect dest = Destination(a, origin);
  if (!IsAllZero(clip) && !RectIntersect(dest, dest, clip)) return false;
  area->srcX = area->srcY = 0;
  return RectIntersect(area->rect, dest, band);
}

bool CopyArea(const BltArguments& a, Origin origin, const Rect& clip, const Rect& band, TransferArea* area) {
  Rect dest = Destination(a, origin);
  if (!IsAllZero(clip) && !RectIntersect(dest, dest, WidenedClip(clip, dest.left, dest.top))) return false;
  Rect source{a.srcX, a.srcY, WrapAdd(a.srcX, WrapSubtract(dest.right, dest.left)),
              WrapAdd(a.srcY, WrapSubtract(dest.bottom, dest.top))};
  // The source rectangle is as large as what clip and destination leave, but begins where the caller said.
  if (!RectIntersect(source, source, Rect{0, 0, a.source->bmWidth, a.source->bmHeight})) return false;
  const int32_t toDestX = WrapSubtract(dest.left, a.srcX);
  const int32_t toDestY = WrapSubtract(dest.top, a.srcY);
  if (!RectIntersect(area->rect, Shifted(source, toDestX, toDestY), band)) return false;
  area->srcX = WrapSubtract(area->rect.left, toDestX);
  area->srcY = WrapSubtract(area->rect.top, toDestY);
  return true;
}

}  // namespace qnv
