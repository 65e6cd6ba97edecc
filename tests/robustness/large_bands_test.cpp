// Bands of 2^31 pixels and more, which a process of 64 bits can hold. Their memory is a few megabytes, mapped again and
// again: what is painted is the same everywhere.
#include <gtest/gtest.h>

#if defined(__linux__) && defined(__LP64__)

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

#include "support/test_device.h"

namespace qnv::test {
namespace {

class RepeatedMemory {
 public:
  RepeatedMemory(std::size_t piece, std::size_t times) : piece_(piece), size_(piece * times) {
    const int file = memfd_create("band", 0);
    if (file < 0 || ftruncate(file, static_cast<off_t>(piece)) != 0) return;
    void* base = mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (base != MAP_FAILED) {
      data_ = static_cast<uint8_t*>(base);
      for (std::size_t i = 0; i < times; ++i) {
        void* part = mmap(data_ + i * piece, piece, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, file, 0);
        if (part == MAP_FAILED) data_ = nullptr;
      }
    }
    close(file);
  }
  ~RepeatedMemory() {
    if (data_ != nullptr) munmap(data_, size_);
  }
  RepeatedMemory(const RepeatedMemory&) = delete;
  RepeatedMemory& operator=(const RepeatedMemory&) = delete;

  uint8_t* data() const { return data_; }
  bool Holds(uint8_t value) const {
    for (std::size_t i = 0; i < piece_; ++i) {
      if (data_[i] != value) return false;
    }
    return true;
  }

 private:
  std::size_t piece_, size_;
  uint8_t* data_ = nullptr;
};

TEST(LargeBands, RowsThatJoin) {
  constexpr uint32_t kWidth = 65536;
  constexpr std::size_t kPieceRows = 16;
  for (uint32_t height : {32768u, 32784u}) {
    RepeatedMemory memory(kPieceRows * kWidth, height / kPieceRows);
    ASSERT_NE(nullptr, memory.data());
    std::memset(memory.data(), 0x11, kPieceRows * kWidth);
    const DeviceDescription description{QNV_KIND_RASTER, 8, 360, kWidth, height, 360};
    const BandRect band{0, 0, kWidth, static_cast<int32_t>(height)};
    DeviceHandle* handle = QNVEnable(&description, &band, memory.data(), nullptr);
    ASSERT_NE(nullptr, handle);
    const DRAWMODE mode = MakeDrawMode();
    EXPECT_EQ(1u, QNVDevBitBlt(handle, 0, 0, nullptr, 0, 0, static_cast<int32_t>(kWidth), static_cast<int32_t>(height),
                               WHITENESS, nullptr, &mode, &band) &
                      0xFFFF);
    EXPECT_TRUE(memory.Holds(0xFF)) << height << " rows";
    QNVDisable(handle);
  }
}

}  // namespace
}  // namespace qnv::test

#endif
