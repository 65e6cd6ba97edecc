// The 8-bit device that paints the tag plane with the ordinary code.
#pragma once

#include "device/dual_plane/tag_plane.h"
#include "device/plain/raster_device.h"

namespace qnv {

class TagDevice : public RasterDevice8 {
 public:
  using RasterDevice8::RasterDevice8;

  TagPlane Plane() { return {state_.Paint(), Band()}; }
  // For coordinates that hold the origin already.
  TagPlane PlaneWithoutOrigin() { return {state_.PaintWithoutOrigin(), Band()}; }
};

}  // namespace qnv
