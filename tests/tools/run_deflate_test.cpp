// What the encoder for runs writes, decoded by zlib.
#include "qnvtool/output/run_deflate.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace qnv::test {
namespace {

using Data = std::vector<uint8_t>;

// The bytes of a whole deflate stream; ends with an error mark where the stream is damaged or does not end.
Data Inflate(const Data& stream, std::size_t size) {
  Data result(size + 1);
  z_stream decoder{};
  EXPECT_EQ(inflateInit2(&decoder, -15), Z_OK);
  decoder.next_in = const_cast<Bytef*>(stream.data());
  decoder.avail_in = static_cast<uInt>(stream.size());
  decoder.next_out = result.data();
  decoder.avail_out = static_cast<uInt>(result.size());
  const int status = inflate(&decoder, Z_FINISH);
  EXPECT_EQ(status, Z_STREAM_END) << (decoder.msg != nullptr ? decoder.msg : "");
  EXPECT_EQ(decoder.avail_in, 0u);
  result.erase(result.end() - static_cast<std::ptrdiff_t>(decoder.avail_out), result.end());
  inflateEnd(&decoder);
  return result;
}

// Encodes the data in one piece and in three, and decodes it. Returns the size of the one piece.
std::size_t Check(const Data& data, const std::string& what) {
  SCOPED_TRACE(what);
  const auto expectedAdler = [](const uint8_t* bytes, std::size_t size) {
    return static_cast<uint32_t>(adler32(adler32(0, nullptr, 0), bytes, static_cast<uInt>(size)));
  };
  Data piece{1, 2, 3};
  EXPECT_EQ(tool::DeflateRuns(data.data(), data.size(), tool::DeflateEnd::kStream, piece),
            data.empty() ? 1 : expectedAdler(data.data(), data.size()));
  EXPECT_TRUE(Inflate(piece, data.size()) == data);
  const std::size_t whole = piece.size();

  Data stream;
  const std::size_t third = data.size() / 3;
  for (int part = 0; part < 3; ++part) {
    const uint8_t* const bytes = data.data() + third * static_cast<std::size_t>(part);
    const std::size_t size = part == 2 ? data.size() - 2 * third : third;
    tool::DeflateRuns(bytes, size, part == 2 ? tool::DeflateEnd::kStream : tool::DeflateEnd::kByte, piece);
    stream.insert(stream.end(), piece.begin(), piece.end());
  }
  EXPECT_TRUE(Inflate(stream, data.size()) == data);
  return whole;
}

TEST(RunDeflate, RunsOfAllLengths) {
  for (std::size_t run = 0; run <= 1100; ++run) {
    Data data(run, 7);
    Check(data, "run of " + std::to_string(run));
    data.insert(data.begin(), 9);
    data.push_back(8);
    Check(data, "run of " + std::to_string(run) + " between others");
  }
}

TEST(RunDeflate, AllBytes) {
  Data data;
  for (int value = 0; value < 256; ++value) data.push_back(static_cast<uint8_t>(value));
  Check(data, "once each");
  for (int value = 0; value < 256; ++value) data.insert(data.end(), 300, static_cast<uint8_t>(value));
  Check(data, "in runs");
  for (int value = 0; value < 256; ++value) Check({static_cast<uint8_t>(value)}, "alone");
}

// Counts like the Fibonacci numbers make the longest codes; they have to be cut at 15 bits.
TEST(RunDeflate, LongCodes) {
  Data data;
  std::size_t count = 1, last = 1;
  for (uint8_t value = 0; value < 26; ++value) {
    // Two values in turn, so that there are no runs.
    for (std::size_t i = 0; i < count; ++i) {
      data.push_back(value);
      data.push_back(static_cast<uint8_t>(200 + i % 2));
    }
    last = std::exchange(count, count + last);
  }
  Check(data, "Fibonacci");
}

// Noise of all densities, with runs of all kinds in between.
TEST(RunDeflate, Mixtures) {
  uint32_t random = 1;
  const auto next = [&](uint32_t below) {
    random = random * 1664525 + 1013904223;
    return (random >> 8) % below;
  };
  for (int round = 0; round < 300; ++round) {
    Data data;
    const uint32_t density = next(100);
    const uint32_t values = 1 + next(256);
    const std::size_t size = next(20000);
    while (data.size() < size) {
      if (next(100) < density) {
        data.push_back(static_cast<uint8_t>(next(values)));
      } else {
        data.insert(data.end(), next(next(2) == 0 ? 10 : 2000), static_cast<uint8_t>(next(2) == 0 ? 0 : next(values)));
      }
    }
    Check(data, "round " + std::to_string(round));
  }
}

// A megabyte of zeros is a thousandth of that: two bits for each 258 bytes.
TEST(RunDeflate, Sizes) {
  EXPECT_LE(Check(Data(1 << 20, 0), "zeros"), 1100u);
  // Noise needs no more than eight bits a byte and the codes.
  Data noise(1 << 16);
  uint32_t random = 5;
  for (uint8_t& value : noise) {
    random = random * 1664525 + 1013904223;
    value = static_cast<uint8_t>(random >> 24);
  }
  EXPECT_LE(Check(noise, "noise"), noise.size() + 400);
}

}  // namespace
}  // namespace qnv::test
