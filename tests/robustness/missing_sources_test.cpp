// Sources without pixels, and a device whose resolution is 0: nothing is painted, nothing is read.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "robustness/modelled_device.h"
#include "support/test_device.h"

namespace qnv::test {
namespace {

TEST(MissingSources, BitmapsWithoutPixelsPaintAndTagNothing) {
  const DRAWMODE mode = MakeDrawMode();
  for (const bool tags : {false, true}) {
    TestDevice device({.width = 16, .height = 4, .tagPlane = tags});
    if (tags) std::memset(device.tags()->data(), QNV_TAG_IMAGE, device.tags()->size());
    const std::vector<uint8_t> band = device.BandBytes();
    for (const uint8_t depth : {uint8_t{1}, uint8_t{24}}) {
      const SourceBitmap source{0, 16, 4, 48, 1, depth, nullptr};
      for (const uint32_t rop : {SRCCOPY, SRCAND, SRCPAINT}) {
        QNVDevBitBlt(device.handle(), 0, 0, &source, 0, 0, 16, 4, rop, nullptr, &mode, &kEverywhere);
        EXPECT_EQ(band, device.BandBytes()) << int{depth} << " bits, rop " << std::hex << rop;
        if (tags) {
          EXPECT_EQ(std::vector<uint8_t>(device.tags()->size(), QNV_TAG_IMAGE), device.TagBytes());
        }
      }
    }
  }
}

// All of the page falls on band pixel 0 and is kept nowhere.
TEST(MissingSources, ADeviceOfNoResolution) {
  ModelledDevice device({.kind = QNV_KIND_SCALED, .width = 8, .height = 2, .resolutionB = 0});
  ASSERT_NE(nullptr, device.model);
  const DRAWMODE mode = MakeDrawMode();
  const int16_t spans[] = {0, -3, 9, -3, 9};
  const PhysicalPen pen{PS_SOLID, 1, 1, 0x102030};
  const auto compare = [&](const char* call, uint32_t expected, uint32_t got) {
    EXPECT_EQ(expected & 0xFFFF, got & 0xFFFF) << call;
    EXPECT_EQ(device.model->band().bytes(), device.BandBytes()) << call;
  };
  compare("fill", device.model->BitBlt({-4, -4, nullptr, 0, 0, 20, 20, BLACKNESS, nullptr, &mode, &kEverywhere}),
          QNVDevBitBlt(device.handle(), -4, -4, nullptr, 0, 0, 20, 20, BLACKNESS, nullptr, &mode, &kEverywhere));
  compare("spans", device.model->Output({OS_ROW_SPANS, 2, spans, &pen, nullptr, &mode, &kEverywhere}),
          QNVOutput(device.handle(), OS_ROW_SPANS, 2, spans, &pen, nullptr, &mode, &kEverywhere));
  compare("points", device.model->PolyPixel(-2, -2, 3, 3, 0x405060, &mode, &kEverywhere),
          QNVPolyPixel(device.handle(), -2, -2, 3, 3, 0x405060, &mode, &kEverywhere));
}

}  // namespace
}  // namespace qnv::test
