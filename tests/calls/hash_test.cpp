// The hash against known values, all lengths of a lane, and numbers in the file's forms.
#include "calls/hash.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "calls/encoding.h"

namespace qnv::test {
namespace {

TEST(CallHash, GivesTheValuesOfXxh64) {
  const struct {
    std::string text;
    uint64_t seed, expected;
  } cases[] = {
      {"", 0, 0xEF46DB3751D8E999},
      {"a", 0, 0xD24EC4F1A98C6E5B},
      {"abc", 0, 0x44BC2CF5AD770999},
      {"Nobody inspects the spammish repetition", 0, 0xFBCEA83C8A378BF1},
  };
  for (const auto& c : cases) EXPECT_EQ(calls::Hash64(c.text.data(), c.text.size(), c.seed), c.expected) << c.text;
}

TEST(CallNumbers, ComeBack) {
  const int64_t values[] = {0, 1, -1, 63, 64, -64, -65, 8191, 8192, INT32_MAX, INT32_MIN, INT64_MAX, INT64_MIN};
  calls::Bytes bytes;
  for (const int64_t value : values) calls::AppendNumber(bytes, calls::Fold(value));
  calls::ByteReader reader(bytes.data(), bytes.size());
  for (const int64_t value : values) EXPECT_EQ(reader.SignedNumber(), value);
  EXPECT_TRUE(reader.ok());
  EXPECT_EQ(reader.Left(), 0u);
  EXPECT_EQ(reader.Number(), 0u);
  EXPECT_FALSE(reader.ok());
}

TEST(CallNumbers, ThatAreTooLongAreRefused) {
  const calls::Bytes largest = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x01};
  calls::ByteReader good(largest.data(), largest.size());
  EXPECT_EQ(good.Number(), UINT64_MAX);
  calls::Bytes tooLarge = largest;
  tooLarge.back() = 0x02;
  calls::ByteReader bad(tooLarge.data(), tooLarge.size());
  bad.Number();
  EXPECT_FALSE(bad.ok());
  const calls::Bytes wide = {0x80, 0x80, 0x80, 0x80, 0x10};  // 2^32
  calls::ByteReader reader(wide.data(), wide.size());
  EXPECT_EQ(reader.Number32(), 0u);
  EXPECT_FALSE(reader.ok());
}

}  // namespace
}  // namespace qnv::test
