// Where the library and GDI promise different results, by the names that docs/gdi-differences.md explains. A test that
// leaves a comparison out says which of these is the reason, and shows that the results do differ there.
#pragma once

#include <gtest/gtest.h>

#include "windows/witness.h"

namespace qnv::test {

struct Difference {
  const char* name;  // the first column of the table in the document
};

// Transfers.
inline constexpr Difference kClippedSource{"clipped source"};
inline constexpr Difference kTurnedExtents{"turned extents"};
inline constexpr Difference kZeroClip{"clip of zeros"};
inline constexpr Difference kTurnedClip{"turned clip"};
inline constexpr Difference kTransparentHatch{"transparent hatch in a transfer"};

// Brushes, pens and pixels.
inline constexpr Difference kPatternOrigin{"pattern origin"};
inline constexpr Difference kLargePattern{"large pattern"};
inline constexpr Difference kHatchShapes{"hatch shapes"};
inline constexpr Difference kHatchScale{"hatch scale"};
inline constexpr Difference kGrayOfColour{"gray of a colour"};
inline constexpr Difference kNoBrush{"no brush"};
inline constexpr Difference kStyledPen{"styled pen"};
inline constexpr Difference kPixelOrder{"order of a pixel read"};

// Images.
inline constexpr Difference kMirrorCorner{"corner of a mirrored image"};
inline constexpr Difference kShrinking{"shrinking"};
inline constexpr Difference kBrokenFactor{"enlarging by a broken factor"};
inline constexpr Difference kBeyondImage{"source beyond the image"};
inline constexpr Difference kShortTable{"short colour table"};
inline constexpr Difference kOneBitField{"field of one bit"};
inline constexpr Difference kWideMasks{"masks of 32 bits"};
inline constexpr Difference kCoreHeader{"core header"};
inline constexpr Difference kSkippedPixels{"pixels skipped by run-length data"};
inline constexpr Difference kRowWithoutEnd{"run-length row without an end"};
inline constexpr Difference kOverlongLiteral{"overlong literal"};
inline constexpr Difference kTopDownRuns{"run-length data top down"};
inline constexpr Difference kFirstScan{"first scan"};
inline constexpr Difference kExtendedCode{"extended raster code"};
inline constexpr Difference kTransferResult{"result of a call"};

// Of Wine alone.
inline constexpr Difference kPatternWithSource{"pattern beside a source"};
inline constexpr Difference kFiveBitMatching{"gray matched by five bits"};

inline constexpr Difference kDifferences[] = {
    kClippedSource, kTurnedExtents, kZeroClip,   kTurnedClip,   kTransparentHatch, kPatternOrigin,
    kLargePattern,  kHatchShapes,   kHatchScale, kGrayOfColour, kNoBrush,          kStyledPen,
    kPixelOrder,    kMirrorCorner,  kShrinking,  kBrokenFactor, kBeyondImage,      kShortTable,
    kOneBitField,   kWideMasks,     kCoreHeader, kSkippedPixels, kRowWithoutEnd,   kOverlongLiteral,
    kTopDownRuns,   kFirstScan,     kExtendedCode, kTransferResult, kPatternWithSource, kFiveBitMatching,
};

// Null where GDI is Windows' own.
const char* WineVersion();
inline bool RunsUnderWine() { return WineVersion() != nullptr; }

// The pictures of the witness differ, as they have to.
void ExpectDifference(const Difference& why, const Witness& witness);

}  // namespace qnv::test
