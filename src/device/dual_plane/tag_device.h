// The tag plane as a device: an 8-bit band that the code of plain devices paints.
#pragma once

#include "device/dual_plane/tag_plane.h"
#include "device/plain/raster_device.h"

namespace qnv {

// Adds access to the plane for tags that no drawing call writes.
class TagDevice : public RasterDevice8 {
 public:
  using RasterDevice8::RasterDevice8;

  TagPlane Plane() { return {state_.Paint(), Band()}; }
  // For calls whose coordinates have the origin added already.
  TagPlane PlaneWithoutOrigin() { return {state_.PaintWithoutOrigin(), Band()}; }
};

}  // namespace qnv
