// Image rows of every level against the formula that they stand for: all counts up to 200, sources that end at a
// fence, destinations between fences.
#include "raster/rows/pixel_rows.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "unit/kernel_levels.h"

namespace qnv::test {
namespace {

class PixelRowsTest : public KernelTest {
 protected:
  const PixelRows& rows() const { return *kernels().image; }

  // Runs kernel(dst, source) at every alignment and compares the bytes that it wrote.
  template <class Kernel>
  void Check(const Bytes& sourceBytes, const Bytes& expected, Kernel kernel) {
    const FencedSource source(sourceBytes);
    const Bytes old(expected.size(), 0xC3);
    for (std::size_t alignment = 0; alignment < kAlignments; ++alignment) {
      CheckRow(old, expected, alignment, [&](uint8_t* dst) { kernel(dst, source.data()); });
    }
  }
};

void Append24(Bytes* out, uint32_t packed) {
  for (int i = 0; i < 3; ++i) out->push_back(static_cast<uint8_t>(packed >> 8 * i));
}

TEST_P(PixelRowsTest, ExpandBytes) {
  uint32_t table[256];
  for (uint32_t& entry : table) entry = random_() & 0xFFFFFF;
  for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
    const Bytes source = Random(pixels);
    Bytes colors, grays;
    for (const uint8_t index : source) {
      Append24(&colors, table[index]);
      grays.push_back(static_cast<uint8_t>(table[index]));
    }
    Check(source, colors, [&](uint8_t* d, const uint8_t* s) { rows().ExpandBytesRow24(d, s, pixels, table); });
    Check(source, grays, [&](uint8_t* d, const uint8_t* s) { rows().ExpandBytesRow8(d, s, pixels, table); });
  }
}

TEST_P(PixelRowsTest, ExpandNibbles) {
  uint32_t table[16];
  for (uint32_t& entry : table) entry = random_() & 0xFFFFFF;
  for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
    for (const bool odd : {false, true}) {
      const Bytes source = Random((pixels + (odd ? 1 : 0) + 1) / 2);
      Bytes colors, grays;
      for (std::size_t i = 0; i < pixels; ++i) {
        const std::size_t at = i + (odd ? 1 : 0);
        const uint32_t entry = table[at % 2 == 0 ? source[at / 2] >> 4 : source[at / 2] & 15];
        Append24(&colors, entry);
        grays.push_back(static_cast<uint8_t>(entry));
      }
      Check(source, colors, [&](uint8_t* d, const uint8_t* s) { rows().ExpandNibblesRow24(d, s, odd, pixels, table); });
      Check(source, grays, [&](uint8_t* d, const uint8_t* s) { rows().ExpandNibblesRow8(d, s, odd, pixels, table); });
    }
  }
}

TEST_P(PixelRowsTest, UnpackRow16) {
  constexpr PixelMasks kMasks[] = {
      {{{0x001F, 11, 5}, {0x03E0, 6, 5}, {0x7C00, 1, 5}}},
      {{{0x001F, 11, 5}, {0x07E0, 5, 6}, {0xF800, 0, 5}}},
      {{{0x8000, 1, 31}, {0x0000, 16, 0}, {0x0001, 16, 31}}},
      {{{0xFFFF, 0, 8}, {0xBF00, 0, 1}, {0x00FF, 8, 8}}},  // the second one's sum does not fit a byte
  };
  for (const PixelMasks& masks : kMasks) {
    for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
      const Bytes source = Random(2 * pixels);
      Bytes expected;
      for (std::size_t i = 0; i < pixels; ++i) {
        const uint32_t pixel = static_cast<uint32_t>(source[2 * i] | source[2 * i + 1] << 8);
        for (const ComponentMask& m : masks.component) {
          const uint32_t v = (pixel & m.mask) << m.up >> 8;
          expected.push_back(static_cast<uint8_t>(v + (v >> m.fill)));
        }
      }
      Check(source, expected, [&](uint8_t* d, const uint8_t* s) { rows().UnpackRow16(d, s, pixels, masks); });
    }
  }
}

TEST_P(PixelRowsTest, Pack32AndGray24) {
  for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
    const Bytes four = Random(4 * pixels), three = Random(3 * pixels);
    Bytes packed, swapped, gray;
    for (std::size_t i = 0; i < pixels; ++i) {
      for (std::size_t c = 0; c < 3; ++c) packed.push_back(four[4 * i + c]);
      for (std::size_t c = 0; c < 3; ++c) swapped.push_back(four[4 * i + 2 - c]);
      gray.push_back(static_cast<uint8_t>((three[3 * i] * 11 + three[3 * i + 1] * 59 + three[3 * i + 2] * 30) / 100));
    }
    Check(four, packed, [&](uint8_t* d, const uint8_t* s) { rows().PackRow32(d, s, pixels); });
    Check(four, swapped, [&](uint8_t* d, const uint8_t* s) { rows().PackSwapRow32(d, s, pixels); });
    Check(three, gray, [&](uint8_t* d, const uint8_t* s) { rows().GrayRow24(d, s, pixels); });
  }
}

// The division by 100 is done by multiplication: every sum that can occur, through gray and near-gray pixels.
TEST_P(PixelRowsTest, GrayOfEverySum) {
  Bytes source;
  for (int blue = 0; blue < 256; blue += 5) {
    for (int green = 0; green < 256; ++green) {
      for (int red = 0; red < 256; red += 3) {
        source.push_back(static_cast<uint8_t>(blue));
        source.push_back(static_cast<uint8_t>(green));
        source.push_back(static_cast<uint8_t>(red));
      }
    }
  }
  const std::size_t pixels = source.size() / 3;
  Bytes gray(pixels);
  rows().GrayRow24(gray.data(), source.data(), pixels);
  for (std::size_t i = 0; i < pixels; ++i) {
    ASSERT_EQ(gray[i], (source[3 * i] * 11 + source[3 * i + 1] * 59 + source[3 * i + 2] * 30) / 100) << i;
  }
}

TEST_P(PixelRowsTest, GraysInThreeBytes) {
  for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
    const Bytes colors = Random(3 * pixels), grays = Random(pixels);
    Bytes regrayed, tripled;
    for (std::size_t i = 0; i < pixels; ++i) {
      const uint8_t* p = colors.data() + 3 * i;
      regrayed.insert(regrayed.end(), 3, static_cast<uint8_t>((p[0] * 30 + p[1] * 59 + p[2] * 11) / 100));
      tripled.insert(tripled.end(), 3, grays[i]);
    }
    Check(colors, regrayed, [&](uint8_t* d, const uint8_t* s) {
      if (pixels != 0) std::memcpy(d, s, 3 * pixels);
      rows().RegrayRow24(d, pixels);
    });
    Check(grays, tripled, [&](uint8_t* d, const uint8_t* s) { rows().TripleRow24(d, s, pixels); });
  }
}

TEST_P(PixelRowsTest, MarkRow24) {
  for (const uint8_t skip : {uint8_t{0}, uint8_t{0xFF}}) {
    for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
      Bytes source = Random(3 * pixels);
      // Skipped pixels among some that differ in one byte.
      for (std::size_t i = 0; i < source.size(); ++i) {
        if (random_() % 8 != 0) source[i] = skip;
      }
      const Bytes old = Random(pixels);
      Bytes expected = old;
      for (std::size_t i = 0; i < pixels; ++i) {
        const uint8_t* p = source.data() + 3 * i;
        if (p[0] != skip || p[1] != skip || p[2] != skip) expected[i] = 7;
      }
      Check(source, expected, [&](uint8_t* d, const uint8_t* s) {
        if (pixels != 0) std::memcpy(d, old.data(), pixels);
        rows().MarkRow24(d, s, pixels, skip, 7);
      });
    }
  }
}

TEST_P(PixelRowsTest, Reverse) {
  for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
    const Bytes three = Random(3 * pixels), one = Random(pixels);
    Bytes threeBack, oneBack;
    for (std::size_t i = pixels; i-- > 0;) {
      threeBack.insert(threeBack.end(), three.begin() + static_cast<std::ptrdiff_t>(3 * i),
                       three.begin() + static_cast<std::ptrdiff_t>(3 * i + 3));
      oneBack.push_back(one[i]);
    }
    Check(three, threeBack, [&](uint8_t* d, const uint8_t* s) { rows().ReverseRow24(d, s, pixels); });
    Check(one, oneBack, [&](uint8_t* d, const uint8_t* s) { rows().ReverseRow8(d, s, pixels); });
  }
}

TEST_P(PixelRowsTest, Repeat) {
  for (const std::size_t factor : {std::size_t{2}, std::size_t{4}, std::size_t{8}}) {
    for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
      const std::size_t sources = (pixels + factor - 1) / factor;
      const Bytes three = Random(3 * sources + kGroupBytes), one = Random(sources + kGroupBytes);
      Bytes threeTimes, oneTimes;
      for (std::size_t i = 0; i < pixels; ++i) {
        for (std::size_t c = 0; c < 3; ++c) threeTimes.push_back(three[3 * (i / factor) + c]);
        oneTimes.push_back(one[i / factor]);
      }
      Check(three, threeTimes, [&](uint8_t* d, const uint8_t* s) { rows().RepeatRow24(d, s, pixels, factor); });
      Check(one, oneTimes, [&](uint8_t* d, const uint8_t* s) { rows().RepeatRow8(d, s, pixels, factor); });
    }
  }
}

TEST_P(PixelRowsTest, ShuffleRow) {
  for (const std::size_t stride : {std::size_t{15}, std::size_t{16}, std::size_t{3}}) {
    for (std::size_t total = 0; total <= kMaxPixels; ++total) {
      const Bytes source = Random(300);
      std::vector<ShuffleGroup> groups((total + stride - 1) / stride);
      Bytes expected;
      for (ShuffleGroup& group : groups) {
        group.from = static_cast<uint32_t>(random_() % (300 - kGroupBytes + 1));
        for (uint8_t& byte : group.bytes) byte = static_cast<uint8_t>(random_() % kGroupBytes);
        for (std::size_t i = 0; i < stride; ++i) expected.push_back(source[group.from + group.bytes[i]]);
      }
      expected.resize(total);
      Check(source, expected,
            [&](uint8_t* d, const uint8_t* s) { rows().ShuffleRow(d, s, groups.data(), stride, total); });
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Levels, PixelRowsTest, testing::ValuesIn(kKernelLevels), KernelLevelName);

}  // namespace
}  // namespace qnv::test
