// A block of memory that a device keeps from call to call, so that calls do not allocate each time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace qnv {

// A call may use the memory until it returns. The block grows when a call needs more and never shrinks.
class WorkBuffer {
 public:
  WorkBuffer() = default;
  ~WorkBuffer() { std::free(data_); }
  WorkBuffer(const WorkBuffer&) = delete;
  WorkBuffer& operator=(const WorkBuffer&) = delete;

  // Room for at least `count` values, uninitialised; null without memory. What was taken before is lost.
  template <class T>
  T* Take(std::size_t count) {
    static_assert(alignof(T) <= alignof(std::max_align_t));
    if (count > SIZE_MAX / sizeof(T)) return nullptr;
    return static_cast<T*>(Reserve(count * sizeof(T)));
  }

 private:
  void* Reserve(std::size_t bytes) {
    if (bytes <= capacity_ && data_ != nullptr) return data_;
    std::free(data_);
    capacity_ = 0;
    data_ = static_cast<uint8_t*>(std::malloc(bytes));
    if (data_ != nullptr) capacity_ = bytes;
    return data_;
  }

  uint8_t* data_ = nullptr;
  std::size_t capacity_ = 0;
};

}  // namespace qnv
