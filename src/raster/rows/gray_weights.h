// How much the components of a color weigh in its gray level, in hundredths. The weighted sum of three bytes divided by
// kGrayDivisor, remainder dropped, is the gray level: 0..255.
#pragma once

#include <cstdint>

namespace qnv {

constexpr uint32_t kRedWeight = 30;
constexpr uint32_t kGreenWeight = 59;
constexpr uint32_t kBlueWeight = 11;
constexpr uint32_t kGrayDivisor = 100;

// The weights of a pixel's bytes as a 32-bit word of bytes, for byte multiplications. Band pixels are blue, green, red;
// RegrayRow24 weighs the first byte as if it were red.
constexpr uint32_t kBandWeights = kBlueWeight | kGreenWeight << 8 | kRedWeight << 16;
constexpr uint32_t kRegrayWeights = kRedWeight | kGreenWeight << 8 | kBlueWeight << 16;

}  // namespace qnv
