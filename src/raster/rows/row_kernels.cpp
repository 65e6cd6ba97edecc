// Finds the kernel table of a level.
#include "raster/rows/row_kernels.h"

#include "raster/rows/row_tables.h"

namespace qnv {

const RowKernels& KernelsFor(CpuLevel level, bool fastStrings) {
#if defined(__x86_64__) || defined(__i386__)
  if (level == CpuLevel::kAvx2 && fastStrings) return avx2::kFastStringKernels;
#else
  static_cast<void>(fastStrings);
#endif
  static constexpr const RowKernels* kTables[] = {
#define QNV_LEVEL(name, ...) &name::kRowKernels,
      QNV_KERNEL_LEVELS(QNV_LEVEL)
#undef QNV_LEVEL
  };
  return *kTables[static_cast<std::size_t>(level)];
}

}  // namespace qnv
