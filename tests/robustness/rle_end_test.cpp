// Random run-length data, followed by the zero bytes that hosts are told to put behind it and then by memory that
// cannot be read.
#include <gtest/gtest.h>

#include "image/dib_builder.h"
#include "random/random.h"
#include "robustness/thread_clock.h"

namespace qnv::test {
namespace {

TEST(RleEnd, RandomData) {
  Random random(815);
  TestDevice plain({.width = 80, .height = 40});
  TestDevice gray({.bitsPerPixel = 8, .width = 80, .height = 40});
  TestDevice scaled({.kind = QNV_KIND_SCALED, .width = 80, .height = 40, .resolutionA = 720, .resolutionB = 360});
  const double begun = ThreadSeconds();
  for (int round = 0; round < 6000; ++round) {
    const bool four = random.Percent(50);
    const uint16_t depth = four ? 4 : 8;
    const int32_t width = random.Percent(50) ? random.Range(1, 40) : random.Range(250, 400);
    const int32_t height = random.Range(1, 30);
    const bool topDown = random.Percent(20);
    std::vector<uint8_t> data(static_cast<std::size_t>(random.Range(0, 60)));
    for (uint8_t& byte : data) {
      byte = static_cast<uint8_t>(random.Percent(40)   ? 0
                                  : random.Percent(30) ? random.Range(0, 4)
                                                       : random.Range(0, 255));
    }
    // The worst ends: a literal, a delta or a run that begins in the last bytes.
    const std::vector<std::vector<uint8_t>> ends = {{},     {0},       {0, 255}, {0, 254},
                                                    {0, 2}, {0, 2, 9}, {7},      {0, 255, 0, 1}};
    for (uint8_t byte : ends[static_cast<std::size_t>(random.Range(0, 7))]) data.push_back(byte);
    data.resize(data.size() + 260 + 2 * static_cast<std::size_t>(height), 0);
    const Dib dib(
        DibInfo(width, height,
                {.bitCount = depth, .compression = four ? uint32_t{BI_RLE4} : uint32_t{BI_RLE8}, .topDown = topDown},
                FullTable(depth)),
        data);
    const uint32_t rops[] = {SRCCOPY, SRCINVERT, ROP_MINIMUM};
    const int32_t srcX = random.Range(0, width - 1), srcY = random.Range(0, height - 1);
    for (const TestDevice* device : {&plain, &gray, &scaled}) {
      Stretch(*device, dib, {0, 0, 80, 40, 0, 0, width, height}, {.rop = rops[random.Range(0, 2)]});
      Stretch(*device, dib,
              {random.Range(-20, 20), random.Range(-20, 20), random.Range(1, 200), random.Range(1, 90), srcX, srcY,
               random.Range(1, width - srcX), random.Range(1, height - srcY)});
    }
  }
  EXPECT_LT(ThreadSeconds() - begun, 60 * kEndsInSeconds);
  EXPECT_TRUE(plain.FencesIntact() && gray.FencesIntact() && scaled.FencesIntact());
}

}  // namespace
}  // namespace qnv::test
