// Finds the kernel table of a level.
#include "raster/rows/row_kernels.h"

#include "raster/rows/row_tables.h"

namespace qnv {

const RowKernels& KernelsFor(CpuLevel level, bool fastStrings) {
  static constexpr const RowKernels* kTables[] = {
#define QNV_LEVEL(name, ...) &name::kRowKernels,
      QNV_KERNEL_LEVELS(QNV_LEVEL)
#undef QNV_LEVEL
  };
  const RowKernels& table = *kTables[static_cast<std::size_t>(level)];
  return fastStrings && table.withStrings != nullptr ? *table.withStrings : table;
}

}  // namespace qnv
