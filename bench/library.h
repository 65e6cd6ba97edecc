// A built library, opened by path. Only its exported functions are used.
#pragma once

#include <memory>
#include <string>

#include "platform_header.h"

namespace qnv::bench {

// One line for each exported function: the member's name, the export's name.
#define QNV_BENCH_EXPORTS(X)         \
  X(Enable, QNVEnable)               \
  X(Disable, QNVDisable)             \
  X(GetDeviceInfo, QNVGetDeviceInfo) \
  X(Control, QNVControl)             \
  X(ColorInfo, QNVColorInfo)         \
  X(RealizeObject, QNVRealizeObject) \
  X(Pixel, QNVPixel)                 \
  X(PolyPixel, QNVPolyPixel)         \
  X(BitBlt, QNVDevBitBlt)            \
  X(Output, QNVOutput)               \
  X(ExtTextOut, QNVDevExtTextOut)    \
  X(StretchDIBits, QNVStretchDIBits) \
  X(SetDIBitsToDevice, QNVDevSetDIBitsToDevice)

class Library {
 public:
  // Null, with a sentence in `error`, when the file cannot be opened or lacks an export.
  static std::unique_ptr<Library> Open(const std::string& path, std::string& error);

  // The library that lies beside this program.
  static std::string DefaultPath();

  ~Library();
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;

  const std::string& fileName() const { return fileName_; }  // without its folder

#define QNV_BENCH_MEMBER(member, name) decltype(&::name) member = nullptr;
  QNV_BENCH_EXPORTS(QNV_BENCH_MEMBER)
#undef QNV_BENCH_MEMBER

 private:
  Library() = default;

  void* module_ = nullptr;
  std::string fileName_;
};

// The folder of this program, with its last separator.
std::string ProgramFolder();

// The part of a path behind its last separator.
std::string FileNameOf(const std::string& path);

}  // namespace qnv::bench
