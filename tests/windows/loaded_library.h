// The built DLL as this process has it, and further copies of it.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
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

// A copy of the file under another name, loaded beside the linked one; the system has to find another place for it.
class LibraryCopy {
 public:
  LibraryCopy() {
    char folder[MAX_PATH] = {};
    char file[MAX_PATH] = {};
    GetTempPathA(MAX_PATH, folder);
    GetTempFileNameA(folder, "qnv", 0, file);
    path_ = file;
    CopyFileA(PathOf(LinkedLibrary()).c_str(), file, FALSE);
    module_ = LoadLibraryA(file);
  }
  ~LibraryCopy() {
    if (module_ != nullptr) FreeLibrary(module_);
    DeleteFileA(path_.c_str());
  }
  LibraryCopy(const LibraryCopy&) = delete;
  LibraryCopy& operator=(const LibraryCopy&) = delete;

  HMODULE module() const { return module_; }

 private:
  std::string path_;
  HMODULE module_ = nullptr;
};

}  // namespace qnv::test
