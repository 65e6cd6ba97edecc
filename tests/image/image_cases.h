// One image, one call, one picture.
#pragma once

#include <string>
#include <vector>

#include "image/dib_builder.h"

namespace qnv::test {

inline constexpr uint32_t kImageColumns = 13;
inline constexpr uint32_t kImageRows = 6;
inline constexpr const char* kNoImage = ".............";

inline constexpr const char* kFourByThree =
    "abcd"
    "efgh"
    "ijkl";

struct ImageCase {
  const char* name = "";
  int32_t width = 4;
  const char* image = kFourByThree;
  ImagePlace place{};
  const char* picture = kNoImage;
  BandRect clip = kEverywhere;
  int32_t bandLeft = 0;
  int32_t bandTop = 0;
  int32_t originX = 0;
  int32_t originY = 0;
  uint32_t result = 1;
};

// Every case for each image depth given, bottom-up or top-down, on both band depths.
inline void RunImageCases(const std::vector<ImageCase>& cases, const std::vector<uint16_t>& depths,
                          const std::vector<bool>& orders) {
  for (const ImageCase& c : cases) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      for (uint16_t depth : depths) {
        for (bool topDown : orders) {
          SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(depth) + "-bit image, " +
                       (topDown ? "top-down, " : "bottom-up, ") + std::to_string(bandDepth) + "-bit band");
          TestDevice device({.bitsPerPixel = bandDepth,
                             .width = kImageColumns,
                             .height = kImageRows,
                             .left = c.bandLeft,
                             .top = c.bandTop});
          device.SetOrigin(c.originX, c.originY);
          const Dib dib = PictureDib(c.width, c.image, {.bitCount = depth, .topDown = topDown});
          EXPECT_EQ(c.result, Stretch(device, dib, c.place, {.clip = c.clip}));
          EXPECT_TRUE(BandIs(device, ImageInks(device, depth), c.picture));
        }
      }
    }
  }
}

}  // namespace qnv::test
