// Writes tags into the tag plane of a dual-plane device: one byte for each pixel of the band. Coordinates are the
// caller's; the plane's origin is added to them.
#pragma once

#include <cstdint>

#include "raster/band_view.h"
#include "raster/blt_arguments.h"
#include "raster/paint_state.h"

namespace qnv {

// The tag plane as plain values: what painting it needs, and its memory.
struct TagPlane {
  PaintState paint;
  BandView band;  // one byte a pixel
};

// Tags the pixels that the transfer `a` paints. callersTag: the tag that the kind of call asks for, QNV_TAG_IMAGE for
// images and QNV_TAG_GRAPHICS otherwise; some operations write the graphics tag for both. False when the painted pixels
// cannot be determined.
bool TagTransferOn(const TagPlane& plane, uint8_t callersTag, const BltArguments& a);

// Sets the tags of a rectangle to `value`. A clip of four zeros does not limit.
void FillTagRect(const TagPlane& plane, uint8_t value, int32_t x, int32_t y, int32_t width, int32_t height,
                 const Rect& clip);

}  // namespace qnv
