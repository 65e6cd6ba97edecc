#include "raster/rows/row_kernels.h"

#include "raster/rows/row_tables.h"

namespace qnv {

const RowKernels& KernelsFor(CpuLevel level) {
#if defined(QNV_VECTOR_LEVELS)
  switch (level) {
    case CpuLevel::kSse2: return kSse2RowKernels;
    case CpuLevel::kSsse3: return kSsse3RowKernels;
    case CpuLevel::kAvx2: return kAvx2RowKernels;
    case CpuLevel::kPlain: break;
  }
#else
  static_cast<void>(level);
#endif
  return kPlainRowKernels;
}

}  // namespace qnv
