// A block of host memory between two fences. The fences are canaries; where the platform offers it the block
// also ends at an unreadable page, so that one byte too many stops the test at once.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace qnv::test {

bool AllBytesAre(uint8_t value, const uint8_t* begin, const uint8_t* end);

class FencedBuffer {
 public:
  FencedBuffer(std::size_t size, uint8_t fill);
  ~FencedBuffer();
  FencedBuffer(const FencedBuffer&) = delete;
  FencedBuffer& operator=(const FencedBuffer&) = delete;

  uint8_t* data() { return data_; }
  const uint8_t* data() const { return data_; }
  std::size_t size() const { return size_; }
  void Fill(uint8_t value);

  // True while no byte outside the block has changed.
  bool FencesIntact() const;

 private:
  uint8_t* mapping_ = nullptr;
  std::size_t mappingSize_ = 0;
  uint8_t* data_ = nullptr;
  std::size_t size_ = 0;
};

// Read-only input of a call at the very end of a fenced block, so that reading past it stops the test.
class FencedInput {
 public:
  explicit FencedInput(const std::vector<uint8_t>& bytes) : buffer_(bytes.size(), 0), original_(bytes) {
    std::copy(bytes.begin(), bytes.end(), buffer_.data());
  }
  const void* data() const { return buffer_.data(); }
  bool Unchanged() const {
    return buffer_.FencesIntact() && std::equal(original_.begin(), original_.end(), buffer_.data());
  }

 private:
  FencedBuffer buffer_;
  std::vector<uint8_t> original_;
};

}  // namespace qnv::test
