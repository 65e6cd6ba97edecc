// Counts in span records: empty spans cost nothing on every row, and a negative count ends its list.
#include <gtest/gtest.h>

#include "output/output_call.h"
#include "robustness/thread_clock.h"

namespace qnv::test {
namespace {

TEST(SpanRecords, EmptySpansOfManyRows) {
  for (int16_t edge : {int16_t{5}, int16_t{-20000}, int16_t{20000}}) {
    TestDevice device({.width = 64, .height = 30000});
    const PhysicalBrush brush = SolidBrush(device.handle(), 0x00102030);
    const DRAWMODE mode = MakeDrawMode();
    constexpr int16_t kWords = 32766;
    std::vector<int16_t> words = {kWords, 0, 30000};
    for (int i = 0; i < kWords - 2; ++i) words.push_back(edge);
    for (int16_t word : {int16_t{10}, int16_t{12}, kWords}) words.push_back(word);
    const double before = ThreadSeconds();
    for (int i = 0; i < 30; ++i) {
      EXPECT_EQ(1u, CallOutput(device, OS_BANDED_SPANS, 1, SpanListBytes(words), {.brush = &brush, .drawMode = &mode}));
    }
    EXPECT_LT(ThreadSeconds() - before, kEndsInSeconds);
    for (uint32_t row : {0u, 29999u}) {
      for (uint32_t x = 0; x < 64; ++x) {
        ASSERT_EQ(x == 10 || x == 11 ? 0x10 : 0xCC, device.Pixel(x, row)[0]) << x << ", " << row;
      }
    }
    EXPECT_TRUE(device.FencesIntact());
  }
}

// What a negative count would lead to lies before the list, whose memory begins where it begins.
TEST(SpanRecords, NegativeCounts) {
  struct Case {
    const char* name;
    uint32_t style;
    std::vector<int16_t> words;
  };
  const Case cases[] = {
      {"banded", OS_BANDED_SPANS, {2, 0, 1, 3, 5, 2, -32768, 0, 4}},
      {"banded, near", OS_BANDED_SPANS, {2, 0, 1, 3, 5, 2, -4, 0, 4}},
      {"banded, back into the list", OS_BANDED_SPANS, {2, 0, 1, 3, 5, 2, -10, 0, 4}},
      {"rows", OS_ROW_RECORDS, {0, 2, 3, 5, -32768}},
      {"rows, near", OS_ROW_RECORDS, {0, 2, 3, 5, -1}},
  };
  for (const Case& c : cases) {
    for (const DeviceOptions& options : {DeviceOptions{}, DeviceOptions{.bitsPerPixel = 8},
                                         DeviceOptions{.kind = QNV_KIND_SCALED}, DeviceOptions{.tagPlane = true}}) {
      TestDevice device(options);
      const PhysicalBrush brush = SolidBrush(device.handle(), 0x00101010);
      const DRAWMODE mode = MakeDrawMode();
      EXPECT_EQ(1u, CallOutput(device, c.style, 60000, SpanListBytes(c.words), {.brush = &brush, .drawMode = &mode}))
          << c.name;
      for (uint32_t row = 0; row < 32; ++row) {
        for (uint32_t x = 0; x < 64; ++x) {
          ASSERT_EQ(row == 0 && (x == 3 || x == 4) ? 0x10 : 0xCC, device.Pixel(x, row)[0]) << c.name << ", " << x;
        }
      }
      EXPECT_TRUE(device.FencesIntact());
    }
  }
}

}  // namespace
}  // namespace qnv::test
