// The levels as namespaces, all declared alike: two tables and a function for every entry. A level defines the
// functions that it specialises, and its tables name for each entry the function to take, its own or one of a level
// below. (A function that no level defined is found by the linker.) kPixelRows may be left out where RowKernels::image
// points at the one of a level below.
#pragma once

#include "raster/rows/row_kernels.h"

namespace qnv {

#define QNV_DECLARE_KERNEL(name) kernel::name name;
#define QNV_DECLARE_LEVEL(level, ...)  \
  namespace level {                    \
  extern const RowKernels kRowKernels; \
  extern const PixelRows kPixelRows;   \
  QNV_ROW_KERNELS(QNV_DECLARE_KERNEL)  \
  QNV_PIXEL_ROWS(QNV_DECLARE_KERNEL)   \
  }
QNV_KERNEL_LEVELS(QNV_DECLARE_LEVEL)
#undef QNV_DECLARE_LEVEL
#undef QNV_DECLARE_KERNEL

}  // namespace qnv
