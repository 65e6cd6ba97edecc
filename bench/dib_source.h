// Device-independent bitmaps with random content of a fixed seed, for the library and for its rivals.
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

// Makes a bitmap, bottom row first. Its pixels lie in the shared source memory.
DibSource MakeDib(Memory& memory, const ImageSource& image, int width, int height);

// The width or height of the source for a painted width or height.
int SourceExtent(const ImageSource& image, int painted);

}  // namespace qnv::bench
