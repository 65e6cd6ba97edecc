// The loops of memory_limits.cpp with vectors of 64 bytes. The last bytes of a row are a vector under a mask.
#include <immintrin.h>

#include "memory_limits.h"

#define QNV_AVX512 __attribute__((target("avx512f,avx512bw")))

namespace qnv::bench {
namespace {

QNV_AVX512 __mmask64 MaskOf(std::size_t bytes) { return (__mmask64{1} << bytes) - 1; }  // below 64

QNV_AVX512 void Store(uint8_t* d, const uint8_t*, std::size_t n) {
  const __m512i v = _mm512_set1_epi8(0x5A);
  for (; n >= 256; n -= 256, d += 256) {
    for (std::size_t k = 0; k < 256; k += 64) _mm512_storeu_si512(d + k, v);
  }
  for (; n >= 64; n -= 64, d += 64) _mm512_storeu_si512(d, v);
  _mm512_mask_storeu_epi8(d, MaskOf(n), v);
}

// Stores that begin at a 64-byte boundary after one unaligned part.
QNV_AVX512 void StoreAligned(uint8_t* d, const uint8_t*, std::size_t n) {
  const std::size_t head = (0 - reinterpret_cast<std::uintptr_t>(d)) % 64;
  if (head < n) {
    _mm512_mask_storeu_epi8(d, MaskOf(head), _mm512_set1_epi8(0x5A));
    d += head;
    n -= head;
  }
  Store(d, nullptr, n);
}

QNV_AVX512 void Copy(uint8_t* d, const uint8_t* s, std::size_t n) {
  for (; n >= 128; n -= 128, d += 128, s += 128) {
    const __m512i a = _mm512_loadu_si512(s), b = _mm512_loadu_si512(s + 64);
    _mm512_storeu_si512(d, a);
    _mm512_storeu_si512(d + 64, b);
  }
  for (; n >= 64; n -= 64, d += 64, s += 64) _mm512_storeu_si512(d, _mm512_loadu_si512(s));
  _mm512_mask_storeu_epi8(d, MaskOf(n), _mm512_maskz_loadu_epi8(MaskOf(n), s));
}

QNV_AVX512 void Xor(uint8_t* d, const uint8_t*, std::size_t n) {
  const __m512i v = _mm512_set1_epi8(0x5A);
  for (; n >= 192; n -= 192, d += 192) {
    const __m512i a = _mm512_xor_si512(_mm512_loadu_si512(d), v);
    const __m512i b = _mm512_xor_si512(_mm512_loadu_si512(d + 64), v);
    const __m512i c = _mm512_xor_si512(_mm512_loadu_si512(d + 128), v);
    _mm512_storeu_si512(d, a);
    _mm512_storeu_si512(d + 64, b);
    _mm512_storeu_si512(d + 128, c);
  }
  for (; n >= 64; n -= 64, d += 64) _mm512_storeu_si512(d, _mm512_xor_si512(_mm512_loadu_si512(d), v));
  _mm512_mask_storeu_epi8(d, MaskOf(n), _mm512_xor_si512(_mm512_maskz_loadu_epi8(MaskOf(n), d), v));
}

QNV_AVX512 void Combine(uint8_t* d, const uint8_t* s, std::size_t n) {
  for (; n >= 128; n -= 128, d += 128, s += 128) {
    const __m512i a = _mm512_xor_si512(_mm512_loadu_si512(d), _mm512_loadu_si512(s));
    const __m512i b = _mm512_xor_si512(_mm512_loadu_si512(d + 64), _mm512_loadu_si512(s + 64));
    _mm512_storeu_si512(d, a);
    _mm512_storeu_si512(d + 64, b);
  }
  for (; n >= 64; n -= 64, d += 64, s += 64) {
    _mm512_storeu_si512(d, _mm512_xor_si512(_mm512_loadu_si512(d), _mm512_loadu_si512(s)));
  }
  const __mmask64 mask = MaskOf(n);
  _mm512_mask_storeu_epi8(d, mask,
                          _mm512_xor_si512(_mm512_maskz_loadu_epi8(mask, d), _mm512_maskz_loadu_epi8(mask, s)));
}

bool HasAvx512() { return __builtin_cpu_supports("avx512f") != 0 && __builtin_cpu_supports("avx512bw") != 0; }

}  // namespace

const std::vector<LimitLoop>& Avx512LimitLoops() {
  static const std::vector<LimitLoop> loops = {
      {"avx512", LimitKind::kStore, HasAvx512, Store},
      {"avx512 aligned", LimitKind::kStore, HasAvx512, StoreAligned},
      {"avx512", LimitKind::kCopy, HasAvx512, Copy},
      {"avx512", LimitKind::kReadModifyWrite, HasAvx512, Xor},
      {"avx512", LimitKind::kCombine, HasAvx512, Combine},
  };
  return loops;
}

}  // namespace qnv::bench
