// Raster operations: truth tables, the masks that kernels work with, and where a pattern comes from.
#include "raster/rop3.h"

#include <gtest/gtest.h>

#include "raster/transfer_operations.h"

namespace qnv {
namespace {

bool TruthBit(int index, int p, int s, int d) { return (index >> (4 * p + 2 * s + d) & 1) != 0; }

int AllBits(int bit) { return bit != 0 ? 0xFF : 0; }

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

TEST(Rop3, RecipesEqualTheirTruthTables) {
  for (int index = 0; index < 256; ++index) {
    const RopRecipe& recipe = kRopRecipes[static_cast<std::size_t>(index)];
    for (int bits = 0; bits < 8; ++bits) {
      const int p = bits >> 2 & 1, s = bits >> 1 & 1, d = bits & 1;
      const auto at = [p](OpenMask mask) { return (AllBits(p) & mask.open) ^ mask.fixed; };
      const int s8 = AllBits(s);
      const int result =
          (AllBits(d) & ((s8 & at(recipe.and1)) ^ at(recipe.and2))) ^ ((s8 & at(recipe.xor1)) ^ at(recipe.xor2));
      EXPECT_EQ(result, AllBits(TruthBit(index, p, s, d))) << index << " p" << p << " s" << s << " d" << d;
    }
  }
}

TEST(Rop2, IsATernaryOperationWithoutSource) {
  for (uint16_t code = 1; code <= 16; ++code) {
    const uint8_t index = IndexOfRop2(code);
    EXPECT_FALSE(RopUsesSource(index)) << code;
    for (int bits = 0; bits < 4; ++bits) {
      EXPECT_EQ(TruthBit(index, bits >> 1, 0, bits & 1), ((code - 1) >> bits & 1) != 0) << code;
    }
  }
  EXPECT_EQ(IndexOfRop2(13), kPatCopy);
  EXPECT_EQ(IndexOfRop2(7), kPatInvert);
  EXPECT_EQ(IndexOfRop2(6), 0x55);
  EXPECT_EQ(IndexOfRop2(11), kDestination);
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
