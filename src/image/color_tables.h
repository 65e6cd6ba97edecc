// Color tables and color masks of a bitmap, prepared once per call in the form that converted pixels are stored in.
#pragma once

#include <cstdint>

#include "image/dib.h"
#include "raster/rows/pixel_rows.h"

namespace qnv {

// The three forms of a converted pixel, bytes in memory order.
enum class PixelTarget : uint8_t {
  kBand24,    // blue, green, red: the order of a 24-bit band
  kSource24,  // red, green, blue: the order of sources of bit-block transfers
  kGray8,     // one gray byte, for 8-bit bands
};

constexpr std::size_t BytesOf(PixelTarget target) { return target == PixelTarget::kGray8 ? 1 : 3; }

// The colors of palette indices in target form: the low byte is the first in memory; a gray level is in the low byte. A
// table with fewer colors than the depth allows is filled up with white.
struct ColorTable {
  uint32_t entries[256];
};

// Reads the color table of a bitmap: min(biClrUsed, 2^depth) entries, or 2^depth when biClrUsed is 0. Requires: a
// bitmap with a palette.
void MakeColorTable(const Dib& dib, PixelTarget target, ColorTable* table);

// The masks of a 16-bit bitmap in the byte order of the target (for kGray8 that of kBand24): with BI_BITFIELDS those
// behind the header, else five bits for each component.
PixelMasks MakePixelMasks(const Dib& dib, PixelTarget target);

}  // namespace qnv
