// QNVDevSetDIBitsToDevice beside the platform's SetDIBitsToDevice.

#include <gtest/gtest.h>

#include "windows/differences.h"
#include "windows/image_pair.h"

namespace qnv::test {
namespace {

constexpr int32_t kWidth = 29;
constexpr uint32_t kHeight = 13;
constexpr DibForm kPlainForm{"24 bits", 24};

uint32_t SetLibrary(const Witness& witness, const DibSample& dib, const void* bits, uint32_t first, uint32_t count,
                    const BandRect& clip = kEverywhere) {
  const DRAWMODE mode = MakeDrawMode();
  return QNVDevSetDIBitsToDevice(witness.handle(), 3, 2, first, count, &clip, &mode, bits, dib.info(), nullptr) &
         0xFFFF;
}

class GdiSetDibits : public testing::TestWithParam<DibForm> {};

// All scans are handed over, and `count` of them are asked for from `first` on.
TEST_P(GdiSetDibits, ScansAgreeInEveryOrder) {
  Witness witness;
  for (RowOrder order : {RowOrder::kBottomUp, RowOrder::kTopDown}) {
    const DibSample dib(GetParam(), kWidth, kHeight, order, 7);
    for (uint32_t first = 0; first < kHeight; first += 3) {
      for (uint32_t count = 1; first + count <= kHeight; count += 2) {
        witness.Reset(first + count);
        EXPECT_EQ(1u, SetLibrary(witness, dib, dib.bits(), first, count));
        EXPECT_NE(0, SetDIBitsToDevice(witness.dc(), 3, 2, kWidth, count, 0, static_cast<int>(first), 0, kHeight,
                                       dib.bits(), dib.info(), DIB_RGB_COLORS));
        ASSERT_TRUE(witness.Same()) << "scans " << first << " + " << count;
      }
    }
  }
}

TEST_P(GdiSetDibits, ClipsAgree) {
  Witness witness;
  const DibSample dib(GetParam(), kWidth, kHeight, RowOrder::kBottomUp, 7);
  for (const BandRect& clip : {BandRect{0, 0, 20, 9}, BandRect{7, 5, 43, 19}, BandRect{10, 8, 11, 9}}) {
    witness.Reset(4);
    EXPECT_EQ(1u, SetLibrary(witness, dib, dib.bits(), 0, kHeight, clip));
    const ClippedTo clipped(witness.dc(), clip);
    SetDIBitsToDevice(witness.dc(), 3, 2, kWidth, kHeight, 0, 0, 0, kHeight, dib.bits(), dib.info(), DIB_RGB_COLORS);
    EXPECT_TRUE(witness.Same()) << Describe(clip);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryForm, GdiSetDibits, testing::ValuesIn(kDibForms));

// The platform also takes an image piece by piece, each piece with the address of its own first scan. The library's
// bits are always those of the whole image; a host that has a piece only says so in the header.
TEST(GdiSetDibitsDifference, BitsAreThoseOfTheWholeImage) {
  constexpr uint32_t kFirst = 4;
  constexpr uint32_t kCount = 6;
  const DibSample dib(kPlainForm, kWidth, kHeight, RowOrder::kBottomUp, 7);
  const auto paint = [&dib](const Witness& witness, const void* bits) {
    EXPECT_EQ(1u, SetLibrary(witness, dib, bits, kFirst, kCount));
    EXPECT_EQ(static_cast<int>(kCount), SetDIBitsToDevice(witness.dc(), 3, 2, kWidth, kCount, 0, kFirst, kFirst, kCount,
                                                          dib.Row(kFirst), dib.info(), DIB_RGB_COLORS));
  };
  const Witness same;
  paint(same, dib.bits());
  EXPECT_TRUE(same.Same());

  const DibSample longer(kPlainForm, kWidth, 2 * kHeight, RowOrder::kBottomUp, 7);  // starts with the same rows
  const Witness other;
  paint(other, longer.Row(kFirst));
  ExpectDifference(kFirstScan, other);
}

}  // namespace
}  // namespace qnv::test
