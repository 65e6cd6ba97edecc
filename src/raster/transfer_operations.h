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

// Where an operation that reads a pattern takes it from. It makes a difference when a null draw mode has kept the
// pattern of an earlier call.
enum class PatternOrigin : uint8_t {
  kPrepared,           // the prepared pattern, with any brush or none
  kBrush,              // the color of a solid brush, else the prepared pattern; without a brush nothing is painted
  kBrushUnlessHollow,  // the same, but nothing is painted with a hollow brush
};

// upperHalf: bits 16..31 of the raster code. All of them are compared, so a code with anything in bits 24..31 is none
// of the named operations.
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
