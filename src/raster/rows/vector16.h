// 16-byte vectors (SSE2), and the eight-byte half of one. Loads and stores take any address.
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

namespace qnv {
namespace {

// The interface that rows_vector.h asks of a vector.
struct Vector16 {
  static constexpr std::size_t kBytes = 16;
  __m128i v;

  static Vector16 Load(const uint8_t* p) { return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))}; }
  static Vector16 Fill(uint8_t byte) { return {_mm_set1_epi8(static_cast<char>(byte))}; }
  void Store(uint8_t* p) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
  friend Vector16 operator&(Vector16 a, Vector16 b) { return {_mm_and_si128(a.v, b.v)}; }
  friend Vector16 operator^(Vector16 a, Vector16 b) { return {_mm_xor_si128(a.v, b.v)}; }
  friend Vector16 Min(Vector16 a, Vector16 b) { return {_mm_min_epu8(a.v, b.v)}; }
};

// Eight bytes in the lower half of a vector register; a 64-bit word would take two registers in 32-bit code.
struct Vector8 {
  static constexpr std::size_t kBytes = 8;
  __m128i v;

  static Vector8 Load(const uint8_t* p) { return {_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))}; }
  void Store(uint8_t* p) const { _mm_storel_epi64(reinterpret_cast<__m128i*>(p), v); }
  friend Vector8 operator&(Vector8 a, Vector8 b) { return {_mm_and_si128(a.v, b.v)}; }
  friend Vector8 operator^(Vector8 a, Vector8 b) { return {_mm_xor_si128(a.v, b.v)}; }
  friend Vector8 Min(Vector8 a, Vector8 b) { return {_mm_min_epu8(a.v, b.v)}; }
};

}  // namespace
}  // namespace qnv
