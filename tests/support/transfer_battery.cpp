// The rules of every transfer operation, each checked against the model of one pixel.
#include "support/transfer_battery.h"

#include <string>
#include <vector>

#include "support/device_classes.h"
#include "support/random_bytes.h"
#include "support/transfer_check.h"

namespace qnv::test {
namespace {

constexpr uint32_t kExampleText = 0x00123456;
constexpr uint32_t kExampleBackground = 0x00E0C0A0;

// A pointer that may be compared with null and nothing else.
template <class T>
const T* NotToBeRead() {
  return reinterpret_cast<const T*>(uintptr_t{0x10});
}

uint8_t IndexOf(uint32_t rop) { return static_cast<uint8_t>(rop >> 16); }

DRAWMODE ExampleMode(int bkMode = OPAQUE) {
  return MakeDrawMode({.bkMode = bkMode, .background = kExampleBackground, .text = kExampleText});
}

struct BrushForm {
  const char* name;
  uint16_t style;
  uint16_t depth = 0;
  uint8_t scale = 1;
};

PhysicalBrush NoiseBrush(const BrushForm& form, uint64_t seed) {
  RandomBytes random(seed);
  PhysicalBrush brush = BrushRecord(form.style, random.Next() & 0xFFFFFF, form.scale);
  brush.patternDepth = form.depth;
  for (uint32_t& cell : brush.cells) {
    const uint32_t color = random.Next() & 0xFFFFFF;
    cell = random.Below(2) == 0 ? color | 0xFF000000u : form.depth == 1 ? 0xFFFFFFu : color;
  }
  return brush;
}

// The kinds that an index with a pattern tells apart; for the others the first one will do.
constexpr BrushForm kBrushes[] = {{"solid brush", BS_SOLID},
                                  {"hatched brush", BS_HATCHED},
                                  {"hatched brush, doubled", BS_HATCHED, 0, 2},
                                  {"pattern brush", BS_PATTERN, 24},
                                  {"one-bit pattern brush", BS_PATTERN, 1}};
constexpr const BrushForm& kSolid = kBrushes[0];
constexpr const BrushForm& kPattern = kBrushes[3];

std::vector<SourceForm> SourcesFor(uint32_t rop, uint16_t depth) {
  if (!IndexUsesSource(IndexOf(rop))) return {kOneBitSource};
  return {kOneBitSource, depth == 24 ? kColorSource : kGraySource};
}

// On a band of new noise; the whole area is visible.
testing::AssertionResult Paints(TestDevice* device, uint64_t noise, const TransferCall& call,
                                const SourceImage* source) {
  FillWithNoise(&device->band(), noise);
  const BandRect area{call.at.x, call.at.y, call.at.x + call.size.width, call.at.y + call.size.height};
  return TransferPaints(*device, call, source, area, call.from);
}

// Widths 0..70 at changing phases of band and source, every source form and brush style that the index reads.
void CheckWidthsAndPhases(uint32_t rop, uint16_t depth) {
  constexpr int32_t kMaxWidth = 70;
  TestDevice device({.bitsPerPixel = depth, .width = kMaxWidth + 9, .height = 4});
  for (const SourceForm& form : SourcesFor(rop, depth)) {
    const SourceImage source(form, kMaxWidth + 16, 4, rop + depth, 3);
    for (std::size_t b = 0; b < (IndexUsesPattern(IndexOf(rop)) ? std::size(kBrushes) : 1); ++b) {
      const PhysicalBrush brush = NoiseBrush(kBrushes[b], b + 1);
      for (int32_t place = 0; place < 4 * (kMaxWidth + 1); ++place) {
        const int32_t width = place / 4, phase = place % 4;
        const TransferPoint at{(width + phase) % 8, 1}, from{(5 * phase + 3 * width) % 16, 2};
        const DRAWMODE mode = ExampleMode(phase % 2 == 0 ? OPAQUE : TRANSPARENT);
        const TransferCall call{
            .at = at, .from = from, .size = {width, 2}, .rop = rop, .brush = &brush, .drawMode = &mode};
        ASSERT_TRUE(Paints(&device, static_cast<uint64_t>(place), call, &source))
            << form.name << ", " << kBrushes[b].name << ", width " << width << " at " << at.x << " from " << from.x;
      }
    }
  }
}

// A band larger than any cache block, odd in every direction.
void CheckLargeArea(uint32_t rop, uint16_t depth) {
  constexpr int32_t kWidth = 3001;
  TestDevice device({.bitsPerPixel = depth, .width = kWidth, .height = 5});
  const PhysicalBrush brush = NoiseBrush({"", BS_PATTERN, 24, 2}, 77);
  const DRAWMODE mode = ExampleMode();
  const TransferCall call{.from = {5, 0}, .size = {kWidth, 5}, .rop = rop, .brush = &brush, .drawMode = &mode};
  for (const SourceForm& form : SourcesFor(rop, depth)) {
    const SourceImage source(form, kWidth + 5, 5, rop + depth, 1);
    EXPECT_TRUE(Paints(&device, rop, call, &source)) << form.name;
  }
}

// Arguments that the index has no use for may be anything, even addresses of nothing.
void CheckUnreadArguments(uint32_t rop, uint16_t depth) {
  TestDevice device({.bitsPerPixel = depth, .width = 9, .height = 3});
  const DRAWMODE mode = ExampleMode();
  const PhysicalBrush solid = NoiseBrush(kSolid, 9), hollow = NoiseBrush({"", BS_HOLLOW}, 9);
  const SourceImage color(depth == 24 ? kColorSource : kGraySource, 9, 3, 10);
  const SourceImage* source = &color;
  TransferCall call{.at = {2, 1}, .size = {5, 2}, .rop = rop, .brush = &solid, .drawMode = &mode};
  if (!IndexUsesSource(IndexOf(rop))) {
    source = nullptr;
    call.source = NotToBeRead<SourceBitmap>();
    EXPECT_TRUE(Paints(&device, 1, call, source)) << "source unread";
    call.source = nullptr;
    EXPECT_TRUE(Paints(&device, 2, call, source)) << "no source";
  }
  if (TakesSolidFromPattern(rop)) {
    call.brush = nullptr;
    EXPECT_TRUE(Paints(&device, 6, call, source)) << "no brush is a black one";
  }
  if (IndexUsesPattern(IndexOf(rop))) return;
  call.brush = &hollow;
  EXPECT_TRUE(Paints(&device, 3, call, source)) << "hollow brush";
  call.brush = nullptr;
  EXPECT_TRUE(Paints(&device, 4, call, source)) << "no brush";
  // Without a draw mode no pattern is prepared, so nobody has to look at the brush.
  call.drawMode = nullptr;
  call.brush = NotToBeRead<PhysicalBrush>();
  EXPECT_TRUE(Paints(&device, 5, call, source)) << "brush unread";
}

// Null arguments that it does use: nothing is painted, the result is 1.
void CheckNullArguments(uint32_t rop, const DeviceOptions& options) {
  SCOPED_TRACE(Describe(options));
  TestDevice device(options);
  FillWithNoise(&device.band(), 5);
  const DRAWMODE mode = ExampleMode();
  const PhysicalBrush solid = NoiseBrush(kSolid, 9);
  const SourceImage oneBit(kOneBitSource, 9, 3, 10);
  const TransferCall whole{.source = oneBit.record(), .size = {9, 3}, .rop = rop, .brush = &solid, .drawMode = &mode};
  const auto paintsNothing = [&](const char* name, auto change) {
    TransferCall call = whole;
    change(call);
    EXPECT_TRUE(TransferPaintsNothing(device, call)) << name;
  };
  paintsNothing("no clip", [](TransferCall& call) { call.clip = nullptr; });
  if (IndexUsesSource(IndexOf(rop))) {
    paintsNothing("no source", [](TransferCall& call) { call.source = nullptr; });
    paintsNothing("no draw mode for a one-bit source", [](TransferCall& call) { call.drawMode = nullptr; });
  }
  if (!IndexUsesPattern(IndexOf(rop))) return;
  // Operations that take even a solid color from the prepared pattern do not look into the brush for its style.
  if (!TakesSolidFromPattern(rop)) {
    paintsNothing("no brush", [](TransferCall& call) { call.brush = nullptr; });
    paintsNothing("no brush, no draw mode", [](TransferCall& call) { call.brush = nullptr, call.drawMode = nullptr; });
  }
  for (uint16_t style : {uint16_t{BS_HOLLOW}, uint16_t{4}, uint16_t{0xFFFF}}) {
    const PhysicalBrush brush = NoiseBrush({"", style}, 9);
    paintsNothing("hollow or unknown brush", [&](TransferCall& call) { call.brush = &brush; });
  }
}

// Extents that are empty or turned, and the low word of the code.
void CheckExtentsAndCode(uint32_t rop, uint16_t depth) {
  TestDevice device({.bitsPerPixel = depth, .width = 9, .height = 4});
  FillWithNoise(&device.band(), 6);
  const DRAWMODE mode = ExampleMode();
  const PhysicalBrush brush = NoiseBrush(kPattern, 11);
  const SourceImage source(kOneBitSource, 20, 20, 12);
  TransferCall call{
      .at = {4, 2}, .source = source.record(), .from = {6, 6}, .rop = rop, .brush = &brush, .drawMode = &mode};
  for (const TransferSize& e : {TransferSize{0, 2}, {2, 0}, {0, 0}, {-2, 2}, {2, -2}, {-3, -2}}) {
    call.size = e;
    EXPECT_TRUE(TransferPaintsNothing(device, call)) << e.width << " x " << e.height;
  }
  call.size = {3, 2};
  for (uint32_t lowWord : {0x0000u, 0xFFFFu, 0x0020u}) {
    call.rop = (rop & 0xFFFF0000u) | lowWord;
    EXPECT_TRUE(Paints(&device, 6, call, &source)) << "low word " << lowWord;
  }
}

}  // namespace

void RunTransferExamples(uint32_t rop, std::span<const TransferExample> examples) {
  for (const TransferExample& e : examples) {
    TestDevice device({.bitsPerPixel = e.depth, .width = 5, .height = 3});
    PlaneImage expected = BandImage(device);
    expected.Set(3, 1, e.before);
    LoadBand(&device, expected);
    const DRAWMODE mode = ExampleMode();
    const PhysicalBrush brush = BrushRecord(BS_SOLID, e.brush);
    const uint8_t bits = e.source[0] != 0 ? 0x80 : 0x00;
    const SourceBitmap source{0, 1, 1, 4, 1, e.sourceBits, e.sourceBits == 1 ? &bits : e.source.data()};
    const TransferCall call{.at = {3, 1},
                            .source = e.sourceBits == 0 ? nullptr : &source,
                            .size = {1, 1},
                            .rop = rop,
                            .brush = &brush,
                            .drawMode = &mode};
    EXPECT_EQ(1u, Transfer(device.handle(), call)) << e.name;
    expected.Set(3, 1, e.expected);
    EXPECT_TRUE(BandShows(device, expected)) << e.name;
  }
}

void CheckTransferOperation(uint32_t rop) {
  for (uint16_t depth : kBandDepths) {
    SCOPED_TRACE(std::to_string(depth) + " bits");
    CheckWidthsAndPhases(rop, depth);
    CheckLargeArea(rop, depth);
    CheckUnreadArguments(rop, depth);
    CheckExtentsAndCode(rop, depth);
  }
  for (const DeviceOptions& options :
       DeviceClasses({.width = 9, .height = 3, .resolutionA = 600, .resolutionB = 400})) {
    CheckNullArguments(rop, options);
  }
}

}  // namespace qnv::test
