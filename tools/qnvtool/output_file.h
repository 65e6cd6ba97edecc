// Files that the tool writes.
#pragma once

#include <cstdio>
#include <string>

namespace qnv::tool {

// Throws ToolError (cannot write).
[[noreturn]] void CannotWrite(const std::string& path, const std::string& why);

// A file that goes away again unless it was closed.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::FILE* get() const { return file_; }
  const std::string& path() const { return path_; }

  void Close();

 private:
  const std::string path_;
  std::FILE* file_;
};

}  // namespace qnv::tool
