// Writes tags into the tag plane. Coordinates are the caller's; the plane's origin is added to them.
#pragma once

#include <cstdint>

#include "raster/band_view.h"
#include "raster/blt_arguments.h"
#include "raster/paint_state.h"

namespace qnv {

struct TagPlane {
  PaintState paint;
  BandView band;
};

// Tags what a transfer paints, images with the image tag. False when that cannot be told.
bool TagTransferOn(const TagPlane& plane, uint8_t callersTag, const BltArguments& a);

// The byte value over the rectangle; an all-zero clip is no clip.
void FillTagRect(const TagPlane& plane, uint8_t value, int32_t x, int32_t y, int32_t width, int32_t height,
                 const Rect& clip);

}  // namespace qnv
