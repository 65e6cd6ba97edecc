#include "raster/rop3.h"

#include <gtest/gtest.h>

#include "raster/transfer_operations.h"

namespace qnv {
namespace {

bool TruthBit(int index, int p, int s, int d) { return (index >> (4 * p + 2 * s + d) & 1) != 0; }

TEST(Rop3, EvaluatesItsTruthTable) {
  for (int index = 0; index < 256; ++index) {
    EXPECT_EQ(EvaluateRop3<uint8_t>(static_cast<uint8_t>(index), 0xF0, 0xCC, 0xAA), index);
  }
}

TEST(Rop3, KnowsItsInputs) {
  for (int index = 0; index < 256; ++index) {
    bool pattern = false, source = false, destination = false;
    for (int bits = 0; bits < 4; ++bits) {
      const int x = bits & 1, y = bits >> 1;
      pattern |= TruthBit(index, 0, x, y) != TruthBit(index, 1, x, y);
      source |= TruthBit(index, x, 0, y) != TruthBit(index, x, 1, y);
      destination |= TruthBit(index, x, y, 0) != TruthBit(index, x, y, 1);
    }
    const uint8_t code = static_cast<uint8_t>(index);
    EXPECT_EQ(RopUsesPattern(code), pattern) << index;
    EXPECT_EQ(RopUsesSource(code), source) << index;
    EXPECT_EQ(RopUsesDestination(code), destination) << index;
  }
}

TEST(Rop3, RecipesEqualTheirTruthTables) {
  for (int index = 0; index < 256; ++index) {
    const RopRecipe& recipe = kRopRecipes[static_cast<std::size_t>(index)];
    for (int bits = 0; bits < 8; ++bits) {
      const int p = bits >> 2 & 1, s = bits >> 1 & 1, d = bits & 1;
      const auto at = [p](OpenMask mask) { return ((p != 0 ? 0xFF : 0) & mask.open) ^ mask.fixed; };
      const int d8 = d != 0 ? 0xFF : 0, s8 = s != 0 ? 0xFF : 0;
      const int result = (d8 & ((s8 & at(recipe.and1)) ^ at(recipe.and2))) ^ ((s8 & at(recipe.xor1)) ^ at(recipe.xor2));
      EXPECT_EQ(result, TruthBit(index, p, s, d) ? 0xFF : 0) << index << " p" << p << " s" << s << " d" << d;
    }
  }
}

TEST(Rop2, IsATernaryOperationWithoutSource) {
  for (uint16_t code = 1; code <= 16; ++code) {
    const uint8_t index = IndexOfRop2(code);
    EXPECT_FALSE(RopUsesSource(index));
    const int truth = code - 1;
    for (int p = 0; p < 2; ++p) {
      for (int d = 0; d < 2; ++d) {
        EXPECT_EQ(TruthBit(index, p, 0, d), (truth >> (2 * p + d) & 1) != 0) << code;
      }
    }
  }
  EXPECT_EQ(IndexOfRop2(13), kPatCopy);
  EXPECT_EQ(IndexOfRop2(7), kPatInvert);
  EXPECT_EQ(IndexOfRop2(6), 0x55);
  EXPECT_EQ(IndexOfRop2(11), kDestination);
}

TEST(Rop3, CombinesThePatternByteByByte) {
  for (int index = 0; index < 256; ++index) {
    const uint8_t code = static_cast<uint8_t>(index);
    if (RopUsesSource(code)) continue;
    EXPECT_EQ(CombineWithPattern(code, 0x12F0A55A, 0x9ACC33F1), EvaluateRop3<uint32_t>(code, 0x12F0A55A, 0, 0x9ACC33F1))
        << index;
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
