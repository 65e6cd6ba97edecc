// Pictures for demonstrations and tests, computed without input and the same on every machine.
#pragma once

#include "qnvtool/base/file_bytes.h"

namespace qnv::tool {

// A mountain lake at sunset as a 24-bit BMP file: soft gradients, noise and detail like a photograph's.
Bytes MakeSamplePhoto(int width, int height);

// A relief map with contour lines as an RLE8 BMP file of 32 colors.
Bytes MakeSampleMap(int width, int height);

}  // namespace qnv::tool
