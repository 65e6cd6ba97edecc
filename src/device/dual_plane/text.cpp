// Text of the dual-plane device: the glyphs are painted into the tag plane too, with the graphics tag as their color.
#include "device/dual_plane/dual_plane_device.h"
#include "device/dual_plane/tag_brushes.h"
#include "device/dual_plane/tag_plane.h"

namespace qnv {

int32_t DualPlaneDevice::ExtTextOut(const TextArguments& a) { return TagText(a) ? colorDevice_->ExtTextOut(a) : 0; }

bool DualPlaneDevice::TagText(const TextArguments& a) {
  if (planeUniform_ || a.count < 0) return true;
  if (a.drawMode == nullptr || a.fontBase == nullptr || (a.string == nullptr && a.count != 0)) return false;
  if ((a.options & ETO_OPAQUE) != 0 && a.opaqueRect != nullptr) {
    Rect opaque = *a.opaqueRect;
    // Already cut to the clip, so the tags themselves are not clipped again.
    if (a.clip != nullptr) RectIntersect(opaque, opaque, *a.clip);
    FillTagRect(tagDevice_->Plane(), QNV_TAG_GRAPHICS, opaque.left, opaque.top, WrapSubtract(opaque.right, opaque.left),
                WrapSubtract(opaque.bottom, opaque.top), Rect{0, 0, 0, 0});
  }
  // Intended: the background of opaque character cells gets the tag 0.
  DRAWMODE mode = *a.drawMode;
  mode.bkColor = 0;
  mode.TextColor = TagColor(QNV_TAG_GRAPHICS);
  TextArguments tagging = a;
  tagging.drawMode = &mode;
  tagging.options = static_cast<uint16_t>(a.options & ~ETO_OPAQUE);
  return tagDevice_->ExtTextOut(tagging) != INT32_MIN;
}

}  // namespace qnv
