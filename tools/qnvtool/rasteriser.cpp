#include "rasteriser.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <filesystem>

#include "tool_error.h"

namespace qnv::tool {
namespace {

template <class Function>
void Resolve(Function& function, const std::string& path, void* library, const char* name) {
  void* const symbol = dlsym(library, name);
  if (symbol == nullptr) {
    throw ToolError(ExitCode::kLibrary, fmt::format("{}: is no rasteriser: it does not export {}", path, name));
  }
  function = reinterpret_cast<Function>(symbol);
}

// The loader looks for a bare name in the system's folders; the user means a file.
std::string AsFilePath(const std::string& path) { return path.find('/') == std::string::npos ? "./" + path : path; }

// The loader's messages repeat the path that the caller prints already.
std::string LoaderMessage(const std::string& path) {
  const char* const text = dlerror();
  std::string message = text == nullptr ? "unknown reason" : text;
  if (message.rfind(path + ": ", 0) == 0) message.erase(0, path.size() + 2);
  return message;
}

}  // namespace

Rasteriser LinkedRasteriser() {
  return {QNVEnable,
          QNVDisable,
          QNVGetDeviceInfo,
          QNVControl,
          QNVColorInfo,
          QNVRealizeObject,
          QNVPixel,
          QNVPolyPixel,
          QNVDevBitBlt,
          QNVOutput,
          QNVDevExtTextOut,
          QNVStretchDIBits,
          QNVDevSetDIBitsToDevice,
          nullptr};
}

Rasteriser LoadRasteriser(const std::string& path) {
  const std::string file = AsFilePath(path);
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) {
    throw ToolError(ExitCode::kLibrary, fmt::format("{}: no such library file", path));
  }
  void* const opened = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (opened == nullptr) {
    throw ToolError(ExitCode::kLibrary, fmt::format("{}: cannot be loaded: {}", path, LoaderMessage(file)));
  }
  Rasteriser table{};
  table.library = std::shared_ptr<void>(opened, dlclose);
  Resolve(table.enable, path, opened, "QNVEnable");
  Resolve(table.disable, path, opened, "QNVDisable");
  Resolve(table.getDeviceInfo, path, opened, "QNVGetDeviceInfo");
  Resolve(table.control, path, opened, "QNVControl");
  Resolve(table.colorInfo, path, opened, "QNVColorInfo");
  Resolve(table.realizeObject, path, opened, "QNVRealizeObject");
  Resolve(table.pixel, path, opened, "QNVPixel");
  Resolve(table.polyPixel, path, opened, "QNVPolyPixel");
  Resolve(table.bitBlt, path, opened, "QNVDevBitBlt");
  Resolve(table.output, path, opened, "QNVOutput");
  Resolve(table.extTextOut, path, opened, "QNVDevExtTextOut");
  Resolve(table.stretchDIBits, path, opened, "QNVStretchDIBits");
  Resolve(table.setDIBitsToDevice, path, opened, "QNVDevSetDIBitsToDevice");
  return table;
}

}  // namespace qnv::tool
