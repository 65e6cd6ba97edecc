// Files that the tool writes: complete or not at all.
#pragma once

#include <cstdio>
#include <string>

namespace qnv::tool {

// Throws ToolError (cannot write).
[[noreturn]] void CannotWrite(const std::string& path, const std::string& why);

// A file that takes its name only in Close(), when all of it is written. Until then a file that had the name before is
// untouched, however the program ends. Where the system offers files without a name (Linux), nothing at all is left
// behind; elsewhere a killed program leaves a file named ".NAME.PROCESS.part". A device, a pipe and the like is
// written directly; of a symbolic link, the file that it leads to is replaced. The path "-" means standard output,
// which must not be a terminal and stays open.
class OutputFile {
 public:
  // Throws ToolError: cannot write, or usage for a terminal.
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::FILE* get() const { return file_; }
  const std::string& path() const { return path_; }

  // Throws ToolError (cannot write) with the reason that errno gives.
  [[noreturn]] void Fail() const;

  void Close();

 private:
  void OpenBesideTarget();

  const std::string path_;  // for messages: as the user wrote it, or "standard output"
  std::string target_;      // what is replaced; empty: written directly
  std::string unfinished_;  // name beside the target
  bool isNamed_ = false;    // unfinished_ exists
  std::FILE* file_ = nullptr;
};

}  // namespace qnv::tool
