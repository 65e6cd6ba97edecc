// The levels of row kernels: one instruction set each, lowest first. Detection, kernel tables, tests, the build and
// the benchmark script all read this list. A new level is a line here and a file rows_NAME.cpp that defines
// NAME::kRowKernels (more files with the suffix _NAME if one is not enough).
//
// X(NAME, constant of CpuLevel, compiler options of the level's files,
//   CPUID leaf, and the bits of its registers EBX, ECX and EDX that announce the instructions; leaf 0: every processor
//   has them,
//   bits of XCR0: registers that the operating system must save)
//
// avx512 asks for VBMI, which the first processors with AVX-512 lack: those run slower while they use 64-byte vectors.
// The registers beside those of avx2 are the mask registers and all of the 64-byte vectors.
//
// The build reads the list as text: one X(...) a line, the first three arguments on it.
#pragma once

#if defined(__x86_64__) || defined(__i386__)
#define QNV_KERNEL_LEVELS(X)                                                                                       \
  X(plain, kPlain, "", 0, 0, 0, 0, 0)                                                                              \
  X(sse2, kSse2, "-msse2", 1, 0, 0, bit_SSE2, 0)                                                                   \
  X(ssse3, kSsse3, "-mssse3", 1, 0, bit_SSSE3, 0, 0)                                                               \
  X(avx2, kAvx2, "-mavx2", 7, bit_AVX2, 0, 0, 0x06)                                                                \
  X(avx512, kAvx512, "-mavx512f -mavx512bw -mavx512vl -mavx512vbmi", 7, bit_AVX512F | bit_AVX512BW | bit_AVX512VL, \
    bit_AVX512VBMI, 0, 0xE6)
#else
#define QNV_KERNEL_LEVELS(X) X(plain, kPlain, "", 0, 0, 0, 0, 0)
#endif
