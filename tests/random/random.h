// The generator of the numbered cases: splitmix64, so that a case depends on its number and on nothing else.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv::test {

class Random {
 public:
  // The seed is mixed first: states that lie a few steps apart would give the same numbers, shifted.
  explicit Random(uint64_t seed) : state_(Mix(seed + 0x51A3C0FFEEu)) {}

  uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15u;
    return Mix(state_);
  }
  uint32_t Word() { return static_cast<uint32_t>(Next() >> 32); }
  // Uniform in low..high, both included.
  int Range(int low, int high) {
    return low + static_cast<int>(Next() % (static_cast<uint64_t>(int64_t{high} - low) + 1));
  }
  bool Percent(int chance) { return Range(0, 99) < chance; }
  uint8_t Byte() {
    const uint32_t pick = Word();
    return (pick & 0x300) == 0 ? 0 : (pick & 0x300) == 0x100 ? 0xFF : static_cast<uint8_t>(pick);
  }
  void Fill(uint8_t* to, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      // Runs of one value make whole words of it.
      const uint8_t value = Byte();
      to[i] = value;
      if ((Word() & 3) == 0) {
        for (int run = Range(1, 8); run > 0 && i + 1 < count; --run) to[++i] = value;
      }
    }
  }
  template <class T, std::size_t N>
  T Pick(const T (&values)[N]) {
    return values[Range(0, static_cast<int>(N) - 1)];
  }

 private:
  static uint64_t Mix(uint64_t z) {
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }

  uint64_t state_;
};

}  // namespace qnv::test
