// The work area that a device keeps for its span output, so that an ordinary call allocates nothing.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv {

// Lent to one operation at a time.
class ScratchBuffer {
 public:
  // bytes: the first capacity; 0 means 1024.
  explicit ScratchBuffer(uint32_t bytes);
  ~ScratchBuffer();
  ScratchBuffer(const ScratchBuffer&) = delete;
  ScratchBuffer& operator=(const ScratchBuffer&) = delete;

  // False when the constructor could not allocate.
  bool HasMemory() const { return data_ != nullptr; }

  // Lends `size` uninitialised bytes until Release; null while lent out, or without memory. Intended: the capacity
  // stays what it was at first, so every request above it allocates anew.
  void* Acquire(uint32_t size);

  // Ends the loan. 1, or 0 when nothing was lent out.
  int Release();

  uint32_t capacity() const { return capacity_; }

 private:
  uint32_t capacity_;
  uint8_t* data_;
  uint16_t busy_ = 0;  // 1 while lent out
};

}  // namespace qnv
