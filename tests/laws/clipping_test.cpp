// Every operation that clips by the common rule, on every device class, against the one table of clips. Transfers have
// further rules of their own, in raster/clipping_test.cpp.
#include <gtest/gtest.h>

#include "output/output_call.h"
#include "support/clip_cases.h"
#include "support/source_image.h"
#include "support/transfer_call.h"

namespace qnv::test {
namespace {

void PaintPixels(const TestDevice& device, const BandRect& figure, const BandRect* clip, uint32_t result) {
  const DRAWMODE mode = MakeDrawMode();
  const uint32_t color = Physical(device, kClipInk);
  for (int32_t y = figure.top; y < figure.bottom; ++y) {
    for (int32_t x = figure.left; x < figure.right; ++x) {
      EXPECT_EQ(result, QNVPixel(device.handle(), x, y, color, &mode, clip));
    }
  }
}

// Both corners belong to the rectangle.
void PaintPolyPixel(const TestDevice& device, const BandRect& figure, const BandRect* clip, uint32_t result) {
  const DRAWMODE mode = MakeDrawMode();
  EXPECT_EQ(result, QNVPolyPixel(device.handle(), figure.left, figure.top, figure.right - 1, figure.bottom - 1,
                                 Physical(device, kClipInk), &mode, clip));
}

// The rectangle in each encoding of spans: the words, and the count that belongs to them.
struct SpanRectangle {
  std::vector<int16_t> words;
  uint32_t count;
  std::size_t zeroDeltas = 0;
};

std::vector<int16_t> Words(const std::vector<int32_t>& values) { return {values.begin(), values.end()}; }

SpanRectangle InOneRecord(const BandRect& r) { return {Words({2, r.top, r.bottom, r.left, r.right, 2}), 1}; }

SpanRectangle InRows(const BandRect& r, const std::vector<int32_t>& row) {
  SpanRectangle list{Words({r.top}), static_cast<uint32_t>(r.bottom - r.top)};
  const std::vector<int16_t> words = Words(row);
  for (int32_t y = r.top; y < r.bottom; ++y) list.words.insert(list.words.end(), words.begin(), words.end());
  return list;
}

SpanRectangle InRowRecords(const BandRect& r) { return InRows(r, {2, r.left, r.right}); }

SpanRectangle InRowSpans(const BandRect& r) { return InRows(r, {r.left, r.right}); }

SpanRectangle InNibbleDeltas(const BandRect& r) {
  const uint32_t rows = static_cast<uint32_t>(r.bottom - r.top);
  return {Words({r.top, r.left, r.right}), rows, rows - 1};
}

SpanRectangle InByteDeltas(const BandRect& r) {
  SpanRectangle list = InNibbleDeltas(r);
  list.zeroDeltas *= 2;
  return list;
}

void PaintSpanList(const TestDevice& device, uint32_t style, const SpanRectangle& list, const BandRect* clip,
                   uint32_t result) {
  const PhysicalPen pen = SolidPen(device.handle(), kClipInk);
  const DRAWMODE mode = MakeDrawMode();
  const std::vector<int> deltas(list.zeroDeltas, 0);
  const FencedInput input(SpanListBytes(list.words, deltas));
  EXPECT_EQ(result, QNVOutput(device.handle(), style, list.count, static_cast<const int16_t*>(input.data()), &pen,
                              nullptr, &mode, clip) &
                        0xFFFF);
}

template <uint32_t kStyle, SpanRectangle (*kEncode)(const BandRect&)>
void PaintSpans(const TestDevice& device, const BandRect& figure, const BandRect* clip, uint32_t result) {
  PaintSpanList(device, kStyle, kEncode(figure), clip, result);
}

template <uint32_t kStyle>
void PaintScanlines(const TestDevice& device, const BandRect& figure, const BandRect* clip, uint32_t result) {
  for (int32_t y = figure.top; y < figure.bottom; ++y) {
    PaintSpanList(device, kStyle, {Words({0, y, figure.left, figure.right}), 2}, clip, result);
  }
}

// The mapped device drops the rows above page coordinate 0 of nibble deltas.
bool DropsRowsAboveThePage(const TestDevice& device, const ClipCase& c) {
  return device.options().kind == QNV_KIND_SCALED && c.place.top < 0;
}

void PaintTransfer(const TestDevice& device, const BandRect& figure, TransferCall call, const BandRect* clip,
                   uint32_t result) {
  const uint32_t ink = Physical(device, kClipInk);
  const DRAWMODE mode = MakeDrawMode({.background = ink, .text = ink});
  call.at = {figure.left, figure.top};
  call.size = {figure.right - figure.left, figure.bottom - figure.top};
  call.drawMode = &mode;
  call.clip = clip;
  EXPECT_EQ(result, Transfer(device.handle(), call));
}

void PaintPatCopy(const TestDevice& device, const BandRect& figure, const BandRect* clip, uint32_t result) {
  const PhysicalBrush brush = SolidBrush(device.handle(), kClipInk);
  PaintTransfer(device, figure, {.rop = PATCOPY, .brush = &brush}, clip, result);
}

// Lines and gaps of an opaque hatch take the ink; its tags are painted as its color is.
void PaintHatch(const TestDevice& device, const BandRect& figure, const BandRect* clip, uint32_t result) {
  const PhysicalBrush brush = HatchBrush(device.handle(), HS_CROSS, kClipInk);
  constexpr uint32_t kOrIn = 0x00FA0089;  // destination or pattern
  PaintTransfer(device, figure, {.rop = kOrIn, .brush = &brush}, clip, result);
}

// Both bits stand for the ink.
template <uint32_t kRop>
void PaintSource(const TestDevice& device, const BandRect& figure, const BandRect* clip, uint32_t result) {
  static const SourceImage source(kOneBitSource, 128, 128, 1);
  const PhysicalBrush brush = SolidBrush(device.handle(), 0);
  PaintTransfer(device, figure, {.source = source.record(), .rop = kRop, .brush = &brush}, clip, result);
}

bool IsZero(const BandRect& r) { return r.left == 0 && r.top == 0 && r.right == 0 && r.bottom == 0; }

bool BeginsBelowZero(const ClipCase& c) {
  return c.figure.left + c.place.originX < 0 || c.figure.top + c.place.originY < 0;
}

// Filled tags, a pixel's too, take four zeros for no clip, and widen the clip where the figure begins below zero.
bool FillsTagsPastTheClip(const TestDevice& device, const ClipCase& c) {
  return device.options().tagPlane && (IsZero(c.clip) || BeginsBelowZero(c));
}

// To a transfer the zeros, looked for after the origin was added, are no clip.
bool HasNoClip(const TestDevice&, const ClipCase& c) {
  const int32_t x = c.place.originX;
  const int32_t y = c.place.originY;
  return IsZero({c.clip.left + x, c.clip.top + y, c.clip.right + x, c.clip.bottom + y});
}

bool IsUnclippedOrFills(const TestDevice& device, const ClipCase& c) {
  return HasNoClip(device, c) || FillsTagsPastTheClip(device, c);
}

// A source transfer itself widens the clip where it begins below zero.
bool IsUnclippedOrWidens(const TestDevice& device, const ClipCase& c) {
  return IsUnclippedOrFills(device, c) || BeginsBelowZero(c);
}

constexpr uint32_t kGeneralCopy = 0x01CC0020;  // SRCCOPY's index through the general operation

const ClippedOperation kOperations[] = {
    {.name = "Pixel", .paint = PaintPixels, .hasOwnRule = FillsTagsPastTheClip, .result = 0},
    {.name = "PolyPixel", .paint = PaintPolyPixel, .hasOwnRule = FillsTagsPastTheClip, .result = 0},
    {"scanlines", PaintScanlines<OS_SCANLINES>},
    {"scanlines, second code", PaintScanlines<104>},
    {"banded spans", PaintSpans<OS_BANDED_SPANS, InOneRecord>},
    {"banded spans, second code", PaintSpans<105, InOneRecord>},
    {"row records", PaintSpans<OS_ROW_RECORDS, InRowRecords>},
    {"row spans", PaintSpans<OS_ROW_SPANS, InRowSpans>},
    {"byte deltas", PaintSpans<OS_BYTE_DELTAS, InByteDeltas>},
    {"nibble deltas", PaintSpans<OS_NIBBLE_DELTAS, InNibbleDeltas>, DropsRowsAboveThePage},
    {"PATCOPY", PaintPatCopy, IsUnclippedOrFills, 1, 1},
    {"a hatch into the destination", PaintHatch, HasNoClip, 1, 1},
    {"SRCCOPY", PaintSource<SRCCOPY>, IsUnclippedOrWidens, 1, 1},
    {"SRCPAINT", PaintSource<SRCPAINT>, IsUnclippedOrWidens, 1, 1},
    {"general copy", PaintSource<kGeneralCopy>, IsUnclippedOrWidens, 1, 1},
};

TEST(Clipping, EveryOperationOnEveryDevice) {
  for (const ClippedOperation& operation : kOperations) CheckClipping(operation);
}

TEST(Clipping, BandRectangleSmallerThanTheBuffer) {
  for (const ClippedOperation& operation : kOperations) CheckSmallerBand(operation);
}

TEST(Clipping, NullClipIsRefused) {
  for (const ClippedOperation& operation : kOperations) CheckNullClip(operation);
}

}  // namespace
}  // namespace qnv::test
