// The C heap as the library sees it, counted, and failing where a test asks for it. The programs of this folder and of
// extremes/ are linked with the library as it stands, and every call of malloc, calloc, realloc and free in them goes
// through here (the linker's --wrap); what the runtime libraries take for themselves does not.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv::test {

struct HeapCounts {
  uint64_t allocations = 0;  // asked for between BeginCounting and now, those that failed included
  uint64_t frees = 0;        // of blocks, not of null
  uint64_t liveBlocks = 0;   // taken and not given back since the program began
  uint64_t liveBytes = 0;
};

// Counts for the calling thread; only what happens between the two is of the library.
void BeginCounting();
HeapCounts EndCounting();

// The counts of everything so far.
HeapCounts Heap();

// The allocation with this number, counted from BeginCounting and from 0, returns null; no number: none does.
inline constexpr uint64_t kNoFailure = UINT64_MAX;
void FailAllocation(uint64_t number);

}  // namespace qnv::test
