// The buffers of a run, in one block of memory.
#include "bench_memory.h"

#include <cstring>

namespace qnv::bench {
namespace {

// Bytes of a page of memory.
constexpr std::size_t kPage = 4096;

}  // namespace

void FillRandom(uint8_t* bytes, std::size_t count, uint64_t seed) {
  Random random(seed);
  std::size_t i = 0;
  for (; i + 4 <= count; i += 4) {
    const uint32_t value = random.Next();
    std::memcpy(bytes + i, &value, 4);
  }
  for (; i < count; ++i) bytes[i] = static_cast<uint8_t>(random.Next());
}

uint64_t HashBytes(const uint8_t* bytes, std::size_t count) {
  uint64_t hash = 0xCBF29CE484222325u;
  std::size_t i = 0;
  for (; i + 4 <= count; i += 4) {
    uint32_t word;
    std::memcpy(&word, bytes + i, 4);
    hash = (hash ^ word) * 0x100000001B3u;
  }
  for (; i < count; ++i) hash = (hash ^ bytes[i]) * 0x100000001B3u;
  return hash;
}

Memory::Memory() : block_(new uint8_t[kBandSize + kTagSize + kSourceSize + 4 * kPage]), seed_(new uint8_t[kBandSize]) {
  const std::uintptr_t start = reinterpret_cast<std::uintptr_t>(block_.get());
  // The source begins half a page further on: with equal offsets in their pages, loads of the source would wait for
  // unrelated stores to the band.
  band_ = block_.get() + (kPage - start % kPage);
  tags_ = band_ + kBandSize;
  source_ = tags_ + kTagSize + kPage / 2;
  FillRandom(seed_.get(), kBandSize, 1);
  std::memcpy(band_, seed_.get(), kBandSize);
  std::memset(tags_, 1, kTagSize);
  FillSource(kSourceSize);
}

Memory::~Memory() = default;

void Memory::RewindBand(std::size_t size) { CopySeed(band_, size); }

void Memory::CopySeed(uint8_t* to, std::size_t size) const { std::memcpy(to, seed_.get(), size); }

void Memory::RewindTags(std::size_t size, bool marked) {
  std::memset(tags_, 1, size);
  if (!marked) return;
  // Runs of both tags, as images on a page leave them.
  Random random(2);
  for (std::size_t i = 0; i < size;) {
    const std::size_t run = 20 + random.Next() % 400;
    if (random.Next() % 2 != 0) std::memset(tags_ + i, 3, run < size - i ? run : size - i);
    i += run;
  }
}

void Memory::FillSource(std::size_t size) { FillRandom(source_, size < kSourceSize ? size : kSourceSize, 3); }

}  // namespace qnv::bench
