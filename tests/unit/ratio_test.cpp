#include "raster/ratio.h"

#include <gtest/gtest.h>

#include <random>

namespace qnv {
namespace {

TEST(Divider, IsExact) {
  std::mt19937 random(1);
  for (uint32_t divisor = 1; divisor <= UINT16_MAX; divisor += divisor < 300 ? 1 : 97) {
    const Divider divider(static_cast<uint16_t>(divisor));
    const auto check = [&](uint32_t n) { ASSERT_EQ(n / divisor, divider.Divide(n)) << n << " / " << divisor; };
    const uint32_t most = INT32_MAX / divisor;
    for (const uint32_t quotient : {0u, 1u, 2u, most / 2, most - 1, most}) {
      const uint32_t n = quotient * divisor;
      check(n);
      if (n > 0) check(n - 1);
      if (n < INT32_MAX) check(n + 1);
    }
    check(INT32_MAX);
    for (int i = 0; i < 50; ++i) check(static_cast<uint32_t>(random() >> 1));
  }
  EXPECT_EQ(INT32_MAX / 65535, static_cast<int32_t>(Divider(65535).Divide(INT32_MAX)));
}

TEST(Ratio, IsMulDiv) {
  constexpr uint16_t kTerms[] = {0, 1, 2, 3, 7, 72, 300, 360, 361, 400, 600, 720, 1440, 32767, 32768, 65534, 65535};
  std::mt19937 random(1);
  for (const uint16_t numerator : kTerms) {
    for (const uint16_t denominator : kTerms) {
      const Ratio ratio(numerator, denominator);
      const auto check = [&](int32_t v) {
        ASSERT_EQ(MulDiv(v, numerator, denominator), ratio.Of(v)) << v << " x " << numerator << " / " << denominator;
      };
      for (int32_t v = -2000; v <= 2000; ++v) check(v);
      // About the magnitude from which the product no longer fits, and the ends.
      const int32_t limit = INT32_MAX / (numerator == 0 ? 1 : numerator);
      for (int32_t off = -3; off < 3; ++off) {
        check(limit - 3 + off);
        check(-limit + 3 + off);
        check(static_cast<int32_t>(uint32_t{INT32_MAX} + static_cast<uint32_t>(off)));
      }
      for (int i = 0; i < 200; ++i) check(static_cast<int32_t>(random()) >> (random() % 31));
    }
  }
}

}  // namespace
}  // namespace qnv
