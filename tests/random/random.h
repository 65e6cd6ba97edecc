// Where the cases take their numbers from: a generator for the numbered ones, a file's bytes for those that a fuzzer
// made up.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv::test {

class Numbers {
 public:
  virtual ~Numbers() = default;
  // One of 0 .. count - 1; count is at most 2^32.
  virtual uint64_t Below(uint64_t count) = 0;
  virtual uint32_t Word() = 0;
  virtual uint8_t Byte() = 0;
  virtual void Fill(uint8_t* to, std::size_t count) = 0;
  // What the numbers come from is at its end.
  virtual bool used_up() const { return false; }

  // Uniform in low..high, both included.
  int Range(int low, int high) { return low + static_cast<int>(Below(static_cast<uint64_t>(int64_t{high} - low) + 1)); }
  bool Percent(int chance) { return Range(0, 99) < chance; }
  template <class T, std::size_t N>
  T Pick(const T (&values)[N]) {
    return values[Range(0, static_cast<int>(N) - 1)];
  }
};

// splitmix64, so that a case depends on its number and on nothing else.
class Random final : public Numbers {
 public:
  // The seed is mixed first: states that lie a few steps apart would give the same numbers, shifted.
  explicit Random(uint64_t seed) : state_(Mix(seed + 0x51A3C0FFEEu)) {}

  uint64_t Below(uint64_t count) override { return Next() % count; }
  uint32_t Word() override { return static_cast<uint32_t>(Next() >> 32); }
  // Often 0 or 255.
  uint8_t Byte() override {
    const uint32_t pick = Word();
    return (pick & 0x300) == 0 ? 0 : (pick & 0x300) == 0x100 ? 0xFF : static_cast<uint8_t>(pick);
  }
  void Fill(uint8_t* to, std::size_t count) override {
    for (std::size_t i = 0; i < count; ++i) {
      // Runs of one value make whole words of it.
      const uint8_t value = Byte();
      to[i] = value;
      if ((Word() & 3) == 0) {
        for (int run = Range(1, 8); run > 0 && i + 1 < count; --run) to[++i] = value;
      }
    }
  }

 private:
  uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15u;
    return Mix(state_);
  }
  static uint64_t Mix(uint64_t z) {
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
  }

  uint64_t state_;
};

// The bytes of a file, one for each small choice, so that a changed byte changes one choice. Behind the last byte comes
// what a generator makes of them all: short files are whole cases too.
class FileNumbers final : public Numbers {
 public:
  FileNumbers(const uint8_t* bytes, std::size_t size) : at_(bytes), left_(size), rest_(Hash(bytes, size)) {}

  bool used_up() const override { return left_ == 0; }
  uint64_t Below(uint64_t count) override {
    if (left_ == 0) return rest_.Below(count);
    return Take(count <= 0x100 ? 1 : count <= 0x10000 ? 2 : 4) % count;
  }
  uint32_t Word() override { return left_ == 0 ? rest_.Word() : static_cast<uint32_t>(Take(4)); }
  uint8_t Byte() override { return left_ == 0 ? rest_.Byte() : static_cast<uint8_t>(Take(1)); }
  // A first byte chooses: the file's own bytes, or generated ones, which leave the file short.
  void Fill(uint8_t* to, std::size_t count) override {
    const uint8_t choice = Byte();
    if (left_ == 0 || choice >= 64) return Random(rest_.Word() + choice).Fill(to, count);
    for (std::size_t i = 0; i < count; ++i) to[i] = Byte();
  }

 private:
  static uint64_t Hash(const uint8_t* bytes, std::size_t size) {
    uint64_t hash = 0xCBF29CE484222325u;
    for (std::size_t i = 0; i < size; ++i) hash = (hash ^ bytes[i]) * 0x100000001B3u;
    return hash;
  }
  uint64_t Take(int bytes) {
    uint64_t number = 0;
    for (int i = 0; i < bytes && left_ > 0; ++i, --left_) number |= uint64_t{*at_++} << 8 * i;
    return number;
  }

  const uint8_t* at_;
  std::size_t left_;
  Random rest_;
};

}  // namespace qnv::test
