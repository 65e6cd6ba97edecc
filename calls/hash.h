// The 64-bit hash XXH64, by which call files recognise equal memory and compare bands. It gives the same number on
// every machine; docs/call-format.md names it, so that other programs can check the files.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv::calls {

uint64_t Hash64(const void* memory, std::size_t bytes, uint64_t seed = 0);

}  // namespace qnv::calls
