// Ternary raster operations: boolean functions of pattern P, source S and destination D (the band). An operation is its
// index, a truth table of eight bits: bit 4P + 2S + D is the result for one bit of each input. Bits 16..23 of the
// raster codes that hosts pass hold the index.
#pragma once

#include <array>
#include <cstdint>

namespace qnv {

constexpr uint8_t RopIndex(uint32_t rop) { return static_cast<uint8_t>(rop >> 16); }

// Whether the result depends on an input: whether the two halves of the truth table for it differ.
constexpr bool RopUsesPattern(uint8_t index) { return (index >> 4) != (index & 0x0F); }
constexpr bool RopUsesSource(uint8_t index) { return (index & 0x33) != (index >> 2 & 0x33); }
constexpr bool RopUsesDestination(uint8_t index) { return (index & 0x55) != (index >> 1 & 0x55); }

// Applies an operation to every bit of three words.
template <class Word>
constexpr Word EvaluateRop3(uint8_t index, Word pattern, Word source, Word destination) {
  Word result = 0;
  for (int k = 0; k < 8; ++k) {
    if ((index >> k & 1) == 0) continue;
    const Word p = (k & 4) != 0 ? pattern : static_cast<Word>(~pattern);
    const Word s = (k & 2) != 0 ? source : static_cast<Word>(~source);
    const Word d = (k & 1) != 0 ? destination : static_cast<Word>(~destination);
    result = static_cast<Word>(result | (p & s & d));
  }
  return result;
}

// The index of an operation that is given as a formula. Bit i of the three bytes holds the inputs of bit i of an index,
// so the result of the formula is the truth table.
template <class Formula>
constexpr uint8_t IndexOf(Formula formula) {
  return static_cast<uint8_t>(formula(0xAA, 0xCC, 0xF0));
}

// The ternary index of a binary raster operation (R2_...) between pattern and destination. Only the low four bits of
// code - 1 are used.
constexpr uint8_t IndexOfRop2(uint16_t code) {
  const uint32_t t = static_cast<uint32_t>(code) - 1;
  return static_cast<uint8_t>((t & 1) * 0x05 | (t >> 1 & 1) * 0x0A | (t >> 2 & 1) * 0x50 | (t >> 3 & 1) * 0xA0);
}

// A mask that depends on the pattern: (P & open) ^ fixed.
struct OpenMask {
  uint8_t open;
  uint8_t fixed;
};

// Every operation can be written D' = (D & ((S & and1) ^ and2)) ^ ((S & xor1) ^ xor2) with four masks that depend on
// the pattern alone. Row kernels compute this formula, so that they know masks but no operations.
struct RopRecipe {
  OpenMask and1, and2, xor1, xor2;
};

// Solves the formula for the masks, once for P = 0 and once for P = 1: f(s, d) is the result for S = s and D = d.
constexpr RopRecipe MakeRecipe(uint8_t index) {
  uint8_t masks[2][4] = {};
  for (int p = 0; p < 2; ++p) {
    const auto f = [&](uint8_t s, uint8_t d) { return EvaluateRop3<uint8_t>(index, p != 0 ? 0xFF : 0, s, d); };
    const uint8_t f00 = f(0, 0), f01 = f(0, 0xFF), f10 = f(0xFF, 0), f11 = f(0xFF, 0xFF);
    masks[p][0] = static_cast<uint8_t>(f00 ^ f01 ^ f10 ^ f11);
    masks[p][1] = static_cast<uint8_t>(f00 ^ f01);
    masks[p][2] = static_cast<uint8_t>(f00 ^ f10);
    masks[p][3] = f00;
  }
  const auto open = [&](int i) { return OpenMask{static_cast<uint8_t>(masks[0][i] ^ masks[1][i]), masks[0][i]}; };
  return {open(0), open(1), open(2), open(3)};
}

inline constexpr std::array<RopRecipe, 256> kRopRecipes = [] {
  std::array<RopRecipe, 256> recipes{};
  for (int index = 0; index < 256; ++index)
    recipes[static_cast<std::size_t>(index)] = MakeRecipe(static_cast<uint8_t>(index));
  return recipes;
}();

// The same formula for the bytes of one packed pixel. Requires: an operation that does not read the source.
constexpr uint32_t CombineWithPattern(uint8_t index, uint32_t pattern, uint32_t destination) {
  constexpr uint32_t kEachByte = 0x01010101;
  const auto completed = [pattern](OpenMask mask) {
    return (pattern & mask.open * kEachByte) ^ mask.fixed * kEachByte;
  };
  const RopRecipe& recipe = kRopRecipes[index];
  return (destination & completed(recipe.and2)) ^ completed(recipe.xor2);
}

}  // namespace qnv
