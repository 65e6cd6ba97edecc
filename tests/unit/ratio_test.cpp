// Products over quotients: rounded as the platform rounds them, and by multiplication instead of division.
#include "raster/ratio.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace qnv {
namespace {

TEST(MulDiv, RoundsHalvesAwayFromZero) {
  constexpr struct {
    const char* name;
    int32_t value, numerator, denominator, expected;
  } kCases[] = {
      {"exact", 10, 720, 360, 20},
      {"half goes up", 19, 360, 720, 10},
      {"below half", 1, 1, 3, 0},
      {"above half", 2, 1, 3, 1},
      {"negative half goes away from zero", -19, 360, 720, -10},
      {"negative below half", -1, 1, 3, 0},
      {"negative divisor", 19, 360, -720, -10},
      {"both negative", -19, 360, -720, 10},
      {"negative divisor, far from a half", 100, 1, -3, -33},
      {"zero divisor", 5, 5, 0, -1},
      {"zero over zero", 0, 0, 0, -1},
      {"product beyond 32 bits", INT32_MAX, 1000, 1000, INT32_MAX},
      {"overflow", INT32_MAX, 2, 1, -1},
      {"negative overflow", INT32_MIN, 2, 1, -1},
      {"by zero numerator", 12345, 0, 7, 0},
      {"most negative quotient", INT32_MIN + 1, 1, 1, INT32_MIN + 1},
      {"one below it is an overflow", -32768, 65536, 1, -1},
      {"largest quotient", INT32_MAX, 1, 1, INT32_MAX},
  };
  for (const auto& c : kCases) {
    EXPECT_EQ(PortableMulDiv(c.value, c.numerator, c.denominator), c.expected) << c.name;
    EXPECT_EQ(MulDiv(c.value, c.numerator, c.denominator), c.expected) << c.name;
  }
}

// On Windows this holds our function against the kernel's own.
TEST(MulDiv, EqualsThePlatformsOwn) {
  std::vector<int32_t> values;
  for (const int32_t magnitude :
       {0,     1,     2,     3,     7,     359,    360,     719,      720,           1439,
        32767, 32768, 46341, 65535, 65536, 999983, 1000003, 99999999, INT32_MAX - 1, INT32_MAX}) {
    values.insert(values.end(), {magnitude, -magnitude});
  }
  for (const int32_t value : values) {
    for (const int32_t numerator : values) {
      for (const int32_t denominator : values) {
        ASSERT_EQ(MulDiv(value, numerator, denominator), PortableMulDiv(value, numerator, denominator))
            << value << " * " << numerator << " / " << denominator;
      }
    }
  }
}

TEST(Divider, IsExact) {
  std::mt19937 random(1);
  for (uint32_t divisor = 1; divisor <= UINT16_MAX; divisor += divisor < 300 ? 1 : 97) {
    const Divider divider(static_cast<uint16_t>(divisor));
    const auto check = [&](uint32_t n) { ASSERT_EQ(n / divisor, divider.Divide(n)) << n << " / " << divisor; };
    const uint32_t largest = INT32_MAX / divisor;
    for (const uint32_t quotient : {0u, 1u, 2u, largest / 2, largest - 1, largest}) {
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
