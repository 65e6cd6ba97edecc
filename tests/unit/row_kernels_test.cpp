// Every kernel of every level that this machine has, against the formula it stands for: all counts up to 300, all
// alignments, and fences around what it may touch.
#include "raster/rows/row_kernels.h"

#include <gtest/gtest.h>

#include <vector>

#include "raster/rows/tile.h"
#include "unit/kernel_levels.h"

namespace qnv::test {
namespace {

uint8_t Combine(uint8_t d, uint8_t s, uint8_t and1, uint8_t and2, uint8_t xor1, uint8_t xor2) {
  return static_cast<uint8_t>((d & ((s & and1) ^ and2)) ^ ((s & xor1) ^ xor2));
}

bool BitAt(const Bytes& bits, std::size_t at) { return (bits[at / 8] >> (7 - at % 8) & 1) != 0; }

uint8_t ByteOf(uint32_t color, std::size_t i) { return static_cast<uint8_t>(color >> 8 * i); }

constexpr uint32_t kSet = 0x00C3A55A, kClear = 0x000F1E2D;

BitColors ColorsOf(uint32_t bytesPerPixel) {
  BitColors colors{kSet, kClear, {}, {}, {}};
  for (uint32_t i = 0; i < 24; ++i) {
    colors.setBytes[i] = ByteOf(kSet, i % bytesPerPixel);
    colors.clearBytes[i] = ByteOf(kClear, i % bytesPerPixel);
    colors.changeBytes[i] = static_cast<uint8_t>(colors.setBytes[i] ^ colors.clearBytes[i]);
  }
  return colors;
}

class RowKernelsTest : public KernelTest {
 protected:
  // With more of the bytes that combine to themselves.
  Bytes Random(std::size_t bytes) {
    Bytes result(bytes);
    for (uint8_t& byte : result) {
      const uint32_t choice = random_() % 4;
      byte = choice == 0 ? 0x00 : choice == 1 ? 0xFF : RandomByte();
    }
    return result;
  }

  Tile RandomTile(std::size_t length) {
    const Bytes row = Random(length);
    Tile tile;
    for (std::size_t i = 0; i < sizeof tile.bytes; ++i) tile.bytes[i] = row[i % length];
    return tile;
  }

  // Calls check(count, alignment): every count up to kMaxPixels, some from there to `most`, at every alignment.
  template <class CheckCount>
  static void ForEachRow(std::size_t most, CheckCount check) {
    const std::size_t step = AlignmentStep();
    for (std::size_t count = 0; count <= most; count += count < kMaxPixels ? 1 : 37) {
      for (std::size_t alignment = count % step; alignment < kAlignments; alignment += step) check(count, alignment);
    }
  }

  // Calls kernel(dst) on a row of random bytes and compares with expected(i, old byte) for each byte.
  template <class Kernel, class Expected>
  void Check(std::size_t bytes, std::size_t alignment, Kernel kernel, Expected expected) {
    const Bytes old = Random(bytes);
    Bytes result(bytes);
    for (std::size_t i = 0; i < bytes; ++i) result[i] = static_cast<uint8_t>(expected(i, old[i]));
    CheckRow(old, result, alignment, kernel);
  }

  const RowKernels& rows() const { return kernels(); }
};

TEST_P(RowKernelsTest, RowsOfTiles) {
  constexpr std::size_t kLengths[] = {1, 3, 8, 16, 24, 48};
  for (const std::size_t length : kLengths) {
    const Tile t[4] = {RandomTile(length), RandomTile(length), RandomTile(length), RandomTile(length)};
    ForEachRow(3 * kMaxPixels, [&](std::size_t bytes, std::size_t alignment) {
      const std::size_t phase = (bytes * 7 + alignment) % length;
      const TileMasks from{t[0].bytes + phase, t[1].bytes + phase, t[2].bytes + phase, t[3].bytes + phase};
      const auto at = [&](int tile, std::size_t i) { return t[tile].bytes[(phase + i) % length]; };
      const Bytes bits = Random(bytes);
      const uint8_t* const source = SourceAtFence(bits);
      Check(
          bytes, alignment, [&](uint8_t* dst) { rows().FillTileRow(dst, bytes, from.and1); },
          [&](std::size_t i, uint8_t) { return at(0, i); });
      Check(
          bytes, alignment, [&](uint8_t* dst) { rows().RopTileRow(dst, bytes, from.and1, from.and2); },
          [&](std::size_t i, uint8_t d) { return (d & at(0, i)) ^ at(1, i); });
      Check(
          bytes, alignment, [&](uint8_t* dst) { rows().RopSourceTileRow(dst, source, bytes, from); },
          [&](std::size_t i, uint8_t d) { return Combine(d, bits[i], at(0, i), at(1, i), at(2, i), at(3, i)); });
    });
  }
}

TEST_P(RowKernelsTest, RowsOfASource) {
  const auto check = [&](std::size_t bytes, std::size_t alignment) {
    const Bytes bits = Random(bytes);
    const uint8_t* const source = SourceAtFence(bits);
    const std::size_t combination = bytes + alignment;  // all sixteen pass by
    const auto mask = [&](unsigned bit) { return static_cast<uint8_t>((combination >> bit & 1) != 0 ? 0xFF : 0); };
    const ByteMasks m{mask(0), mask(1), mask(2), mask(3)};
    Check(
        bytes, alignment, [&](uint8_t* dst) { rows().RopSourceRow(dst, source, bytes, m); },
        [&](std::size_t i, uint8_t d) { return Combine(d, bits[i], m.and1, m.and2, m.xor1, m.xor2); });
    Check(
        bytes, alignment, [&](uint8_t* dst) { rows().CopyRow(dst, source, bytes); },
        [&](std::size_t i, uint8_t) { return bits[i]; });
    Check(
        bytes, alignment, [&](uint8_t* dst) { rows().MinimumRow(dst, source, bytes); },
        [&](std::size_t i, uint8_t d) { return std::min(d, bits[i]); });
  };
  ForEachRow(5 * kMaxPixels, check);
  constexpr std::size_t kLong[] = {16383, 20001};
  for (const std::size_t bytes : kLong) {
    for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) check(bytes, alignment);
  }
}

// The table that devices of this machine use may copy long rows another way.
TEST(FastStrings, CopyRow) {
  kernel::CopyRow* const copy = KernelsFor(DetectCpuLevel(), HasFastStrings()).CopyRow;
  std::mt19937 random(4711);
  for (const std::size_t bytes :
       {std::size_t{0}, std::size_t{100}, std::size_t{16383}, std::size_t{16384}, std::size_t{20001}}) {
    Bytes bits(bytes);
    for (uint8_t& byte : bits) byte = static_cast<uint8_t>(random());
    const uint8_t* const source = SourceAtFence(bits);
    for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) {
      CheckRow(Bytes(bytes, 0xC3), bits, alignment, [&](uint8_t* dst) { copy(dst, source, bytes); });
    }
  }
}

TEST_P(RowKernelsTest, RopSwapRow24) {
  const auto check = [&](std::size_t pixels, std::size_t alignment) {
    const Bytes bits = Random(3 * pixels);
    const uint8_t* const source = SourceAtFence(bits);
    const std::size_t combination = pixels + alignment;  // all sixteen pass by
    const auto mask = [&](unsigned bit) { return static_cast<uint8_t>((combination >> bit & 1) != 0 ? 0xFF : 0); };
    const ByteMasks m{mask(0), mask(1), mask(2), mask(3)};
    Check(
        3 * pixels, alignment, [&](uint8_t* dst) { rows().RopSwapRow24(dst, source, pixels, m); },
        [&](std::size_t i, uint8_t d) {
          return Combine(d, bits[i / 3 * 3 + (2 - i % 3)], m.and1, m.and2, m.xor1, m.xor2);
        });
  };
  ForEachRow(2 * kMaxPixels, check);
  constexpr std::size_t kLong[] = {511, 512, 513, 2047, 2048, 2049, 4200};  // other ways, and more than one piece
  for (const std::size_t pixels : kLong) {
    for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) check(pixels, alignment);
  }
}

TEST_P(RowKernelsTest, SwapRow24) {
  ForEachRow(kMaxPixels, [&](std::size_t pixels, std::size_t alignment) {
    const Bytes bits = Random(3 * pixels);
    const uint8_t* const source = SourceAtFence(bits);
    Check(
        3 * pixels, alignment, [&](uint8_t* dst) { rows().SwapRow24(dst, source, pixels); },
        [&](std::size_t i, uint8_t) { return bits[i / 3 * 3 + (2 - i % 3)]; });
  });
}

TEST_P(RowKernelsTest, ExpandBits) {
  ForEachRow(kMaxPixels, [&](std::size_t pixels, std::size_t alignment) {
    for (std::size_t offset = 0; offset < 8; ++offset) {
      const Bytes bits = Random((offset + pixels + 7) / 8);
      const uint8_t* const source = SourceAtFence(bits);
      const auto color = [&](std::size_t pixel) { return BitAt(bits, offset + pixel) ? kSet : kClear; };
      Check(
          3 * pixels, alignment,
          [&](uint8_t* dst) { rows().ExpandBitsRow24(dst, source, offset, pixels, kSet, kClear); },
          [&](std::size_t i, uint8_t) { return ByteOf(color(i / 3), i % 3); });
      Check(
          pixels, alignment, [&](uint8_t* dst) { rows().ExpandBitsRow8(dst, source, offset, pixels, kSet, kClear); },
          [&](std::size_t i, uint8_t) { return ByteOf(color(i), 0); });
    }
  });
}

TEST_P(RowKernelsTest, GlyphColumns) {
  constexpr std::size_t kRows = 5;
  const struct {
    const char* name;
    uint32_t bytesPerPixel;
    bool transparent;
    kernel::PaintGlyph24* paint;
  } kCases[] = {{"expand 24", 3, false, rows().ExpandGlyph24},
                {"expand 8", 1, false, rows().ExpandGlyph8},
                {"paint 24", 3, true, rows().PaintGlyph24},
                {"paint 8", 1, true, rows().PaintGlyph8}};
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.name);
    const BitColors colors = ColorsOf(c.bytesPerPixel);
    for (std::size_t place = 0; place < 72 * kAlignments; ++place) {
      const std::size_t offset = place % 8, pixels = place / 8 % 9, alignment = place / 72;
      if (offset + pixels > 8) continue;
      const Bytes bits = Random(kRows);
      const std::size_t width = pixels * c.bytesPerPixel;
      const std::size_t stride = width + alignment % 2 * 7;  // with and without a gap
      const GlyphColumn column{SourceAtFence(bits), kRows, offset, pixels};
      Check(
          kRows * stride, alignment, [&](uint8_t* dst) { c.paint(dst, stride, column, colors); },
          [&](std::size_t i, uint8_t d) {
            const std::size_t row = i / stride, at = i % stride;
            if (at >= width) return d;
            const bool set = BitAt(bits, 8 * row + offset + at / c.bytesPerPixel);
            return set ? colors.setBytes[at] : c.transparent ? d : colors.clearBytes[at];
          });
    }
  }
}

// A row of a pattern as the kernels take it.
TEST(Tile, RepeatsItsCells) {
  uint32_t cells[16];
  for (uint32_t i = 0; i < 16; ++i) cells[i] = 0xAA000000 | i * 0x030201;
  for (const std::size_t bytesPerPixel : {1u, 3u}) {
    for (const std::size_t width : {1u, 8u, 16u}) {
      Tile tile;
      MakeTile(&tile, cells, width, bytesPerPixel);
      for (std::size_t i = 0; i < sizeof tile.bytes; ++i) {
        const uint32_t cell = cells[i / bytesPerPixel % width];
        ASSERT_EQ(tile.bytes[i], static_cast<uint8_t>(cell >> i % bytesPerPixel * 8))
            << "byte " << i << ", " << width << " cells of " << bytesPerPixel;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Levels, RowKernelsTest, testing::ValuesIn(kKernelLevels), KernelLevelName);

}  // namespace
}  // namespace qnv::test
