// Host memory of any size that ends at an inaccessible page. What nobody writes is zero and takes no memory, so that a
// bitmap of gigabytes can be promised to the library, which reads a few rows of it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv::test {

class Arena {
 public:
  explicit Arena(std::size_t capacity);
  ~Arena();
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  // The last `size` bytes before the fence; null when there are not as many.
  uint8_t* Last(uint64_t size) const { return size <= capacity_ ? end_ - static_cast<std::size_t>(size) : nullptr; }

 private:
  uint8_t* mapping_ = nullptr;
  uint8_t* end_ = nullptr;
  std::size_t capacity_ = 0;
};

}  // namespace qnv::test
