// Loads a rasteriser from a library file.
#include "qnvtool/paint/rasteriser.h"

#include <fmt/core.h>

#include <filesystem>
#include <type_traits>

#include "qnvtool/base/file_names.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/paint/library_file.h"

namespace qnv::tool {
Rasteriser LoadRasteriser(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(PathOf(path), error)) {
    throw ToolError(ExitCode::kLibrary, fmt::format("{}: no such library file", path));
  }
  Rasteriser table{};
  table.library = OpenLibrary(path);
  void* const opened = table.library.get();
  ForEachFunction(table, [&](const char* name, auto& function) {
    void* const symbol = FindSymbol(opened, name);
    if (symbol == nullptr) {
      throw ToolError(ExitCode::kLibrary, fmt::format("{}: is no rasteriser: it does not export {}", path, name));
    }
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(symbol);
    return true;
  });
  return table;
}

}  // namespace qnv::tool
