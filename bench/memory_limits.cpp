// Loops that do nothing but store, copy or change bytes, in several variants of each kind: which one is fastest depends
// on the processor and on where the bytes lie.
#include "memory_limits.h"

#include <immintrin.h>

#include <cstring>

namespace qnv::bench {
namespace {

bool Always() { return true; }
bool HasAvx2() { return __builtin_cpu_supports("avx2") != 0; }

__m128i* Vector(uint8_t* bytes) { return reinterpret_cast<__m128i*>(bytes); }
const __m128i* Vector(const uint8_t* bytes) { return reinterpret_cast<const __m128i*>(bytes); }

// The empty assembler statements keep the compiler from removing the calls.
void StoreLibc(uint8_t* d, const uint8_t*, std::size_t n) {
  std::memset(d, 0x5A, n);
  asm volatile("" : : "r"(d) : "memory");
}

void StoreRep(uint8_t* d, const uint8_t*, std::size_t n) {
  asm volatile("rep stosb" : "+D"(d), "+c"(n) : "a"(0x5A) : "memory");
}

// In these loops the last bytes of a row are written by one overlapping vector (stores, copies) or one by one (changes
// in place). Rows are never shorter than a vector.
void StoreSse2(uint8_t* d, const uint8_t*, std::size_t n) {
  const __m128i v = _mm_set1_epi8(0x5A);
  uint8_t* const end = d + n;
  for (; end - d >= 64; d += 64) {
    _mm_storeu_si128(Vector(d), v);
    _mm_storeu_si128(Vector(d + 16), v);
    _mm_storeu_si128(Vector(d + 32), v);
    _mm_storeu_si128(Vector(d + 48), v);
  }
  for (; end - d >= 16; d += 16) _mm_storeu_si128(Vector(d), v);
  if (n >= 16) _mm_storeu_si128(Vector(end - 16), v);
}

__attribute__((target("avx2"))) void StoreAvx2(uint8_t* d, const uint8_t*, std::size_t n) {
  const __m256i v = _mm256_set1_epi8(0x5A);
  uint8_t* const end = d + n;
  for (; end - d >= 128; d += 128) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), v);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + 32), v);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + 64), v);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + 96), v);
  }
  for (; end - d >= 32; d += 32) _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), v);
  if (n >= 32) _mm256_storeu_si256(reinterpret_cast<__m256i*>(end - 32), v);
}

// Stores that begin at a 32-byte boundary after one unaligned vector.
__attribute__((target("avx2"))) void StoreAvx2Aligned(uint8_t* d, const uint8_t*, std::size_t n) {
  const __m256i v = _mm256_set1_epi8(0x5A);
  uint8_t* const end = d + n;
  if (n < 32) return StoreSse2(d, nullptr, n);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), v);
  d += 32 - (reinterpret_cast<std::uintptr_t>(d) & 31);
  for (; end - d >= 128; d += 128) {
    _mm256_store_si256(reinterpret_cast<__m256i*>(d), v);
    _mm256_store_si256(reinterpret_cast<__m256i*>(d + 32), v);
    _mm256_store_si256(reinterpret_cast<__m256i*>(d + 64), v);
    _mm256_store_si256(reinterpret_cast<__m256i*>(d + 96), v);
  }
  for (; end - d >= 32; d += 32) _mm256_store_si256(reinterpret_cast<__m256i*>(d), v);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(end - 32), v);
}

void CopyLibc(uint8_t* d, const uint8_t* s, std::size_t n) {
  std::memcpy(d, s, n);
  asm volatile("" : : "r"(d) : "memory");
}

void CopyRep(uint8_t* d, const uint8_t* s, std::size_t n) {
  asm volatile("rep movsb" : "+D"(d), "+S"(s), "+c"(n) : : "memory");
}

void CopySse2(uint8_t* d, const uint8_t* s, std::size_t n) {
  std::size_t i = 0;
  for (; i + 64 <= n; i += 64) {
    const __m128i a = _mm_loadu_si128(Vector(s + i));
    const __m128i b = _mm_loadu_si128(Vector(s + i + 16));
    const __m128i c = _mm_loadu_si128(Vector(s + i + 32));
    const __m128i e = _mm_loadu_si128(Vector(s + i + 48));
    _mm_storeu_si128(Vector(d + i), a);
    _mm_storeu_si128(Vector(d + i + 16), b);
    _mm_storeu_si128(Vector(d + i + 32), c);
    _mm_storeu_si128(Vector(d + i + 48), e);
  }
  for (; i + 16 <= n; i += 16) _mm_storeu_si128(Vector(d + i), _mm_loadu_si128(Vector(s + i)));
  if (n >= 16) _mm_storeu_si128(Vector(d + n - 16), _mm_loadu_si128(Vector(s + n - 16)));
}

__attribute__((target("avx2"))) void CopyAvx2(uint8_t* d, const uint8_t* s, std::size_t n) {
  std::size_t i = 0;
  for (; i + 64 <= n; i += 64) {
    const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i));
    const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i + 32));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + i), a);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + i + 32), b);
  }
  for (; i < n; ++i) d[i] = s[i];
}

void XorSse2(uint8_t* d, const uint8_t*, std::size_t n) {
  const __m128i v = _mm_set1_epi8(0x5A);
  std::size_t i = 0;
  for (; i + 64 <= n; i += 64) {
    for (std::size_t k = 0; k < 64; k += 16) {
      _mm_storeu_si128(Vector(d + i + k), _mm_xor_si128(_mm_loadu_si128(Vector(d + i + k)), v));
    }
  }
  for (; i < n; ++i) d[i] ^= 0x5A;
}

__attribute__((target("avx2"))) void XorAvx2(uint8_t* d, const uint8_t*, std::size_t n) {
  const __m256i v = _mm256_set1_epi8(0x5A);
  std::size_t i = 0;
  for (; i + 128 <= n; i += 128) {
    for (std::size_t k = 0; k < 128; k += 32) {
      __m256i* const p = reinterpret_cast<__m256i*>(d + i + k);
      _mm256_storeu_si256(p, _mm256_xor_si256(_mm256_loadu_si256(p), v));
    }
  }
  for (; i < n; ++i) d[i] ^= 0x5A;
}

__attribute__((target("avx2"))) void XorAvx2Single(uint8_t* d, const uint8_t*, std::size_t n) {
  const __m256i v = _mm256_set1_epi8(0x5A);
  std::size_t i = 0;
  for (; i + 32 <= n; i += 32) {
    __m256i* const p = reinterpret_cast<__m256i*>(d + i);
    _mm256_storeu_si256(p, _mm256_xor_si256(_mm256_loadu_si256(p), v));
  }
  for (; i < n; ++i) d[i] ^= 0x5A;
}

// Two vectors are read before the first is written.
__attribute__((target("avx2"))) void XorAvx2Pairs(uint8_t* d, const uint8_t*, std::size_t n) {
  const __m256i v = _mm256_set1_epi8(0x5A);
  std::size_t i = 0;
  for (; i + 64 <= n; i += 64) {
    __m256i* const p = reinterpret_cast<__m256i*>(d + i);
    const __m256i a = _mm256_loadu_si256(p);
    const __m256i b = _mm256_loadu_si256(p + 1);
    _mm256_storeu_si256(p, _mm256_xor_si256(a, v));
    _mm256_storeu_si256(p + 1, _mm256_xor_si256(b, v));
  }
  for (; i < n; ++i) d[i] ^= 0x5A;
}

// Three vectors hold 32 pixels of three bytes.
__attribute__((target("avx2"))) void XorAvx2Triples(uint8_t* d, const uint8_t*, std::size_t n) {
  const __m256i v = _mm256_set1_epi8(0x5A);
  std::size_t i = 0;
  for (; i + 96 <= n; i += 96) {
    __m256i* const p = reinterpret_cast<__m256i*>(d + i);
    const __m256i a = _mm256_loadu_si256(p);
    const __m256i b = _mm256_loadu_si256(p + 1);
    const __m256i c = _mm256_loadu_si256(p + 2);
    _mm256_storeu_si256(p, _mm256_xor_si256(a, v));
    _mm256_storeu_si256(p + 1, _mm256_xor_si256(b, v));
    _mm256_storeu_si256(p + 2, _mm256_xor_si256(c, v));
  }
  for (; i < n; ++i) d[i] ^= 0x5A;
}

__attribute__((target("avx2"))) void XorAvx2Aligned(uint8_t* d, const uint8_t*, std::size_t n) {
  std::size_t head = (32 - (reinterpret_cast<std::uintptr_t>(d) & 31)) & 31;
  if (head > n) head = n;
  for (std::size_t i = 0; i < head; ++i) d[i] ^= 0x5A;
  XorAvx2(d + head, nullptr, n - head);
}

void CombineSse2(uint8_t* d, const uint8_t* s, std::size_t n) {
  std::size_t i = 0;
  for (; i + 32 <= n; i += 32) {
    for (std::size_t k = 0; k < 32; k += 16) {
      const __m128i a = _mm_loadu_si128(Vector(s + i + k));
      _mm_storeu_si128(Vector(d + i + k), _mm_xor_si128(_mm_loadu_si128(Vector(d + i + k)), a));
    }
  }
  for (; i < n; ++i) d[i] = static_cast<uint8_t>(d[i] ^ s[i]);
}

__attribute__((target("avx2"))) void CombineAvx2(uint8_t* d, const uint8_t* s, std::size_t n) {
  std::size_t i = 0;
  for (; i + 64 <= n; i += 64) {
    for (std::size_t k = 0; k < 64; k += 32) {
      __m256i* const p = reinterpret_cast<__m256i*>(d + i + k);
      const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + i + k));
      _mm256_storeu_si256(p, _mm256_xor_si256(_mm256_loadu_si256(p), a));
    }
  }
  for (; i < n; ++i) d[i] = static_cast<uint8_t>(d[i] ^ s[i]);
}

__attribute__((target("avx2"))) void CombineAvx2Pairs(uint8_t* d, const uint8_t* s, std::size_t n) {
  std::size_t i = 0;
  for (; i + 64 <= n; i += 64) {
    __m256i* const p = reinterpret_cast<__m256i*>(d + i);
    const __m256i* const q = reinterpret_cast<const __m256i*>(s + i);
    const __m256i a = _mm256_xor_si256(_mm256_loadu_si256(p), _mm256_loadu_si256(q));
    const __m256i b = _mm256_xor_si256(_mm256_loadu_si256(p + 1), _mm256_loadu_si256(q + 1));
    _mm256_storeu_si256(p, a);
    _mm256_storeu_si256(p + 1, b);
  }
  for (; i < n; ++i) d[i] = static_cast<uint8_t>(d[i] ^ s[i]);
}

// A loop over the rows of a surface as a job.
class LimitJob final : public Job {
 public:
  LimitJob(const LimitLoop& loop, const LimitSurface& surface) : loop_(loop), surface_(surface) {}

  void Run(int times) override {
    // Rows without a gap between them are one long row.
    const bool flat = surface_.rowBytes == surface_.stride;
    const int rows = flat ? 1 : surface_.rows;
    const std::size_t count = flat ? surface_.stride * static_cast<std::size_t>(surface_.rows) : surface_.rowBytes;
    for (int i = 0; i < times; ++i) {
      for (int row = 0; row < rows; ++row) {
        const std::size_t offset = static_cast<std::size_t>(row) * surface_.stride;
        loop_.run(surface_.destination + offset, surface_.source + offset, count);
      }
    }
  }

 private:
  const LimitLoop& loop_;
  LimitSurface surface_;
};

}  // namespace

const char* LimitName(LimitKind kind) {
  switch (kind) {
    case LimitKind::kStore: return "store";
    case LimitKind::kCopy: return "copy";
    case LimitKind::kReadModifyWrite: return "rmw";
    case LimitKind::kCombine: return "combine";
    case LimitKind::kNone: break;
  }
  return "none";
}

// Which of the loops is fastest differs between processors, and between caches and memory.
const std::vector<LimitLoop>& LimitLoops() {
  static const std::vector<LimitLoop> loops = [] {
    std::vector<LimitLoop> all = {
        {"memset", LimitKind::kStore, Always, StoreLibc},
        {"rep stosb", LimitKind::kStore, Always, StoreRep},
        {"sse2", LimitKind::kStore, Always, StoreSse2},
        {"avx2", LimitKind::kStore, HasAvx2, StoreAvx2},
        {"avx2 aligned", LimitKind::kStore, HasAvx2, StoreAvx2Aligned},
        {"memcpy", LimitKind::kCopy, Always, CopyLibc},
        {"rep movsb", LimitKind::kCopy, Always, CopyRep},
        {"sse2", LimitKind::kCopy, Always, CopySse2},
        {"avx2", LimitKind::kCopy, HasAvx2, CopyAvx2},
        {"sse2", LimitKind::kReadModifyWrite, Always, XorSse2},
        {"avx2", LimitKind::kReadModifyWrite, HasAvx2, XorAvx2},
        {"avx2 by one", LimitKind::kReadModifyWrite, HasAvx2, XorAvx2Single},
        {"avx2 by two", LimitKind::kReadModifyWrite, HasAvx2, XorAvx2Pairs},
        {"avx2 by three", LimitKind::kReadModifyWrite, HasAvx2, XorAvx2Triples},
        {"avx2 aligned", LimitKind::kReadModifyWrite, HasAvx2, XorAvx2Aligned},
        {"sse2", LimitKind::kCombine, Always, CombineSse2},
        {"avx2", LimitKind::kCombine, HasAvx2, CombineAvx2},
        {"avx2 by two", LimitKind::kCombine, HasAvx2, CombineAvx2Pairs},
    };
    all.insert(all.end(), Avx512LimitLoops().begin(), Avx512LimitLoops().end());
    return all;
  }();
  return loops;
}

std::unique_ptr<Job> MakeLimitJob(const LimitLoop& loop, const LimitSurface& surface) {
  return std::make_unique<LimitJob>(loop, surface);
}

Limit MeasureLimit(LimitKind kind, const LimitSurface& surface, const TimingPlan& plan) {
  std::vector<const LimitLoop*> loops;
  std::vector<std::unique_ptr<Job>> owned;
  std::vector<Job*> jobs;
  for (const LimitLoop& loop : LimitLoops()) {
    if (loop.kind != kind || !loop.available()) continue;
    loops.push_back(&loop);
    owned.push_back(MakeLimitJob(loop, surface));
    jobs.push_back(owned.back().get());
  }
  const std::vector<Timing> timings = MeasureInTurn(jobs, plan);
  const double bytes = static_cast<double>(surface.rowBytes) * surface.rows;
  Limit limit;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    const double rate = bytes / timings[i].bestNs;
    if (rate > limit.gigabytesPerSecond) limit = {loops[i], rate};
  }
  return limit;
}

}  // namespace qnv::bench
