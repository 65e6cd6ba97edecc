// The built DLL as this process has it, and what it has to give away.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace qnv::test {

struct PublishedExport {
  const char* name;
  uint32_t ordinal;
};

inline constexpr PublishedExport kPublishedExports[] = {
    {"QNVDevBitBlt", 1},      {"QNVColorInfo", 2},
    {"QNVControl", 3},        {"QNVDisable", 4},
    {"QNVEnable", 5},         {"QNVOutput", 8},
    {"QNVPixel", 9},          {"QNVRealizeObject", 10},
    {"QNVDevExtTextOut", 14}, {"QNVDevSetDIBitsToDevice", 21},
    {"QNVStretchDIBits", 28}, {"QNVGetDeviceInfo", 100},
    {"QNVPolyPixel", 109},
};

// The library that this program is linked with.
inline HMODULE LinkedLibrary() { return GetModuleHandleA("QNVDRV10.dll"); }

inline std::string PathOf(HMODULE module) {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(module, path, MAX_PATH);
  return path;
}

}  // namespace qnv::test
