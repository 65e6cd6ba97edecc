// A work area that a device lends to its span output.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv {

// A work area of the device, lent to one operation at a time.
class ScratchBuffer {
 public:
  // bytes of 0 count as 1024.
  explicit ScratchBuffer(uint32_t bytes);
  ~ScratchBuffer();
  ScratchBuffer(const ScratchBuffer&) = delete;
  ScratchBuffer& operator=(const ScratchBuffer&) = delete;

  // False when the first block could not be had.
  bool HasMemory() const { return data_ != nullptr; }

  // `size` bytes until Release, uninitialised; null while lent out, or without memory. Intended: a request
  // above the first capacity gets a block of its own each time.
  void* Acquire(uint32_t size);

  // 1, or 0 when nothing was lent out.
  int Release();

  uint32_t capacity() const { return capacity_; }

 private:
  uint32_t capacity_;
  uint8_t* data_;
  uint16_t busy_ = 0;
};

}  // namespace qnv
