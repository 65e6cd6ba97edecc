// What the tests of row kernels share: the levels, and rows at every alignment between fences.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
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
inline constexpr std::size_t kMaxPixels = 200;
inline constexpr std::size_t kAlignments = 32;

using Bytes = std::vector<uint8_t>;

// A test of one level; a level that the machine has not is skipped.
class KernelTest : public testing::TestWithParam<KernelLevel> {
 protected:
  void SetUp() override {
    if (GetParam().level > DetectCpuLevel()) GTEST_SKIP() << "not on this machine";
  }
  const RowKernels& kernels() const { return KernelsFor(GetParam().level); }

  Bytes Random(std::size_t bytes) {
    Bytes result(bytes);
    for (uint8_t& byte : result) byte = static_cast<uint8_t>(random_());
    return result;
  }

  std::mt19937 random_{4711};
};

// The rows of all checks lie in two blocks that are made once: making one costs more than running a kernel.
inline constexpr std::size_t kMaxRow = 32768;

// A row that is written. It ends `alignment` bytes before the fence, so over all alignments it begins at every address
// modulo kAlignments; the bytes around it must stay as they are. One at a time.
class FencedRow {
 public:
  FencedRow(const Bytes& old, std::size_t alignment)
      : data_(Memory().data() + kMaxRow - alignment - old.size()), bytes_(old.size()), after_(alignment) {
    std::memset(data_ - kBefore, kMargin, kBefore + bytes_ + after_);
    if (bytes_ != 0) std::memcpy(data_, old.data(), bytes_);
  }

  uint8_t* data() { return data_; }
  bool Holds(const Bytes& expected) const { return bytes_ == 0 || std::memcmp(data_, expected.data(), bytes_) == 0; }
  Bytes Contents() const { return Bytes(data_, data_ + bytes_); }
  bool MarginsIntact() const {
    for (std::size_t i = 1; i <= kBefore; ++i) {
      if (*(data_ - i) != kMargin) return false;
    }
    for (std::size_t i = 0; i < after_; ++i) {
      if (data_[bytes_ + i] != kMargin) return false;
    }
    return true;
  }

 private:
  static constexpr uint8_t kMargin = 0x5A;
  static constexpr std::size_t kBefore = 64;

  static FencedBuffer& Memory() {
    static FencedBuffer memory(kMaxRow, 0);
    return memory;
  }

  uint8_t* data_;
  std::size_t bytes_, after_;
};

// A row that is read: its last byte is the last that may be. One at a time.
class FencedSource {
 public:
  explicit FencedSource(const Bytes& bytes) : data_(Memory().data() + kMaxRow - bytes.size()) {
    if (!bytes.empty()) std::memcpy(data_, bytes.data(), bytes.size());
  }
  const uint8_t* data() const { return data_; }

 private:
  static FencedBuffer& Memory() {
    static FencedBuffer memory(kMaxRow, 0);
    return memory;
  }

  uint8_t* data_;
};

// Runs kernel(destination) over a row of old bytes and compares what it leaves.
template <class Kernel>
void CheckRow(const Bytes& old, const Bytes& expected, std::size_t alignment, Kernel kernel) {
  FencedRow row(old, alignment);
  kernel(row.data());
  ASSERT_TRUE(row.MarginsIntact()) << old.size() << " bytes, alignment " << alignment;
  if (row.Holds(expected)) return;
  ASSERT_EQ(row.Contents(), expected) << old.size() << " bytes, alignment " << alignment;
}

}  // namespace qnv::test
