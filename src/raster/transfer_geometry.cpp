#include "raster/transfer_geometry.h"

namespace qnv {
namespace {

Rect Destination(const BltArguments& a, int32_t originX, int32_t originY) {
  const int32_t x = WrapAdd(a.destX, originX);
  const int32_t y = WrapAdd(a.destY, originY);
  return {x, y, WrapAdd(x, a.width), WrapAdd(y, a.height)};
}

}  // namespace

bool FillArea(const BltArguments& a, int32_t originX, int32_t originY, const Rect& clip, const Rect& band,
              TransferArea* area) {
  Rect dest = Destination(a, originX, originY);
  if (!IsAllZero(clip) && !RectIntersect(dest, dest, clip)) return false;
  area->srcX = area->srcY = 0;
  return RectIntersect(area->rect, dest, band);
}

bool CopyArea(const BltArguments& a, int32_t originX, int32_t originY, const Rect& clip, const Rect& band,
              TransferArea* area) {
  Rect dest = Destination(a, originX, originY);
  if (!IsAllZero(clip)) {
    Rect widened = clip;
    if (dest.left < 0) widened.left = WrapAdd(widened.left, dest.left);
    if (dest.top < 0) widened.top = WrapAdd(widened.top, dest.top);
    if (!RectIntersect(dest, dest, widened)) return false;
  }
  Rect source{a.srcX, a.srcY, WrapAdd(a.srcX, WrapSubtract(dest.right, dest.left)),
              WrapAdd(a.srcY, WrapSubtract(dest.bottom, dest.top))};
  if (!RectIntersect(source, source, Rect{0, 0, a.source->bmWidth, a.source->bmHeight})) return false;
  const int32_t toDestX = WrapSubtract(dest.left, a.srcX);
  const int32_t toDestY = WrapSubtract(dest.top, a.srcY);
  if (!RectIntersect(area->rect, Shifted(source, toDestX, toDestY), band)) return false;
  area->srcX = WrapSubtract(area->rect.left, toDestX);
  area->srcY = WrapSubtract(area->rect.top, toDestY);
  return true;
}

}  // namespace qnv
