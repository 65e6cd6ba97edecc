// Where the library and GDI promise different results, by the names that docs/gdi-differences.md explains. A test that
// leaves a comparison out says which of these is the reason, and shows that the results do differ there. A test
// compares this list with the document, a line at a time.
#pragma once

#include "windows/witness.h"

namespace qnv::test {

enum class Nature {
  kPromised,  // each side documents its own result
  kLeftOpen,  // GDI promises nothing: the results differ under Wine and may agree elsewhere
  kWine,      // GDI promises what the library does, Wine does something else
};

struct Difference {
  const char* name;  // the first column of the table in the document
  Nature nature;
};

// Transfers.
inline constexpr Difference kClippedSource{"clipped source", Nature::kPromised};
inline constexpr Difference kTurnedExtents{"turned extents", Nature::kLeftOpen};
inline constexpr Difference kZeroClip{"clip of zeros", Nature::kPromised};
inline constexpr Difference kTurnedClip{"turned clip", Nature::kLeftOpen};
inline constexpr Difference kTransparentHatch{"transparent hatch in a transfer", Nature::kPromised};

// Brushes, pens and pixels.
inline constexpr Difference kPatternOrigin{"pattern origin", Nature::kPromised};
inline constexpr Difference kLargePattern{"large pattern", Nature::kPromised};
inline constexpr Difference kHatchShapes{"hatch shapes", Nature::kLeftOpen};
inline constexpr Difference kHatchScale{"hatch scale", Nature::kPromised};
inline constexpr Difference kGrayOfColor{"gray of a color", Nature::kPromised};
inline constexpr Difference kNoBrush{"no brush", Nature::kPromised};
inline constexpr Difference kStyledPen{"styled pen", Nature::kPromised};
inline constexpr Difference kPixelOrder{"order of a pixel read", Nature::kPromised};

// Images.
inline constexpr Difference kMirrorCorner{"corner of a mirrored image", Nature::kLeftOpen};
inline constexpr Difference kShrinking{"shrinking", Nature::kLeftOpen};
inline constexpr Difference kBrokenFactor{"enlarging by a broken factor", Nature::kLeftOpen};
inline constexpr Difference kBeyondImage{"source beyond the image", Nature::kLeftOpen};
inline constexpr Difference kShortTable{"short color table", Nature::kLeftOpen};
inline constexpr Difference kOneBitField{"field of one bit", Nature::kLeftOpen};
inline constexpr Difference kWideMasks{"masks of 32 bits", Nature::kPromised};
inline constexpr Difference kCoreHeader{"core header", Nature::kPromised};
inline constexpr Difference kSkippedPixels{"pixels skipped by run-length data", Nature::kLeftOpen};
inline constexpr Difference kRowWithoutEnd{"run-length row without an end", Nature::kLeftOpen};
inline constexpr Difference kOverlongLiteral{"overlong literal", Nature::kLeftOpen};
inline constexpr Difference kTopDownRuns{"run-length data top down", Nature::kPromised};
inline constexpr Difference kFirstScan{"first scan", Nature::kPromised};
inline constexpr Difference kExtendedCode{"extended raster code", Nature::kPromised};
inline constexpr Difference kTransferResult{"result of a call", Nature::kPromised};

// Of Wine alone.
inline constexpr Difference kPatternWithSource{"pattern beside a source", Nature::kWine};
inline constexpr Difference kFiveBitMatching{"gray matched by five bits", Nature::kWine};

// False where GDI is Windows' own.
inline bool RunsUnderWine() { return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") != nullptr; }

// The pictures of the witness differ, as they have to; on Windows only where that is promised.
inline void ExpectDifference(const Difference& why, const Witness& witness) {
  if (why.nature != Nature::kPromised && !RunsUnderWine()) return;
  EXPECT_FALSE(witness.Same()) << "\"" << why.name << "\" makes no difference here";
}

}  // namespace qnv::test
