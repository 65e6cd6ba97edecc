// The page size a description stands for, before any device exists.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "qnvdrv10.h"
#include "support/fenced_buffer.h"

namespace qnv::test {
namespace {

struct InfoCase {
  const char* name;
  DeviceDescription description;  // kind, depth, A, width, height, B
  uint32_t result;
  uint32_t width;
  uint32_t height;
};

const InfoCase kInfoCases[] = {
    {"one to one", {1, 24, 360, 100, 200, 360}, 8, 100, 200},
    {"twice", {1, 24, 360, 4961, 7016, 720}, 8, 9922, 14032},
    {"half, truncated", {1, 24, 720, 4961, 7017, 360}, 8, 2480, 3508},
    {"two thirds, truncated", {1, 8, 600, 100, 101, 400}, 8, 66, 67},
    {"gray", {1, 8, 360, 4961, 7016, 720}, 8, 9922, 14032},
    {"nothing", {1, 24, 360, 0, 1, 720}, 8, 0, 2},
    {"less than one", {1, 24, 360, 1, 2, 100}, 8, 0, 0},
    {"scaled to nothing", {1, 24, 360, 4961, 7016, 0}, 8, 0, 0},
    {"a size above two thousand million", {1, 24, 2, 4294967295u, 4294967294u, 1}, 8, 2147483647u, 2147483647u},
    // The whole part times B wraps to something smaller than itself: too large to be told.
    {"a product that wraps to 0", {1, 24, 1, 0x80000000u, 3, 2}, 8, 0, 6},
    {"a product that wraps below the quotient", {1, 24, 1, 0xFFFF0000u, 0x7FFFFFFFu, 2}, 8, 0, 0xFFFFFFFEu},
    {"a product that wraps more than once", {1, 24, 1, 0x60000000u, 1, 6}, 8, 0, 6},
    // Wrapping that ends above the quotient goes unnoticed.
    {"a wrapped product above the quotient", {1, 24, 1, 0x30000000u, 1, 7}, 8, 0x50000000u, 7},
    {"remainder scaled on its own", {1, 24, 65535, 65534, 131069, 65535}, 8, 65534, 131069},
    {"no resolution A", {1, 24, 0, 100, 200, 360}, 8, 0, 0},

    {"scaled device, one to one", {0, 24, 360, 100, 200, 360}, 8, 100, 200},
    {"scaled device rounds", {0, 24, 720, 4961, 7017, 360}, 8, 2481, 3509},
    {"scaled device, an exact half goes up", {0, 0, 2, 5, 7, 1}, 8, 3, 4},
    {"scaled device, two thirds", {0, 24, 600, 100, 101, 400}, 8, 67, 67},
    {"scaled device, a third below the half", {0, 24, 3, 4, 5, 1}, 8, 1, 2},
    {"scaled device, overflow is -1", {0, 24, 1, 0x7FFFFFFFu, 10, 2}, 8, 0xFFFFFFFFu, 20},
    {"scaled device, any depth", {0, 99, 360, 10, 20, 720}, 8, 20, 40},
    {"scaled device, no resolution A", {0, 24, 0, 100, 200, 360}, 0, 0, 0},

    // Of the kind that cannot be enabled.
    {"dual-plane kind truncates", {2, 24, 720, 4961, 7017, 360}, 8, 2480, 3508},
    {"dual-plane kind, any depth", {2, 16, 360, 4961, 7016, 720}, 8, 9922, 14032},
    {"dual-plane kind, no resolution A", {2, 24, 0, 100, 200, 360}, 8, 0, 0},

    {"plain, 16 bits", {1, 16, 360, 100, 200, 360}, 0, 0, 0},
    {"plain, 0 bits", {1, 0, 360, 100, 200, 360}, 0, 0, 0},
    {"plain, 32 bits", {1, 32, 360, 100, 200, 360}, 0, 0, 0},
    {"kind 3", {3, 24, 360, 100, 200, 360}, 0, 0, 0},
    {"kind 0x0100", {0x0100, 24, 360, 100, 200, 360}, 0, 0, 0},
    {"kind 0xFFFF", {0xFFFF, 24, 360, 100, 200, 360}, 0, 0, 0},
};

TEST(DeviceInfo, ScaledSizes) {
  for (const InfoCase& c : kInfoCases) {
    SCOPED_TRACE(c.name);
    // Exactly the record, at the end of a page and at no particular alignment.
    FencedBuffer memory(sizeof(DeviceSize) + 1, 0xCC);
    auto* size = reinterpret_cast<DeviceSize*>(memory.data() + 1);
    const DeviceDescription before = c.description;
    EXPECT_EQ(c.result, QNVGetDeviceInfo(&c.description, size));
    EXPECT_EQ(0, std::memcmp(&before, &c.description, sizeof before)) << "the description was written";
    std::vector<uint8_t> expected(memory.size(), 0xCC);
    const DeviceSize written{c.width, c.height};
    if (c.result != 0) std::memcpy(expected.data() + 1, &written, sizeof written);
    EXPECT_EQ(expected, std::vector<uint8_t>(memory.data(), memory.data() + memory.size()));
    EXPECT_TRUE(memory.FencesIntact());
  }
}

TEST(DeviceInfo, NullRecordsGiveZero) {
  for (uint16_t kind : {uint16_t{0}, uint16_t{1}, uint16_t{2}}) {
    SCOPED_TRACE(kind);
    const DeviceDescription description{kind, 24, 360, 100, 200, 720};
    EXPECT_EQ(0u, QNVGetDeviceInfo(&description, nullptr));
  }
  DeviceSize size{7, 9};
  EXPECT_EQ(0u, QNVGetDeviceInfo(nullptr, &size));
  EXPECT_EQ(7u, uint32_t{size.width});
  EXPECT_EQ(9u, uint32_t{size.height});
  EXPECT_EQ(0u, QNVGetDeviceInfo(nullptr, nullptr));
}

}  // namespace
}  // namespace qnv::test
