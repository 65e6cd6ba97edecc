// The recorder on Windows and elsewhere.
#include "recorder/platform.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>
#endif

namespace qnv::recorder {

std::string EnvironmentOf(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

#ifdef _WIN32

namespace {

HMODULE OwnModule() {
  HMODULE module = nullptr;
  GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCSTR>(&OwnModule), &module);
  return module;
}

}  // namespace

std::string OwnPath() {
  char path[MAX_PATH];
  const DWORD bytes = GetModuleFileNameA(OwnModule(), path, sizeof path);
  return {path, bytes};
}

uint64_t ProcessNumber() { return GetCurrentProcessId(); }
uint64_t ThreadNumber() { return GetCurrentThreadId(); }

void* OpenLibrary(const std::string& path, std::string* error) {
  const HMODULE library = LoadLibraryA(path.c_str());
  if (library == nullptr) {
    *error = path + ": error " + std::to_string(GetLastError()) + " of the system";
  } else if (library == OwnModule()) {
    *error = path + ": this is the recorder itself";
    return nullptr;
  }
  return reinterpret_cast<void*>(library);
}

void* FindSymbol(void* library, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void Tell(const std::string& line) {
  OutputDebugStringA((line + "\n").c_str());
  std::fprintf(stderr, "%s\n", line.c_str());
}

void OnFork(void (*)()) {}

#else

std::string OwnPath() {
  Dl_info info;
  return dladdr(reinterpret_cast<void*>(&OwnPath), &info) != 0 && info.dli_fname != nullptr ? info.dli_fname : "";
}

uint64_t ProcessNumber() { return static_cast<uint64_t>(getpid()); }
uint64_t ThreadNumber() { return static_cast<uint64_t>(reinterpret_cast<uintptr_t>(&errno)); }

void* OpenLibrary(const std::string& path, std::string* error) {
  void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    const char* const reason = dlerror();
    *error = reason == nullptr ? path : reason;
    return nullptr;
  }
  Dl_info info;
  void* const symbol = dlsym(library, "QNVEnable");
  if (symbol != nullptr && dladdr(symbol, &info) != 0 && info.dli_fname != nullptr && OwnPath() == info.dli_fname) {
    *error = path + ": this is the recorder itself";
    return nullptr;
  }
  return library;
}

void* FindSymbol(void* library, const char* name) { return dlsym(library, name); }

void Tell(const std::string& line) { std::fprintf(stderr, "%s\n", line.c_str()); }

namespace {
[[gnu::destructor]] void EndOfLibrary() { EndOfProcess(); }
}  // namespace

void OnFork(void (*function)()) { pthread_atfork(nullptr, nullptr, function); }

#endif

}  // namespace qnv::recorder

#ifdef _WIN32
extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID) {
  if (reason == DLL_PROCESS_DETACH) qnv::recorder::EndOfProcess();
  return TRUE;
}
#endif
