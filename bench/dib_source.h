// Device-independent bitmaps of seeded content, for the library and for its rivals.
#pragma once

#include <cstdint>
#include <vector>

#include "bench_memory.h"
#include "bench_table.h"

namespace qnv::bench {

struct DibSource {
  std::vector<uint8_t> info;  // header and color table
  const uint8_t* bits = nullptr;
  int width = 0;
  int height = 0;
  std::size_t size = 0;  // bytes of `bits`
};

// The pixels lie in the shared source memory. Bottom row first.
DibSource MakeDib(Memory& memory, const ImageSource& image, int width, int height);

// Size of the source for a painted extent.
int SourceExtent(const ImageSource& image, int painted);

}  // namespace qnv::bench
