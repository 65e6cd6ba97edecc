// The work area of span output: memory from the C heap that grows with the largest request.
#include "output/scratch_buffer.h"

#include <cstdlib>

namespace qnv {
namespace {

// Bytes.
constexpr uint32_t kDefaultCapacity = 1024;

}  // namespace

ScratchBuffer::ScratchBuffer(uint32_t bytes)
    : capacity_(bytes != 0 ? bytes : kDefaultCapacity), data_(static_cast<uint8_t*>(std::malloc(capacity_))) {}

ScratchBuffer::~ScratchBuffer() { std::free(data_); }

void* ScratchBuffer::Acquire(uint32_t size) {
  if (busy_ != 0) return nullptr;
  if (capacity_ < size || data_ == nullptr) {
    std::free(data_);
    data_ = static_cast<uint8_t*>(std::malloc(size > capacity_ ? size : capacity_));
    if (data_ == nullptr) return nullptr;
  }
  busy_ = 1;
  return data_;
}

int ScratchBuffer::Release() {
  if (busy_ == 0) return 0;
  busy_ = 0;
  return 1;
}

}  // namespace qnv
