// Runs the floating-point operations of an image with default settings, whatever the host has set.
#pragma once

#include <cfloat>

#if defined(__SSE2__) || defined(__x86_64__) || defined(_M_X64) || (defined(_M_IX86_FP) && _M_IX86_FP >= 2)
#define QNV_HAS_MXCSR 1
#include <xmmintrin.h>
#else
#define QNV_HAS_MXCSR 0
#endif

namespace qnv {

// Every operation must round to double for all builds to paint the same bits.
static_assert(FLT_EVAL_METHOD == 0, "source mapping needs double arithmetic without excess precision (SSE2 on x86)");

// For the lifetime of the object results are rounded to nearest, no operation traps, and subnormal numbers are not
// replaced by zero. The destructor restores the settings of the host and its exception flags.
class DefaultRounding {
 public:
#if QNV_HAS_MXCSR
  DefaultRounding() : hosts_(_mm_getcsr()) { _mm_setcsr(kDefault); }
  ~DefaultRounding() { _mm_setcsr(hosts_); }
#else
  DefaultRounding() = default;
  ~DefaultRounding() {}
#endif
  DefaultRounding(const DefaultRounding&) = delete;
  DefaultRounding& operator=(const DefaultRounding&) = delete;

#if QNV_HAS_MXCSR
 private:
  static constexpr unsigned kDefault = 0x1F80;  // all exceptions masked
  const unsigned hosts_;
#endif
};

}  // namespace qnv
