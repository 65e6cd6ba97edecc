// Bit-block transfers of the dual-plane device: the tags of the painted pixels, then the transfer itself.
#include "device/dual_plane/dual_plane_device.h"

namespace qnv {

uint16_t DualPlaneDevice::BitBlt(const BltArguments& a) {
  if (a.clip == nullptr) return 1;
  return TagTransfer(a) ? colorDevice_->BitBlt(a) : uint16_t{0};
}

bool DualPlaneDevice::TagTransfer(const BltArguments& a) {
  return planeUniform_ || TagTransferOn(tagDevice_->Plane(), QNV_TAG_GRAPHICS, a);
}

}  // namespace qnv
