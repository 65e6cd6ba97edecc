// The forms of a color. A color reference holds red in bits 0..7, green in 8..15, blue in 16..23; a packed
// color holds blue there instead, so that its bytes lie in memory in band order.
#pragma once

#include <cstdint>

namespace qnv {

constexpr uint32_t kWhite = 0x00FFFFFF;
constexpr uint32_t kColorBits = 0x00FFFFFF;

// Color reference to packed color and back. The top byte is kept.
constexpr uint32_t ExchangeRedBlue(uint32_t color) {
  return (color & 0xFF00FF00u) | (color & 0xFF) << 16 | (color >> 16 & 0xFF);
}

// 0..255; the arguments are weighted in this order, truncated.
constexpr uint32_t WeightedGray(uint32_t weight30, uint32_t weight59, uint32_t weight11) {
  return (weight30 * 30 + weight59 * 59 + weight11 * 11) / 100;
}

constexpr uint32_t Replicated(uint32_t byte) { return byte * 0x010101u; }

// The gray level of a color reference in all three bytes; its top byte is dropped.
constexpr uint32_t GrayLevel(uint32_t color) {
  return Replicated(WeightedGray(color & 0xFF, color >> 8 & 0xFF, color >> 16 & 0xFF));
}

// Logical to physical color.
constexpr uint32_t PhysicalColor(uint32_t color, bool gray) { return gray ? GrayLevel(color) : color; }

}  // namespace qnv
