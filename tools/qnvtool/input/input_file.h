// A file that is read at any place, in pieces, so that memory does not grow with its size.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "qnvtool/base/file_bytes.h"

namespace qnv::tool {

class InputFile {
 public:
  virtual ~InputFile() = default;
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  // For messages.
  const std::string& name() const { return name_; }
  uint64_t size() const { return size_; }

  // Copies up to `count` bytes from `offset` on, fewer only at the end. Throws ToolError (bad input) when the file
  // cannot be read.
  virtual std::size_t Read(uint64_t offset, void* to, std::size_t count) const = 0;

  // The first `count` bytes, or all.
  Bytes Head(std::size_t count) const;
  // The whole file. Throws ToolError (bad input) when it has more than `limit` bytes; `what` says what the file is.
  Bytes All(std::size_t limit, const char* what) const;

 protected:
  InputFile(std::string name, uint64_t size) : name_(std::move(name)), size_(size) {}

 private:
  const std::string name_;
  const uint64_t size_;
};

using Input = std::shared_ptr<const InputFile>;

// Opens a file, "-" being standard input. What can be read only once, such as a pipe, is copied to a temporary file.
// Throws ToolError (bad input) naming the file when it cannot be opened or read, is a folder or is empty.
Input OpenInput(const std::string& path);

// Bytes in memory.
Input InputOf(Bytes bytes, std::string name);

// A part of another file. Requires: it lies inside.
Input PartOf(Input whole, uint64_t offset, uint64_t size);

}  // namespace qnv::tool
