// The levels of row kernels as an enumeration, and which of them this processor can run.
#pragma once

#include <cstddef>
#include <cstdint>

#include "raster/rows/levels.h"

namespace qnv {

// In ascending order: a processor that has a level has those below it.
enum class CpuLevel : uint8_t {
#define QNV_LEVEL(name, constant, ...) constant,
  QNV_KERNEL_LEVELS(QNV_LEVEL)
#undef QNV_LEVEL
};

// The highest level whose instructions the processor has and whose registers the operating system saves.
CpuLevel DetectCpuLevel();

// Whether the processor says that its string instructions are fast (ERMS).
bool HasFastStrings();

}  // namespace qnv
