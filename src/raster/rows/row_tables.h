// The kernel tables, one an instruction set, each in the file of that name.
#pragma once

#include "raster/rows/row_kernels.h"

namespace qnv {

extern const RowKernels kPlainRowKernels;

#if defined(__SSE2__)
#define QNV_VECTOR_LEVELS 1
extern const RowKernels kSse2RowKernels;
extern const RowKernels kSsse3RowKernels;
extern const RowKernels kAvx2RowKernels;
#endif

namespace plain {

void SwapRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels);

}  // namespace plain

}  // namespace qnv
