// Blocks of host memory that are used again from case to case.
#include "random/call_memory.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define QNV_POISON 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define QNV_POISON 1
#endif
#if defined(QNV_POISON)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(at, size) (void)(at), (void)(size)
#define ASAN_UNPOISON_MEMORY_REGION(at, size) (void)(at), (void)(size)
#endif

namespace qnv::test {
namespace {

constexpr std::size_t kPlane = 65536;
constexpr std::size_t kWatched = 8192;  // bytes before a plane that must stay as they are
constexpr uint8_t kUntouched = 0xA5;

void Require(bool fits, std::size_t size) {
  if (fits) return;
  std::fprintf(stderr, "a random case asks for %u bytes of host memory\n", static_cast<unsigned>(size));
  std::abort();
}

}  // namespace

PlaneMemory::PlaneMemory() : block_(kPlane, kUntouched) {}

uint8_t* PlaneMemory::Place(std::size_t size, std::size_t tail) {
  Require(size + tail <= kPlane, size);
  end_ = block_.data() + kPlane - tail;
  start_ = end_ - size;
  const std::size_t before = kPlane - tail - size;
  watched_ = start_ - std::min(before, kWatched);
  FenceOff(true);
  return start_;
}

// Under the address sanitizer the bytes around the plane are out of bounds, but for the looks taken at them here.
void PlaneMemory::FenceOff(bool fenced) const {
  const uint8_t* block = block_.data();
  ASAN_UNPOISON_MEMORY_REGION(block, kPlane);
  if (!fenced) return;
  ASAN_POISON_MEMORY_REGION(block, static_cast<std::size_t>(start_ - block));
  ASAN_POISON_MEMORY_REGION(end_, static_cast<std::size_t>(block + kPlane - end_));
}

bool PlaneMemory::SurroundingsIntact() const {
  if (start_ == nullptr) return block_.FencesIntact();
  FenceOff(false);
  const bool intact = AllBytesAre(kUntouched, watched_, start_) &&
                      AllBytesAre(kUntouched, end_, block_.data() + kPlane) && block_.FencesIntact();
  FenceOff(true);
  return intact;
}

void PlaneMemory::Release() {
  if (start_ == nullptr) return;
  FenceOff(false);
  std::fill(watched_, block_.data() + kPlane, kUntouched);
  start_ = nullptr;
}

InputMemory::InputMemory() {
  for (Block& block : blocks_) {
    block.memory = std::make_unique<FencedBuffer>(kBlock, uint8_t{0});
    block.expected.reserve(4096);
  }
}

uint8_t* InputMemory::Take(std::size_t size) {
  Require(size <= kBlock && used_ < kBlocks, size);
  Block& block = blocks_[used_++];
  block.size = size;
  block.start = block.memory->data() + kBlock - size;
  ASAN_UNPOISON_MEMORY_REGION(block.start, size);
  ASAN_POISON_MEMORY_REGION(block.memory->data(), kBlock - size);
  return block.start;
}

void InputMemory::Snapshot() {
  for (std::size_t i = 0; i < used_; ++i) {
    Block& block = blocks_[i];
    block.expected.assign(block.start, block.start + block.size);
  }
}

uint8_t* InputMemory::ExpectedOf(const void* start) {
  for (std::size_t i = 0; i < used_; ++i) {
    if (blocks_[i].start == start) return blocks_[i].expected.data();
  }
  std::abort();
}

int InputMemory::FirstChanged() const {
  for (std::size_t i = 0; i < used_; ++i) {
    const Block& block = blocks_[i];
    if (block.size != 0 && std::memcmp(block.start, block.expected.data(), block.size) != 0) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace qnv::test
