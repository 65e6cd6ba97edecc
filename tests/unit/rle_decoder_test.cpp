// Rows found by skipping and decoded by themselves, against a picture painted pixel by pixel.
#include "image/rle_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "support/fenced_buffer.h"

namespace qnv {
namespace {

using test::FencedBuffer;

struct Picture {
  std::vector<uint8_t> indices;
  std::size_t bytesRead = 0;
};

Picture PaintNaively(const std::vector<uint8_t>& codes, bool fourBit, int32_t width, int32_t rows) {
  Picture picture;
  picture.indices.assign(static_cast<std::size_t>(width * rows), 0);
  int32_t x = 0, y = 0;
  std::size_t at = 0;
  const auto put = [&](int32_t index) {
    if (x < width) picture.indices[static_cast<std::size_t>(y * width + x++)] = static_cast<uint8_t>(index);
  };
  const auto nibble = [](int32_t byte, int32_t i) { return i % 2 == 0 ? byte >> 4 : byte & 15; };
  while (y < rows) {
    const int32_t first = codes.at(at), second = codes.at(at + 1);
    at += 2;
    if (first != 0) {
      for (int32_t i = 0; i < first; ++i) put(fourBit ? nibble(second, i) : second);
    } else if (second == 0) {
      x = 0;
      ++y;
    } else if (second == 1) {
      break;
    } else if (second == 2) {
      x = std::min(x + codes.at(at), width);
      y += codes.at(at + 1);
      at += 2;
    } else if (fourBit) {
      for (int32_t i = 0; i < second; ++i) put(nibble(codes.at(at + static_cast<std::size_t>(i / 2)), i));
      at += static_cast<std::size_t>((second + 3) / 4 * 2);
    } else {
      const int32_t fitting = std::min(second, width - x);
      for (int32_t i = 0; i < fitting; ++i) put(codes.at(at++));
      at += static_cast<std::size_t>(fitting % 2);
    }
  }
  picture.bytesRead = at;
  return picture;
}

// hostility: how often, of 100 records, something other than a run or a literal that fits comes.
std::vector<uint8_t> RandomCodes(std::mt19937& random, int32_t width, int32_t rows, uint32_t hostility) {
  const auto below = [&](uint32_t end) { return static_cast<uint8_t>(random() % end); };
  std::vector<uint8_t> codes;
  for (int32_t row = 0; row < rows; ++row) {
    for (int32_t column = 0; column < width;) {
      const bool hostile = below(100) < hostility;
      const uint32_t longest = hostile ? 255u : static_cast<uint32_t>(std::min(width - column, 255));
      const uint8_t count = static_cast<uint8_t>(1 + below(longest));
      if (hostile && below(3) == 0) {
        const bool isEnd = below(20) == 0;
        codes.insert(codes.end(), {0, isEnd ? uint8_t{1} : uint8_t{2}});
        if (!isEnd) codes.insert(codes.end(), {below(20), below(4) == 0 ? below(4) : uint8_t{0}});
      } else if (count >= 3 && below(2) == 0) {
        codes.insert(codes.end(), {0, count});
        for (int32_t i = 0; i < (count + 1) / 2 * 2; ++i) codes.push_back(below(256));
      } else {
        codes.insert(codes.end(), {count, below(256)});
      }
      column += count;
    }
    if (below(100) >= hostility) codes.insert(codes.end(), {0, 0});
  }
  // Whatever the last record takes along, ends of lines follow.
  codes.insert(codes.end(), static_cast<std::size_t>(300 + 2 * rows), 0);
  return codes;
}

testing::AssertionResult SameState(const RleState& a, const RleState& b) {
  const bool sameDelta = a.emptyRows == b.emptyRows && a.targetColumn == b.targetColumn;
  if (a.next == b.next && a.phase == b.phase && (a.phase != RleState::kDelta || sameDelta)) {
    return testing::AssertionSuccess();
  }
  return testing::AssertionFailure() << "another place in the codes, or another phase";
}

void CheckStream(const std::vector<uint8_t>& codes, bool fourBit, int32_t width, int32_t rows) {
  const Picture picture = PaintNaively(codes, fourBit, width, rows);
  FencedBuffer data(picture.bytesRead, 0);  // ends where the model stopped reading
  std::copy_n(codes.begin(), picture.bytesRead, data.data());
  const RleDecoder decoder(fourBit, width);
  std::vector<RleState> begins = {RleState{data.data()}};
  for (int32_t row = 1; row < rows; ++row) {
    begins.push_back(begins.back());
    decoder.SkipRows(&begins.back(), 1);
    RleState inOneGo{data.data()};
    decoder.SkipRows(&inOneGo, row);
    EXPECT_TRUE(SameState(begins.back(), inOneGo)) << "row " << row;
  }
  for (const int32_t columns : {1, (width + 1) / 2, width}) {
    for (int32_t row = rows - 1; row >= 0; --row) {
      FencedBuffer out(static_cast<std::size_t>(width) + RleDecoder::kOvershoot, 0xEE);
      decoder.DecodeRow(begins[static_cast<std::size_t>(row)], columns, begins.back().next, out.data());
      ASSERT_EQ(0, std::memcmp(picture.indices.data() + row * width, out.data(), static_cast<std::size_t>(columns)))
          << "row " << row << " of " << rows << ", " << columns << " columns of " << width;
      ASSERT_TRUE(out.FencesIntact());
    }
  }
}

class RleDecoding : public testing::TestWithParam<bool> {};

TEST_P(RleDecoding, EveryRowOfRandomStreams) {
  std::mt19937 random(1);
  for (const int32_t width : {1, 2, 3, 15, 16, 17, 47, 48, 49, 255, 256, 700}) {
    for (const uint32_t hostility : {0u, 10u, 60u}) {
      for (int32_t turn = 0; turn < 20; ++turn) {
        const int32_t rows = 1 + static_cast<int32_t>(random() % 12);
        CheckStream(RandomCodes(random, width, rows, hostility), GetParam(), width, rows);
        if (HasFatalFailure()) FAIL() << "hostility " << hostility << ", turn " << turn;
      }
    }
  }
}

// Every length of run and literal, in rows that hold nothing else.
TEST_P(RleDecoding, EveryLength) {
  for (int32_t length = 1; length <= 255; ++length) {
    std::vector<uint8_t> codes;
    for (uint8_t row = 0; row < 6; ++row) {
      codes.insert(codes.end(), {static_cast<uint8_t>(length), static_cast<uint8_t>(0x5A + row)});
      if (length >= 3) {
        codes.insert(codes.end(), {0, static_cast<uint8_t>(length)});
        // Taken for codes its last bytes would end rows.
        for (int32_t i = 0; i < (length + 1) / 2 * 2; ++i) {
          codes.push_back(static_cast<uint8_t>(i + 4 < length ? i * 37 + row : 0));
        }
      }
      codes.insert(codes.end(), {0, 0});
    }
    codes.insert(codes.end(), 300, 0);
    for (const int32_t width : {length, 2 * length, 2 * length + 1}) CheckStream(codes, GetParam(), width, 6);
  }
}

INSTANTIATE_TEST_SUITE_P(Depths, RleDecoding, testing::Bool(),
                         [](const auto& depth) { return depth.param ? "FourBits" : "EightBits"; });

}  // namespace
}  // namespace qnv
