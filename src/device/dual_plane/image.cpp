// Images of the dual-plane device: the plain device walks their rows and calls these to tag and to paint each one.
#include "device/dual_plane/dual_plane_device.h"

namespace qnv {

bool DualPlaneDevice::MarkImage(const BltArguments& a) {
  planeUniform_ = false;
  return TagTransferOn(tagDevice_->PlaneWithoutOrigin(), QNV_TAG_IMAGE, a);
}

void DualPlaneDevice::PaintImageRow(const BltArguments& row) { colorDevice_->PaintImageRow(row); }

}  // namespace qnv
