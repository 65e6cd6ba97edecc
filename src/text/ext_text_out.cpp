#include "text/ext_text_out.h"

namespace qnv {

void FillOpaqueRect(Device& device, const Rect& rect, const DRAWMODE& drawMode) {
  const Rect visible{MaxOf(rect.left, 0), MaxOf(rect.top, 0), rect.right, rect.bottom};
  if (visible.left >= visible.right || visible.top >= visible.bottom) return;
  const LogicalBrush logical{BS_SOLID, drawMode.bkColor, 0, 0};
  PhysicalBrush brush;
  device.RealizeObject(OBJ_BRUSH, &logical, &brush);
  device.BitBlt(BltArguments{visible.left, visible.top, nullptr, 0, 0, visible.right - visible.left,
                             visible.bottom - visible.top, PATCOPY, &brush, &drawMode, &visible});
}

TextClip PrepareTextClip(Device& device, const TextArguments& a) {
  TextClip clip;
  if (a.clip != nullptr) clip = {true, *a.clip};
  if (a.opaqueRect == nullptr) return clip;
  Rect opaque = *a.opaqueRect;
  if ((a.options & ETO_CLIPPED) != 0) {
    if (clip.has) {
      RectIntersect(clip.rect, clip.rect, opaque);
    } else {
      clip = {true, opaque};
    }
  }
  if ((a.options & ETO_OPAQUE) != 0) {
    if (clip.has) RectIntersect(opaque, opaque, clip.rect);
    FillOpaqueRect(device, opaque, *a.drawMode);
  }
  return clip;
}

}  // namespace qnv
