// A host's floating-point settings change no picture, raise nothing, and are its own again afterwards.
#include <gtest/gtest.h>

#if defined(__SSE2__)

#include <xmmintrin.h>

#include "image/dib_builder.h"
#include "random/random.h"

namespace qnv::test {
namespace {

constexpr unsigned kDefault = 0x1F80;
constexpr unsigned kMasks = 0x1F80;

TEST(RoundingModes, PicturesAreTheSame) {
  std::vector<uint8_t> bits;
  for (uint32_t y = 0; y < 37; ++y) {
    std::vector<uint32_t> row;
    for (uint32_t x = 0; x < 53; ++x) row.push_back(x * 0x040301 + y * 0x010207);
    AppendDibRow(bits, row, 24);
  }
  const Dib dib(DibInfo(53, 37, {}), bits);
  Random random(99);
  for (int round = 0; round < 3000; ++round) {
    const ImagePlace place{random.Range(-60, 60), random.Range(-40, 30), random.Range(-200, 200),
                           random.Range(-90, 90), random.Range(0, 52),   random.Range(0, 36),
                           random.Range(-53, 53), random.Range(-37, 37)};
    std::vector<uint8_t> expected;
    // Nearest, down, up, towards zero; each with all exceptions masked, with none, and with subnormals as zero.
    for (unsigned mode = 0; mode < 4; ++mode) {
      for (unsigned masks : {kMasks, 0u, kMasks | 0x8040u}) {
        TestDevice device({});
        const unsigned settings = mode << 13 | masks;
        _mm_setcsr(settings);
        const DRAWMODE drawMode = MakeDrawMode();
        QNVStretchDIBits(device.handle(), 0, place.dstX, place.dstY, place.dstWidth, place.dstHeight, place.srcX,
                         place.srcY, place.srcWidth, place.srcHeight, dib.bits(), dib.info(), nullptr, SRCCOPY, nullptr,
                         &drawMode, &kEverywhere);
        const unsigned after = _mm_getcsr();
        _mm_setcsr(kDefault);
        ASSERT_EQ(settings, after) << "round " << round;
        if (expected.empty()) expected = device.BandBytes();
        ASSERT_EQ(expected, device.BandBytes())
            << "round " << round << ", rounding mode " << mode << ", masks " << masks;
      }
    }
  }
}

}  // namespace
}  // namespace qnv::test

#endif
