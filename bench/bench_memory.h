// The buffers of a process: band, tag plane, source rows. Allocated once, so that rows, levels and limits meet the
// same physical memory; filled from a fixed seed.
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

  static constexpr std::size_t kBandSize = 6u << 20;
  static constexpr std::size_t kTagSize = 2u << 20;
  static constexpr std::size_t kSourceSize = 32u << 20;

  uint8_t* band() { return band_; }
  uint8_t* tags() { return tags_; }
  uint8_t* source() { return source_; }

  // Puts the seeded bytes back into the first `size` bytes of the band, or into a rival's; into the tag plane a
  // mixture of 1 and 3, or nothing but 1.
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

// Small and the same everywhere.
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

uint64_t HashBytes(const uint8_t* bytes, std::size_t count);

void FillRandom(uint8_t* bytes, std::size_t count, uint64_t seed);

}  // namespace qnv::bench
