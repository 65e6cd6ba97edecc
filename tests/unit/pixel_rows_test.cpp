// Image rows of every level against the formula that they stand for: all counts up to 300, sources that end at a
// fence, destinations between fences.
#include "raster/rows/pixel_rows.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "unit/kernel_levels.h"

namespace qnv::test {
namespace {

uint32_t Packed(uint32_t first, uint32_t second, uint32_t third) { return first | second << 8 | third << 16; }

uint32_t GrayLevel(uint32_t red, uint32_t green, uint32_t blue) { return (red * 30 + green * 59 + blue * 11) / 100; }

void AppendPixel(Bytes* row, std::size_t bytesPerPixel, uint32_t packed) {
  for (std::size_t i = 0; i < bytesPerPixel; ++i) row->push_back(static_cast<uint8_t>(packed >> 8 * i));
}

// Three bytes of a row as a packed pixel.
uint32_t PixelAt(const Bytes& row, std::size_t at) { return Packed(row[at], row[at + 1], row[at + 2]); }

// Rows from which on palettes of 256 colors may be looked up another way are shorter.
constexpr std::size_t kMaxTabled = 360;

class PixelRowsTest : public KernelTest {
 protected:
  const PixelRows& rows() const { return *kernels().image; }

  std::vector<uint32_t> RandomTable(std::size_t colors) {
    std::vector<uint32_t> table(colors);
    for (uint32_t& entry : table) entry = random_() & 0xFFFFFF;
    return table;
  }

  // Runs kernel(dst, source) at every alignment and compares the bytes that it wrote.
  template <class Kernel>
  void Check(const Bytes& sourceBytes, const Bytes& expected, Kernel kernel) {
    const uint8_t* const source = SourceAtFence(sourceBytes);
    const Bytes old(expected.size(), 0xC3);
    const std::size_t step = AlignmentStep();
    for (std::size_t alignment = expected.size() % step; alignment < kAlignments; alignment += step) {
      CheckRow(old, expected, alignment, [&](uint8_t* dst) { kernel(dst, source); });
    }
  }

  // Runs kernel(dst, source, pixels) for every count up to `most` on as many random bytes as sourceBytes(pixels) says,
  // and compares each pixel with pixelOf(source, its number), packed.
  template <class SourceBytes, class Kernel, class PixelOf>
  void CheckCounts(std::size_t bytesPerPixel, SourceBytes sourceBytes, Kernel kernel, PixelOf pixelOf,
                   std::size_t most = kMaxPixels) {
    for (std::size_t pixels = 0; pixels <= most; ++pixels) {
      const Bytes source = Random(sourceBytes(pixels));
      Bytes expected;
      for (std::size_t i = 0; i < pixels; ++i) AppendPixel(&expected, bytesPerPixel, pixelOf(source, i));
      Check(source, expected, [&](uint8_t* d, const uint8_t* s) { kernel(d, s, pixels); });
    }
  }

  // Sources of so many whole bytes a pixel.
  static auto Pixels(std::size_t bytes) {
    return [bytes](std::size_t pixels) { return bytes * pixels; };
  }
};

TEST_P(PixelRowsTest, ExpandBytes) {
  const std::vector<uint32_t> table = RandomTable(256);
  for (const std::size_t bytes : {3u, 1u}) {
    const auto expand = bytes == 3 ? rows().ExpandBytesRow24 : rows().ExpandBytesRow8;
    CheckCounts(
        bytes, Pixels(1), [&](uint8_t* d, const uint8_t* s, std::size_t pixels) { expand(d, s, pixels, table.data()); },
        [&](const Bytes& s, std::size_t i) { return table[s[i]]; }, kMaxTabled);
  }
}

TEST_P(PixelRowsTest, ExpandNibbles) {
  const std::vector<uint32_t> table = RandomTable(16);
  for (const std::size_t skipped : {0u, 1u}) {
    for (const std::size_t bytes : {3u, 1u}) {
      const auto expand = bytes == 3 ? rows().ExpandNibblesRow24 : rows().ExpandNibblesRow8;
      CheckCounts(
          bytes, [=](std::size_t pixels) { return (pixels + skipped + 1) / 2; },
          [&](uint8_t* d, const uint8_t* s, std::size_t pixels) { expand(d, s, skipped != 0, pixels, table.data()); },
          [&](const Bytes& s, std::size_t i) {
            const std::size_t at = i + skipped;
            return table[at % 2 == 0 ? s[at / 2] >> 4 : s[at / 2] & 15];
          });
    }
  }
}

TEST_P(PixelRowsTest, SixteenBits) {
  constexpr ComponentMask kWide{0xBF00, 0, 1};  // its sum does not fit a byte
  constexpr ComponentMask kFive{0x001F, 11, 5}, kHigh{0xFFFF, 0, 8}, kLow{0x00FF, 8, 8};
  constexpr PixelMasks kMasks[] = {{{kFive, {0x03E0, 6, 5}, {0x7C00, 1, 5}}},
                                   {{kFive, {0x07E0, 5, 6}, {0xF800, 0, 5}}},
                                   {{kWide, kHigh, kLow}},
                                   {{kHigh, kWide, kLow}},
                                   {{kHigh, kLow, kWide}},
                                   {{{0x8000, 1, 31}, {0x0000, 16, 0}, {0x0001, 16, 31}}}};
  for (const PixelMasks& masks : kMasks) {
    CheckCounts(
        3, Pixels(2),
        [&](uint8_t* d, const uint8_t* s, std::size_t pixels) { rows().UnpackRow16(d, s, pixels, masks); },
        [&](const Bytes& s, std::size_t i) {
          const uint32_t pixel = static_cast<uint32_t>(s[2 * i] | s[2 * i + 1] << 8);
          const auto component = [&](const ComponentMask& m) {
            const uint32_t v = (pixel & m.mask) << m.up >> 8;
            return (v + (v >> m.fill)) & 0xFF;
          };
          return Packed(component(masks.component[0]), component(masks.component[1]), component(masks.component[2]));
        });
    CheckCounts(
        1, Pixels(2), [&](uint8_t* d, const uint8_t* s, std::size_t pixels) { rows().GrayRow16(d, s, pixels, masks); },
        [&](const Bytes& s, std::size_t i) {
          const uint32_t pixel = static_cast<uint32_t>(s[2 * i] | s[2 * i + 1] << 8);
          const ComponentMask* const m = masks.component;
          return GrayLevel(m[2].Extract(pixel), m[1].Extract(pixel), m[0].Extract(pixel));
        });
  }
}

TEST_P(PixelRowsTest, PixelsOneByOne) {
  CheckCounts(3, Pixels(4), rows().PackRow32, [](const Bytes& s, std::size_t i) { return PixelAt(s, 4 * i); });
  CheckCounts(3, Pixels(4), rows().PackSwapRow32,
              [](const Bytes& s, std::size_t i) { return Packed(s[4 * i + 2], s[4 * i + 1], s[4 * i]); });
  CheckCounts(1, Pixels(3), rows().GrayRow24,
              [](const Bytes& s, std::size_t i) { return GrayLevel(s[3 * i + 2], s[3 * i + 1], s[3 * i]); });
  CheckCounts(1, Pixels(4), rows().GrayRow32,
              [](const Bytes& s, std::size_t i) { return GrayLevel(s[4 * i + 2], s[4 * i + 1], s[4 * i]); });
  CheckCounts(3, Pixels(1), rows().TripleRow24, [](const Bytes& s, std::size_t i) { return s[i] * 0x010101u; });
  CheckCounts(
      3, Pixels(3),
      [&](uint8_t* d, const uint8_t* s, std::size_t pixels) {
        std::copy_n(s, 3 * pixels, d);
        rows().RegrayRow24(d, pixels);
      },
      [](const Bytes& s, std::size_t i) { return GrayLevel(s[3 * i], s[3 * i + 1], s[3 * i + 2]) * 0x010101; });
  CheckCounts(3, Pixels(3), rows().ReverseRow24,
              [](const Bytes& s, std::size_t i) { return PixelAt(s, s.size() - 3 * (i + 1)); });
  CheckCounts(1, Pixels(1), rows().ReverseRow8,
              [](const Bytes& s, std::size_t i) { return uint32_t{s[s.size() - 1 - i]}; });
}

TEST_P(PixelRowsTest, Repeat) {
  for (const std::size_t factor : {2u, 4u, 8u}) {
    for (const std::size_t bytes : {3u, 1u}) {
      const auto repeat = bytes == 3 ? rows().RepeatRow24 : rows().RepeatRow8;
      CheckCounts(
          bytes, [=](std::size_t pixels) { return bytes * ((pixels + factor - 1) / factor) + kGroupBytes; },
          [&](uint8_t* d, const uint8_t* s, std::size_t pixels) { repeat(d, s, pixels, factor); },
          [&](const Bytes& s, std::size_t i) { return PixelAt(s, bytes * (i / factor)); });
    }
  }
}

// The division by 100 is done by multiplication: every sum that can occur, through gray and near-gray pixels.
TEST_P(PixelRowsTest, GrayOfEverySum) {
  Bytes source, fourBytes, expected;
  for (uint32_t blue = 0; blue < 256; blue += 5) {
    for (uint32_t green = 0; green < 256; ++green) {
      for (uint32_t red = 0; red < 256; red += 3) {
        AppendPixel(&source, 3, Packed(blue, green, red));
        AppendPixel(&fourBytes, 4, Packed(blue, green, red) | green << 24);
        AppendPixel(&expected, 1, GrayLevel(red, green, blue));
      }
    }
  }
  Bytes gray(expected.size());
  rows().GrayRow24(gray.data(), source.data(), gray.size());
  ASSERT_EQ(expected, gray);
  rows().GrayRow32(gray.data(), fourBytes.data(), gray.size());
  ASSERT_EQ(expected, gray);
}

// The same for every 16-bit pixel, under masks that give every component eight levels or more.
TEST_P(PixelRowsTest, GrayOfEverySixteenBits) {
  constexpr PixelMasks kMasks[] = {{{{0x001F, 11, 5}, {0x03E0, 6, 5}, {0x7C00, 1, 5}}},
                                   {{{0x001F, 11, 5}, {0x07E0, 5, 6}, {0xF800, 0, 5}}},
                                   {{{0x00FF, 8, 8}, {0xFF00, 0, 8}, {0x0FF0, 4, 8}}}};
  Bytes source;
  for (uint32_t pixel = 0; pixel < 65536; ++pixel) AppendPixel(&source, 2, pixel);
  for (const PixelMasks& masks : kMasks) {
    const ComponentMask* const m = masks.component;
    Bytes expected;
    for (uint32_t pixel = 0; pixel < 65536; ++pixel) {
      AppendPixel(&expected, 1, GrayLevel(m[2].Extract(pixel), m[1].Extract(pixel), m[0].Extract(pixel)));
    }
    Bytes gray(expected.size());
    rows().GrayRow16(gray.data(), source.data(), gray.size(), masks);
    ASSERT_EQ(expected, gray);
  }
}

TEST_P(PixelRowsTest, MarkRow24) {
  for (const uint8_t skip : {uint8_t{0}, uint8_t{0xFF}}) {
    for (std::size_t pixels = 0; pixels <= kMaxPixels; ++pixels) {
      Bytes source = Random(3 * pixels);
      // Skipped pixels among some that differ in one byte.
      for (uint8_t& byte : source) byte = random_() % 8 != 0 ? skip : byte;
      const Bytes old = Random(pixels);
      Bytes expected = old;
      for (std::size_t i = 0; i < pixels; ++i) {
        if (PixelAt(source, 3 * i) != skip * 0x010101u) expected[i] = 7;
      }
      Check(source, expected, [&](uint8_t* d, const uint8_t* s) {
        std::copy(old.begin(), old.end(), d);
        rows().MarkRow24(d, s, pixels, skip, 7);
      });
    }
  }
}

TEST_P(PixelRowsTest, ShuffleRow) {
  for (const std::size_t stride : {15u, 16u, 3u}) {
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
