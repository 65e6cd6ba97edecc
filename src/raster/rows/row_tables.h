// Declares a namespace for each level, all alike: two tables and a function for every kernel. A level defines the
// functions that it specialises; its tables name for each entry the function to call, its own or one of a level below.
// A table that names a function its level does not define fails to link. A level without image kernels of its own does
// not define kPixelRows; its RowKernels::image points to the table of a level below.
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

#if defined(__x86_64__) || defined(__i386__)
namespace avx2 {
// Copies by vectors, but long rows by string instructions.
kernel::CopyRow CopyByString;
}  // namespace avx2
#endif

}  // namespace qnv
