// Raster operations: truth tables, and where a pattern comes from.
#include "raster/rop3.h"

#include <gtest/gtest.h>

#include "raster/transfer_operations.h"

namespace qnv {
namespace {

bool TruthBit(int index, int p, int s, int d) { return (index >> (4 * p + 2 * s + d) & 1) != 0; }

TEST(Rop3, IndicesAreTruthTables) {
  for (int index = 0; index < 256; ++index) {
    SCOPED_TRACE(index);
    const uint8_t code = static_cast<uint8_t>(index);
    EXPECT_EQ(EvaluateRop3<uint8_t>(code, 0xF0, 0xCC, 0xAA), index);
    bool pattern = false, source = false, destination = false;
    for (int bits = 0; bits < 4; ++bits) {
      const int x = bits & 1, y = bits >> 1;
      pattern |= TruthBit(index, 0, x, y) != TruthBit(index, 1, x, y);
      source |= TruthBit(index, x, 0, y) != TruthBit(index, x, 1, y);
      destination |= TruthBit(index, x, y, 0) != TruthBit(index, x, y, 1);
    }
    EXPECT_EQ(RopUsesPattern(code), pattern);
    EXPECT_EQ(RopUsesSource(code), source);
    EXPECT_EQ(RopUsesDestination(code), destination);
    if (!source) {  // then a pixel's bytes are combined with the pattern's, all at once
      EXPECT_EQ(CombineWithPattern(code, 0x12F0A55A, 0x9ACC33F1),
                EvaluateRop3<uint32_t>(code, 0x12F0A55A, 0, 0x9ACC33F1));
    }
  }
}

TEST(PatternOrigins, CodesWithHighBitsAreNoneOfTheNamedOnes) {
  int prepared = 0, brush = 0;
  for (uint32_t upper = 0; upper < 0x10000; ++upper) {
    const PatternOrigin from = PatternOriginOf(upper);
    if (from == PatternOrigin::kBrushUnlessHollow) continue;
    ++(from == PatternOrigin::kPrepared ? prepared : brush);
    EXPECT_LT(upper, 0x100u);
  }
  EXPECT_EQ(prepared, 3);
  EXPECT_EQ(brush, 2);
}

}  // namespace
}  // namespace qnv
