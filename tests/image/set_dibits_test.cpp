// SetDIBitsToDevice: an unscaled copy of stored rows.
#include <gtest/gtest.h>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

uint32_t SetBits(const TestDevice& device, int32_t x, int32_t y, uint32_t startScan, uint32_t numScans, const Dib& dib,
                 const BandRect& clip = kEverywhere, const DRAWMODE* mode = nullptr) {
  const uint32_t result = QNVDevSetDIBitsToDevice(device.handle(), x, y, startScan, numScans, &clip, mode, dib.bits(),
                                                  dib.info(), nullptr) &
                          0xFFFF;
  EXPECT_TRUE(dib.Unchanged()) << "the bitmap was written";
  return result;
}

struct SetCase {
  const char* name = "";
  int32_t x = 0;
  int32_t y = 0;
  uint32_t startScan = 0;
  uint32_t numScans = 3;
  const char* picture = kNoImage;
  BandRect clip = kEverywhere;
  uint32_t result = 1;
};

const SetCase kCases[] = {
    {.name = "the whole image",
     .x = 2,
     .y = 1,
     .picture = "............."
                "..abcd......."
                "..efgh......."
                "..ijkl......."},
    {.name = "the first stored row",
     .x = 2,
     .y = 1,
     .numScans = 1,
     .picture = "............."
                "..ijkl......."},
    {.name = "from the second stored row on",
     .x = 2,
     .y = 1,
     .startScan = 1,
     .numScans = 2,
     .picture = "............."
                "..abcd......."
                "..efgh......."},
    {.name = "partly outside the band",
     .x = -1,
     .y = -1,
     .picture = "fgh.........."
                "jkl.........."},
    {.name = "clipped",
     .x = 2,
     .y = 1,
     .picture = "............."
                "............."
                "...fg........",
     .clip = {3, 2, 5, 3}},
    {.name = "outside", .x = 13, .y = 0, .result = 0},
    {.name = "no rows", .x = 0, .y = 0, .numScans = 0, .result = 0},
    {.name = "rows past the image", .x = 0, .y = 0, .startScan = 3, .numScans = 2, .result = 0},
};

TEST(SetDIBits, Cases) {
  for (const SetCase& c : kCases) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      for (uint16_t depth : {uint16_t{4}, uint16_t{8}, uint16_t{16}, uint16_t{24}, uint16_t{32}}) {
        TestDevice device({.bitsPerPixel = bandDepth, .width = kImageColumns, .height = kImageRows});
        const Dib dib = PictureDib(4, kFourByThree, {.bitCount = depth});
        EXPECT_EQ(c.result, SetBits(device, c.x, c.y, c.startScan, c.numScans, dib, c.clip)) << c.name;
        EXPECT_TRUE(BandIs(device, ImageInks(device), c.picture))
            << c.name << ", " << depth << "-bit image, " << bandDepth << "-bit band";
      }
    }
  }
}

TEST(SetDIBits, TopDown) {
  TestDevice device({.width = kImageColumns, .height = kImageRows});
  const Dib dib = PictureDib(4, kFourByThree, {.topDown = true});
  EXPECT_EQ(1u, SetBits(device, 1, 0, 0, 3, dib));
  EXPECT_EQ(1u, SetBits(device, 6, 0, 1, 2, dib));
  EXPECT_TRUE(BandIs(device, ImageInks(device),
                     ".abcd.abcd..."
                     ".efgh.efgh..."
                     ".ijkl........"));
}

// The call is a StretchDIBits of the device's own kind.
TEST(SetDIBits, EqualsTheStretchOnEveryDevice) {
  const DeviceOptions devices[] = {
      {.bitsPerPixel = 24, .width = 13, .height = 6, .left = 3, .top = -2},
      {.bitsPerPixel = 8, .width = 13, .height = 6, .left = 3, .top = -2},
      {.kind = QNV_KIND_SCALED, .width = 13, .height = 6, .resolutionA = 720, .resolutionB = 360, .left = 3},
      {.kind = QNV_KIND_SCALED, .bitsPerPixel = 0, .width = 13, .height = 6, .resolutionA = 300, .resolutionB = 400},
      {.bitsPerPixel = 24, .width = 13, .height = 6, .left = 3, .top = -2, .tagPlane = true},
  };
  const BandRect clip{-1, -3, 9, 4};
  for (const DeviceOptions& options : devices) {
    for (const SetCase& c : kCases) {
      TestDevice set(options);
      TestDevice stretched(options);
      set.SetOrigin(2, 1);
      stretched.SetOrigin(2, 1);
      const Dib dib = PictureDib(4, kFourByThree, {.bitCount = 8});
      const int32_t rows = static_cast<int32_t>(c.numScans);
      const uint32_t expected =
          Stretch(stretched, dib, {c.x, c.y, 4, rows, 0, static_cast<int32_t>(c.startScan), 4, rows}, {.clip = clip});
      EXPECT_EQ(expected, SetBits(set, c.x, c.y, c.startScan, c.numScans, dib, clip)) << c.name;
      EXPECT_TRUE(SameImage(BandImage(stretched), BandImage(set))) << c.name << ", kind " << options.kind;
      if (options.tagPlane) {
        EXPECT_TRUE(SameImage(TagImage(stretched), TagImage(set))) << c.name;
      }
      EXPECT_TRUE(set.FencesIntact());
    }
  }
}

TEST(SetDIBits, NullPointers) {
  TestDevice device({.width = kImageColumns, .height = kImageRows});
  const Dib dib = PictureDib(4, kFourByThree, {});
  EXPECT_EQ(0u,
            QNVDevSetDIBitsToDevice(device.handle(), 0, 0, 0, 3, &kEverywhere, nullptr, dib.bits(), nullptr, nullptr) &
                0xFFFF);
  EXPECT_EQ(0u,
            QNVDevSetDIBitsToDevice(device.handle(), 0, 0, 0, 3, &kEverywhere, nullptr, nullptr, dib.info(), nullptr) &
                0xFFFF);
  EXPECT_EQ(
      0u,
      QNVDevSetDIBitsToDevice(device.handle(), 0, 0, 0, 3, nullptr, nullptr, dib.bits(), dib.info(), nullptr) & 0xFFFF);
  EXPECT_TRUE(BandUntouched(device));
}

}  // namespace
}  // namespace qnv::test
