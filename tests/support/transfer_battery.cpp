// The rules of every transfer operation, each checked against the model of one pixel.
#include "support/transfer_battery.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/random_bytes.h"
#include "support/transfer_call.h"

namespace qnv::test {
namespace {

// A pointer that may be compared with null and nothing else.
template <class T>
const T* NotToBeRead() {
  return reinterpret_cast<const T*>(uintptr_t{0x10});
}

uint8_t IndexOf(uint32_t rop) { return static_cast<uint8_t>(rop >> 16); }

// General, PatCopy and PatInvert look into the brush for its style; the other pattern operations do not.
bool ReadsBrushRecord(uint32_t rop) {
  const uint8_t index = IndexOf(rop);
  return IndexUsesPattern(index) && index != 0xC0 && index != 0xFB && index != 0xE2;
}

DRAWMODE ExampleMode() {
  DRAWMODE mode = MakeDrawMode();
  mode.TextColor = kExampleText;
  mode.bkColor = kExampleBackground;
  return mode;
}

PhysicalBrush NoiseBrush(uint16_t style, uint16_t depth, uint8_t scale, uint64_t seed) {
  RandomBytes random(seed);
  PhysicalBrush brush{};
  brush.style = style;
  brush.patternDepth = depth;
  brush.hatchScale[0] = brush.hatchScale[1] = scale;
  brush.colour = random.Next() & 0xFFFFFF;
  for (uint32_t& cell : brush.cells) {
    const uint32_t color = random.Next() & 0xFFFFFF;
    cell = random.Below(2) == 0 ? color | 0xFF000000u : depth == 1 ? 0xFFFFFFu : color;
  }
  return brush;
}

struct NamedBrush {
  const char* name;
  PhysicalBrush brush;
};

// One of each kind that an index with a pattern tells apart; a single one otherwise.
std::vector<NamedBrush> BrushesFor(uint32_t rop) {
  std::vector<NamedBrush> brushes = {{"solid brush", NoiseBrush(BS_SOLID, 0, 1, 1)}};
  if (!IndexUsesPattern(IndexOf(rop))) return brushes;
  brushes.push_back({"hatched brush", NoiseBrush(BS_HATCHED, 0, 1, 2)});
  brushes.push_back({"hatched brush, doubled", NoiseBrush(BS_HATCHED, 0, 2, 3)});
  brushes.push_back({"pattern brush", NoiseBrush(BS_PATTERN, 24, 1, 4)});
  brushes.push_back({"one-bit pattern brush", NoiseBrush(BS_PATTERN, 1, 1, 5)});
  return brushes;
}

std::vector<SourceForm> SourcesFor(uint32_t rop, uint16_t depth) {
  if (!IndexUsesSource(IndexOf(rop))) return {kOneBitSource};
  return {kOneBitSource, depth == 24 ? kColorSource : kGraySource};
}

}  // namespace

void RunTransferExamples(uint32_t rop, std::span<const TransferExample> examples) {
  for (const TransferExample& e : examples) {
    SCOPED_TRACE(e.name);
    TestDevice device({.bitsPerPixel = e.depth, .width = 5, .height = 3});
    PlaneImage expected = BandImage(device);
    expected.Set(3, 1, e.before);
    LoadBand(&device, expected);
    const DRAWMODE mode = ExampleMode();
    PhysicalBrush brush{};
    brush.hatchScale[0] = brush.hatchScale[1] = 1;
    brush.colour = e.brush;
    const uint8_t bits = e.source[0] != 0 ? 0x80 : 0x00;
    const SourceBitmap source{0, 1, 1, 4, 1, e.sourceBits, e.sourceBits == 1 ? &bits : e.source.data()};
    EXPECT_EQ(1u, Transfer(device.handle(), {.at = {3, 1},
                                             .source = e.sourceBits == 0 ? nullptr : &source,
                                             .size = {1, 1},
                                             .rop = rop,
                                             .brush = &brush,
                                             .drawMode = &mode}));
    expected.Set(3, 1, e.expected);
    EXPECT_TRUE(BandShows(device, expected));
  }
}

void CheckWidthsAndPhases(uint32_t rop) {
  constexpr int32_t kMaxWidth = 70;
  constexpr int32_t kSourceWidth = kMaxWidth + 16;
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    TestDevice device({.bitsPerPixel = depth, .width = kMaxWidth + 9, .height = 4});
    for (const SourceForm& form : SourcesFor(rop, depth)) {
      const SourceImage source(form, kSourceWidth, 4, rop + depth, 3);
      for (const NamedBrush& b : BrushesFor(rop)) {
        DRAWMODE mode = ExampleMode();
        for (int32_t width = 0; width <= kMaxWidth; ++width) {
          for (int32_t phase = 0; phase < 4; ++phase) {
            const int32_t left = (width + phase) % 8;
            const int32_t srcX = (5 * phase + 3 * width) % 16;
            SCOPED_TRACE(std::to_string(depth) + " bits, " + form.name + ", " + b.name + ", width " +
                         std::to_string(width) + " at " + std::to_string(left) + " from " + std::to_string(srcX));
            mode.bkMode = phase % 2 == 0 ? OPAQUE : TRANSPARENT;
            FillWithNoise(&device.band(), static_cast<uint64_t>(width * 4 + phase));
            PlaneImage expected = BandImage(device);
            EXPECT_EQ(1u, Transfer(device.handle(), {.at = {left, 1},
                                                     .source = source.record(),
                                                     .from = {srcX, 2},
                                                     .size = {width, 2},
                                                     .rop = rop,
                                                     .brush = &b.brush,
                                                     .drawMode = &mode}));
            PaintExpected(&expected, {left, 1, left + width, 3}, srcX, 2, {rop, &source, &b.brush, &mode});
            ASSERT_TRUE(SameImage(expected, BandImage(device)));
          }
        }
      }
      EXPECT_TRUE(source.Unchanged()) << form.name;
    }
    EXPECT_TRUE(device.FencesIntact());
  }
}

void CheckLargeArea(uint32_t rop) {
  constexpr int32_t kWidth = 3001;
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    TestDevice device({.bitsPerPixel = depth, .width = kWidth, .height = 5});
    for (const SourceForm& form : SourcesFor(rop, depth)) {
      SCOPED_TRACE(std::to_string(depth) + " bits, " + form.name);
      const SourceImage source(form, kWidth + 5, 5, rop + depth, 1);
      const PhysicalBrush brush = NoiseBrush(BS_PATTERN, 24, 2, 77);
      const DRAWMODE mode = ExampleMode();
      FillWithNoise(&device.band(), rop);
      PlaneImage expected = BandImage(device);
      EXPECT_EQ(1u, Transfer(device.handle(), {.source = source.record(),
                                               .from = {5, 0},
                                               .size = {kWidth, 5},
                                               .rop = rop,
                                               .brush = &brush,
                                               .drawMode = &mode}));
      PaintExpected(&expected, {0, 0, kWidth, 5}, 5, 0, {rop, &source, &brush, &mode});
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

void CheckUnreadArguments(uint32_t rop) {
  const uint8_t index = IndexOf(rop);
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    TestDevice device({.bitsPerPixel = depth, .width = 9, .height = 3});
    const DRAWMODE mode = ExampleMode();
    const PhysicalBrush solid = NoiseBrush(BS_SOLID, 0, 1, 9);
    const PhysicalBrush hollow = NoiseBrush(BS_HOLLOW, 0, 1, 9);
    const SourceImage color(depth == 24 ? kColorSource : kGraySource, 9, 3, 10);
    const PlaneImage before = BandImage(device);
    const auto paints = [&](const char* name, const TransferCall& call, const TransferInputs& inputs) {
      SCOPED_TRACE(std::to_string(depth) + " bits, " + name);
      LoadBand(&device, before);
      PlaneImage expected = before;
      EXPECT_EQ(1u, Transfer(device.handle(), call));
      PaintExpected(&expected, {2, 1, 7, 3}, 0, 0, inputs);
      EXPECT_TRUE(BandShows(device, expected));
    };
    TransferCall call{.at = {2, 1}, .size = {5, 2}, .rop = rop, .brush = &solid, .drawMode = &mode};
    const TransferInputs inputs{rop, &color, &solid, &mode};
    if (!IndexUsesSource(index)) {
      call.source = NotToBeRead<SourceBitmap>();
      paints("source unread", call, inputs);
      call.source = nullptr;
      paints("no source", call, inputs);
    } else {
      call.source = color.record();
    }
    if (!IndexUsesPattern(index)) {
      call.brush = &hollow;
      paints("hollow brush", call, inputs);
      call.brush = nullptr;
      paints("no brush", call, inputs);
      // Without a draw mode no pattern is prepared, so nobody has to look at the brush.
      call.drawMode = nullptr;
      call.brush = NotToBeRead<PhysicalBrush>();
      paints("brush unread", call, inputs);
    }
    EXPECT_TRUE(color.Unchanged());
  }
}

void CheckNullArguments(uint32_t rop) {
  const uint8_t index = IndexOf(rop);
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    TestDevice device({.bitsPerPixel = depth, .width = 9, .height = 3});
    FillWithNoise(&device.band(), 5);
    const PlaneImage before = BandImage(device);
    const DRAWMODE mode = ExampleMode();
    const PhysicalBrush solid = NoiseBrush(BS_SOLID, 0, 1, 9);
    const SourceImage oneBit(kOneBitSource, 9, 3, 10);
    const TransferCall whole{.source = oneBit.record(), .size = {9, 3}, .rop = rop, .brush = &solid, .drawMode = &mode};
    const auto paintsNothing = [&](const char* name, const TransferCall& call) {
      SCOPED_TRACE(std::to_string(depth) + " bits, " + name);
      EXPECT_EQ(1u, Transfer(device.handle(), call));
      EXPECT_TRUE(BandShows(device, before));
    };
    TransferCall call = whole;
    call.clip = nullptr;
    paintsNothing("no clip", call);
    if (IndexUsesSource(index)) {
      call = whole;
      call.source = nullptr;
      paintsNothing("no source", call);
      call = whole;
      call.drawMode = nullptr;
      paintsNothing("no draw mode for a one-bit source", call);
    }
    if (ReadsBrushRecord(rop)) {
      call = whole;
      call.brush = nullptr;
      paintsNothing("no brush", call);
      call.drawMode = nullptr;
      paintsNothing("no brush, no draw mode", call);
    }
    if (IndexUsesPattern(index)) {
      for (uint16_t style : {uint16_t{BS_HOLLOW}, uint16_t{4}, uint16_t{0xFFFF}}) {
        const PhysicalBrush brush = NoiseBrush(style, 0, 1, 9);
        call = whole;
        call.brush = &brush;
        paintsNothing("hollow or unknown brush", call);
      }
    }
  }
}

void CheckExtentsAndCode(uint32_t rop) {
  for (uint16_t depth : {uint16_t{24}, uint16_t{8}}) {
    TestDevice device({.bitsPerPixel = depth, .width = 9, .height = 4});
    FillWithNoise(&device.band(), 6);
    const PlaneImage before = BandImage(device);
    const DRAWMODE mode = ExampleMode();
    const PhysicalBrush brush = NoiseBrush(BS_PATTERN, 24, 1, 11);
    const SourceImage source(kOneBitSource, 20, 20, 12);
    TransferCall call{
        .at = {4, 2}, .source = source.record(), .from = {6, 6}, .rop = rop, .brush = &brush, .drawMode = &mode};
    for (const TransferSize& e : {TransferSize{0, 2}, TransferSize{2, 0}, TransferSize{0, 0}, TransferSize{-2, 2},
                                  TransferSize{2, -2}, TransferSize{-3, -2}}) {
      SCOPED_TRACE(std::to_string(depth) + " bits, " + std::to_string(e.width) + " x " + std::to_string(e.height));
      call.size = e;
      EXPECT_EQ(1u, Transfer(device.handle(), call));
      EXPECT_TRUE(BandShows(device, before));
    }
    call.size = {3, 2};
    for (uint32_t lowWord : {0x0000u, 0xFFFFu, 0x0020u}) {
      SCOPED_TRACE(std::to_string(depth) + " bits, low word " + std::to_string(lowWord));
      LoadBand(&device, before);
      PlaneImage expected = before;
      call.rop = (rop & 0xFFFF0000u) | lowWord;
      EXPECT_EQ(1u, Transfer(device.handle(), call));
      PaintExpected(&expected, {4, 2, 7, 4}, 6, 6, {rop, &source, &brush, &mode});
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

void CheckTransferOperation(uint32_t rop) {
  CheckWidthsAndPhases(rop);
  CheckLargeArea(rop);
  CheckUnreadArguments(rop);
  CheckNullArguments(rop);
  CheckExtentsAndCode(rop);
}

}  // namespace qnv::test
