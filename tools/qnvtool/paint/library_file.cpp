// Opens libraries and finds their functions: LoadLibrary on Windows, dlopen elsewhere.
#include "qnvtool/paint/library_file.h"

#include <fmt/core.h>

#include <filesystem>

#include "qnvtool/base/file_names.h"
#include "qnvtool/base/tool_error.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace qnv::tool {
namespace {

[[noreturn]] void CannotLoad(const std::string& path, const std::string& why) {
  throw ToolError(ExitCode::kLibrary, fmt::format("{}: cannot be loaded: {}", path, why));
}

}  // namespace

#ifdef _WIN32

std::shared_ptr<void> OpenLibrary(const std::string& path) {
  const HMODULE opened = LoadLibraryW(std::filesystem::absolute(PathOf(path)).c_str());
  if (opened == nullptr) CannotLoad(path, fmt::format("error {} of the system", GetLastError()));
  return {opened, [](void* library) { FreeLibrary(static_cast<HMODULE>(library)); }};
}

void* FindSymbol(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

#else

std::shared_ptr<void> OpenLibrary(const std::string& path) {
  const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
  void* const opened = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (opened != nullptr) return {opened, dlclose};
  const char* const text = dlerror();
  std::string message = text == nullptr ? "unknown reason" : text;
  // The message of the loader begins with the path, which CannotLoad puts there too.
  if (message.rfind(file + ": ", 0) == 0) message.erase(0, file.size() + 2);
  CannotLoad(path, message);
}

void* FindSymbol(void* library, const char* name) { return dlsym(library, name); }

#endif

}  // namespace qnv::tool
