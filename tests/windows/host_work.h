// The built DLL as this process has it, what it has to give away, and a host's work through all of that on every class
// of device, wide enough for the library's vectors. How the functions are called is the caller's affair.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/published_exports.h"

namespace qnv::test {

// The library that this program is linked with.
inline HMODULE LinkedLibrary() { return GetModuleHandleA("QNVDRV10.dll"); }

inline std::string PathOf(HMODULE module) {
  char path[MAX_PATH] = {};
  GetModuleFileNameA(module, path, MAX_PATH);
  return path;
}

// Calls the exported function of that name and returns its result.
using HostCaller = std::function<uint32_t(const char* name, const std::vector<uint32_t>& arguments)>;

struct WorkResult {
  std::vector<uint8_t> pictures;  // the bands and tag planes after all calls
  std::vector<uint32_t> results;  // of every call that returns no address
  std::set<std::string> names;    // of the functions called
};

WorkResult DoHostWork(const HostCaller& call);

// A caller of the plain kind.
HostCaller PlainCaller(HMODULE module);

// What fills an argument.
inline uint32_t Slot(const void* address) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address)); }
inline uint32_t Slot(int32_t value) { return static_cast<uint32_t>(value); }
inline uint32_t Slot(uint32_t value) { return value; }

}  // namespace qnv::test
