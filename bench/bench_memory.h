// The buffers of a run: band, tag plane, source rows. They are allocated once, so that all rows, levels and limits use
// the same physical memory, and are filled from a fixed seed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace qnv::bench {

class Memory {
 public:
  Memory();
  ~Memory();
  Memory(const Memory&) = delete;
  Memory& operator=(const Memory&) = delete;

  // Bytes.
  static constexpr std::size_t kBandSize = 6u << 20;
  static constexpr std::size_t kTagSize = 2u << 20;
  static constexpr std::size_t kSourceSize = 32u << 20;

  uint8_t* band() { return band_; }
  uint8_t* tags() { return tags_; }
  uint8_t* source() { return source_; }

  // Restore the first content of the first `size` bytes: random bytes in the band or in the band of a rival; in the tag
  // plane the tag 1 everywhere or, if `marked`, a mixture of the tags 1 and 3.
  void RewindBand(std::size_t size);
  void CopySeed(uint8_t* to, std::size_t size) const;
  void RewindTags(std::size_t size, bool marked);

  // Random bytes at the start of the source memory. A job that wants something else writes it there when it is made.
  void FillSource(std::size_t size);

 private:
  std::unique_ptr<uint8_t[]> block_;
  std::unique_ptr<uint8_t[]> seed_;
  uint8_t* band_ = nullptr;
  uint8_t* tags_ = nullptr;
  uint8_t* source_ = nullptr;
};

// A small random number generator that gives the same numbers on every platform.
class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 1) {}
  uint32_t Next() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return static_cast<uint32_t>(state_ >> 32);
  }
  int Below(int bound) { return static_cast<int>(Next() % static_cast<uint32_t>(bound)); }

 private:
  uint64_t state_;
};

// A hash of the bytes, to compare pictures.
uint64_t HashBytes(const uint8_t* bytes, std::size_t count);

void FillRandom(uint8_t* bytes, std::size_t count, uint64_t seed);

}  // namespace qnv::bench
