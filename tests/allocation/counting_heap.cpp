#include "allocation/counting_heap.h"

#include <malloc.h>

extern "C" {
void* __real_malloc(std::size_t bytes);
void* __real_calloc(std::size_t count, std::size_t bytes);
void* __real_realloc(void* block, std::size_t bytes);
void __real_free(void* block);
void* __wrap_malloc(std::size_t bytes);
void* __wrap_calloc(std::size_t count, std::size_t bytes);
void* __wrap_realloc(void* block, std::size_t bytes);
void __wrap_free(void* block);
// The library's questions which instructions the processor has, and whether some are fast. Virtual machines take long
// to answer them, and a million devices ask them.
uint8_t __real__ZN3qnv14DetectCpuLevelEv();
uint8_t __wrap__ZN3qnv14DetectCpuLevelEv();
bool __real__ZN3qnv14HasFastStringsEv();
bool __wrap__ZN3qnv14HasFastStringsEv();
}

uint8_t __wrap__ZN3qnv14DetectCpuLevelEv() {
  static const uint8_t level = __real__ZN3qnv14DetectCpuLevelEv();
  return level;
}

bool __wrap__ZN3qnv14HasFastStringsEv() {
  static const bool fast = __real__ZN3qnv14HasFastStringsEv();
  return fast;
}

namespace {

thread_local bool counting = false;
thread_local uint64_t failing = qnv::test::kNoFailure;
thread_local qnv::test::HeapCounts counts;

bool Refused() {
  if (!counting) return false;
  return counts.allocations++ == failing;
}

void* Taken(void* block) {
  if (block == nullptr) return nullptr;
  ++counts.liveBlocks;
  counts.liveBytes += malloc_usable_size(block);
  return block;
}

void Given(void* block) {
  if (block == nullptr) return;
  if (counting) ++counts.frees;
  --counts.liveBlocks;
  counts.liveBytes -= malloc_usable_size(block);
}

}  // namespace

void* __wrap_malloc(std::size_t bytes) { return Refused() ? nullptr : Taken(__real_malloc(bytes)); }

void* __wrap_calloc(std::size_t count, std::size_t bytes) {
  return Refused() ? nullptr : Taken(__real_calloc(count, bytes));
}

void* __wrap_realloc(void* block, std::size_t bytes) {
  if (Refused()) return nullptr;
  Given(block);
  return Taken(__real_realloc(block, bytes));
}

void __wrap_free(void* block) {
  Given(block);
  __real_free(block);
}

namespace qnv::test {

void BeginCounting() {
  counts.allocations = counts.frees = 0;
  counting = true;
}

HeapCounts EndCounting() {
  counting = false;
  return counts;
}

HeapCounts Heap() { return counts; }

void FailAllocation(uint64_t number) { failing = number; }

}  // namespace qnv::test
