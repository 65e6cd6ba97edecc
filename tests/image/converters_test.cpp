// Every source depth, in both directions, into every kind of row: a colour band, the row of a transfer, a gray band.
#include <gtest/gtest.h>

#include "image/dib_builder.h"

namespace qnv::test {
namespace {

struct Target {
  const char* name;
  uint16_t bandDepth;
  uint32_t rop;  // any other low word than SRCCOPY's makes the rows go through a transfer
};

const Target kTargets[] = {
    {"colour band", 24, SRCCOPY},
    {"colour band by transfer", 24, 0x00CC0000},
    {"gray band", 8, SRCCOPY},
    {"gray band by transfer", 8, 0x00CC0000},
};

constexpr uint16_t kDepths[] = {1, 4, 8, 16, 24, 32};
const std::string kImage = "abcdefghijklmnopponmlkjihgfedcbaf";  // 33 pixels

enum class Direction { kForward, kMirrored };

// Part of the image, each pixel `scale` wide, from column 2 on.
void RunPart(const Target& target, uint16_t depth, Direction direction, int32_t from, int32_t count, int32_t scale) {
  const int32_t span = count * scale;
  TestDevice device({.bitsPerPixel = target.bandDepth, .width = static_cast<uint32_t>(span + 5), .height = 1});
  const Dib dib = PictureDib(33, kImage, {.bitCount = depth});
  const bool mirrored = direction == Direction::kMirrored;
  EXPECT_EQ(1u, Stretch(device, dib, {mirrored ? 2 + span : 2, 0, mirrored ? -span : span, 1, from, 0, count, 1},
                        {.rop = target.rop}));
  std::string line = "..";
  for (int32_t i = 0; i < count; ++i) {
    const int32_t x = mirrored ? from + count - 1 - i : from + i;
    line += std::string(static_cast<std::size_t>(scale), kImage[static_cast<std::size_t>(x)]);
  }
  EXPECT_TRUE(BandIs(device, ImageInks(device, depth), line + "..."))
      << target.name << ", " << depth << " bits, " << (mirrored ? "mirrored" : "forward") << ", " << count
      << " pixels from " << from << ", scale " << scale;
}

TEST(RowConverters, EveryDepthDirectionAndTarget) {
  for (const Target& target : kTargets) {
    for (uint16_t depth : kDepths) {
      for (Direction direction : {Direction::kForward, Direction::kMirrored}) {
        for (int32_t from : {0, 1, 2, 3, 5, 7, 8, 9, 15, 16}) {
          for (int32_t count : {1, 2, 7, 8, 9, 16, 17}) {
            for (int32_t scale : {1, 2, 5}) RunPart(target, depth, direction, from, count, scale);
          }
        }
      }
    }
  }
}

// Gray runs of every length and phase end where they should.
TEST(RowConverters, RunLengths) {
  for (const Target& target : kTargets) {
    for (Direction direction : {Direction::kForward, Direction::kMirrored}) {
      for (int32_t scale = 1; scale <= 19; ++scale) RunPart(target, 8, direction, 4, 3, scale);
    }
  }
}

// Shrinking: a source pixel that covers nothing is stepped over, in both directions.
TEST(RowConverters, Shrinking) {
  for (const Target& target : kTargets) {
    for (uint16_t depth : kDepths) {
      const Dib dib = PictureDib(33, kImage, {.bitCount = depth});
      TestDevice forward({.bitsPerPixel = target.bandDepth, .width = 9, .height = 1});
      EXPECT_EQ(1u, Stretch(forward, dib, {0, 0, 8, 1, 0, 0, 16, 1}, {.rop = target.rop}));
      EXPECT_TRUE(BandIs(forward, ImageInks(forward, depth), "acegikmo.")) << target.name << ", " << depth << " bits";
      TestDevice mirrored({.bitsPerPixel = target.bandDepth, .width = 9, .height = 1});
      EXPECT_EQ(1u, Stretch(mirrored, dib, {8, 0, -8, 1, 0, 0, 16, 1}, {.rop = target.rop}));
      EXPECT_TRUE(BandIs(mirrored, ImageInks(mirrored, depth), "pnljhfdb.")) << target.name << ", " << depth << " bits";
    }
  }
}

// The bytes themselves: a pixel stored as blue 1, green 2, red 3 is 1, 2, 3 in the band, straight or through a
// transfer.
TEST(RowConverters, ByteOrder) {
  for (uint32_t rop : {SRCCOPY, 0x00CC0000u}) {
    TestDevice device({.width = 2, .height = 1});
    const Dib dib(DibInfo(2, 1, {}), {1, 2, 3, 250, 251, 252, 0, 0});
    EXPECT_EQ(1u, Stretch(device, dib, {0, 0, 2, 1, 0, 0, 2, 1}, {.rop = rop}));
    const uint8_t expected[8] = {1, 2, 3, 250, 251, 252, 0xCC, 0xCC};
    EXPECT_EQ(0, std::memcmp(expected, device.band().data(), sizeof expected)) << std::hex << rop;
  }
}

}  // namespace
}  // namespace qnv::test
