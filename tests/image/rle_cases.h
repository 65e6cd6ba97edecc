// One stream of run-length codes and the picture it decodes to.
#pragma once

#include <string>
#include <vector>

#include "image/dib_builder.h"

namespace qnv::test {

struct RleCase {
  const char* name = "";
  std::vector<uint8_t> codes{};
  const char* picture = "";  // top row first; 'a' is index 0
  int32_t width = 5;
  int32_t height = 3;
  bool topDown = false;
  ImagePlace place{0, 0, 5, 3, 0, 0, 5, 3};
};

inline std::vector<uint32_t> RleTable(uint32_t compression) { return FullTable(compression == BI_RLE8 ? 8 : 4); }

// Each stream ends where its memory ends. The second operation takes the same rows through a transfer.
inline void RunRleCases(uint32_t compression, const std::vector<RleCase>& cases) {
  const uint16_t bitCount = compression == BI_RLE8 ? 8 : 4;
  for (const RleCase& c : cases) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      for (uint32_t rop : {SRCCOPY, 0x00CC0021u}) {
        SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(bandDepth) + "-bit band, rop " + std::to_string(rop));
        TestDevice device({.bitsPerPixel = bandDepth, .width = 5, .height = 3});
        const DibShape shape{.bitCount = bitCount, .compression = compression, .topDown = c.topDown};
        const Dib dib(DibInfo(c.width, c.height, shape, RleTable(compression)), c.codes);
        EXPECT_EQ(1u, Stretch(device, dib, c.place, {.rop = rop}));
        PictureInks inks = ImageInks(device);
        inks.push_back({'Z', Physical(device, 0x123456)});  // the entries above 15
        EXPECT_TRUE(BandIs(device, inks, c.picture));
      }
    }
  }
}

}  // namespace qnv::test
