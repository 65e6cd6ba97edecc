#include "device/dual_plane_device.h"
#include "raster/rop3.h"
#include "raster/tag_plane.h"
#include "raster/tag_rules.h"

namespace qnv {

uint16_t DualPlaneDevice::BitBlt(const BltArguments& a) {
  if (a.clip == nullptr) return 1;
  if (TagBlt(a, 0) == 0) return 0;
  return colourDevice_->BitBlt(a);
}

uint16_t DualPlaneDevice::TagBlt(const BltArguments& a, uint16_t imageFlag) {
  const uint8_t callersTag = imageFlag == 0 ? QNV_TAG_GRAPHICS : QNV_TAG_IMAGE;
  if (imageFlag != 0) planeUniform_ = false;
  if (planeUniform_) return 1;
  const TransferTagRule rule = TagRuleOfRop3(RopIndex(a.rop));
  const uint8_t tag = rule.takesTag ? callersTag : uint8_t{QNV_TAG_GRAPHICS};
  switch (rule.action) {
    case TagAction::kNothing: return 1;
    case TagAction::kFill: FillTagRect(*tagDevice_, tag, a.destX, a.destY, a.width, a.height, *a.clip); return 1;
    case TagAction::kSource: return TagFromSource(*tagDevice_, tag, a, rule.skip);
    case TagAction::kBrush: return TagFromBrush(*tagDevice_, QNV_TAG_GRAPHICS, a, rule.skip);
    case TagAction::kBrushThenSource:
      return TagFromBrush(*tagDevice_, QNV_TAG_GRAPHICS, a, 0) && TagFromSource(*tagDevice_, tag, a, rule.skip);
  }
  return 0;
}

}  // namespace qnv
