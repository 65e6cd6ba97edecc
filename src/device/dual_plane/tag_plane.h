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

// Tags the destination pixels of a transfer whose source pixel is not of the skip colour. False for a source
// that is neither one plane of 24 bits nor one of one bit. What cannot be read (a null source, a one-bit one
// without draw mode) is not painted and not tagged.
bool TagFromSource(const TagPlane& plane, uint8_t tag, const BltArguments& a, uint32_t skip);

// Tags the destination pixels whose brush cell is not of the skip colour. False for a style above 3. Nothing
// is tagged without a brush, or for a hatch or pattern without the draw mode that colours it.
bool TagFromBrush(const TagPlane& plane, uint8_t tag, const BltArguments& a, uint32_t skip);

}  // namespace qnv
