// The scratch buffer that a device lends to its host.
#include "output/scratch_buffer.h"

#include <gtest/gtest.h>

#include <cstring>

namespace qnv {
namespace {

TEST(ScratchBuffer, SizeZeroCountsAs1024) {
  EXPECT_EQ(ScratchBuffer(0).capacity(), 1024u);
  EXPECT_EQ(ScratchBuffer(64).capacity(), 64u);
}

TEST(ScratchBuffer, LendsToOneAtATime) {
  ScratchBuffer scratch(1024);
  EXPECT_EQ(scratch.Release(), 0) << "nothing was lent out";
  void* first = scratch.Acquire(100);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(scratch.Acquire(1), nullptr);
  EXPECT_EQ(scratch.Release(), 1);
  EXPECT_EQ(scratch.Release(), 0);
  EXPECT_EQ(scratch.Acquire(1024), first) << "what fits the first capacity is the first block";
}

TEST(ScratchBuffer, GrowsWithoutRemembering) {
  ScratchBuffer scratch(1024);
  for (const uint32_t size : {5000u, 2000u, 1024u}) {
    void* block = scratch.Acquire(size);
    ASSERT_NE(block, nullptr) << size;
    std::memset(block, 0xAB, size);
    EXPECT_EQ(scratch.Release(), 1);
    EXPECT_EQ(scratch.capacity(), 1024u);
  }
}

}  // namespace
}  // namespace qnv
