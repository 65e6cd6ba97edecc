// Maps the visible destination of an image back to the source: the smallest rectangle of source pixels that covers it,
// and where exactly that rectangle lies on the band.
#pragma once

#include <cstdint>

#include "raster/rect.h"

namespace qnv {

// What the caller asks for. dst: caller pixels, origin added. src: pixels of the bitmap, rows counted from the bottom
// of the picture. Extents are signed: different signs mirror.
struct StretchRequest {
  int32_t dstX, dstY, dstWidth, dstHeight;
  int32_t srcX, srcY, srcWidth, srcHeight;
};

// The result.
struct SourceMapping {
  // Source rectangle; top counts rows in the order of the storage. Not empty.
  int32_t left, top, columns, rows;
  // Destination of that rectangle in 16.16, counted from the top left of the band. A negative extent is mirrored.
  int32_t dstLeft, dstTop, dstWidth, dstHeight;
  bool mirrorX, mirrorY;
};

// clipped: the visible destination, not empty. band: the rectangle of the band. Both in caller pixels, origin added.
// sourceWidth, sourceHeight, topDown: of the bitmap. False when no source pixel is shown.
bool MapSource(const StretchRequest& request, const Rect& clipped, const Rect& band, int32_t sourceWidth,
               int32_t sourceHeight, bool topDown, SourceMapping* mapping);

}  // namespace qnv
