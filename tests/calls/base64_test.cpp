// Bytes as base64, for each number of bytes in the last group.
#include "calls/base64.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace qnv::test {
namespace {

std::string Base64(const std::vector<uint8_t>& bytes) {
  std::string text;
  calls::AppendBase64(text, bytes.data(), bytes.size());
  return text;
}

TEST(Base64, ExactText) {
  EXPECT_EQ(Base64({}), "");
  EXPECT_EQ(Base64({'M'}), "TQ==");
  EXPECT_EQ(Base64({'M', 'a'}), "TWE=");
  EXPECT_EQ(Base64({'M', 'a', 'n'}), "TWFu");
  EXPECT_EQ(Base64({'M', 'a', 'n', 'y'}), "TWFueQ==");
  EXPECT_EQ(Base64({0xFF, 0xFF, 0xFF, 0xFF, 0xFF}), "//////8=");
  EXPECT_EQ(Base64({0, 0, 0, 0, 0, 0}), "AAAAAAAA");
}

TEST(Base64, EveryDigit) {
  std::vector<uint8_t> bytes;
  for (uint32_t i = 0; i < 64; i += 4) {
    const uint32_t three = i << 18 | (i + 1) << 12 | (i + 2) << 6 | (i + 3);
    for (const uint32_t shift : {16u, 8u, 0u}) bytes.push_back(static_cast<uint8_t>(three >> shift));
  }
  EXPECT_EQ(Base64(bytes), "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/");
}

TEST(Base64, Appends) {
  std::string text = "data:";
  calls::AppendBase64(text, "\x01", 1);
  EXPECT_EQ(text, "data:AQ==");
}

}  // namespace
}  // namespace qnv::test
