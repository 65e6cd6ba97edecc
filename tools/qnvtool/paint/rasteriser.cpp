// Loads a rasteriser from a library file.
#include "qnvtool/paint/rasteriser.h"

#include <fmt/core.h>

#include <filesystem>

#include "qnvtool/base/tool_error.h"
#include "qnvtool/paint/library_file.h"

namespace qnv::tool {
namespace {

// Finds an exported function. Throws ToolError when it is missing.
template <class Function>
void Resolve(Function& function, const std::string& path, void* library, const char* name) {
  void* const symbol = FindSymbol(library, name);
  if (symbol == nullptr) {
    throw ToolError(ExitCode::kLibrary, fmt::format("{}: is no rasteriser: it does not export {}", path, name));
  }
  function = reinterpret_cast<Function>(symbol);
}

}  // namespace

Rasteriser LoadRasteriser(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    throw ToolError(ExitCode::kLibrary, fmt::format("{}: no such library file", path));
  }
  Rasteriser table{};
  table.library = OpenLibrary(path);
  void* const opened = table.library.get();
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
