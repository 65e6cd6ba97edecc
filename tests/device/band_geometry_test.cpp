// Where a page pixel lies in band memory: stride, padding, moved bands, origin.
#include <gtest/gtest.h>

#include <climits>

#include "support/device_classes.h"
#include "support/host_handle.h"
#include "support/plane_image.h"
#include "support/random_bytes.h"
#include "support/transfer_call.h"

namespace qnv::test {
namespace {

struct StrideCase {
  const char* name;
  uint16_t kind;
  uint16_t bitsPerPixel;
  uint32_t width;
  uint32_t stride;
};

constexpr StrideCase kStrides[] = {
    {"24 bits, 1", 1, 24, 1, 4},       {"24 bits, 2", 1, 24, 2, 8},        {"24 bits, 3", 1, 24, 3, 12},
    {"24 bits, 4", 1, 24, 4, 12},      {"24 bits, 5", 1, 24, 5, 16},       {"24 bits, 100", 1, 24, 100, 300},
    {"24 bits, 101", 1, 24, 101, 304}, {"8 bits, 1", 1, 8, 1, 4},          {"8 bits, 4", 1, 8, 4, 4},
    {"8 bits, 5", 1, 8, 5, 8},         {"8 bits, 100", 1, 8, 100, 100},    {"8 bits, 101", 1, 8, 101, 104},
    {"scaled, 100", 0, 24, 100, 300},  {"scaled, 101", 0, 24, 101, 304},   {"scaled, 102", 0, 24, 102, 308},
    {"scaled, 103", 0, 24, 103, 312},  {"gray mode, 101", 0, 0, 101, 304}, {"scaled 8 bits, 101", 0, 8, 101, 304},
};

// The first pixel of row 2 lies two strides into the buffer, the last one a pixel before the row's padding.
TEST(BandGeometry, Stride) {
  for (const StrideCase& c : kStrides) {
    SCOPED_TRACE(c.name);
    const uint32_t pixelBytes = c.kind == QNV_KIND_SCALED || c.bitsPerPixel == 24 ? 3 : 1;
    FencedBuffer band(std::size_t{c.stride} * 3, 0xCC);
    const HostHandle host({c.kind, c.bitsPerPixel, 360, c.width, 3, 360}, {0, 0, static_cast<int32_t>(c.width), 3},
                          band.data());
    const DRAWMODE mode = MakeDrawMode();
    QNVPixel(host.get(), 0, 2, 0x111111, &mode, &kEverywhere);
    QNVPixel(host.get(), static_cast<int32_t>(c.width) - 1, 0, 0x222222, &mode, &kEverywhere);
    EXPECT_EQ(0xCC, band.data()[2 * c.stride - 1]);
    EXPECT_EQ(0x11, band.data()[2 * c.stride]);
    const std::size_t lastOfRow0 = (c.width - 1) * pixelBytes;
    EXPECT_EQ(0x22, band.data()[lastOfRow0]);
    EXPECT_EQ(0x22, band.data()[lastOfRow0 + pixelBytes - 1]);
    for (std::size_t i = lastOfRow0 + pixelBytes; i < c.stride; ++i) EXPECT_EQ(0xCC, band.data()[i]) << "padding";
    EXPECT_TRUE(band.FencesIntact());
  }
}

// Every width up to 70: white over the whole band reaches every pixel and no byte of padding.
TEST(BandGeometry, WholeBandAtEveryWidth) {
  for (uint16_t bits : kBandDepths) {
    for (uint32_t width = 1; width <= 70; ++width) {
      SCOPED_TRACE(Text(bits, " bits, width ", width));
      TestDevice device({.bitsPerPixel = bits, .width = width, .height = 3, .left = -5, .top = 9});
      FillWithNoise(&device.band(), width);
      PlaneImage expected = BandImage(device);
      expected.Fill({0, 0, expected.columns(), 3}, {0xFF, 0xFF, 0xFF});
      const DRAWMODE mode = MakeDrawMode();
      EXPECT_EQ(
          1u, Transfer(device.handle(), {.at = {-100, -100}, .size = {300, 300}, .rop = WHITENESS, .drawMode = &mode}));
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

TEST(BandGeometry, EdgesOfABandAnywhereOnThePage) {
  constexpr BandPlace kPlaces[] = {{0, 0, 0, 0},   {0, 96, 0, 0},      {31, 77, 0, 0},           {-17, -9, 0, 0},
                                   {0, 0, 12, 34}, {31, 77, -40, -80}, {1000000, 2000000, 0, 0}, {-3, -2, 1, 1}};
  for (uint16_t bits : kBandDepths) {
    for (const BandPlace& place : kPlaces) {
      SCOPED_TRACE(Text("band at ", place.left, ", ", place.top, ", origin ", place.originX, ", ", place.originY));
      PlacedDevice device({.bitsPerPixel = bits, .width = 7, .height = 4}, place);
      PlaneImage expected = BandImage(device);
      const DRAWMODE mode = MakeDrawMode();
      const BandRect clip{INT_MIN / 2, INT_MIN / 2, INT_MAX / 2, INT_MAX / 2};
      // Around the band, and its first and last pixel.
      for (const auto& [column, row] : {std::pair{-1, 0}, {0, -1}, {7, 3}, {6, 4}, {0, 0}, {6, 3}}) {
        const uint8_t value = static_cast<uint8_t>(column + 1);
        EXPECT_EQ(0u, QNVPixel(device.handle(), place.left - place.originX + column, place.top - place.originY + row,
                               Gray(value), &mode, &clip));
        const bool inside = column >= 0 && column < 7 && row >= 0 && row < 4;
        if (inside) expected.Set(column, row, {value, value, value});
      }
      EXPECT_TRUE(BandShows(device, expected));
    }
  }
}

// Coordinates at the ends of their range: whatever they wrap to, the band's memory is all that can be written.
TEST(BandGeometry, ExtremeCoordinatesStayInsideTheBand) {
  constexpr int32_t kExtremes[] = {INT_MIN, INT_MIN + 1, INT_MIN / 2, -1, 0, 1, INT_MAX / 2, INT_MAX - 1, INT_MAX};
  std::vector<DeviceOptions> classes = DeviceClasses({.width = 7, .height = 3});
  for (uint16_t a : {uint16_t{600}, uint16_t{300}}) {
    classes.push_back({.kind = QNV_KIND_SCALED, .width = 7, .height = 3, .resolutionA = a, .resolutionB = 400});
  }
  const uint8_t pixels[16] = {};
  const SourceBitmap source{0, 2, 2, 8, 1, 24, pixels};
  for (const DeviceOptions& options : classes) {
    SCOPED_TRACE(Describe(options));
    TestDevice device(options);
    const DRAWMODE mode = MakeDrawMode();
    const PhysicalBrush brush = SolidBrush(device.handle(), 0);
    for (int32_t origin : kExtremes) {
      device.SetOrigin(origin, -1 - origin);
      for (int32_t a : kExtremes) {
        for (int32_t b : kExtremes) {
          const BandRect clip{b, b, a, a};
          for (const BandRect* c : {&clip, &kEverywhere}) {
            QNVPixel(device.handle(), a, b, 0, &mode, c);
            QNVPixel(device.handle(), a, b, 0, nullptr, c);
            TransferCall call{.at = {a, b}, .size = {b, a}, .rop = PATCOPY, .brush = &brush, .drawMode = &mode};
            call.clip = c;
            EXPECT_EQ(1u, Transfer(device.handle(), call));
            call = {.at = {a, a}, .source = &source, .from = {b, origin}, .size = {b, b}, .rop = SRCCOPY};
            call.drawMode = &mode;
            call.clip = c;
            EXPECT_EQ(1u, Transfer(device.handle(), call));
          }
        }
      }
      ASSERT_TRUE(device.FencesIntact());
    }
  }
}

// A band rectangle moved to the ends of the coordinate range.
TEST(BandGeometry, ExtremeBandRectangles) {
  const DRAWMODE mode = MakeDrawMode();
  for (int32_t left : {INT_MIN, INT_MAX - 7}) {
    SCOPED_TRACE(left);
    TestDevice device({.width = 7, .height = 1});
    const BandRect rect{left, left, left + 7, left + 1};
    QNVControl(device.handle(), QNV_SET_BAND_RECT, &rect, nullptr);
    PlaneImage expected = BandImage(device);
    QNVPixel(device.handle(), left + 6, left, 0x010203, &mode, &rect);
    expected.Set(6, 0, {1, 2, 3});
    EXPECT_TRUE(BandShows(device, expected));
  }
}

}  // namespace
}  // namespace qnv::test
