// Clip rectangle, band and origin: one rectangle, laid out in every encoding, must give the same picture.
#include <gtest/gtest.h>

#include "output/output_call.h"

namespace qnv::test {
namespace {

struct Rectangle {
  int16_t left, top, right, bottom;
};

struct Encoding {
  const char* name;
  uint32_t style;
  // Paints the rectangle by as many calls as the encoding needs.
  void (*paint)(const TestDevice& device, uint32_t style, const Rectangle& r, const OutputSetup& setup);
};

void PaintScanlines(const TestDevice& device, uint32_t style, const Rectangle& r, const OutputSetup& setup) {
  for (int16_t y = r.top; y < r.bottom; ++y) {
    EXPECT_EQ(1u, CallOutput(device, style, 2, SpanListBytes({0, y, r.left, r.right}), setup));
  }
}

void PaintBanded(const TestDevice& device, uint32_t style, const Rectangle& r, const OutputSetup& setup) {
  EXPECT_EQ(1u, CallOutput(device, style, 1, SpanListBytes({2, r.top, r.bottom, r.left, r.right, 2}), setup));
}

uint32_t RowsOf(const Rectangle& r) { return static_cast<uint32_t>(r.bottom - r.top); }

void PaintRowRecords(const TestDevice& device, uint32_t style, const Rectangle& r, const OutputSetup& setup) {
  std::vector<int16_t> words = {r.top};
  for (uint32_t i = 0; i < RowsOf(r); ++i) words.insert(words.end(), {2, r.left, r.right});
  EXPECT_EQ(1u, CallOutput(device, style, RowsOf(r), SpanListBytes(words), setup));
}

void PaintRowSpans(const TestDevice& device, uint32_t style, const Rectangle& r, const OutputSetup& setup) {
  std::vector<int16_t> words = {r.top};
  for (uint32_t i = 0; i < RowsOf(r); ++i) words.insert(words.end(), {r.left, r.right});
  EXPECT_EQ(1u, CallOutput(device, style, RowsOf(r), SpanListBytes(words), setup));
}

void PaintByteDeltas(const TestDevice& device, uint32_t style, const Rectangle& r, const OutputSetup& setup) {
  const std::vector<int> deltas(2 * (RowsOf(r) - 1), 0);
  EXPECT_EQ(1u, CallOutput(device, style, RowsOf(r), SpanListBytes({r.top, r.left, r.right}, deltas), setup));
}

void PaintNibbleDeltas(const TestDevice& device, uint32_t style, const Rectangle& r, const OutputSetup& setup) {
  const std::vector<int> deltas(RowsOf(r) - 1, 0);
  EXPECT_EQ(1u, CallOutput(device, style, RowsOf(r), SpanListBytes({r.top, r.left, r.right}, deltas), setup));
}

const Encoding kEncodings[] = {
    {"scanlines", OS_SCANLINES, PaintScanlines},      {"scanlines, second code", 104, PaintScanlines},
    {"banded spans", OS_BANDED_SPANS, PaintBanded},   {"banded spans, second code", 105, PaintBanded},
    {"row records", OS_ROW_RECORDS, PaintRowRecords}, {"row spans", OS_ROW_SPANS, PaintRowSpans},
    {"byte deltas", OS_BYTE_DELTAS, PaintByteDeltas}, {"nibble deltas", OS_NIBBLE_DELTAS, PaintNibbleDeltas},
};

struct ClipCase {
  const char* name;
  Rectangle rectangle;
  BandRect clip = kEverywhere;
  BandPlace place{};
  const char* picture = "";
};

const ClipCase kClipCases[] = {
    {.name = "inside",
     .rectangle = {3, 1, 7, 4},
     .picture = "............."
                "...####......"
                "...####......"
                "...####......"},
    {.name = "larger than the band on every side",
     .rectangle = {-40, -40, 60, 60},
     .picture = "#############"
                "#############"
                "#############"
                "#############"
                "#############"
                "#############"},
    {.name = "clip inside the figure",
     .rectangle = {1, 0, 12, 6},
     .clip = {4, 2, 9, 5},
     .picture = "............."
                "............."
                "....#####...."
                "....#####...."
                "....#####...."},
    {.name = "clip cuts the left and top only",
     .rectangle = {1, 0, 12, 6},
     .clip = {10, 4, 1000, 1000},
     .picture = "............."
                "............."
                "............."
                "............."
                "..........##."
                "..........##."},
    {.name = "one-pixel clip",
     .rectangle = {0, 0, 13, 6},
     .clip = {12, 5, 13, 6},
     .picture = "............."
                "............."
                "............."
                "............."
                "............."
                "............#"},
    {.name = "clip of four zeros clips everything",
     .rectangle = {0, 0, 13, 6},
     .clip = {0, 0, 0, 0},
     .picture = kEmptySpanPicture},
    {.name = "clip upside down", .rectangle = {0, 0, 13, 6}, .clip = {0, 6, 13, 0}, .picture = kEmptySpanPicture},
    {.name = "clip beside the figure", .rectangle = {0, 0, 5, 6}, .clip = {5, 0, 13, 6}, .picture = kEmptySpanPicture},
    {.name = "band elsewhere on the page",
     .rectangle = {98, 47, 104, 52},
     .place = {.left = 100, .top = 50},
     .picture = "####........."
                "####........."},
    {.name = "band at negative coordinates",
     .rectangle = {-9, -4, -3, -1},
     .place = {.left = -10, .top = -6},
     .picture = "............."
                "............."
                ".######......"
                ".######......"
                ".######......"},
    {.name = "the origin moves figure and clip, not the band",
     .rectangle = {0, 0, 13, 6},
     .clip = {2, 1, 6, 3},
     .place = {.left = 10, .top = 20, .originX = 9, .originY = 22},
     .picture = "............."
                "............."
                "............."
                ".####........"
                ".####........"},
    {.name = "negative origin",
     .rectangle = {20, 10, 24, 12},
     .place = {.originX = -15, .originY = -9},
     .picture = "............."
                ".....####...."
                ".....####...."},
    {.name = "figure above the band", .rectangle = {0, -9, 13, 0}, .picture = kEmptySpanPicture},
    {.name = "figure below the band", .rectangle = {0, 6, 13, 9}, .picture = kEmptySpanPicture},
    {.name = "figure left of the band", .rectangle = {-9, 0, 0, 6}, .picture = kEmptySpanPicture},
    {.name = "figure right of the band", .rectangle = {13, 0, 20, 6}, .picture = kEmptySpanPicture},
};

const DeviceOptions kClipDevices[] = {
    {.bitsPerPixel = 24},
    {.bitsPerPixel = 8},
    {.kind = QNV_KIND_SCALED, .bitsPerPixel = 24},
    {.kind = QNV_KIND_SCALED, .bitsPerPixel = 0},
    {.bitsPerPixel = 24, .tagPlane = true},
};

DeviceOptions Placed(DeviceOptions options, const BandPlace& place) {
  options.width = kSpanColumns;
  options.height = kSpanRows;
  options.left = place.left;
  options.top = place.top;
  return options;
}

TEST(OutputClipping, EveryEncodingOnEveryDevice) {
  for (const DeviceOptions& options : kClipDevices) {
    for (const Encoding& encoding : kEncodings) {
      for (const ClipCase& c : kClipCases) {
        // The mapped device drops the rows above page coordinate 0 of the last encoding.
        if (options.kind == QNV_KIND_SCALED && encoding.style == OS_NIBBLE_DELTAS && c.place.top < 0) continue;
        SCOPED_TRACE(std::string(c.name) + ", " + encoding.name + ", kind " + std::to_string(options.kind) + ", " +
                     std::to_string(options.bitsPerPixel) + " bits" + (options.tagPlane ? ", dual plane" : ""));
        TestDevice device(Placed(options, c.place));
        device.SetOrigin(c.place.originX, c.place.originY);
        const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
        const DRAWMODE mode = MakeDrawMode();
        encoding.paint(device, encoding.style, c.rectangle, {.pen = &pen, .drawMode = &mode, .clip = c.clip});
        EXPECT_TRUE(BandIs(device, {{'#', Physical(device, kPenColor)}}, c.picture));
      }
    }
  }
}

// A band rectangle narrower than the buffer bounds the figure; the buffer's other pixels stay.
TEST(OutputClipping, BandRectangleSmallerThanTheBuffer) {
  for (const Encoding& encoding : kEncodings) {
    TestDevice device(Placed({}, {}));
    const BandRect band{100, 50, 104, 53};
    ASSERT_EQ(1u, QNVControl(device.handle(), QNV_SET_BAND_RECT, &band, nullptr) & 0xFFFF);
    const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
    const DRAWMODE mode = MakeDrawMode();
    encoding.paint(device, encoding.style, {0, 0, 200, 100}, {.pen = &pen, .drawMode = &mode});
    EXPECT_TRUE(BandIs(device, {{'#', kPenColor}},
                       "####........."
                       "####........."
                       "####........."))
        << encoding.name;
  }
}

TEST(OutputClipping, NullClipIsRefused) {
  for (const DeviceOptions& options : kClipDevices) {
    for (const Encoding& encoding : kEncodings) {
      TestDevice device(Placed(options, {}));
      const PhysicalPen pen = SolidPen(device.handle(), kPenColor);
      const DRAWMODE mode = MakeDrawMode();
      const std::vector<uint8_t> list = SpanListBytes({2, 0, 2, 0, 2, 2});
      const FencedInput input(list);
      EXPECT_EQ(0u, QNVOutput(device.handle(), encoding.style, 1, static_cast<const int16_t*>(input.data()), &pen,
                              nullptr, &mode, nullptr) &
                        0xFFFF)
          << encoding.name;
      EXPECT_TRUE(BandUntouched(device)) << encoding.name;
    }
  }
}

}  // namespace
}  // namespace qnv::test
