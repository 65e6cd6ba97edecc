// MulDiv of the system on Windows, our own elsewhere.
#include "raster/mul_div.h"

#if defined(_WIN32)
extern "C" __declspec(dllimport) int __stdcall MulDiv(int number, int numerator, int denominator);

int32_t qnv::MulDiv(int32_t value, int32_t numerator, int32_t denominator) {
  return ::MulDiv(value, numerator, denominator);
}
#else
int32_t qnv::MulDiv(int32_t value, int32_t numerator, int32_t denominator) {
  return PortableMulDiv(value, numerator, denominator);
}
#endif
