// Which rectangle of the source covers the clipped destination, and where that rectangle lies on the band.
#pragma once

#include <cstdint>

#include "raster/rect.h"

namespace qnv {

// The caller's numbers: destination with the origin added, signed extents, source in stored rows.
struct StretchRequest {
  int32_t dstX, dstY, dstWidth, dstHeight;
  int32_t srcX, srcY, srcWidth, srcHeight;
};

struct SourceMapping {
  int32_t left, top, columns, rows;  // source rectangle, stored rows; columns, rows > 0
  // Destination of that rectangle, 16.16, relative to the band's top left. Negative extents mark a mirror.
  int32_t dstLeft, dstTop, dstWidth, dstHeight;
  bool mirrorX, mirrorY;
};

// clipped: the visible destination, never empty; band: the band's rectangle in the same pixels; sourceWidth,
// sourceHeight: of the whole bitmap. False when no source pixel is left.
bool MapSource(const StretchRequest& request, const Rect& clipped, const Rect& band, int32_t sourceWidth,
               int32_t sourceHeight, bool topDown, SourceMapping* mapping);

}  // namespace qnv
