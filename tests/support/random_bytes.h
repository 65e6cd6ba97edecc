// A small seeded generator: the same numbers on every build.
#pragma once

#include <cstdint>

#include "support/fenced_buffer.h"

namespace qnv::test {

class RandomBytes {
 public:
  explicit RandomBytes(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 0x1234567u) {}

  uint32_t Next() {
    state_ += 0x9E3779B97F4A7C15u;
    uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return static_cast<uint32_t>(z >> 32);
  }
  uint32_t Below(uint32_t limit) { return Next() % limit; }

  // All and no ink are what real pages are made of, so they come more often than the values between.
  uint8_t Byte() {
    const uint32_t value = Next();
    if ((value & 0x700) == 0) return 0x00;
    if ((value & 0x700) == 0x100) return 0xFF;
    return static_cast<uint8_t>(value);
  }

 private:
  uint64_t state_;
};

inline void FillWithNoise(FencedBuffer* buffer, uint64_t seed) {
  RandomBytes random(seed);
  for (std::size_t i = 0; i < buffer->size(); ++i) buffer->data()[i] = random.Byte();
}

}  // namespace qnv::test
