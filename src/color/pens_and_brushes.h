// Realising pens and brushes: from the logical record of the host to the physical record that drawing calls take.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

// What QNVRealizeObject returns.
inline constexpr uint32_t kRealised = 0x8000;
inline constexpr uint32_t kRealisedSolid = 0x8002;

// The top byte of a brush cell that is foreground: a line of a hatch, or any cell of a color pattern.
inline constexpr uint32_t kForeground = 0xFF000000;

// Writes *pen from `logical`; physicalColor is its color, converted by the caller. Returns kRealised.
uint32_t RealizePen(const LogicalPen& logical, uint32_t physicalColor, PhysicalPen* pen);

// How a device class realises brushes.
struct BrushRules {
  bool gray;           // solid and hatch colors become gray levels
  uint8_t hatchScale;  // replication of hatch and pattern cells, both directions
};

// Writes *brush from `logical`: the first 12 bytes always, the cells only for hatches and patterns. Returns
// kRealisedSolid or kRealised, or 0 for a style above 3 and for a pattern without bitmap or bits. A hatch number
// outside 0..5 leaves the cells as they were.
uint32_t RealizeBrush(const LogicalBrush& logical, const BrushRules& rules, PhysicalBrush* brush);

// How many pixels a hatch cell covers in each direction at a resolution in dots per inch, so that lines stay visible on
// fine devices.
constexpr uint8_t HatchScaleAt(uint16_t resolution) { return static_cast<uint8_t>(resolution / 720 + 1); }

}  // namespace qnv
