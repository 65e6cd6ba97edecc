// Run-length images beside the platform's StretchDIBits and SetDIBitsToDevice.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "windows/differences.h"
#include "windows/image_pair.h"

#include "support/random_bytes.h"

namespace qnv::test {
namespace {

constexpr int32_t kWidth = 29;
constexpr int32_t kHeight = 13;

constexpr DibForm kRle4{"RLE4", 4, BI_RLE4};
constexpr DibForm kRle8{"RLE8", 8, BI_RLE8};

using Bytes = std::vector<uint8_t>;

void Append(Bytes* data, std::initializer_list<uint8_t> bytes) { data->insert(data->end(), bytes); }

void AppendLiteral(Bytes* data, uint32_t pixels, bool four, RandomBytes* random) {
  Append(data, {0, static_cast<uint8_t>(pixels)});
  const uint32_t bytes = four ? (pixels + 1) / 2 : pixels;
  for (uint32_t i = 0; i < bytes; ++i) data->push_back(random->Byte());
  if (bytes % 2 != 0) data->push_back(0);
}

// One row that ends exactly at its last pixel, out of runs and literals of every length.
void AppendRow(Bytes* data, bool four, RandomBytes* random) {
  for (uint32_t x = 0; x < kWidth;) {
    const uint32_t pixels = 1 + random->Below(kWidth - x);
    if (pixels >= 3 && random->Below(2) == 0) {
      AppendLiteral(data, pixels, four, random);
    } else {
      Append(data, {static_cast<uint8_t>(pixels), random->Byte()});
    }
    x += pixels;
  }
}

// Rows that are full and end, as both sides want them.
Bytes FullRows(bool four, uint64_t seed) {
  RandomBytes random(seed);
  Bytes data;
  for (int32_t row = 0; row < kHeight; ++row) {
    AppendRow(&data, four, &random);
    Append(&data, {0, 0});
  }
  Append(&data, {0, 1});
  return data;
}

class GdiRuns : public testing::TestWithParam<DibForm> {};

TEST_P(GdiRuns, FullRowsAgree) {
  const bool four = GetParam().bitCount == 4;
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    Witness witness({.depth = depth, .width = 97, .height = 43});
    for (uint64_t seed = 0; seed < 40; ++seed) {
      const DibSample dib(GetParam(), kWidth, kHeight, FullRows(four, seed), seed, depth == 8);
      for (unsigned mirror : {0u, 1u, 2u, 3u}) {
        for (int32_t factor : {1, 3}) {
          witness.Reset(seed);
          PaintBoth(witness, {.dib = &dib, .area = Mirrored(WholeImage(dib, 3, 2, factor), mirror)});
          ASSERT_TRUE(witness.Same()) << depth << " bits, data " << seed << ", mirror " << mirror << ", factor "
                                      << factor;
        }
      }
    }
  }
}

TEST_P(GdiRuns, PartsAndRopsAgree) {
  Witness witness;
  const DibSample dib(GetParam(), kWidth, kHeight, FullRows(GetParam().bitCount == 4, 5), 5);
  for (uint32_t rop : {SRCCOPY, SRCINVERT, NOTSRCERASE}) {
    for (int32_t x = 0; x < 12; x += 5) {
      for (int32_t y = 0; y < 9; y += 4) {
        PaintBoth(witness, {.dib = &dib, .area = {3, 2, 15, 4, x, y, 15, 4}, .rop = rop});
        ASSERT_TRUE(witness.Same()) << x << ", " << y << ", rop " << std::hex << rop;
      }
    }
  }
}

TEST_P(GdiRuns, SetDibitsAgrees) {
  Witness witness;
  for (uint64_t seed = 0; seed < 10; ++seed) {
    const DibSample dib(GetParam(), kWidth, kHeight, FullRows(GetParam().bitCount == 4, seed), seed);
    const DRAWMODE mode = MakeDrawMode();
    EXPECT_EQ(1u, QNVDevSetDIBitsToDevice(witness.handle(), 3, 2, 0, kHeight, &kEverywhere, &mode, dib.bits(),
                                          dib.info(), nullptr) &
                      0xFFFF);
    EXPECT_EQ(kHeight, SetDIBitsToDevice(witness.dc(), 3, 2, kWidth, kHeight, 0, 0, 0, kHeight, dib.bits(), dib.info(),
                                         DIB_RGB_COLORS));
    EXPECT_TRUE(witness.Same()) << "data " << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(BothDepths, GdiRuns, testing::Values(kRle4, kRle8));

// Data that is odd in one way only, on an image of 4 x 3 pixels.
struct OddRuns {
  const char* name;
  Bytes data;
};

Witness PaintOddRuns(const Bytes& data) {
  Witness witness;
  const DibSample dib(kRle8, 4, 3, data, 4);
  PaintBoth(witness, {.dib = &dib, .area = WholeImage(dib, 3, 2)});
  return witness;
}

}  // namespace
}  // namespace qnv::test
