// Every kernel of every level that this machine has, against the formula it stands for: all counts up to 200, odd
// alignments, and fences around what it may touch.
#include "raster/rows/row_kernels.h"

#include <gtest/gtest.h>

#include <vector>

#include "raster/rows/tile.h"
#include "unit/kernel_levels.h"

namespace qnv::test {
namespace {

class RowKernelsTest : public KernelTest {
 protected:
  const RowKernels& rows() const { return kernels(); }

  // With more of the bytes that combine to themselves.
  Bytes Random(std::size_t bytes) {
    Bytes result(bytes);
    for (uint8_t& byte : result) {
      const uint32_t choice = random_() % 4;
      byte = choice == 0 ? 0x00 : choice == 1 ? 0xFF : static_cast<uint8_t>(random_());
    }
    return result;
  }

  Tile RandomTile(std::size_t length) {
    const Bytes row = Random(length);
    Tile tile;
    for (std::size_t i = 0; i < sizeof tile.bytes; ++i) tile.bytes[i] = row[i % length];
    return tile;
  }

  // Calls kernel(dst) on a row of random bytes and compares with expected(i, old byte) for each byte.
  template <class Kernel, class Expected>
  void Check(std::size_t bytes, std::size_t alignment, Kernel kernel, Expected expected) {
    const Bytes old = Random(bytes);
    Bytes result(bytes);
    for (std::size_t i = 0; i < bytes; ++i) result[i] = static_cast<uint8_t>(expected(i, old[i]));
    CheckRow(old, result, alignment, kernel);
  }

  static constexpr std::size_t kTileLengths[] = {1, 3, 8, 16, 24, 48};
};

TEST_P(RowKernelsTest, FillTileRow) {
  for (const std::size_t length : kTileLengths) {
    const Tile tile = RandomTile(length);
    for (std::size_t bytes = 0; bytes <= 3 * kMaxPixels; bytes += bytes < kMaxPixels ? 1 : 37) {
      for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) {
        const std::size_t phase = (bytes * 7 + alignment) % length;
        Check(
            bytes, alignment, [&](uint8_t* dst) { rows().FillTileRow(dst, bytes, tile.bytes + phase); },
            [&](std::size_t i, uint8_t) { return tile.bytes[(phase + i) % length]; });
      }
    }
  }
}

TEST_P(RowKernelsTest, RopTileRow) {
  for (const std::size_t length : kTileLengths) {
    const Tile andTile = RandomTile(length), xorTile = RandomTile(length);
    for (std::size_t bytes = 0; bytes <= 3 * kMaxPixels; bytes += bytes < kMaxPixels ? 1 : 37) {
      for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) {
        const std::size_t phase = (bytes * 5 + alignment) % length;
        Check(
            bytes, alignment,
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
  for (std::size_t bytes = 0; bytes <= 3 * kMaxPixels; bytes += bytes < kMaxPixels ? 1 : 37) {
    for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) {
      const Bytes bits = Random(bytes);
      const FencedSource source(bits);
      uint8_t m[4];
      for (int i = 0; i < 4; ++i) m[i] = (combination >> i & 1) != 0 ? 0xFF : 0;
      ++combination;  // all sixteen pass by
      const ByteMasks masks{m[0], m[1], m[2], m[3]};
      Check(
          bytes, alignment, [&](uint8_t* dst) { rows().RopSourceRow(dst, source.data(), bytes, masks); },
          [&](std::size_t i, uint8_t d) { return Combine(d, bits[i], m[0], m[1], m[2], m[3]); });
    }
  }
}

TEST_P(RowKernelsTest, RopSourceTileRow) {
  for (const std::size_t length : kTileLengths) {
    const Tile t[4] = {RandomTile(length), RandomTile(length), RandomTile(length), RandomTile(length)};
    for (std::size_t bytes = 0; bytes <= 3 * kMaxPixels; bytes += bytes < kMaxPixels ? 1 : 37) {
      for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) {
        const Bytes bits = Random(bytes);
        const FencedSource source(bits);
        const std::size_t phase = (bytes * 11 + alignment) % length;
        const TileMasks masks{t[0].bytes + phase, t[1].bytes + phase, t[2].bytes + phase, t[3].bytes + phase};
        Check(
            bytes, alignment, [&](uint8_t* dst) { rows().RopSourceTileRow(dst, source.data(), bytes, masks); },
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
  for (std::size_t bytes = 0; bytes <= 5 * kMaxPixels; bytes += bytes < kMaxPixels ? 1 : 37) counts.push_back(bytes);
  for (const std::size_t bytes : counts) {
    for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) {
      const Bytes bits = Random(bytes);
      const FencedSource source(bits);
      Check(
          bytes, alignment, [&](uint8_t* dst) { rows().CopyRow(dst, source.data(), bytes); },
          [&](std::size_t i, uint8_t) { return bits[i]; });
    }
  }
}

TEST_P(RowKernelsTest, MinimumRow) {
  for (std::size_t bytes = 0; bytes <= kMaxPixels; ++bytes) {
    for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) {
      const Bytes bits = Random(bytes);
      const FencedSource source(bits);
      Check(
          bytes, alignment, [&](uint8_t* dst) { rows().MinimumRow(dst, source.data(), bytes); },
          [&](std::size_t i, uint8_t d) { return d < bits[i] ? d : bits[i]; });
    }
  }
}

TEST_P(RowKernelsTest, SwapRow24) {
  for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
    for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) {
      const Bytes bits = Random(3 * pixels);
      const FencedSource source(bits);
      Check(
          3 * pixels, alignment, [&](uint8_t* dst) { rows().SwapRow24(dst, source.data(), pixels); },
          [&](std::size_t i, uint8_t) { return bits[i / 3 * 3 + (2 - i % 3)]; });
    }
  }
}

bool BitAt(const Bytes& bits, std::size_t at) { return (bits[at / 8] >> (7 - at % 8) & 1) != 0; }

TEST_P(RowKernelsTest, ExpandBits) {
  constexpr uint32_t kSet = 0x00C3A55A, kClear = 0x000F1E2D;
  for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
    for (std::size_t place = 0; place < 8 * kAlignments; ++place) {
      const std::size_t offset = place % 8, alignment = place / 8;
      const Bytes bits = Random((offset + pixels + 7) / 8);
      const FencedSource source(bits);
      const auto byteOf = [](uint32_t color, std::size_t i) { return static_cast<uint8_t>(color >> 8 * i); };
      Check(
          3 * pixels, alignment,
          [&](uint8_t* dst) { rows().ExpandBitsRow24(dst, source.data(), offset, pixels, kSet, kClear); },
          [&](std::size_t i, uint8_t) { return byteOf(BitAt(bits, offset + i / 3) ? kSet : kClear, i % 3); });
      Check(
          pixels, alignment,
          [&](uint8_t* dst) { rows().ExpandBitsRow8(dst, source.data(), offset, pixels, kSet, kClear); },
          [&](std::size_t i, uint8_t) { return byteOf(BitAt(bits, offset + i) ? kSet : kClear, 0); });
    }
  }
}

BitColors MakeColors(uint32_t set, uint32_t clear, uint32_t bytesPerPixel) {
  BitColors colors{set, clear, {}, {}, {}};
  for (uint32_t i = 0; i < 24; ++i) {
    colors.setBytes[i] = static_cast<uint8_t>(set >> i % bytesPerPixel * 8);
    colors.clearBytes[i] = static_cast<uint8_t>(clear >> i % bytesPerPixel * 8);
    colors.changeBytes[i] = static_cast<uint8_t>(colors.setBytes[i] ^ colors.clearBytes[i]);
  }
  return colors;
}

TEST_P(RowKernelsTest, GlyphColumns) {
  constexpr std::size_t kRows = 5;
  struct Kernel {
    const char* name;
    uint32_t bytesPerPixel;
    bool transparent;
    void (*kernel)(uint8_t*, std::size_t, const GlyphColumn&, const BitColors&);
  };
  const Kernel kernels[] = {{"expand 24", 3, false, rows().ExpandGlyph24},
                            {"expand 8", 1, false, rows().ExpandGlyph8},
                            {"paint 24", 3, true, rows().PaintGlyph24},
                            {"paint 8", 1, true, rows().PaintGlyph8}};
  for (const Kernel& k : kernels) {
    SCOPED_TRACE(k.name);
    const BitColors colors = MakeColors(0x00C3A55A, 0x000F1E2D, k.bytesPerPixel);
    for (std::size_t offset = 0; offset < 8; ++offset) {
      for (std::size_t pixels = 0; offset + pixels <= 8; ++pixels) {
        for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) {
          const std::size_t gap = alignment % 2 * 7;
          const Bytes bits = Random(kRows);
          const FencedSource source(bits);
          const std::size_t width = pixels * k.bytesPerPixel;
          const std::size_t stride = width + gap;
          const GlyphColumn column{source.data(), kRows, offset, pixels};
          Check(
              kRows * stride, alignment, [&](uint8_t* dst) { k.kernel(dst, stride, column, colors); },
              [&](std::size_t i, uint8_t d) -> uint8_t {
                const std::size_t row = i / stride, at = i % stride;
                if (at >= width) return d;
                const bool set = (bits[row] >> (7 - offset - at / k.bytesPerPixel) & 1) != 0;
                if (!set && k.transparent) return d;
                return set ? colors.setBytes[at] : colors.clearBytes[at];
              });
        }
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Levels, RowKernelsTest, testing::ValuesIn(kKernelLevels), KernelLevelName);

}  // namespace
}  // namespace qnv::test
