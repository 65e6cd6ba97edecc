#include "extremes/arena.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

namespace qnv::test {
namespace {

std::size_t Page() { return static_cast<std::size_t>(sysconf(_SC_PAGESIZE)); }

}  // namespace

Arena::Arena(std::size_t capacity) : capacity_((capacity + Page() - 1) / Page() * Page()) {
  void* memory =
      mmap(nullptr, capacity_ + Page(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (memory == MAP_FAILED) std::abort();
  mapping_ = static_cast<uint8_t*>(memory);
  end_ = mapping_ + capacity_;
  if (mprotect(end_, Page(), PROT_NONE) != 0) std::abort();
}

Arena::~Arena() { munmap(mapping_, capacity_ + Page()); }

}  // namespace qnv::test
