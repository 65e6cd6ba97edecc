// The two forms of a color and the gray level of one. A color reference is what hosts pass: red in bits 0..7, green in
// 8..15, blue in 16..23. A packed color has blue in bits 0..7 and red in 16..23, so that its bytes lie in memory in the
// order of a 24-bit band.
#pragma once

#include <cstdint>

namespace qnv {

constexpr uint32_t kWhite = 0x00FFFFFF;
constexpr uint32_t kColorBits = 0x00FFFFFF;

// Color reference to packed color and back. The top byte is kept.
constexpr uint32_t ExchangeRedBlue(uint32_t color) {
  return (color & 0xFF00FF00u) | (color & 0xFF) << 16 | (color >> 16 & 0xFF);
}

// A gray level, 0..255, from three components weighted with 30, 59 and 11 hundredths; the remainder is dropped.
constexpr uint32_t WeightedGray(uint32_t weight30, uint32_t weight59, uint32_t weight11) {
  return (weight30 * 30 + weight59 * 59 + weight11 * 11) / 100;
}

// One byte in each of the three color bytes.
constexpr uint32_t Replicated(uint32_t byte) { return byte * 0x010101u; }

// The gray level of a color reference in all three bytes; its top byte is dropped.
constexpr uint32_t GrayLevel(uint32_t color) {
  return Replicated(WeightedGray(color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF));
}

// Logical to physical color.
constexpr uint32_t PhysicalColor(uint32_t color, bool gray) { return gray ? GrayLevel(color) : color; }

}  // namespace qnv
