// What a ternary raster operation makes of one pixel, one bit at a time, straight from the truth table that its index
// is. Geometry is not modelled: tests say themselves which area is painted and which source pixel comes first.
#pragma once

#include <cstdint>
#include <optional>

#include "reference/arithmetic.h"
#include "support/plane_image.h"
#include "support/source_image.h"

namespace qnv::test {

// Bit 4p + 2s + d of the index, for each of the eight bits.
inline uint8_t Rop3Byte(uint8_t index, uint8_t pattern, uint8_t source, uint8_t dest) {
  return static_cast<uint8_t>(reference::EvaluateRop3(index, pattern, source, dest));
}

// The index of a binary operation, whose pen is the ternary operation's source. Codes beyond the sixteen wrap.
constexpr uint8_t IndexOfRop2(int code) { return static_cast<uint8_t>(((code - 1) & 15) * 0x11); }

using reference::IndexUsesPattern;
using reference::IndexUsesSource;

// True for the three operations that take even a solid color from the prepared pattern.
bool TakesSolidFromPattern(uint32_t rop);

// The bytes of a color as a 24-bit band holds them: bits 16..23 first.
PixelBytes BandBytesOf(uint32_t color);

// The color of the prepared pattern at a cell, red in the low byte. Null brush: black.
uint32_t PatternColor(const PhysicalBrush* brush, const DRAWMODE& drawMode, int32_t column, int32_t row);

// The same of a figure's fill: none where a hatch that is not opaque has a gap.
std::optional<uint32_t> FillColor(const PhysicalBrush& brush, const DRAWMODE& drawMode, int32_t column, int32_t row);

// Fills `area` (columns and rows of the plane) of `expected` as spans do: by the mode's binary operation, and without
// the cells that paint nothing. Cell (phaseX, phaseY) of the pattern belongs to the plane's first pixel.
void FillExpected(PlaneImage* expected, const BandRect& area, const PhysicalBrush& brush, const DRAWMODE& drawMode,
                  int32_t phaseX = 0, int32_t phaseY = 0);

struct TransferInputs {
  uint32_t rop = 0;
  const SourceImage* source = nullptr;
  const PhysicalBrush* brush = nullptr;
  const DRAWMODE* drawMode = nullptr;
};

// Paints `area` (columns and rows of the plane) of `expected`; source pixel (srcX, srcY) belongs to its first pixel.
void PaintExpected(PlaneImage* expected, const BandRect& area, int32_t srcX, int32_t srcY,
                   const TransferInputs& inputs);

}  // namespace qnv::test
