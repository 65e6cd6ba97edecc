// The raster operations that the code treats by name, and where the ones that read a pattern take it from.
#pragma once

#include <cstdint>

#include "raster/rop3.h"

namespace qnv {

// Each index is computed from the operation's own formula.
inline constexpr uint8_t kWhiteness = IndexOf([](int, int, int) { return ~0; });
inline constexpr uint8_t kDestination = IndexOf([](int d, int, int) { return d; });
inline constexpr uint8_t kSrcCopy = IndexOf([](int, int s, int) { return s; });
inline constexpr uint8_t kPatInvert = IndexOf([](int d, int, int p) { return p ^ d; });
inline constexpr uint8_t kPatCopy = IndexOf([](int, int, int p) { return p; });
inline constexpr uint8_t kMergeCopy = IndexOf([](int, int s, int p) { return p & s; });
inline constexpr uint8_t kPatPaint = IndexOf([](int d, int s, int p) { return p | ~s | d; });
inline constexpr uint8_t kDSPDxax = IndexOf([](int d, int s, int p) { return ((p ^ d) & s) ^ d; });

static_assert(kDestination == 0xAA && kSrcCopy == 0xCC && kWhiteness == 0xFF && kPatInvert == 0x5A);
static_assert(kPatCopy == 0xF0 && kMergeCopy == 0xC0 && kPatPaint == 0xFB && kDSPDxax == 0xE2);

// Where an operation that reads a pattern takes it from. The difference shows when a null draw mode has kept the
// pattern of an earlier call.
enum class PatternOrigin : uint8_t {
  kPrepared,           // the prepared pattern, whatever the brush is
  kBrush,              // a solid brush's own color, else the prepared pattern; nothing without a brush
  kBrushUnlessHollow,  // the same, and nothing for a hollow brush
};

// upperHalf: bits 16..31 of the raster code, all of which are compared: a code with anything in bits 24..31 is none of
// the named ones.
constexpr PatternOrigin PatternOriginOf(uint32_t upperHalf) {
  switch (upperHalf) {
    case kMergeCopy:
    case kPatPaint:
    case kDSPDxax: return PatternOrigin::kPrepared;
    case kPatCopy:
    case kPatInvert: return PatternOrigin::kBrush;
    default: return PatternOrigin::kBrushUnlessHollow;
  }
}

}  // namespace qnv
