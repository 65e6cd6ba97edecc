// Single pixels of the dual-plane device.
#include "device/dual_plane/dual_plane_device.h"
#include "device/dual_plane/tag_plane.h"
#include "device/dual_plane/tag_rules.h"

namespace qnv {

uint32_t DualPlaneDevice::Pixel(int32_t x, int32_t y, const PixelArguments& a) {
  if (a.clip == nullptr) return 0;
  if (!planeUniform_ && a.drawMode != nullptr) {
    const TagRule rule = TagRuleOfRop2(static_cast<uint16_t>(a.drawMode->Rop2 - 1));
    if (rule == TagRule::kAlways || (rule != TagRule::kNever && a.color != SkipColor(rule))) {
      FillTagRect(tagDevice_->Plane(), QNV_TAG_GRAPHICS, x, y, 1, 1, *a.clip);
    }
  }
  return colorDevice_->Pixel(x, y, a);
}

// Tags may reach pixels outside the clip: coordinates left of or above 0 widen it, and a clip of four zeros does not
// limit tags. So PolyPixel visits everything in the band.
PixelReach DualPlaneDevice::Reach(const Rect&) const { return {state_.bandRect, state_.bandRect, nullptr}; }

}  // namespace qnv
