// What the tests of row kernels share: the levels, and rows at every alignment between fences.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "raster/rows/row_kernels.h"
#include "support/fenced_buffer.h"

namespace qnv::test {

struct KernelLevel {
  const char* name;
  CpuLevel level;
};

inline constexpr KernelLevel kKernelLevels[] = {
#define QNV_LEVEL(name, constant, ...) {#name, CpuLevel::constant},
    QNV_KERNEL_LEVELS(QNV_LEVEL)
#undef QNV_LEVEL
};

inline std::string KernelLevelName(const testing::TestParamInfo<KernelLevel>& info) { return info.param.name; }

// Every count up to this one, and every alignment of the widest vector.
inline constexpr std::size_t kMaxPixels = 300;
inline constexpr std::size_t kAlignments = 64;

// The environment variable QNV_ALIGNMENT_STEP=N makes tests with many rows take each count at every N-th alignment, for
// emulators: first at another one for the next count, so that all alignments are there for N counts together.
inline std::size_t AlignmentStep() {
  const char* const step = std::getenv("QNV_ALIGNMENT_STEP");
  return step != nullptr ? std::max<std::size_t>(1, std::strtoul(step, nullptr, 10)) : 1;
}

using Bytes = std::vector<uint8_t>;

// A test of one level; a level that the machine has not is skipped.
class KernelTest : public testing::TestWithParam<KernelLevel> {
 protected:
  void SetUp() override {
    if (GetParam().level > DetectCpuLevel()) GTEST_SKIP() << "not on this machine";
  }
  const RowKernels& kernels() const { return KernelsFor(GetParam().level); }

  uint8_t RandomByte() { return static_cast<uint8_t>(random_()); }
  Bytes Random(std::size_t bytes) {
    Bytes result(bytes);
    for (uint8_t& byte : result) byte = RandomByte();
    return result;
  }

  std::mt19937 random_{4711};
};

// The rows of all checks lie in two blocks that are made once: making one costs more than running a kernel.
inline constexpr std::size_t kMaxRow = 65536;

// A row that is read: its last byte is the last that may be. One at a time.
inline const uint8_t* SourceAtFence(const Bytes& bytes) {
  static FencedBuffer memory(kMaxRow, 0);
  return std::copy(bytes.begin(), bytes.end(), memory.data() + kMaxRow - bytes.size()) - bytes.size();
}

inline uint8_t* EndOfWrittenRows() {
  static FencedBuffer memory(kMaxRow, 0);
  return memory.data() + kMaxRow;
}

// Runs kernel(destination) over a row of old bytes and compares what it leaves. The row ends `alignment` bytes before
// the fence, so over all alignments it begins at every address modulo kAlignments; the bytes around it must stay.
template <class Kernel>
void CheckRow(const Bytes& old, const Bytes& expected, std::size_t alignment, Kernel kernel) {
  constexpr uint8_t kMargin = 0x5A;
  constexpr std::size_t kBefore = 64;
  uint8_t* const end = EndOfWrittenRows() - alignment;
  uint8_t* const row = end - old.size();
  std::fill(row - kBefore, row, kMargin);
  std::fill(end, end + alignment, kMargin);
  std::copy(old.begin(), old.end(), row);
  kernel(row);
  const auto isMargin = [](uint8_t byte) { return byte == kMargin; };
  ASSERT_TRUE(std::all_of(row - kBefore, row, isMargin) && std::all_of(end, end + alignment, isMargin))
      << "written outside: " << old.size() << " bytes, alignment " << alignment;
  if (std::equal(row, end, expected.begin(), expected.end())) return;
  ASSERT_EQ(Bytes(row, end), expected) << old.size() << " bytes, alignment " << alignment;
}

}  // namespace qnv::test
