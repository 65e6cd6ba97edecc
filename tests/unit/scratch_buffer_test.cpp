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
  void* large = scratch.Acquire(5000);
  ASSERT_NE(large, nullptr);
  std::memset(large, 0xAB, 5000);
  EXPECT_EQ(scratch.Release(), 1);
  EXPECT_EQ(scratch.capacity(), 1024u);
  void* again = scratch.Acquire(2000);
  ASSERT_NE(again, nullptr);
  std::memset(again, 0xCD, 2000);
  EXPECT_EQ(scratch.Release(), 1);
  void* small = scratch.Acquire(1024);
  ASSERT_NE(small, nullptr);
  std::memset(small, 0xEF, 1024);
}

}  // namespace
}  // namespace qnv
