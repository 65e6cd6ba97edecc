// Sources and brushes in two forms: the record that the library takes and the platform's object with the same pixels.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "support/source_image.h"
#include "windows/witness.h"

namespace qnv::test {

// Noise of the same pixels for both.
struct SourcePair {
  std::unique_ptr<SourceImage> library;
  std::unique_ptr<GdiSource> platform;
};

// Three bytes a pixel: red first for the library, blue first for the platform.
SourcePair ColorSourcePair(int32_t width, int32_t height, uint64_t seed);
SourcePair GraySourcePair(int32_t width, int32_t height, uint64_t seed);
// The platform's monochrome bitmap: 1 shows the background color, 0 the text color, as in the library.
SourcePair BitSourcePair(int32_t width, int32_t height, uint64_t seed);
// The source of a witness's own depth.
SourcePair DeepSourcePair(const Witness& witness, int32_t width, int32_t height, uint64_t seed);

struct BrushPair {
  std::string name;
  PhysicalBrush library;
  GdiObject<HBRUSH> platform;
};

using BitRows = std::array<uint8_t, 8>;

BrushPair SolidPair(const Witness& witness, COLORREF color);
// 8 x 8 cells of noise, 24 bits each.
BrushPair ColorPatternPair(const Witness& witness, uint64_t seed);
// 8 x 8 gray levels of noise.
BrushPair GrayPatternPair(const Witness& witness, uint64_t seed);
// The pattern of a witness's own depth.
BrushPair DeepPatternPair(const Witness& witness, uint64_t seed);
// A one-bit pattern: 1 shows the background color, 0 the text color.
BrushPair BitPatternPair(const Witness& witness, const BitRows& rows);

// The library's hatch beside a one-bit pattern of the platform that holds the hatch's published rows. The platform
// shows it in the text color on the background color: `color` has to be the text color, the mode opaque.
BrushPair HatchPair(const Witness& witness, int16_t hatch, COLORREF color);

// Rows of the library's hatches: a 0 bit is a line pixel.
const BitRows& HatchRows(int16_t hatch);

// A monochrome bitmap of the platform with these rows.
HBITMAP BitTile(const BitRows& rows);

}  // namespace qnv::test
