// Every kernel of every level that this machine has, against the formula it stands for: all counts up to 200, odd
// alignments, and fences around what it may touch.
#include "raster/rows/row_kernels.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "raster/tile.h"
#include "support/fenced_buffer.h"

namespace qnv {
namespace {

constexpr std::size_t kMost = 200;

struct Level {
  const char* name;
  CpuLevel level;
};

constexpr Level kLevels[] = {
    {"plain", CpuLevel::kPlain}, {"sse2", CpuLevel::kSse2}, {"ssse3", CpuLevel::kSsse3}, {"avx2", CpuLevel::kAvx2}};

class RowKernelsTest : public testing::TestWithParam<Level> {
 protected:
  void SetUp() override {
    if (GetParam().level > DetectCpuLevel()) GTEST_SKIP() << "not on this machine";
  }
  const RowKernels& rows() const { return KernelsFor(GetParam().level); }

  std::vector<uint8_t> Random(std::size_t bytes) {
    std::vector<uint8_t> result(bytes);
    for (uint8_t& byte : result) {
      const uint32_t choice = random_() % 4;
      byte = choice == 0 ? 0x00 : choice == 1 ? 0xFF : static_cast<uint8_t>(random_());
    }
    return result;
  }

  Tile RandomTile(std::size_t length) {
    const std::vector<uint8_t> row = Random(length);
    Tile tile;
    for (std::size_t i = 0; i < sizeof tile.bytes; ++i) tile.bytes[i] = row[i % length];
    return tile;
  }

  // Calls kernel(dst) with `bytes` bytes that end at a fence (and, for short alignments, begin past one) and
  // compares with expected(i, old byte) for each byte.
  template <class Kernel, class Expected>
  void Check(std::size_t bytes, std::size_t lead, Kernel kernel, Expected expected) {
    test::FencedBuffer memory(lead + bytes + kTrail, 0x5A);
    const std::vector<uint8_t> old = Random(bytes);
    uint8_t* dst = memory.data() + lead;
    if (bytes != 0) std::memcpy(dst, old.data(), bytes);
    kernel(dst);
    for (std::size_t i = 0; i < lead; ++i) ASSERT_EQ(memory.data()[i], 0x5A) << "before the row";
    for (std::size_t i = 0; i < kTrail; ++i) ASSERT_EQ(dst[bytes + i], 0x5A) << "after the row, count " << bytes;
    for (std::size_t i = 0; i < bytes; ++i) {
      ASSERT_EQ(dst[i], expected(i, old[i])) << "byte " << i << " of " << bytes << ", lead " << lead;
    }
    ASSERT_TRUE(memory.FencesIntact());
  }

  // A source whose last byte is the last that may be read.
  struct Source {
    explicit Source(const std::vector<uint8_t>& bytes) : memory(bytes.size(), 0) {
      if (!bytes.empty()) std::memcpy(memory.data(), bytes.data(), bytes.size());
    }
    const uint8_t* data() const { return memory.data(); }
    test::FencedBuffer memory;
  };

  static constexpr std::size_t kTrail = 3;
  static constexpr std::size_t kLeads[] = {0, 1, 2, 3, 5, 8, 13, 31};
  static constexpr std::size_t kTileLengths[] = {1, 3, 8, 16, 24, 48};

  std::mt19937 random_{12345};
};

TEST_P(RowKernelsTest, FillTileRow) {
  for (const std::size_t length : kTileLengths) {
    const Tile tile = RandomTile(length);
    for (std::size_t bytes = 0; bytes <= 3 * kMost; bytes += bytes < kMost ? 1 : 37) {
      for (const std::size_t lead : kLeads) {
        const std::size_t phase = (bytes * 7 + lead) % length;
        Check(
            bytes, lead, [&](uint8_t* dst) { rows().FillTileRow(dst, bytes, tile.bytes + phase); },
            [&](std::size_t i, uint8_t) { return tile.bytes[(phase + i) % length]; });
      }
    }
  }
}

TEST_P(RowKernelsTest, RopTileRow) {
  for (const std::size_t length : kTileLengths) {
    const Tile andTile = RandomTile(length), xorTile = RandomTile(length);
    for (std::size_t bytes = 0; bytes <= 3 * kMost; bytes += bytes < kMost ? 1 : 37) {
      for (const std::size_t lead : kLeads) {
        const std::size_t phase = (bytes * 5 + lead) % length;
        Check(
            bytes, lead,
            [&](uint8_t* dst) { rows().RopTileRow(dst, bytes, andTile.bytes + phase, xorTile.bytes + phase); },
            [&](std::size_t i, uint8_t d) {
              const std::size_t at = (phase + i) % length;
              return (d & andTile.bytes[at]) ^ xorTile.bytes[at];
            });
      }
    }
  }
}

uint8_t Combine(uint8_t d, uint8_t s, uint8_t and1, uint8_t and2, uint8_t xor1, uint8_t xor2) {
  return static_cast<uint8_t>((d & ((s & and1) ^ and2)) ^ ((s & xor1) ^ xor2));
}

TEST_P(RowKernelsTest, RopSourceRow) {
  unsigned combination = 0;
  for (std::size_t bytes = 0; bytes <= 3 * kMost; bytes += bytes < kMost ? 1 : 37) {
    for (const std::size_t lead : kLeads) {
      const std::vector<uint8_t> bits = Random(bytes);
      const Source source(bits);
      uint8_t m[4];
      for (int i = 0; i < 4; ++i) m[i] = (combination >> i & 1) != 0 ? 0xFF : 0;
      ++combination;  // all sixteen pass by
      const ByteMasks masks{m[0], m[1], m[2], m[3]};
      Check(
          bytes, lead, [&](uint8_t* dst) { rows().RopSourceRow(dst, source.data(), bytes, masks); },
          [&](std::size_t i, uint8_t d) { return Combine(d, bits[i], m[0], m[1], m[2], m[3]); });
    }
  }
}

TEST_P(RowKernelsTest, RopSourceTileRow) {
  for (const std::size_t length : kTileLengths) {
    const Tile t[4] = {RandomTile(length), RandomTile(length), RandomTile(length), RandomTile(length)};
    for (std::size_t bytes = 0; bytes <= 3 * kMost; bytes += bytes < kMost ? 1 : 37) {
      for (const std::size_t lead : kLeads) {
        const std::vector<uint8_t> bits = Random(bytes);
        const Source source(bits);
        const std::size_t phase = (bytes * 11 + lead) % length;
        const TileMasks masks{t[0].bytes + phase, t[1].bytes + phase, t[2].bytes + phase, t[3].bytes + phase};
        Check(
            bytes, lead, [&](uint8_t* dst) { rows().RopSourceTileRow(dst, source.data(), bytes, masks); },
            [&](std::size_t i, uint8_t d) {
              const std::size_t at = (phase + i) % length;
              return Combine(d, bits[i], t[0].bytes[at], t[1].bytes[at], t[2].bytes[at], t[3].bytes[at]);
            });
      }
    }
  }
}

TEST_P(RowKernelsTest, CopyRow) {
  std::vector<std::size_t> counts{16383, 16384, 20001};  // long rows may go another way
  for (std::size_t bytes = 0; bytes <= 5 * kMost; bytes += bytes < kMost ? 1 : 37) counts.push_back(bytes);
  for (const std::size_t bytes : counts) {
    for (const std::size_t lead : kLeads) {
      const std::vector<uint8_t> bits = Random(bytes);
      const Source source(bits);
      Check(
          bytes, lead, [&](uint8_t* dst) { rows().CopyRow(dst, source.data(), bytes); },
          [&](std::size_t i, uint8_t) { return bits[i]; });
    }
  }
}

TEST_P(RowKernelsTest, MinimumRow) {
  for (std::size_t bytes = 0; bytes <= kMost; ++bytes) {
    for (const std::size_t lead : kLeads) {
      const std::vector<uint8_t> bits = Random(bytes);
      const Source source(bits);
      Check(
          bytes, lead, [&](uint8_t* dst) { rows().MinimumRow(dst, source.data(), bytes); },
          [&](std::size_t i, uint8_t d) { return d < bits[i] ? d : bits[i]; });
    }
  }
}

TEST_P(RowKernelsTest, SwapRow24) {
  for (std::size_t pixels = 0; pixels <= kMost; ++pixels) {
    for (const std::size_t lead : kLeads) {
      const std::vector<uint8_t> bits = Random(3 * pixels);
      const Source source(bits);
      Check(
          3 * pixels, lead, [&](uint8_t* dst) { rows().SwapRow24(dst, source.data(), pixels); },
          [&](std::size_t i, uint8_t) { return bits[i / 3 * 3 + (2 - i % 3)]; });
    }
  }
}

bool BitAt(const std::vector<uint8_t>& bits, std::size_t at) { return (bits[at / 8] >> (7 - at % 8) & 1) != 0; }

TEST_P(RowKernelsTest, ExpandBits) {
  constexpr uint32_t kSet = 0x00C3A55A, kClear = 0x000F1E2D;
  for (std::size_t pixels = 0; pixels <= kMost; ++pixels) {
    for (std::size_t offset = 0; offset < 8; ++offset) {
      const std::size_t lead = kLeads[(pixels + offset) % std::size(kLeads)];
      const std::vector<uint8_t> bits = Random((offset + pixels + 7) / 8);
      const Source source(bits);
      const auto byteOf = [](uint32_t colour, std::size_t i) { return static_cast<uint8_t>(colour >> 8 * i); };
      Check(
          3 * pixels, lead,
          [&](uint8_t* dst) { rows().ExpandBitsRow24(dst, source.data(), offset, pixels, kSet, kClear); },
          [&](std::size_t i, uint8_t) { return byteOf(BitAt(bits, offset + i / 3) ? kSet : kClear, i % 3); });
      Check(
          pixels, lead, [&](uint8_t* dst) { rows().ExpandBitsRow8(dst, source.data(), offset, pixels, kSet, kClear); },
          [&](std::size_t i, uint8_t) { return byteOf(BitAt(bits, offset + i) ? kSet : kClear, 0); });
    }
  }
}

BitColours MakeColours(uint32_t set, uint32_t clear, uint32_t bytesPerPixel) {
  BitColours colours{set, clear, {}, {}, {}};
  for (uint32_t i = 0; i < 24; ++i) {
    colours.setBytes[i] = static_cast<uint8_t>(set >> i % bytesPerPixel * 8);
    colours.clearBytes[i] = static_cast<uint8_t>(clear >> i % bytesPerPixel * 8);
    colours.changeBytes[i] = static_cast<uint8_t>(colours.setBytes[i] ^ colours.clearBytes[i]);
  }
  return colours;
}

TEST_P(RowKernelsTest, GlyphColumns) {
  constexpr std::size_t kRows = 5;
  struct Kernel {
    const char* name;
    uint32_t bytesPerPixel;
    bool transparent;
    void (*kernel)(uint8_t*, std::size_t, const GlyphColumn&, const BitColours&);
  };
  const Kernel kernels[] = {{"expand 24", 3, false, rows().ExpandGlyph24},
                            {"expand 8", 1, false, rows().ExpandGlyph8},
                            {"paint 24", 3, true, rows().PaintGlyph24},
                            {"paint 8", 1, true, rows().PaintGlyph8}};
  for (const Kernel& k : kernels) {
    SCOPED_TRACE(k.name);
    const BitColours colours = MakeColours(0x00C3A55A, 0x000F1E2D, k.bytesPerPixel);
    for (std::size_t offset = 0; offset < 8; ++offset) {
      for (std::size_t pixels = 0; offset + pixels <= 8; ++pixels) {
        for (const std::size_t gap : {std::size_t{0}, std::size_t{7}}) {
          const std::vector<uint8_t> bits = Random(kRows);
          const Source source(bits);
          const std::size_t width = pixels * k.bytesPerPixel;
          const std::size_t stride = width + gap;
          const GlyphColumn column{source.data(), kRows, offset, pixels};
          Check(
              kRows * stride, offset, [&](uint8_t* dst) { k.kernel(dst, stride, column, colours); },
              [&](std::size_t i, uint8_t d) -> uint8_t {
                const std::size_t row = i / stride, at = i % stride;
                if (at >= width) return d;
                const bool set = (bits[row] >> (7 - offset - at / k.bytesPerPixel) & 1) != 0;
                if (!set && k.transparent) return d;
                return set ? colours.setBytes[at] : colours.clearBytes[at];
              });
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Levels, RowKernelsTest, testing::ValuesIn(kLevels),
                         [](const auto& level) { return std::string(level.param.name); });

}  // namespace
}  // namespace qnv
