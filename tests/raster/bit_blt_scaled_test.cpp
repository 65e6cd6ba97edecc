// Transfers on the resolution-mapping device: clipped and aligned in page pixels, thinned out on the way to the band,
// patterns counted in band pixels, and grayed in gray mode.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "support/device_classes.h"
#include "support/random_bytes.h"
#include "support/transfer_check.h"

namespace qnv::test {
namespace {

struct Resolutions {
  uint16_t a;
  uint16_t b;
};

constexpr Resolutions kPairs[] = {{360, 360}, {720, 360}, {600, 400}, {7, 5}, {3, 1}, {360, 720}, {5, 7}, {2, 9}};

std::string NameOf(const Resolutions& r) { return std::to_string(r.a) + " to " + std::to_string(r.b); }

// The band coordinate of a page coordinate, both counted from the band's corner; none where the page has one too many.
class Mapping {
 public:
  explicit Mapping(const Resolutions& r) : a_(r.a), b_(r.b), kept_(r.a + 1u, false) {
    for (uint32_t j = 0; j < r.b; ++j) {
      const uint32_t product = j * r.a;
      kept_[product / r.b + (product % r.b > r.b / 2u ? 1 : 0)] = true;
    }
  }
  std::optional<int32_t> Kept(int32_t page) const {
    if (page < 0 || !kept_[static_cast<std::size_t>(page % a_)]) return std::nullopt;
    return static_cast<int32_t>((int64_t{page} * b_ + a_ / 2) / a_);
  }
  // Of a band edge; half away from zero.
  int32_t PageEdge(int32_t band) const {
    const int32_t magnitude = (std::abs(band) * a_ + b_ / 2) / b_;
    return band < 0 ? -magnitude : magnitude;
  }

 private:
  int32_t a_;
  int32_t b_;
  std::vector<bool> kept_;
};

// The source bytes for a band pixel. Step and start of a source that is not one-bit depend on the device's depth.
PixelBytes SourceBytes(const SourceImage& source, const DRAWMODE& mode, uint16_t bitsPerPixel, int32_t firstX,
                       int32_t x, int32_t y) {
  if (source.oneBit()) return BandBytesOf(source.Bit(x, y) ? mode.bkColor : mode.TextColor);
  const int32_t step = bitsPerPixel == 24 ? 3 : 1;
  const uint8_t* pixel = source.Row(y) + firstX * source.record()->bmBitsPixel / 8 + (x - firstX) * step;
  if (step == 1) return {pixel[0], pixel[0], pixel[0]};
  return {pixel[2], pixel[1], pixel[0]};
}

// Paints what a transfer of `page` (page pixels counted from the band's corner, already clipped) leaves in the band.
void PaintScaled(PlaneImage* expected, const Mapping& mapping, uint16_t bitsPerPixel, const BandRect& page,
                 int32_t srcX, int32_t srcY, const TransferInputs& in) {
  const uint8_t index = static_cast<uint8_t>(in.rop >> 16);
  for (int32_t y = page.top; y < page.bottom; ++y) {
    for (int32_t x = page.left; x < page.right; ++x) {
      const std::optional<int32_t> row = mapping.Kept(y);
      const std::optional<int32_t> column = mapping.Kept(x);
      if (!row || !column || *row >= expected->rows() || *column >= expected->columns()) continue;
      PixelBytes source{};
      PixelBytes pattern{};
      if (IndexUsesSource(index)) {
        source = SourceBytes(*in.source, *in.drawMode, bitsPerPixel, srcX, srcX + x - page.left, srcY + y - page.top);
      }
      if (IndexUsesPattern(index)) pattern = BandBytesOf(PatternColor(in.brush, *in.drawMode, *column, *row));
      PixelBytes result;
      for (std::size_t i = 0; i < 3; ++i) {
        result[i] = Rop3Byte(index, pattern[i], source[i], expected->At(*column, *row)[i]);
      }
      if (bitsPerPixel == 0) {
        const uint8_t level = static_cast<uint8_t>((result[0] * 30 + result[1] * 59 + result[2] * 11) / 100);
        result = {level, level, level};
      }
      expected->Set(*column, *row, result);
    }
  }
}

DeviceOptions OptionsOf(const Resolutions& r, uint16_t bitsPerPixel, uint32_t width, uint32_t height) {
  return WithDepth({.width = width, .height = height, .resolutionA = r.a, .resolutionB = r.b}, QNV_KIND_SCALED,
                   bitsPerPixel);
}

DRAWMODE ScaledMode() { return MakeDrawMode({.background = 0x005A3CF0, .text = 0x00C3A50F}); }

// The source form that has the device's own step.
const SourceForm& OwnForm(uint16_t bitsPerPixel) { return bitsPerPixel == 24 ? kColorSource : kGraySource; }

// The call's result is 1, and the band shows the model's picture of `page`.
testing::AssertionResult PaintsScaled(const TestDevice& device, const TransferCall& call, const SourceImage* source,
                                      const BandRect& page, TransferPoint first) {
  const DeviceOptions& options = device.options();
  return TransferLeaves(device, call, source, [&](PlaneImage* expected) {
    PaintScaled(expected, Mapping({options.resolutionA, options.resolutionB}), options.bitsPerPixel, page, first.x,
                first.y, {call.rop, source, call.brush, call.drawMode});
  });
}

// By hand: the source pixel that each band pixel gets. Two to one keeps every other one, from page 0 the even ones,
// from page 1 the odd ones one band pixel further on. A byte of a gray source fills all three bytes of a pixel, in gray
// mode and at a depth that is neither.
TEST(BitBltScaled, GraySourcesByHand) {
  struct Case {
    Resolutions resolutions;
    int32_t at;
    const char* picture;
  };
  constexpr Case kCases[] = {{{360, 360}, 0, "abcdefghi"},
                             {{720, 360}, 0, "acegik..."},
                             {{720, 360}, 1, ".bdfhjl.."},
                             {{600, 400}, 0, "abdeghjk."}};
  uint8_t pixels[12];
  PictureInks inks;
  for (uint8_t i = 0; i < 12; ++i) {
    pixels[i] = static_cast<uint8_t>(23 * i);
    inks.push_back({static_cast<char>('a' + i), Gray(pixels[i])});
  }
  const SourceBitmap source{0, 12, 1, 12, 1, 8, pixels};
  const DRAWMODE mode = ScaledMode();
  for (const Case& c : kCases) {
    for (uint16_t bits : {uint16_t{0}, uint16_t{8}}) {
      SCOPED_TRACE(Text(NameOf(c.resolutions), " at ", c.at, ", ", bits, " bits"));
      TestDevice device(OptionsOf(c.resolutions, bits, 9, 1));
      EXPECT_EQ(1u, Transfer(device.handle(),
                             {.at = {c.at, 0}, .source = &source, .size = {12, 1}, .rop = SRCCOPY, .drawMode = &mode}));
      EXPECT_TRUE(BandIs(device, inks, c.picture));
    }
  }
}

// Every index, source form and kind of brush, in color, in gray mode and at a depth that is neither.
TEST(BitBltScaled, EveryIndex) {
  for (const Resolutions& r : {Resolutions{600, 400}, Resolutions{360, 360}}) {
    for (uint16_t bits : {uint16_t{24}, uint16_t{0}, uint16_t{8}}) {
      TestDevice device(OptionsOf(r, bits, 19, 11));
      const DRAWMODE mode = ScaledMode();
      const SourceImage bitmap(kColorSource, 8, 8, 3);
      const PhysicalBrush brushes[] = {SolidBrush(device.handle(), 0x00804C1F),
                                       HatchBrush(device.handle(), HS_DIAGCROSS, 0x00336699),
                                       PatternBrush(device.handle(), *bitmap.record())};
      for (const SourceForm& form : {OwnForm(bits), kOneBitSource}) {
        const SourceImage source(form, 30, 20, 4, 1);
        for (const PhysicalBrush& brush : brushes) {
          for (uint32_t index = 0; index < 256; ++index) {
            SCOPED_TRACE(
                Text(NameOf(r), ", ", bits, " bits, ", form.name, ", brush style ", brush.style, ", index ", index));
            FillWithNoise(&device.band(), index);
            const TransferCall call{
                .at = {2, 1}, .from = {3, 2}, .size = {15, 9}, .rop = index << 16, .brush = &brush, .drawMode = &mode};
            const BandRect page = index == 0xAA ? BandRect{0, 0, 0, 0} : BandRect{2, 1, 17, 10};
            ASSERT_TRUE(PaintsScaled(device, call, &source, page, {3, 2}));
          }
        }
      }
    }
  }
}

TEST(BitBltScaled, EveryResolutionAndPhase) {
  for (const Resolutions& r : kPairs) {
    const Mapping mapping(r);
    for (uint32_t width : {1u, 7u, 22u}) {
      TestDevice device(OptionsOf(r, 24, width, 6));
      const DRAWMODE mode = ScaledMode();
      const PhysicalBrush brush = HatchBrush(device.handle(), HS_FDIAGONAL, 0x00336699);
      const int32_t pageRight = mapping.PageEdge(static_cast<int32_t>(width));
      const int32_t pageBottom = mapping.PageEdge(6);
      const SourceImage source(kColorSource, 90, 40, 5);
      for (uint32_t rop : {SRCCOPY, SRCINVERT, PATINVERT, PATPAINT, WHITENESS}) {
        for (int32_t x = 0; x < 9; ++x) {
          SCOPED_TRACE(Text(NameOf(r), ", width ", width, ", code ", rop, ", at ", x));
          FillWithNoise(&device.band(), static_cast<uint64_t>(x));
          const TransferCall call{
              .at = {x, x / 2}, .from = {x, 1}, .size = {80, 38}, .rop = rop, .brush = &brush, .drawMode = &mode};
          const BandRect page{x, x / 2, std::min(x + 80, pageRight), std::min(x / 2 + 38, pageBottom)};
          ASSERT_TRUE(PaintsScaled(device, call, &source, page, {x, 1}));
        }
      }
    }
  }
}

struct PlaceCase {
  const char* name;
  Resolutions resolutions;
  BandPlace place;
  TransferPoint at;
  TransferPoint from;
  BandRect clip;
  // Expected: page pixels counted from the band's corner (in page pixels), and the source pixel of the first.
  BandRect page;
  TransferPoint first;
};

constexpr BandRect kPageClip{0, 0, 1000, 1000};
constexpr BandRect kZeroClip{0, 0, 0, 0};
constexpr Resolutions kTwoToOne{720, 360};
constexpr Resolutions kThreeToTwo{600, 400};
constexpr Resolutions kOneToTwo{360, 720};

// The transfer is 12 x 6 page pixels of a source of 30 x 16, the band 10 x 5 band pixels.
constexpr PlaceCase kPlaces[] = {
    // Two to one: the band is 20 x 10 page pixels.
    {"at zero", kTwoToOne, {}, {3, 2}, {1, 1}, kPageClip, {3, 2, 15, 8}, {1, 1}},
    {"right and below", kTwoToOne, {}, {13, 7}, {1, 1}, kPageClip, {13, 7, 20, 10}, {1, 1}},
    {"clip cuts in page pixels", kTwoToOne, {}, {3, 2}, {1, 1}, {6, 3, 11, 7}, {6, 3, 11, 7}, {1, 1}},
    {"left of and above zero", kTwoToOne, {}, {-5, -3}, {2, 4}, kPageClip, {0, 0, 7, 3}, {7, 7}},
    {"no clip", kTwoToOne, {}, {3, 2}, {1, 1}, kZeroClip, {3, 2, 15, 8}, {1, 1}},
    {"zeros with an origin are a clip", kTwoToOne, {0, 0, 4, 4}, {3, 2}, {1, 1}, kZeroClip, {0, 0, 0, 0}, {0, 0}},
    {"source bitmap cuts", kTwoToOne, {}, {3, 2}, {-2, 12}, kPageClip, {5, 2, 15, 6}, {0, 12}},
    {"band further down", kTwoToOne, {50, 25}, {97, 48}, {0, 0}, kPageClip, {0, 0, 9, 4}, {3, 2}},
    {"band further down, origin", kTwoToOne, {50, 25, 90, 40}, {11, 13}, {0, 0}, {0, 0, 20, 16}, {1, 3, 10, 6}, {0, 0}},
    {"band left of and above zero", kTwoToOne, {-4, -3}, {-6, -4}, {0, 0}, kEverywhere, {2, 2, 14, 8}, {0, 0}},
    // Three to two, a band that begins between two page pixels: 5 x 3/2 is 7.5 and counts as 8, 25 x 3/2 as 38.
    {"band at a half", kThreeToTwo, {5, 25}, {10, 40}, {2, 2}, kPageClip, {2, 2, 14, 7}, {2, 2}},
    {"band at a half, cut", kThreeToTwo, {5, 25}, {3, 36}, {2, 2}, kPageClip, {0, 0, 7, 4}, {7, 4}},
    {"band at a half, far side", kThreeToTwo, {5, 25}, {18, 41}, {2, 2}, kPageClip, {10, 3, 15, 7}, {2, 2}},
    // One to two: the band is 5 page pixels wide and 3 (of 2.5) high.
    {"upwards", kOneToTwo, {}, {1, 1}, {2, 2}, kPageClip, {1, 1, 5, 3}, {2, 2}},
    {"upwards, left of zero", kOneToTwo, {}, {-3, -2}, {2, 2}, kPageClip, {0, 0, 5, 3}, {5, 4}},
};

TEST(BitBltScaled, ClippedAndAlignedInPagePixels) {
  const DRAWMODE mode = ScaledMode();
  for (const PlaceCase& c : kPlaces) {
    for (uint16_t bits : {uint16_t{24}, uint16_t{0}}) {
      for (uint32_t rop : {SRCCOPY, SRCINVERT, PATPAINT, 0x00960169u, 0x01CC0020u}) {
        for (const SourceForm& form : {OwnForm(bits), kOneBitSource}) {
          SCOPED_TRACE(Text(c.name, ", ", NameOf(c.resolutions), ", ", bits, " bits, code ", rop, ", ", form.name));
          PlacedDevice device(OptionsOf(c.resolutions, bits, 10, 5), c.place);
          FillWithNoise(&device.band(), 6);
          const SourceImage source(form, 30, 16, 7);
          const PhysicalBrush brush = HatchBrush(device.handle(), HS_BDIAGONAL, 0x00336699);
          const TransferCall call{.at = c.at,
                                  .from = c.from,
                                  .size = {12, 6},
                                  .rop = rop,
                                  .brush = &brush,
                                  .drawMode = &mode,
                                  .clip = &c.clip};
          EXPECT_TRUE(PaintsScaled(device, call, &source, c.page, c.first));
        }
      }
    }
  }
}

// One row of several periods, of many pixels, and of pixels that lie very far apart on the page: which band columns are
// reached, and that nothing lands past the last one.
TEST(BitBltScaled, WholeRows) {
  struct Case {
    Resolutions resolutions;
    uint32_t width;
  };
  std::vector<Case> cases = {{{700, 2}, 90}, {{700, 2}, 260}, {{65535, 1}, 3}};
  constexpr Resolutions kRowPairs[] = {{360, 360},  {720, 360}, {600, 400}, {97, 89}, {400, 600},
                                       {360, 720},  {7, 5},     {5, 7},     {89, 97}, {360, 1440},
                                       {1440, 360}, {100, 99},  {99, 100},  {3, 2}};
  for (const Resolutions& r : kRowPairs) {
    for (uint32_t width : {1u, 2u, 5u, 34u, 301u, 1500u}) cases.push_back({r, width});
  }
  constexpr BandRect kClip{0, 0, 10000000, 1};  // farther than any page of these
  const DRAWMODE mode = ScaledMode();
  const SourceImage sources[] = {
      {kColorSource, 21000, 1, 12}, {kGraySource, 32767, 1, 12}, {kOneBitSource, 32767, 1, 12}};
  for (const Case& c : cases) {
    const Mapping mapping(c.resolutions);
    for (uint16_t bits : {uint16_t{24}, uint16_t{0}}) {
      TestDevice device(OptionsOf(c.resolutions, bits, c.width, 1));
      const PhysicalBrush brush = HatchBrush(device.handle(), HS_FDIAGONAL, 0x00336699);
      for (const SourceImage* source : {&sources[bits == 24 ? 0 : 1], &sources[2]}) {
        for (uint32_t rop : {SRCCOPY, SRCINVERT, PATINVERT, PATPAINT, BLACKNESS}) {
          SCOPED_TRACE(Text(NameOf(c.resolutions), ", width ", c.width, ", ", bits, " bits, code ", rop,
                            source->oneBit() ? ", one-bit source" : ""));
          FillWithNoise(&device.band(), rop);
          const TransferCall call{
              .from = {3, 0}, .size = {1000000, 1}, .rop = rop, .brush = &brush, .drawMode = &mode, .clip = &kClip};
          const int32_t pageRight = mapping.PageEdge(static_cast<int32_t>(c.width));
          const int32_t sourceRight = source->record()->bmWidth - 3;
          const bool usesSource = IndexUsesSource(static_cast<uint8_t>(rop >> 16));
          const BandRect page{0, 0, usesSource ? std::min(pageRight, sourceRight) : pageRight,
                              std::min(1, mapping.PageEdge(1))};
          EXPECT_TRUE(PaintsScaled(device, call, source, page, {3, 0}));
        }
      }
    }
  }
}

// Where the first source byte lies follows the source's depth, the step from there the device's.
TEST(BitBltScaled, SourceDepthAndStep) {
  struct Case {
    const char* name;
    uint16_t bitsPerPixel;
    SourceForm form;
  };
  constexpr Case kCases[] = {
      {"8 bits in color", 24, {"", 1, 8, 3}},
      {"32 bits in color", 24, {"", 1, 32, 4}},
      {"24 bits in gray", 0, {"", 1, 24, 3}},
      {"4 bits in gray", 0, {"", 1, 4, 1}},
      {"8 bits, three planes, in color", 24, {"", 3, 8, 3}},
      {"24 bits at 8", 8, {"", 1, 24, 3}},
  };
  for (const Case& c : kCases) {
    for (int32_t srcX : {0, 1, 5, 8}) {
      SCOPED_TRACE(Text(c.name, ", from ", srcX));
      TestDevice device(OptionsOf(kThreeToTwo, c.bitsPerPixel, 12, 4));
      const SourceImage source(c.form, 20, 5, 9);
      const DRAWMODE mode = ScaledMode();
      const TransferCall call{.at = {1, 0}, .from = {srcX, 0}, .size = {11, 5}, .rop = SRCCOPY, .drawMode = &mode};
      EXPECT_TRUE(PaintsScaled(device, call, &source, {1, 0, 12, 5}, {srcX, 0}));
    }
  }
}

// Gray mode: what is written is grayed where it lies, and only that.
TEST(BitBltScaled, GrayModeGraysWhatItWrites) {
  TestDevice device(OptionsOf({720, 360}, 0, 4, 1));
  PlaneImage band = BandImage(device);
  band.Fill({0, 0, 4, 1}, {0x10, 0x20, 0x30});
  LoadBand(&device, band);
  const DRAWMODE mode = ScaledMode();
  // Inverted (EF, DF, CF), then (239 x 30 + 223 x 59 + 207 x 11) / 100.
  EXPECT_EQ(1u, Transfer(device.handle(), {.at = {2, 0}, .size = {3, 1}, .rop = DSTINVERT, .drawMode = &mode}));
  PlaneImage expected = band;
  expected.Fill({1, 0, 3, 1}, {226, 226, 226});
  EXPECT_TRUE(BandShows(device, expected));
  // The operation that leaves the destination alone does not gray it either.
  EXPECT_EQ(1u, Transfer(device.handle(), {.size = {8, 1}, .rop = 0x00AA0029, .drawMode = &mode}));
  EXPECT_TRUE(BandShows(device, expected));
}

}  // namespace
}  // namespace qnv::test
