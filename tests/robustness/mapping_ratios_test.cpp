// The resolution-mapping device at ratios near their limits: its work follows the band's pixels and the source's rows,
// never a coordinate, and what it paints is what the slow model paints.
#include <gtest/gtest.h>

#include <iterator>
#include <limits>

#include "image/dib_builder.h"
#include "random/random.h"
#include "reference/model.h"
#include "robustness/thread_clock.h"

namespace qnv::test {
namespace {

constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();
constexpr BandRect kWholePage{0, 0, kMax, kMax};

struct Ratio {
  uint16_t a, b;
};

constexpr Ratio kRatios[] = {{65535, 1}, {65535, 2}, {65535, 65534}, {65534, 65535}, {65535, 65535}, {1, 65535},
                             {40000, 3}, {3, 40000}, {256, 1},       {1, 256},       {2, 65535},     {1000, 999}};

// A coordinate near a multiple of the page pixels of an inch, or of a band pixel.
int32_t NearAnEdge(Random& random, const Ratio& ratio, int32_t inches) {
  const int32_t step = random.Percent(50) ? ratio.a : std::max(ratio.a / ratio.b, 1);
  return random.Range(0, inches) * step + random.Range(-3, 3);
}

TEST(MappingRatios, TransfersAndImagesAsTheModelPaintsThem) {
  Random random(20261);
  int changed = 0;  // devices on which something is to be seen
  const std::vector<uint8_t> pixels = [&] {
    std::vector<uint8_t> bytes(3 * 300 * 40);
    random.Fill(bytes.data(), bytes.size());
    return bytes;
  }();
  for (int round = 0; round < 40; ++round) {
    for (const Ratio& ratio : kRatios) {
      const DeviceOptions options{.kind = QNV_KIND_SCALED,
                                  .bitsPerPixel = static_cast<uint16_t>(random.Percent(25) ? 0 : 24),
                                  .width = 13,
                                  .height = 7,
                                  .resolutionA = ratio.a,
                                  .resolutionB = ratio.b,
                                  .left = random.Range(-2, 3),
                                  .top = random.Range(-2, 3)};
      TestDevice device(options);
      const DeviceDescription description{options.kind,  options.bitsPerPixel, options.resolutionA,
                                          options.width, options.height,       options.resolutionB};
      const BandRect band{options.left, options.top, options.left + 13, options.top + 7};
      const std::vector<uint8_t> before = device.BandBytes();
      const auto model = reference::MakeModel(&description, &band, &before, nullptr);
      ASSERT_NE(nullptr, model);
      const DRAWMODE mode = MakeDrawMode();
      const PhysicalBrush brush = SolidBrush(device.handle(), 0x00305070);
      for (int call = 0; call < 12; ++call) {
        const int32_t x = NearAnEdge(random, ratio, 3), y = NearAnEdge(random, ratio, 3);
        const int32_t width = random.Range(1, random.Percent(20) ? 2500 : 300), height = random.Range(1, 40);
        const uint32_t rops[] = {SRCCOPY, SRCINVERT, PATCOPY, DSTINVERT, WHITENESS, MERGECOPY};
        const uint32_t rop = rops[random.Range(0, 5)];
        if (random.Percent(60)) {
          const SourceBitmap source{0, 300, 40, 900, 1, 24, pixels.data()};
          QNVDevBitBlt(device.handle(), x, y, &source, 0, 0, width, height, rop, &brush, &mode, &kWholePage);
          model->BitBlt({x, y, &source, 0, 0, width, height, rop, &brush, &mode, &kWholePage});
        } else {
          const std::vector<uint8_t> info = DibInfo(300, 40, {});
          QNVStretchDIBits(device.handle(), 0, x, y, width, height, 0, 0, 300, 40, pixels.data(), info.data(), nullptr,
                           rop, &brush, &mode, &kWholePage);
          model->StretchDIBits(
              {0, x, y, width, height, 0, 0, 300, 40, pixels.data(), info.data(), rop, &brush, &mode, &kWholePage});
        }
        ASSERT_EQ(model->band().bytes(), device.BandBytes())
            << ratio.a << " to " << ratio.b << ", round " << round << ", call " << call;
        ASSERT_TRUE(device.FencesIntact());
      }
      changed += device.BandBytes() != before ? 1 : 0;
    }
  }
  EXPECT_GT(changed, 200);
}

// Transfers over pages of 131 million columns and rows.
TEST(MappingRatios, WorkFollowsTheBand) {
  constexpr uint32_t kPixels = 2000;
  const std::vector<uint8_t> bits(32000 * 3 * 2, 0x40);
  const std::vector<uint8_t> info = DibInfo(32000, 2, {});
  const DRAWMODE mode = MakeDrawMode();
  for (int32_t left : {0, -1000, 30000}) {
    TestDevice device({.kind = QNV_KIND_SCALED,
                       .width = kPixels,
                       .height = 200,
                       .resolutionA = 65535,
                       .resolutionB = 1,
                       .left = left,
                       .top = left});
    const PhysicalBrush brush = SolidBrush(device.handle(), 0x00305070);
    const BandRect everywhere{kMin, kMin, kMax, kMax};
    const SourceBitmap source{0, 32000, 2, 0, 1, 24, bits.data()};
    for (uint32_t rop : {uint32_t{WHITENESS}, uint32_t{PATINVERT}, uint32_t{SRCCOPY}, uint32_t{SRCINVERT}}) {
      for (int32_t start : {0, kMin / 2, kMin}) {
        const double before = ThreadSeconds();
        const int32_t x = left == 30000 ? 30000 * 65535 : start;
        QNVDevBitBlt(device.handle(), x, x, &source, 0, 0, kMax, kMax, rop, &brush, &mode, &everywhere);
        QNVStretchDIBits(device.handle(), 0, x, x, kMax, kMax, 0, 0, 32000, 2, bits.data(), info.data(), nullptr, rop,
                         &brush, &mode, &everywhere);
        EXPECT_LT(ThreadSeconds() - before, kEndsInSeconds) << "band at " << left << ", rop " << std::hex << rop;
      }
    }
    EXPECT_TRUE(device.FencesIntact());
  }
}

}  // namespace
}  // namespace qnv::test
