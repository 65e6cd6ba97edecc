// XXH64: four lanes of 64 bits, each multiplied and rotated once for every eight bytes.
#include "calls/hash.h"

#include <bit>
#include <cstring>

namespace qnv::calls {
namespace {

constexpr uint64_t kPrime1 = 0x9E3779B185EBCA87, kPrime2 = 0xC2B2AE3D27D4EB4F, kPrime3 = 0x165667B19E3779F9,
                   kPrime4 = 0x85EBCA77C2B2AE63, kPrime5 = 0x27D4EB2F165667C5;

template <class T>
T ReadLittle(const uint8_t* at) {
  static_assert(std::endian::native == std::endian::little);
  T value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

uint64_t Round(uint64_t lane, uint64_t input) { return std::rotl(lane + input * kPrime2, 31) * kPrime1; }

uint64_t MergeLane(uint64_t hash, uint64_t lane) { return (hash ^ Round(0, lane)) * kPrime1 + kPrime4; }

}  // namespace

uint64_t Hash64(const void* memory, std::size_t bytes, uint64_t seed) {
  const auto* at = static_cast<const uint8_t*>(memory);
  std::size_t left = bytes;
  uint64_t hash;
  if (left >= 32) {
    uint64_t a = seed + kPrime1 + kPrime2, b = seed + kPrime2, c = seed, d = seed - kPrime1;
    for (; left >= 32; left -= 32, at += 32) {
      a = Round(a, ReadLittle<uint64_t>(at));
      b = Round(b, ReadLittle<uint64_t>(at + 8));
      c = Round(c, ReadLittle<uint64_t>(at + 16));
      d = Round(d, ReadLittle<uint64_t>(at + 24));
    }
    hash = std::rotl(a, 1) + std::rotl(b, 7) + std::rotl(c, 12) + std::rotl(d, 18);
    hash = MergeLane(MergeLane(MergeLane(MergeLane(hash, a), b), c), d);
  } else {
    hash = seed + kPrime5;
  }
  hash += bytes;
  for (; left >= 8; left -= 8, at += 8) {
    hash = std::rotl(hash ^ Round(0, ReadLittle<uint64_t>(at)), 27) * kPrime1 + kPrime4;
  }
  if (left >= 4) {
    hash = std::rotl(hash ^ ReadLittle<uint32_t>(at) * kPrime1, 23) * kPrime2 + kPrime3;
    at += 4;
    left -= 4;
  }
  for (; left > 0; --left, ++at) hash = std::rotl(hash ^ *at * kPrime5, 11) * kPrime1;
  hash = (hash ^ hash >> 33) * kPrime2;
  hash = (hash ^ hash >> 29) * kPrime3;
  return hash ^ hash >> 32;
}

}  // namespace qnv::calls
