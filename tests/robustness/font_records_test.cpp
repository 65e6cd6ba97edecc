// Numbers of font records that turn a glyph inside out or push it over the end of the coordinates.
#include <gtest/gtest.h>

#include <cstdint>

#include "text/font_builder.h"

namespace qnv::test {
namespace {

TEST(FontRecords, HeightsOfNoGlyph) {
  for (bool twoByte : {false, true}) {
    FontBuilder builder({.height = 4, .twoByte = twoByte});
    builder.Glyph(twoByte ? uint16_t{0} : uint16_t{'a'}, 8, std::string(32, '#'));
    const Font font = builder.Build();
    for (const DeviceOptions& options : {DeviceOptions{}, DeviceOptions{.bitsPerPixel = 8},
                                         DeviceOptions{.kind = QNV_KIND_SCALED}, DeviceOptions{.tagPlane = true}}) {
      TestDevice device(options);
      const std::vector<uint8_t> before = device.BandBytes();
      for (int16_t height : {int16_t{-1}, int16_t{-4}, int16_t{-32768}, int16_t{0}}) {
        std::vector<uint8_t> bytes(static_cast<const uint8_t*>(font.base()),
                                   static_cast<const uint8_t*>(font.base()) + 82 + 6 + 4);
        FONTINFO info;
        std::memcpy(&info, bytes.data(), sizeof info);
        info.dfPixHeight = height;
        std::memcpy(bytes.data(), &info, sizeof info);
        const FencedInput memory(bytes);
        for (int32_t y : {INT32_MIN, INT32_MIN + 1, INT32_MIN + 40, INT32_MAX, 0, 5, -32768, 32767}) {
          for (int32_t x : {0, 5, INT32_MIN, INT32_MAX}) {
            const uint8_t text[] = {twoByte ? uint8_t{0} : uint8_t{'a'}, 0};
            DRAWMODE mode = MakeDrawMode();
            const int16_t width = 8;
            QNVDevExtTextOut(device.handle(), x, y, &kEverywhere, text, 1, memory.data(), 0, &mode, nullptr,
                             twoByte ? &width : nullptr, nullptr, ETO_CLIPPED);
            QNVDevExtTextOut(device.handle(), x, y, nullptr, text, 1, memory.data(), 0, &mode, nullptr,
                             twoByte ? &width : nullptr, nullptr, 0);
            ASSERT_EQ(before, device.BandBytes()) << height << " rows at " << x << ", " << y;
          }
        }
        EXPECT_TRUE(memory.Unchanged());
      }
      EXPECT_TRUE(device.FencesIntact());
    }
  }
}

}  // namespace
}  // namespace qnv::test
