// The weights of red, green and blue in a gray level, in hundredths. The weighted sum of the three bytes, divided by
// kGrayDivisor with the remainder dropped, is the gray level, 0..255.
#pragma once

#include <cstdint>

namespace qnv {

constexpr uint32_t kRedWeight = 30;
constexpr uint32_t kGreenWeight = 59;
constexpr uint32_t kBlueWeight = 11;
constexpr uint32_t kGrayDivisor = 100;

// The weights of a pixel's three bytes as one 32-bit word, for vector multiplication. Band pixels are blue, green, red.
// Intended: RegrayRow24 weights the first byte as if it were red.
constexpr uint32_t kBandWeights = kBlueWeight | kGreenWeight << 8 | kRedWeight << 16;
constexpr uint32_t kRegrayWeights = kRedWeight | kGreenWeight << 8 | kBlueWeight << 16;

}  // namespace qnv
