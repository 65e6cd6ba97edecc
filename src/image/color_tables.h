// Color tables and color masks of a bitmap, prepared once per call in the form that the converters store.
#pragma once

#include <cstdint>

#include "image/dib.h"
#include "raster/rows/pixel_rows.h"

namespace qnv {

// The three forms of a converted pixel.
enum class PixelTarget : uint8_t {
  kBand24,    // blue, green, red: rows that go into the band as they are
  kSource24,  // red, green, blue: rows that are handed to a bit-block transfer
  kGray8,     // one byte, both uses
};

constexpr std::size_t BytesOf(PixelTarget target) { return target == PixelTarget::kGray8 ? 1 : 3; }

// Entries in target form: the low byte is the first in memory, gray in the low byte alone. A table shorter
// than the depth allows is filled up with white.
struct ColorTable {
  uint32_t entries[256];
};

// Requires: dib has a palette. Reads min(biClrUsed, 2^depth) entries, all 2^depth for a biClrUsed of 0.
void MakeColorTable(const Dib& dib, PixelTarget target, ColorTable* table);

// The masks of a 16-bit source in target order (gray: as for the band): those of the header with
// BI_BITFIELDS, else five bits each.
PixelMasks MakePixelMasks(const Dib& dib, PixelTarget target);

}  // namespace qnv
