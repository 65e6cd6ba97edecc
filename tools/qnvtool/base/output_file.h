// Files that the tool writes: complete or not at all.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>

namespace qnv::tool {

// Throws ToolError (cannot write).
[[noreturn]] void CannotWrite(const std::string& path, const std::string& why);

// A file that gets its name in Close(), when all of it is written. Until then an older file of that name stays as it
// is, however the program ends. On Linux the new file has no name before, so that nothing is left behind, except that a
// program that is killed in the moment of replacing an older file, or anywhere on other systems, may leave a file named
// ".NAME.PROCESS.part". Devices and pipes are written directly. Where the path is a
// symbolic link, the file that it leads to is replaced. The path "-" means standard output, which must not be a
// terminal and stays open.
class OutputFile {
 public:
  // Throws ToolError: cannot write, or usage for a terminal.
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::FILE* get() const { return file_; }
  const std::string& path() const { return path_; }

  // Whether the file can be read and written at any place: not standard output, devices and pipes.
  bool isSeekable() const { return !target_.empty(); }

  // Throws ToolError (cannot write).
  void Write(const void* bytes, std::size_t size);

  // Throws ToolError (cannot write) with the reason that errno gives.
  [[noreturn]] void Fail() const;

  // Ends the file and gives it its name. Throws ToolError (cannot write).
  void Close();

 private:
  void OpenBesideTarget();

  const std::string path_;  // for messages: as the user wrote it, or "standard output"
  std::string target_;      // the file to replace; empty: written directly
  std::string unfinished_;  // name beside the target
  bool isNamed_ = false;    // unfinished_ exists
  std::FILE* file_ = nullptr;
};

}  // namespace qnv::tool
