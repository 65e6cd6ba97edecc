// What EXIF data says about a picture.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qnvtool/input/orientation.h"

namespace qnv::tool {

struct Exif {
  Orientation orientation;
  // 0 where it says nothing.
  int xPixelsPerMetre = 0;
  int yPixelsPerMetre = 0;
};

// Reads the first directory of EXIF data: a TIFF header and what follows it. Anything that is damaged is left out.
Exif ReadExif(const uint8_t* bytes, std::size_t size);

// Pixels per metre of a resolution; 0 for one that makes no sense. unit: 2 inches, 3 centimetres.
int PixelsPerMetre(double resolution, int unit);

}  // namespace qnv::tool
