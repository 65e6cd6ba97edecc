// The bytes of a file, in memory or on disk.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "calls/encoding.h"

namespace qnv::calls {

class FileBytes {
 public:
  // Of a file in memory, which must stay.
  FileBytes(const uint8_t* bytes, std::size_t count) : memory_(bytes), size_(count), isOpen_(true) {}
  // Of a file on disk. IsOpen: it could be opened and its size is known.
  explicit FileBytes(const std::string& path);
  ~FileBytes();
  FileBytes(const FileBytes&) = delete;
  FileBytes& operator=(const FileBytes&) = delete;

  bool IsOpen() const { return isOpen_; }
  uint64_t Size() const { return size_; }
  // `count` bytes from `offset` on, valid until the next call. Null beyond the end, and when the disk gives an error.
  const uint8_t* At(uint64_t offset, std::size_t count);

 private:
  const uint8_t* memory_ = nullptr;
  std::FILE* file_ = nullptr;
  uint64_t size_ = 0;
  bool isOpen_ = false;
  Bytes buffer_;
};

}  // namespace qnv::calls
