// Detects the level: checks the list in levels.h from the lowest level on and stops at the first that the processor or
// the operating system lacks. Also asks for fast string instructions.
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

// The registers of a CPUID leaf; all zero when the processor does not have the leaf.
CpuidRegisters Cpuid(uint32_t leaf) {
  CpuidRegisters r;
  if (__get_cpuid_count(leaf, 0, &r.a, &r.b, &r.c, &r.d) == 0) return {};
  return r;
}

// Whether the operating system saves these registers when it switches threads. state: bits of XCR0.
bool SystemSaves(uint32_t state) {
  if (state == 0) return true;
  constexpr uint32_t kNeeded = bit_OSXSAVE | bit_AVX;
  if ((Cpuid(1).c & kNeeded) != kNeeded) return false;
  uint32_t low, high;
  __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return (low & state) == state;
}

// What a level needs: bits of the registers of a CPUID leaf, and register sets that the operating system saves.
struct LevelNeeds {
  CpuLevel level;
  uint32_t leaf, b, c, d;
  uint32_t state;
};

constexpr LevelNeeds kNeeds[] = {
#define QNV_LEVEL(name, constant, options, leaf, b, c, d, state) {CpuLevel::constant, leaf, b, c, d, state},
    QNV_KERNEL_LEVELS(QNV_LEVEL)
#undef QNV_LEVEL
};

bool Announced(const LevelNeeds& needs) {
  if (needs.leaf == 0) return true;  // every processor has it
  const CpuidRegisters has = Cpuid(needs.leaf);
  return (has.b & needs.b) == needs.b && (has.c & needs.c) == needs.c && (has.d & needs.d) == needs.d;
}

CpuLevel ProcessorLevel() {
  CpuLevel highest = CpuLevel::kPlain;
  for (const LevelNeeds& needs : kNeeds) {
    if (!Announced(needs) || !SystemSaves(needs.state)) break;
    highest = needs.level;
  }
  return highest;
}

#else

CpuLevel ProcessorLevel() { return CpuLevel::kPlain; }

#endif

}  // namespace

bool HasFastStrings() {
#if defined(__x86_64__) || defined(__i386__)
  constexpr uint32_t kErms = 1u << 9;
  return (Cpuid(7).b & kErms) != 0;
#else
  return false;
#endif
}

CpuLevel DetectCpuLevel() {
  const CpuLevel level = ProcessorLevel();
#if defined(QNV_HIGHEST_LEVEL)
  // For tests and comparisons the library is also built with a highest level. The delivered library has no limit.
  return level < CpuLevel::QNV_HIGHEST_LEVEL ? level : CpuLevel::QNV_HIGHEST_LEVEL;
#else
  return level;
#endif
}

}  // namespace qnv
