// The instruction sets that row kernels exist for.
#pragma once

#include <cstdint>

namespace qnv {

enum class CpuLevel : uint8_t {
  kPlain,  // no vector instructions asked for
  kSse2,
  kSsse3,
  kAvx2,
};

// The highest level that the processor has and the operating system saves the registers of.
CpuLevel DetectCpuLevel();

}  // namespace qnv
