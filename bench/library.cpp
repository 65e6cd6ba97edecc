// Opens libraries with the functions of the platform.
#include "library.h"

#include <cstring>

#if !defined(_WIN32)
#include <dlfcn.h>
#include <unistd.h>
#endif

namespace qnv::bench {
namespace {

#if defined(_WIN32)

constexpr const char* kLibraryFile = "QNVDRV10.dll";

void* OpenModule(const std::string& path, std::string& error) {
  // With an absolute path two builds with the same file name are two libraries.
  char full[MAX_PATH];
  const DWORD length = GetFullPathNameA(path.c_str(), MAX_PATH, full, nullptr);
  HMODULE module = length > 0 && length < MAX_PATH ? LoadLibraryA(full) : nullptr;
  if (module == nullptr) error = "cannot open (error " + std::to_string(GetLastError()) + ")";
  return module;
}

void CloseModule(void* module) { FreeLibrary(static_cast<HMODULE>(module)); }

// Copies the address of an exported function, null when there is none, into a function pointer.
void CopyAddress(void* module, const char* name, void* target, std::size_t size) {
  const FARPROC address = GetProcAddress(static_cast<HMODULE>(module), name);
  std::memcpy(target, &address, size);
}

std::string ProgramPath() {
  char path[MAX_PATH];
  const DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
  return {path, length};
}

#else

constexpr const char* kLibraryFile = "libqnvdrv10.so";

void* OpenModule(const std::string& path, std::string& error) {
  void* module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) error = dlerror();
  return module;
}

void CloseModule(void* module) { dlclose(module); }

// Copies the address of an exported function, null when there is none, into a function pointer.
void CopyAddress(void* module, const char* name, void* target, std::size_t size) {
  void* const address = dlsym(module, name);
  std::memcpy(target, &address, size);
}

std::string ProgramPath() {
  char path[4096];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  return length > 0 ? std::string(path, static_cast<std::size_t>(length)) : std::string();
}

#endif

}  // namespace

std::string FileNameOf(const std::string& path) {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string::npos ? path : path.substr(separator + 1);
}

std::string ProgramFolder() {
  const std::string program = ProgramPath();
  return program.substr(0, program.size() - FileNameOf(program).size());
}

std::string Library::DefaultPath() { return ProgramFolder() + kLibraryFile; }

std::unique_ptr<Library> Library::Open(const std::string& path, std::string& error) {
  // A bare file name means the working folder, not the loader's search path.
  const bool bare = path.find_first_of("/\\") == std::string::npos;
  void* const module = OpenModule(bare ? "./" + path : path, error);
  if (module == nullptr) return nullptr;
  std::unique_ptr<Library> library(new Library);
  library->module_ = module;
  library->fileName_ = FileNameOf(path);
#define QNV_BENCH_LOAD(member, name)                                    \
  CopyAddress(module, #name, &library->member, sizeof library->member); \
  if (library->member == nullptr) {                                     \
    error = "does not export " #name;                                   \
    return nullptr;                                                     \
  }
  QNV_BENCH_EXPORTS(QNV_BENCH_LOAD)
#undef QNV_BENCH_LOAD
  return library;
}

Library::~Library() {
  if (module_ != nullptr) CloseModule(module_);
}

}  // namespace qnv::bench
