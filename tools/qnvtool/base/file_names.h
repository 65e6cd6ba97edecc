// Names of files as paths. Programs get names as bytes; on Windows these are UTF-8, which the manifest of qnvtool.exe
// asks for and std::filesystem does not assume.
#pragma once

#include <filesystem>
#include <string>

namespace qnv::tool {

#ifdef _WIN32

inline std::filesystem::path PathOf(const std::string& name) { return std::u8string(name.begin(), name.end()); }

inline std::string FileNameOf(const std::filesystem::path& path) {
  const std::u8string name = path.u8string();
  return {name.begin(), name.end()};
}

#else

inline std::filesystem::path PathOf(const std::string& name) { return name; }

inline std::string FileNameOf(const std::filesystem::path& path) { return path.string(); }

#endif

}  // namespace qnv::tool
