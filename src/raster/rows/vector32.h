// 32-byte vectors (AVX2). Loads and stores take any address.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace qnv {
namespace {

struct Vector32 {
  static constexpr std::size_t kBytes = 32;
  __m256i v;

  static Vector32 Load(const uint8_t* p) { return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))}; }
  static Vector32 Fill(uint8_t byte) { return {_mm256_set1_epi8(static_cast<char>(byte))}; }
  // The same sixteen bytes in both halves.
  static Vector32 Twice(const uint8_t* p) {
    return {_mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
  }
  // Sixteen bytes from each of two addresses.
  static Vector32 Halves(const uint8_t* low, const uint8_t* high) {
    return {_mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(low))),
                                    _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1)};
  }
  void Store(uint8_t* p) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
  friend Vector32 operator&(Vector32 a, Vector32 b) { return {_mm256_and_si256(a.v, b.v)}; }
  friend Vector32 operator|(Vector32 a, Vector32 b) { return {_mm256_or_si256(a.v, b.v)}; }
  friend Vector32 operator^(Vector32 a, Vector32 b) { return {_mm256_xor_si256(a.v, b.v)}; }
  friend Vector32 Min(Vector32 a, Vector32 b) { return {_mm256_min_epu8(a.v, b.v)}; }
  // Byte i of each half becomes byte from[i] % 16 of the same half, or 0 where from[i] has its top bit set.
  friend Vector32 Shuffle(Vector32 bytes, Vector32 from) { return {_mm256_shuffle_epi8(bytes.v, from.v)}; }
};

}  // namespace
}  // namespace qnv
