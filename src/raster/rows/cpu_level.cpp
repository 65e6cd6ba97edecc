// Asks the processor for the levels of the list, from the lowest up to the first that it does not have.
#include "raster/rows/cpu_level.h"

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace qnv {
namespace {

#if defined(__x86_64__) || defined(__i386__)

struct CpuidRegisters {
  uint32_t a = 0, b = 0, c = 0, d = 0;
};

// All zero where the processor does not know the leaf.
CpuidRegisters Cpuid(uint32_t leaf) {
  CpuidRegisters r;
  if (__get_cpuid_count(leaf, 0, &r.a, &r.b, &r.c, &r.d) == 0) return {};
  return r;
}

// Whether the operating system saves these registers (bits of XCR0) when it switches threads.
bool SystemSaves(uint32_t state) {
  if (state == 0) return true;
  constexpr uint32_t kNeeded = bit_OSXSAVE | bit_AVX;
  if ((Cpuid(1).c & kNeeded) != kNeeded) return false;
  uint32_t low, high;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return (low & state) == state;
}

// What a level asks of the processor and the operating system.
struct LevelNeeds {
  CpuLevel level;
  uint32_t leaf;
  uint32_t CpuidRegisters::*where;
  uint32_t bits, state;
};

constexpr LevelNeeds kNeeds[] = {
#define QNV_LEVEL(name, constant, options, leaf, where, bits, state) \
  {CpuLevel::constant, leaf, &CpuidRegisters::where, bits, state},
    QNV_KERNEL_LEVELS(QNV_LEVEL)
#undef QNV_LEVEL
};

CpuLevel ProcessorLevel() {
  CpuLevel highest = CpuLevel::kPlain;
  for (const LevelNeeds& needs : kNeeds) {
    const bool has = needs.leaf == 0 || (Cpuid(needs.leaf).*needs.where & needs.bits) == needs.bits;
    if (!has || !SystemSaves(needs.state)) break;
    highest = needs.level;
  }
  return highest;
}

#else

CpuLevel ProcessorLevel() { return CpuLevel::kPlain; }

#endif

}  // namespace

CpuLevel DetectCpuLevel() {
  const CpuLevel level = ProcessorLevel();
#if defined(QNV_HIGHEST_LEVEL)
  // Builds for tests and comparisons stop at a level. What is delivered uses whatever the processor has.
  return level < CpuLevel::QNV_HIGHEST_LEVEL ? level : CpuLevel::QNV_HIGHEST_LEVEL;
#else
  return level;
#endif
}

}  // namespace qnv
