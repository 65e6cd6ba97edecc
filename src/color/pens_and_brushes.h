// Logical pens and brushes into the records that drawing calls take.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv {

inline constexpr uint32_t kRealised = 0x8000;
inline constexpr uint32_t kRealisedSolid = 0x8002;

inline constexpr uint32_t kForeground = 0xFF000000;  // top byte of a brush cell

// Writes *pen from *logical with the color already physical. Returns kRealised.
uint32_t RealizePen(const LogicalPen& logical, uint32_t physicalColor, PhysicalPen* pen);

// How a device class realises brushes.
struct BrushRules {
  bool gray;           // solid and hatch colors become gray levels
  uint8_t hatchScale;  // replication of hatch and pattern cells, both directions
};

// Writes *brush from *logical: the first 12 bytes always, the cells for hatches and patterns. Returns
// kRealisedSolid, kRealised, or 0: a style above 3, or a pattern without bitmap or bits. A hatch outside
// 0..5 leaves the cells untouched.
uint32_t RealizeBrush(const LogicalBrush& logical, const BrushRules& rules, PhysicalBrush* brush);

// Scale of hatches at a resolution, so that their lines stay visible on fine devices.
constexpr uint8_t HatchScaleAt(uint16_t resolution) { return static_cast<uint8_t>(resolution / 720 + 1); }

}  // namespace qnv
