// Host memory for the random cases: every block ends at a fence, and blocks are reused from case to case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "support/fenced_buffer.h"

namespace qnv::test {

// A band or tag plane inside a larger fenced block that must stay as it is.
class PlaneMemory {
 public:
  PlaneMemory();
  // A plane of `size` bytes that ends `tail` bytes before the fence.
  uint8_t* Place(std::size_t size, std::size_t tail);
  bool SurroundingsIntact() const;
  void Release();

 private:
  void FenceOff(bool fenced) const;

  FencedBuffer block_;
  uint8_t* start_ = nullptr;
  uint8_t* end_ = nullptr;
  uint8_t* watched_ = nullptr;  // the first byte before the plane that is looked at
};

// The records and arrays that a host passes in one call.
class InputMemory {
 public:
  InputMemory();
  // A block of `size` bytes, at most kBlock. Its content counts from Snapshot on.
  uint8_t* Take(std::size_t size);
  // The bytes that the last blocks must hold after the call, in the order they were taken.
  void Snapshot();
  uint8_t* ExpectedOf(const void* block);
  // The index of the first changed block, or -1.
  int FirstChanged() const;
  void Release() { used_ = 0; }

  static constexpr std::size_t kBlock = 131072;

 private:
  static constexpr std::size_t kBlocks = 10;
  struct Block {
    std::unique_ptr<FencedBuffer> memory;
    uint8_t* start = nullptr;
    std::vector<uint8_t> expected;
    std::size_t size = 0;
  };
  Block blocks_[kBlocks];
  std::size_t used_ = 0;
};

struct CallMemory {
  PlaneMemory band;
  PlaneMemory tags;
  InputMemory inputs;
};

}  // namespace qnv::test
