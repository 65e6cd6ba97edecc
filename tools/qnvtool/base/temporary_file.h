// Room for data that memory should not hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace qnv::tool {

// A file without a name in the folder TMPDIR, or else /var/tmp or /tmp. It is gone when the object is, or when the
// program ends in any way.
class TemporaryFile {
 public:
  // `what` says in messages what the file is for. Throws ToolError (cannot write).
  explicit TemporaryFile(std::string what);
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // Writes `count` bytes at `offset`; what was never written before it reads as zeros. Throws ToolError (cannot write),
  // for a full disk, too.
  void Write(uint64_t offset, const void* from, std::size_t count);

  // Reads up to `count` bytes, fewer at the end only. Throws ToolError (cannot write).
  std::size_t Read(uint64_t offset, void* to, std::size_t count) const;

 private:
  [[noreturn]] void Fail() const;

  const std::string what_;
  std::FILE* file_ = nullptr;
};

// Reads up to `count` bytes at `offset` of an open file, fewer at the end only. Returns count + 1 after an error, which
// errno tells. Changes the position of the file.
std::size_t ReadAt(std::FILE* file, uint64_t offset, void* to, std::size_t count);

}  // namespace qnv::tool
