// The escapes of QNVControl on every device class: origin, band rectangle, clear.
#include <gtest/gtest.h>

#include "support/device_classes.h"
#include "support/host_handle.h"
#include "support/plane_image.h"

namespace qnv::test {
namespace {

constexpr DeviceOptions kControlBand{.width = 9, .height = 5};

uint32_t Escape(const TestDevice& device, uint32_t code, const void* data) {
  return QNVControl(device.handle(), code, data, nullptr) & 0xFFFF;
}

void PutPixel(const TestDevice& device, int32_t x, int32_t y, uint8_t value) {
  const DRAWMODE mode = MakeDrawMode();
  QNVPixel(device.handle(), x, y, Gray(value), &mode, &kEverywhere);
}

// The upper half of a code is ignored.
TEST(Control, ResultsOfEveryCode) {
  const BandRect data{0, 0, 9, 5};  // also a fine origin
  for (const DeviceOptions& options : DeviceClasses(kControlBand)) {
    for (uint32_t code : {0x2000u, 0x2001u, 0x2002u, 0x12000u, 0xFFFF2001u, 0x80002002u, 0u, 0x1FFFu, 0x2003u, 0x2100u,
                          0x20000000u, 0x20010000u, 0xFFFFFFFFu}) {
      SCOPED_TRACE(Text("code ", code, ", ", Describe(options)));
      TestDevice device(options);
      const uint32_t low = code & 0xFFFF;
      EXPECT_EQ(low >= 0x2000 && low <= 0x2002 ? 1u : 0u, Escape(device, code, &data));
      if (low != QNV_CLEAR_BAND) {
        EXPECT_TRUE(BandUntouched(device));
      }
    }
  }
}

// An origin replaces the one before it. What is refused, for its code or for null data, leaves origin and band alone.
TEST(Control, OriginIsTheOneThatWasAcceptedLast) {
  for (const DeviceOptions& options : DeviceClasses(kControlBand)) {
    SCOPED_TRACE(Describe(options));
    TestDevice device(options);
    PlaneImage expected = BandImage(device);
    const auto refuse = [&] {
      const BandRect data{3, 2, 12, 7};
      for (uint32_t code : {0x1FFFu, 0x2003u, 0u, 0x2100u}) EXPECT_EQ(0u, Escape(device, code, &data));
      EXPECT_EQ(0u, Escape(device, QNV_SET_ORIGIN, nullptr));
      EXPECT_EQ(0u, Escape(device, QNV_SET_BAND_RECT, nullptr));
    };
    const auto put = [&](int32_t x, int32_t y, uint8_t value, int32_t column, int32_t row) {
      PutPixel(device, x, y, value);
      expected.Set(column, row, {value, value, value});
      EXPECT_TRUE(BandShows(device, expected));
    };
    refuse();
    put(1, 1, 3, 1, 1);
    device.SetOrigin(5, 4);
    device.SetOrigin(2, 1);
    refuse();
    put(1, 1, 4, 3, 2);
    device.SetOrigin(-3, -2);
    put(4, 2, 7, 1, 0);
  }
}

TEST(Control, BandRectMovesTheBandAndKeepsTheOrigin) {
  for (const DeviceOptions& options : DeviceClasses(kControlBand)) {
    SCOPED_TRACE(Describe(options));
    TestDevice device(options);
    device.SetOrigin(1, 2);
    device.MoveBand(100, 50);
    PlaneImage expected = BandImage(device);
    PutPixel(device, 100, 50, 4);
    expected.Set(1, 2, {4, 4, 4});
    PutPixel(device, 1, 1, 7);  // where the band was
    device.MoveBand(-4, -3);
    PutPixel(device, -5, -5, 5);
    expected.Set(0, 0, {5, 5, 5});
    EXPECT_TRUE(BandShows(device, expected));
  }
}

TEST(Control, InputIsNotWritten) {
  TestDevice device({.width = 9, .height = 5});
  DrawingOrigin origin{3, -4};
  BandRect rect{1, 2, 10, 7};
  uint32_t extra = 0x12345678;
  QNVControl(device.handle(), QNV_SET_ORIGIN, &origin, &extra);
  QNVControl(device.handle(), QNV_SET_BAND_RECT, &rect, &extra);
  QNVControl(device.handle(), QNV_CLEAR_BAND, &rect, &extra);
  EXPECT_EQ(3, int32_t{origin.x});
  EXPECT_EQ(-4, int32_t{origin.y});
  EXPECT_EQ("(1, 2, 10, 7)", Describe(rect));
  EXPECT_EQ(0x12345678u, extra);
}

// Clear: how many bytes of 0xFF, from the first byte of a buffer that has a few more.
struct ClearCase {
  const char* name;
  uint16_t kind;
  uint16_t bitsPerPixel;
  bool second;
  uint32_t width;
  uint32_t height;
  uint32_t white;  // bytes
  uint32_t ones;   // bytes of 0x01 in the second buffer
};

constexpr ClearCase kClearCases[] = {
    {"24 bits, no padding", 1, 24, false, 100, 10, 3000, 0},
    {"24 bits, one byte of padding", 1, 24, false, 101, 10, 3040, 0},
    {"24 bits, one pixel", 1, 24, false, 1, 1, 4, 0},
    {"24 bits, no columns", 1, 24, false, 0, 7, 0, 0},
    {"24 bits, no rows", 1, 24, false, 10, 0, 0, 0},
    {"8 bits, no padding", 1, 8, false, 100, 10, 1000, 0},
    {"8 bits, padding", 1, 8, false, 101, 10, 1040, 0},
    {"8 bits, one pixel", 1, 8, false, 1, 3, 12, 0},
    {"scaled, width 100", 0, 24, false, 100, 3, 900, 0},
    {"scaled, width 101", 0, 24, false, 101, 3, 912, 0},
    {"scaled gray mode keeps three bytes a pixel", 0, 0, false, 101, 3, 912, 0},
    {"scaled 8 bits keeps three bytes a pixel", 0, 8, false, 101, 3, 912, 0},
    {"dual-plane", 1, 24, true, 101, 2, 608, 208},
    {"dual-plane, no padding", 1, 24, true, 100, 2, 600, 200},
    {"dual-plane of 8 bits clears three bytes a pixel", 1, 8, true, 101, 2, 608, 208},
    {"dual-plane of 16 bits", 1, 16, true, 5, 3, 48, 24},
};

TEST(Control, ClearFillsTheWholeBuffer) {
  for (const ClearCase& c : kClearCases) {
    SCOPED_TRACE(c.name);
    constexpr std::size_t kBeyond = 64;
    FencedBuffer band(c.white + kBeyond, 0xCC);
    FencedBuffer second(c.ones + kBeyond, 0xCC);
    const BandRect rect{0, 0, static_cast<int32_t>(c.width), static_cast<int32_t>(c.height)};
    const HostHandle host({c.kind, c.bitsPerPixel, 360, c.width, c.height, 360}, rect, band.data(),
                          c.second ? second.data() : nullptr);
    ASSERT_NE(nullptr, host.get());
    // Neither the band's place nor the origin nor the band's size matters.
    const BandRect elsewhere{1000, 2000, 1002, 2001};
    const DrawingOrigin origin{77, -33};
    QNVControl(host.get(), QNV_SET_BAND_RECT, &elsewhere, nullptr);
    QNVControl(host.get(), QNV_SET_ORIGIN, &origin, nullptr);
    EXPECT_EQ(1u, QNVControl(host.get(), QNV_CLEAR_BAND, nullptr, nullptr) & 0xFFFF);
    for (std::size_t i = 0; i < band.size(); ++i) ASSERT_EQ(i < c.white ? 0xFF : 0xCC, band.data()[i]) << "byte " << i;
    for (std::size_t i = 0; i < second.size(); ++i) {
      ASSERT_EQ(i < c.ones ? 0x01 : 0xCC, second.data()[i]) << "second buffer, byte " << i;
    }
    EXPECT_TRUE(band.FencesIntact());
    EXPECT_TRUE(second.FencesIntact());
  }
}

}  // namespace
}  // namespace qnv::test
