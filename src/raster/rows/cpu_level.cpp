#include "raster/rows/cpu_level.h"

#if defined(__x86_64__) || defined(__i386__)

#include <cpuid.h>

namespace qnv {
namespace {

// Whether the operating system saves the upper halves of the vector registers.
bool SystemSavesAvx() {
  uint32_t low, high;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return (low & 6) == 6;
}

CpuLevel ProcessorLevel() {
  uint32_t a, b, c, d;
  if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (d & bit_SSE2) == 0) return CpuLevel::kPlain;
  if ((c & bit_SSSE3) == 0) return CpuLevel::kSse2;
  const bool avx = (c & bit_OSXSAVE) != 0 && (c & bit_AVX) != 0 && SystemSavesAvx();
  if (!avx || __get_cpuid_count(7, 0, &a, &b, &c, &d) == 0 || (b & bit_AVX2) == 0) return CpuLevel::kSsse3;
  return CpuLevel::kAvx2;
}

}  // namespace
}  // namespace qnv

#else

namespace qnv {
namespace {

CpuLevel ProcessorLevel() { return CpuLevel::kPlain; }

}  // namespace
}  // namespace qnv

#endif

// A build for comparisons stays below a level; the delivered one takes what there is.
#if !defined(QNV_HIGHEST_LEVEL)
#define QNV_HIGHEST_LEVEL kAvx2
#endif

qnv::CpuLevel qnv::DetectCpuLevel() {
  const CpuLevel level = ProcessorLevel();
  return level < CpuLevel::QNV_HIGHEST_LEVEL ? level : CpuLevel::QNV_HIGHEST_LEVEL;
}
