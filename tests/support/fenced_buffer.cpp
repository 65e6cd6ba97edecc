// Fenced memory: an unreadable page behind the block on Linux, canaries around it elsewhere.
#include "support/fenced_buffer.h"

#include <cstdlib>
#include <cstring>

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace qnv::test {
namespace {

constexpr std::size_t kFence = 4096;
constexpr uint8_t kCanary = 0xA5;

}  // namespace

bool AllBytesAre(uint8_t value, const uint8_t* begin, const uint8_t* end) {
  const std::size_t bytes = static_cast<std::size_t>(end - begin);
  return bytes == 0 || (*begin == value && std::memcmp(begin, begin + 1, bytes - 1) == 0);
}

FencedBuffer::FencedBuffer(std::size_t size, uint8_t fill) : size_(size) {
#if defined(__linux__)
  const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t body = (size + kFence + page - 1) / page * page;
  mappingSize_ = body + page;
  void* mapping = mmap(nullptr, mappingSize_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED || mprotect(static_cast<uint8_t*>(mapping) + body, page, PROT_NONE) != 0) std::abort();
  mapping_ = static_cast<uint8_t*>(mapping);
  data_ = mapping_ + body - size;
  std::memset(mapping_, kCanary, body);
#else
  mappingSize_ = size + 2 * kFence;
  mapping_ = static_cast<uint8_t*>(std::malloc(mappingSize_));
  if (mapping_ == nullptr) std::abort();
  data_ = mapping_ + kFence;
  std::memset(mapping_, kCanary, mappingSize_);
#endif
  Fill(fill);
}

FencedBuffer::~FencedBuffer() {
#if defined(__linux__)
  munmap(mapping_, mappingSize_);
#else
  std::free(mapping_);
#endif
}

void FencedBuffer::Fill(uint8_t value) {
  if (size_ != 0) std::memset(data_, value, size_);
}

bool FencedBuffer::FencesIntact() const {
#if defined(__linux__)
  return AllBytesAre(kCanary, mapping_, data_);
#else
  return AllBytesAre(kCanary, mapping_, data_) && AllBytesAre(kCanary, data_ + size_, mapping_ + mappingSize_);
#endif
}

}  // namespace qnv::test
