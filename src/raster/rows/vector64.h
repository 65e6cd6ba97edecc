// 64-byte vectors (AVX-512 with BW and VBMI) and masks of their bytes. Loads and stores take any address. A load or
// store under a mask does not touch the bytes whose bits are clear, not even where they lie in memory that may not be
// touched.
#pragma once

#include <immintrin.h>

#include <cstddef>
#include <cstdint>

namespace qnv {
namespace {

// Every bit of a mask. Intrinsics under this mask compile to the instructions without a mask; GCC warns about a
// variable of its own in some of those that take none.
inline constexpr uint64_t kEvery = ~uint64_t{0};

struct Vector64 {
  static constexpr std::size_t kBytes = 64;
  __m512i v;

  static Vector64 Load(const uint8_t* p) { return {_mm512_loadu_si512(p)}; }
  // The bytes that the mask names; the others are 0.
  static Vector64 Load(const uint8_t* p, __mmask64 mask) { return {_mm512_maskz_loadu_epi8(mask, p)}; }
  static Vector64 Fill(uint8_t byte) { return {_mm512_set1_epi8(static_cast<char>(byte))}; }
  // The same sixteen bytes four times.
  static Vector64 FourTimes(const uint8_t* p) {
    return {_mm512_maskz_broadcast_i32x4(0xFFFF, _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
  }
  void Store(uint8_t* p) const { _mm512_storeu_si512(p, v); }
  void Store(uint8_t* p, __mmask64 mask) const { _mm512_mask_storeu_epi8(p, mask, v); }
  friend Vector64 Min(Vector64 a, Vector64 b) { return {_mm512_min_epu8(a.v, b.v)}; }
  // Byte i becomes byte from[i] % 64.
  friend Vector64 Permute(Vector64 bytes, Vector64 from) {
    return {_mm512_maskz_permutexvar_epi8(kEvery, from.v, bytes.v)};
  }
  // Byte i becomes byte from[i] % 128 of both.
  friend Vector64 Permute(Vector64 low, Vector64 high, Vector64 from) {
    return {_mm512_permutex2var_epi8(low.v, from.v, high.v)};
  }
};

// The numbers 0..63.
inline constexpr struct ByteNumbers {
  alignas(64) uint8_t bytes[64] = {};
  constexpr ByteNumbers() {
    for (std::size_t i = 0; i < 64; ++i) bytes[i] = static_cast<uint8_t>(i);
  }
} kByteNumbers;

// The mask of the first `count` bytes, 0..64. A comparison, because 32-bit code has no 64-bit shifts.
inline __mmask64 FirstBytes(std::size_t count) {
  return _mm512_cmplt_epu8_mask(Vector64::Load(kByteNumbers.bytes).v, Vector64::Fill(static_cast<uint8_t>(count)).v);
}

// Any function of three bits, by its truth table: bit 4 * a + 2 * b + c of kTable.
template <int kTable>
Vector64 Ternary(Vector64 a, Vector64 b, Vector64 c) {
  return {_mm512_ternarylogic_epi64(a.v, b.v, c.v, kTable)};
}

// Truth tables of the inputs, from which those of formulas are computed.
inline constexpr int kA = 0xF0, kB = 0xCC, kC = 0xAA;

}  // namespace
}  // namespace qnv
