// Which band pixels a transfer paints, and which source pixel the first of them gets: every rectangle written out.
// All devices that transfer at band resolution, every way to reach an operation, have to agree. The rule that transfers
// share with other operations is in laws/clipping_test.cpp.
#include <gtest/gtest.h>

#include <climits>

#include "support/device_classes.h"
#include "support/random_bytes.h"
#include "support/transfer_check.h"

namespace qnv::test {
namespace {

constexpr BandRect kPage{0, 0, 1000, 1000};
constexpr BandRect kFromMinus{-1000, -1000, 1000, 1000};
constexpr BandRect kNoClip{0, 0, 0, 0};
constexpr BandRect kNothing{0, 0, 0, 0};
constexpr BandPlace kFarBand{100, 50};

std::vector<DeviceOptions> Unscaled() {
  constexpr DeviceOptions kBand{.width = 40, .height = 20};
  return {WithDepth(kBand, QNV_KIND_RASTER, 24), WithDepth(kBand, QNV_KIND_RASTER, 8),
          WithDepth(kBand, QNV_KIND_RASTER, 24, true)};
}

struct SourceCase {
  const char* name;
  BandPlace place;
  TransferPoint at;
  TransferPoint from;
  TransferSize size;
  BandRect clip;
  // Expected: columns and rows of the band, and the source pixel of the first.
  BandRect painted;
  TransferPoint first{};
};

// The source is 30 x 16, the band 40 x 20.
constexpr SourceCase kSourceCases[] = {
    {"inside everything", {}, {5, 3}, {2, 1}, {10, 4}, kPage, {5, 3, 15, 7}, {2, 1}},
    {"one pixel", {}, {39, 19}, {29, 15}, {1, 1}, kPage, {39, 19, 40, 20}, {29, 15}},

    // Clip. What it cuts off on the left or top is not skipped in the source.
    {"clip left cuts, source starts over", {}, {10, 3}, {0, 0}, {15, 4}, {20, 0, 1000, 1000}, {20, 3, 25, 7}, {0, 0}},
    {"clip top cuts, source starts over", {}, {5, 2}, {3, 4}, {10, 8}, {0, 6, 1000, 1000}, {5, 6, 15, 10}, {3, 4}},
    {"clip right cuts", {}, {10, 3}, {1, 0}, {15, 4}, {0, 0, 18, 1000}, {10, 3, 18, 7}, {1, 0}},
    {"clip bottom cuts", {}, {10, 3}, {1, 2}, {15, 9}, {0, 0, 1000, 5}, {10, 3, 25, 5}, {1, 2}},
    {"clip cuts all round", {}, {4, 2}, {6, 5}, {20, 10}, {9, 5, 12, 8}, {9, 5, 12, 8}, {6, 5}},
    {"left edge clipped by one", {}, {4, 2}, {6, 5}, {5, 3}, {5, 0, 1000, 1000}, {5, 2, 9, 5}, {6, 5}},
    {"clip touches on the left", {}, {10, 3}, {0, 0}, {5, 4}, {0, 0, 10, 1000}, kNothing},
    {"clip touches on the right", {}, {10, 3}, {0, 0}, {5, 4}, {15, 0, 1000, 1000}, kNothing},
    {"clip touches above", {}, {10, 3}, {0, 0}, {5, 4}, {0, 0, 1000, 3}, kNothing},
    {"clip touches below", {}, {10, 3}, {0, 0}, {5, 4}, {0, 7, 1000, 1000}, kNothing},
    {"clip without an area", {}, {10, 3}, {0, 0}, {5, 4}, {12, 4, 12, 9}, kNothing},
    {"turned clip", {}, {10, 3}, {0, 0}, {5, 4}, {14, 6, 11, 4}, kNothing},
    {"no clip", {}, {10, 3}, {4, 2}, {15, 4}, kNoClip, {10, 3, 25, 7}, {4, 2}},
    {"one zero more is a clip", {}, {10, 3}, {4, 2}, {15, 4}, {0, 0, 1, 0}, kNothing},

    // Left of or above zero the clip is widened by as much, so that the source stays where it belongs.
    {"ten columns left of zero", {}, {-10, 3}, {0, 0}, {30, 4}, kPage, {0, 3, 20, 7}, {10, 0}},
    {"six rows above zero", {}, {5, -6}, {0, 2}, {10, 12}, kPage, {5, 0, 15, 6}, {0, 8}},
    {"left of and above zero", {}, {-7, -5}, {1, 1}, {20, 12}, kPage, {0, 0, 13, 7}, {8, 6}},
    {"widened clip lets columns through", {}, {-4, 0}, {0, 0}, {20, 4}, {3, 0, 1000, 1000}, {0, 0, 16, 4}, {1, 0}},
    {"widened clip that still cuts", {}, {-4, 0}, {0, 0}, {20, 4}, {9, 0, 1000, 1000}, {5, 0, 16, 4}, {0, 0}},
    {"widened by less than it cuts below", {}, {5, -3}, {2, 0}, {10, 14}, {0, 8, 1000, 1000}, {5, 5, 15, 11}, {2, 0}},
    {"no clip, left of zero", {}, {-4, -2}, {3, 1}, {20, 8}, kNoClip, {0, 0, 16, 6}, {7, 3}},
    {"wholly left of zero", {}, {-20, 3}, {0, 0}, {20, 4}, kPage, kNothing},

    // The source bitmap cuts as well, and moves the destination with it.
    {"source columns below zero", {}, {5, 3}, {-3, 0}, {10, 4}, kPage, {8, 3, 15, 7}, {0, 0}},
    {"source rows below zero", {}, {5, 3}, {0, -2}, {10, 4}, kPage, {5, 5, 15, 7}, {0, 0}},
    {"source ends on the right", {}, {5, 3}, {25, 0}, {10, 4}, kPage, {5, 3, 10, 7}, {25, 0}},
    {"source ends below", {}, {5, 3}, {0, 13}, {10, 8}, kPage, {5, 3, 15, 6}, {0, 13}},
    {"source smaller all round", {}, {2, 1}, {-2, -1}, {38, 19}, kPage, {4, 2, 34, 18}, {0, 0}},
    {"source begins where it ends", {}, {5, 3}, {30, 0}, {10, 4}, kPage, kNothing},
    {"source wholly before itself", {}, {5, 3}, {-10, 0}, {10, 4}, kPage, kNothing},
    {"source rows wholly past itself", {}, {5, 3}, {0, 16}, {10, 4}, kPage, kNothing},
    {"clip and source both cut", {}, {4, 2}, {-2, 0}, {10, 4}, {6, 0, 1000, 1000}, {8, 2, 14, 6}, {0, 0}},
    {"source and destination before zero", {}, {-6, 0}, {-2, 0}, {20, 4}, kPage, {0, 0, 14, 4}, {4, 0}},

    // The band cuts last; the source moves along.
    {"band ends on the right", {}, {35, 3}, {2, 1}, {10, 4}, kPage, {35, 3, 40, 7}, {2, 1}},
    {"band ends below", {}, {5, 18}, {2, 1}, {10, 8}, kPage, {5, 18, 15, 20}, {2, 1}},
    {"band begins further down", kFarBand, {95, 46}, {0, 0}, {20, 10}, kPage, {0, 0, 15, 6}, {5, 4}},
    {"band touches on the left", kFarBand, {90, 52}, {0, 0}, {10, 4}, kPage, kNothing},
    {"band touches above", kFarBand, {105, 46}, {0, 0}, {10, 4}, kPage, kNothing},
    {"band touches on the right", kFarBand, {140, 52}, {0, 0}, {10, 4}, kPage, kNothing},
    {"band touches below", kFarBand, {105, 70}, {0, 0}, {10, 4}, kPage, kNothing},
    {"band, clip and source all cut", kFarBand, {90, 45}, {-2, 0}, {25, 12}, {95, 48, 130, 60}, {0, 0, 15, 7}, {3, 2}},
    {"band left of and above zero", {-20, -10}, {-25, -12}, {0, 0}, {30, 16}, kFromMinus, {0, 0, 25, 14}, {5, 2}},
    // The clip begins at zero, but is widened to where the destination begins.
    {"band below zero, clip at zero", {-20, -10}, {-25, -12}, {0, 0}, {30, 16}, kPage, {0, 0, 25, 14}, {5, 2}},

    // The origin is added to destination and clip.
    {"origin", {0, 0, 7, 9}, {3, 2}, {1, 1}, {10, 4}, {4, 0, 9, 1000}, {11, 11, 16, 15}, {1, 1}},
    {"origin that takes it below zero", {0, 0, -8, -3}, {3, 1}, {0, 0}, {20, 8}, kPage, {0, 0, 15, 6}, {5, 2}},
    {"origin that keeps it above zero", {0, 0, 10, 10}, {-4, -3}, {0, 0}, {12, 8}, kFromMinus, {6, 7, 18, 15}, {0, 0}},
    {"origin and moved band", {100, 50, 90, 45}, {8, 3}, {0, 0}, {20, 10}, kPage, {0, 0, 18, 8}, {2, 2}},
    // The zeros of "no clip" are looked for after the origin has been added.
    {"zeros with an origin are a clip", {0, 0, 5, 5}, {0, 0}, {0, 0}, {20, 10}, kNoClip, kNothing},
    {"zeros with an origin, widened", {0, 0, 5, 5}, {-20, -18}, {0, 0}, {30, 16}, kNoClip, {0, 0, 5, 3}, {10, 8}},
    {"zeros once the origin is added", {0, 0, 5, 5}, {2, 3}, {0, 0}, {10, 4}, {-5, -5, -5, -5}, {7, 8, 17, 12}, {0, 0}},
};

TEST(TransferClipping, TransfersWithASource) {
  // A copy, one that keeps part of what was there, one with a pattern, and the general operation.
  constexpr uint32_t kCodes[] = {SRCCOPY, SRCINVERT, MERGECOPY, PATPAINT, 0x00960169u, 0x01CC0020u};
  const DRAWMODE mode = MakeDrawMode({.background = 0x00E0C0A0, .text = 0x00123456});
  for (const DeviceOptions& options : Unscaled()) {
    const SourceImage sources[] = {{options.bitsPerPixel == 24 ? kColorSource : kGraySource, 30, 16, 42, 5},
                                   {kOneBitSource, 30, 16, 42, 5}};
    for (const SourceCase& c : kSourceCases) {
      PlacedDevice device(options, c.place);
      const PhysicalBrush brush = HatchBrush(device.handle(), HS_DIAGCROSS, 0x00334455);
      for (uint32_t rop : kCodes) {
        for (const SourceImage& source : sources) {
          SCOPED_TRACE(
              Text(c.name, ", ", Describe(options), ", code ", rop, source.oneBit() ? ", one-bit source" : ""));
          FillWithNoise(&device.band(), 41);
          const TransferCall call{.at = c.at,
                                  .from = c.from,
                                  .size = c.size,
                                  .rop = rop,
                                  .brush = &brush,
                                  .drawMode = &mode,
                                  .clip = &c.clip};
          EXPECT_TRUE(TransferPaints(device, call, &source, c.painted, c.first));
        }
      }
    }
  }
}

struct PlainCase {
  const char* name;
  BandPlace place;
  TransferPoint at;
  TransferSize size;
  BandRect clip;
  BandRect painted;
};

// Without a source there is nothing to keep aligned: the clip is never widened. Four zeros are no clip.
constexpr PlainCase kPlainCases[] = {
    {"inside everything", {}, {5, 3}, {10, 4}, kPage, {5, 3, 15, 7}},
    {"more than the band", {}, {-5, -5}, {100, 100}, kPage, {0, 0, 40, 20}},
    {"clip cuts all round", {}, {4, 2}, {20, 10}, {9, 5, 12, 8}, {9, 5, 12, 8}},
    {"turned clip", {}, {10, 3}, {5, 4}, {14, 6, 11, 4}, kNothing},
    {"no clip", {}, {10, 3}, {15, 4}, kNoClip, {10, 3, 25, 7}},
    {"no clip, past the band", {}, {30, 15}, {15, 14}, kNoClip, {30, 15, 40, 20}},
    {"one zero more is a clip", {}, {10, 3}, {15, 4}, {0, 0, 0, 1}, kNothing},
    {"left of zero", {}, {-4, 0}, {20, 4}, {3, 0, 1000, 1000}, {3, 0, 16, 4}},
    {"above zero", {}, {0, -4}, {10, 20}, {0, 3, 1000, 1000}, {0, 3, 10, 16}},
    {"band below zero, clip at zero", {-20, -10}, {-25, -12}, {30, 16}, kPage, {20, 10, 25, 14}},
    {"band further down", kFarBand, {95, 46}, {20, 10}, kPage, {0, 0, 15, 6}},
    {"origin and moved band", {100, 50, 90, 45}, {8, 3}, {20, 10}, kPage, {0, 0, 18, 8}},
    {"zeros with an origin are a clip", {0, 0, 5, 5}, {0, 0}, {20, 10}, kNoClip, kNothing},
    {"zeros with an origin are not widened", {0, 0, 5, 5}, {-20, -18}, {30, 16}, kNoClip, kNothing},
    {"zeros once the origin is added", {0, 0, 5, 5}, {2, 3}, {10, 4}, {-5, -5, -5, -5}, {7, 8, 17, 12}},
    {"an extent that wraps", {}, {10, 3}, {INT_MAX, 4}, kPage, kNothing},
};

TEST(TransferClipping, TransfersWithoutASource) {
  constexpr uint32_t kCodes[] = {BLACKNESS, WHITENESS, DSTINVERT, PATCOPY, PATINVERT, 0x000F0001u, 0x01550009u};
  const DRAWMODE mode = MakeDrawMode({.background = 0x00E0C0A0, .text = 0x00123456});
  for (const PlainCase& c : kPlainCases) {
    for (const DeviceOptions& options : Unscaled()) {
      PlacedDevice device(options, c.place);
      const PhysicalBrush brush = HatchBrush(device.handle(), HS_DIAGCROSS, 0x00334455);
      for (uint32_t rop : kCodes) {
        SCOPED_TRACE(Text(c.name, ", ", Describe(options), ", code ", rop));
        FillWithNoise(&device.band(), 43);
        const TransferCall call{
            .at = c.at, .size = c.size, .rop = rop, .brush = &brush, .drawMode = &mode, .clip = &c.clip};
        EXPECT_TRUE(TransferPaints(device, call, nullptr, c.painted));
      }
    }
  }
}

// The clip of one call is nothing to the next.
TEST(TransferClipping, ClipDoesNotOutliveItsCall) {
  TestDevice device({.width = 10, .height = 4});
  for (const BandRect& clip : {BandRect{2, 1, 3, 2}, kNoClip}) {
    const BandRect painted = clip.right == 0 ? BandRect{0, 0, 10, 4} : clip;
    EXPECT_TRUE(TransferPaints(device, {.size = {10, 4}, .rop = DSTINVERT, .clip = &clip}, nullptr, painted));
  }
}

}  // namespace
}  // namespace qnv::test
