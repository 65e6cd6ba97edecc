// What an image transfer refuses, and that a refused one touches nothing.
#include <gtest/gtest.h>

#include "image/dib_builder.h"

namespace qnv::test {
namespace {

const DeviceOptions kDevices[] = {
    {.bitsPerPixel = 24, .width = 9, .height = 5},
    {.bitsPerPixel = 8, .width = 9, .height = 5},
    {.kind = QNV_KIND_SCALED, .bitsPerPixel = 24, .width = 9, .height = 5},
    {.bitsPerPixel = 24, .width = 9, .height = 5, .tagPlane = true},
};

constexpr ImagePlace kWhole{0, 0, 4, 2, 0, 0, 4, 2};

uint32_t CallWithInfo(const TestDevice& device, const std::vector<uint8_t>& info, uint32_t get = 0) {
  const FencedInput header(info);
  const FencedInput bits(std::vector<uint8_t>(4096, 0));
  const DRAWMODE mode = MakeDrawMode();
  return QNVStretchDIBits(device.handle(), get, 0, 0, 4, 2, 0, 0, 4, 2, bits.data(), header.data(), nullptr, SRCCOPY,
                          nullptr, &mode, &kEverywhere) &
         0xFFFF;
}

TEST(ImageValidation, ReadingBackIsRefused) {
  struct Case {
    uint32_t get;
    uint32_t result;
  };
  const Case cases[] = {{0, 1}, {1, 0}, {2, 1}, {0xFFFF, 1}, {0x10001, 0}, {0x10000, 1}};
  for (const DeviceOptions& options : kDevices) {
    for (const Case& c : cases) {
      TestDevice device(options);
      EXPECT_EQ(c.result, CallWithInfo(device, DibInfo(4, 2, {}), c.get)) << "get " << c.get;
      EXPECT_EQ(c.result == 0, static_cast<bool>(BandUntouched(device))) << "get " << c.get;
      EXPECT_TRUE(device.FencesIntact());
    }
  }
}

struct HeaderCase {
  const char* name;
  int32_t width;
  int32_t height;  // as stored
  uint16_t planes;
  uint16_t bitCount;
  uint32_t compression;
};

TEST(ImageValidation, BadHeaders) {
  const HeaderCase cases[] = {
      {"no planes", 4, 2, 0, 24, BI_RGB},
      {"two planes", 4, 2, 2, 24, BI_RGB},
      {"three planes of 8", 4, 2, 3, 8, BI_RGB},
      {"0 bits", 4, 2, 1, 0, BI_RGB},
      {"2 bits", 4, 2, 1, 2, BI_RGB},
      {"3 bits", 4, 2, 1, 3, BI_RGB},
      {"5 bits", 4, 2, 1, 5, BI_RGB},
      {"12 bits", 4, 2, 1, 12, BI_RGB},
      {"15 bits", 4, 2, 1, 15, BI_RGB},
      {"31 bits", 4, 2, 1, 31, BI_RGB},
      {"33 bits", 4, 2, 1, 33, BI_RGB},
      {"48 bits", 4, 2, 1, 48, BI_RGB},
      {"64 bits", 4, 2, 1, 64, BI_RGB},
      {"65535 bits", 4, 2, 1, 65535, BI_RGB},
      {"RLE8 of 4 bits", 4, 2, 1, 4, BI_RLE8},
      {"RLE8 of 1 bit", 4, 2, 1, 1, BI_RLE8},
      {"RLE8 of 24 bits", 4, 2, 1, 24, BI_RLE8},
      {"RLE4 of 8 bits", 4, 2, 1, 8, BI_RLE4},
      {"RLE4 of 16 bits", 4, 2, 1, 16, BI_RLE4},
      {"RLE4 of 32 bits", 4, 2, 1, 32, BI_RLE4},
      {"no columns", 0, 2, 1, 24, BI_RGB},
      {"no rows", 4, 0, 1, 24, BI_RGB},
      {"negative width", -4, 2, 1, 24, BI_RGB},
      {"width 32768", 32768, 2, 1, 24, BI_RGB},
      {"width 65540", 65540, 2, 1, 24, BI_RGB},
      {"height 32768", 4, 32768, 1, 24, BI_RGB},
      {"height -32768", 4, -32768, 1, 24, BI_RGB},
      {"height INT_MIN", 4, INT32_MIN, 1, 24, BI_RGB},
      {"width INT_MAX", INT32_MAX, 2, 1, 24, BI_RGB},
      {"width INT_MIN", INT32_MIN, 2, 1, 1, BI_RGB},
  };
  for (const DeviceOptions& options : kDevices) {
    for (const HeaderCase& c : cases) {
      for (uint32_t rop : {SRCCOPY, SRCAND, ROP_MINIMUM}) {
        TestDevice device(options);
        DibShape shape{.bitCount = c.bitCount, .compression = c.compression, .planes = c.planes};
        const Dib dib(DibInfo(c.width, c.height, shape, std::vector<uint32_t>(256, 0)), std::vector<uint8_t>(64, 0));
        EXPECT_EQ(0u, Stretch(device, dib, kWhole, {.rop = rop})) << c.name << ", rop " << std::hex << rop;
        // Rows that would be the first stored ones of an image 32768 rows high.
        EXPECT_EQ(0u, Stretch(device, dib, {0, 0, 4, 2, 0, 32765, 4, 2}, {.rop = rop})) << c.name;
        EXPECT_TRUE(BandUntouched(device)) << c.name;
        EXPECT_EQ(0u, QNVDevSetDIBitsToDevice(device.handle(), 0, 0, 0, 2, &kEverywhere, nullptr, dib.bits(),
                                              dib.info(), nullptr) &
                          0xFFFF)
            << c.name;
        EXPECT_TRUE(BandUntouched(device)) << c.name;
        if (options.tagPlane) {
          EXPECT_TRUE(SameImage(UntouchedTags(device), TagImage(device))) << c.name;
        }
      }
    }
  }
}

TEST(ImageValidation, LargestSizesAreTaken) {
  TestDevice device({.bitsPerPixel = 24, .width = 9, .height = 5});
  const Dib wide(DibInfo(32767, 1, {.bitCount = 1}, {0x0000FF, 0x00FF00}), std::vector<uint8_t>(4096, 0xFF));
  EXPECT_EQ(1u, Stretch(device, wide, {0, 0, 9, 1, 32758, 0, 9, 1}));
  const Dib tall(DibInfo(1, 32767, {.bitCount = 1}, {0x0000FF, 0x00FF00}), std::vector<uint8_t>(32767 * 4, 0));
  EXPECT_EQ(1u, Stretch(device, tall, {0, 1, 1, 4, 0, 0, 1, 4}));
  EXPECT_TRUE(BandIs(device, {{'r', 0x0000FF}, {'g', 0x00FF00}},
                     "ggggggggg"
                     "r........"
                     "r........"
                     "r........"
                     "r........"));
}

TEST(ImageValidation, NullPointers) {
  for (const DeviceOptions& options : kDevices) {
    TestDevice device(options);
    const Dib dib = PictureDib(4, "abcdefgh", {});
    const DRAWMODE mode = MakeDrawMode();
    const auto call = [&](const void* bits, const void* info, const BandRect* clip) {
      return QNVStretchDIBits(device.handle(), 0, 0, 0, 4, 2, 0, 0, 4, 2, bits, info, nullptr, SRCCOPY, nullptr, &mode,
                              clip) &
             0xFFFF;
    };
    EXPECT_EQ(0u, call(dib.bits(), nullptr, &kEverywhere));
    EXPECT_EQ(0u, call(nullptr, dib.info(), &kEverywhere));
    EXPECT_EQ(0u, call(dib.bits(), dib.info(), nullptr));
    EXPECT_TRUE(BandUntouched(device));
    if (options.tagPlane) {
      EXPECT_TRUE(SameImage(UntouchedTags(device), TagImage(device)));
    }
    EXPECT_EQ(1u, call(dib.bits(), dib.info(), &kEverywhere));
  }
}

struct PlaceCase {
  const char* name;
  ImagePlace place;
  BandRect clip = kEverywhere;
};

// Nothing to paint: the result is 0, whatever the operation.
TEST(ImageValidation, NothingToPaint) {
  const PlaceCase cases[] = {
      {"right of the band", {9, 0, 4, 2, 0, 0, 4, 2}},
      {"left of the band", {-4, 0, 4, 2, 0, 0, 4, 2}},
      {"below the band", {0, 5, 4, 2, 0, 0, 4, 2}},
      {"above the band", {0, -2, 4, 2, 0, 0, 4, 2}},
      {"mirrored away to the left", {0, 0, -4, 2, 0, 0, 4, 2}},
      {"mirrored away upwards", {0, 0, 4, -2, 0, 0, 4, 2}},
      {"no width", {2, 2, 0, 2, 0, 0, 4, 2}},
      {"no height", {2, 2, 4, 0, 0, 0, 4, 2}},
      {"outside the clip", {0, 0, 4, 2, 0, 0, 4, 2}, {4, 0, 9, 5}},
      {"empty clip", {0, 0, 4, 2, 0, 0, 4, 2}, {0, 0, 0, 0}},
      {"upside-down clip", {0, 0, 4, 2, 0, 0, 4, 2}, {9, 5, 0, 0}},
      {"source right of the bitmap", {0, 0, 4, 2, 4, 0, 4, 2}},
      {"source left of the bitmap", {0, 0, 4, 2, -4, 0, 4, 2}},
      {"source rows past the bitmap", {0, 0, 4, 2, 0, 2, 4, 2}},
      {"source rows before the bitmap", {0, 0, 4, 2, 0, -2, 4, 2}},
      {"no source width at column 0", {0, 0, 4, 2, 0, 0, 0, 2}},
      {"no source height at row 0", {0, 0, 4, 2, 0, 0, 4, 0}},
  };
  for (const DeviceOptions& options : kDevices) {
    for (const PlaceCase& c : cases) {
      for (uint32_t rop : {SRCCOPY, SRCPAINT, ROP_MINIMUM}) {
        TestDevice device(options);
        const Dib dib = PictureDib(4, "abcdefgh", {});
        EXPECT_EQ(0u, Stretch(device, dib, c.place, {.rop = rop, .clip = c.clip}))
            << c.name << ", kind " << options.kind << ", rop " << std::hex << rop;
        EXPECT_TRUE(BandUntouched(device)) << c.name;
        if (options.tagPlane) {
          EXPECT_TRUE(SameImage(UntouchedTags(device), TagImage(device))) << c.name;
        }
      }
    }
  }
}

// A refused call leaves origin and later calls as they were.
TEST(ImageValidation, TheOriginSurvives) {
  for (const DeviceOptions& options : kDevices) {
    TestDevice device(options);
    device.SetOrigin(2, 1);
    const Dib bad(DibInfo(4, 2, {.bitCount = 7}), std::vector<uint8_t>(64, 0));
    const Dib good = PictureDib(2, "ab", {});
    EXPECT_EQ(0u, Stretch(device, bad, kWhole));
    EXPECT_EQ(0u, Stretch(device, good, {50, 0, 2, 1, 0, 0, 2, 1}));
    EXPECT_EQ(1u, Stretch(device, good, {0, 0, 2, 1, 0, 0, 2, 1}, {.rop = SRCCOPY}));
    EXPECT_EQ(1u, Stretch(device, good, {3, 2, 2, 1, 0, 0, 2, 1}, {.rop = NOTSRCERASE}));
    EXPECT_EQ(1u, Stretch(device, good, {0, 1, 2, 1, 0, 0, 2, 1}));
    PictureInks inks = ImageInks(device);
    const auto notErase = [&](uint32_t s) { return ~(s | 0xCCCCCC) & 0xFFFFFF; };
    inks.push_back({'A', notErase(Physical(device, ImageColors()[0]))});
    inks.push_back({'B', notErase(Physical(device, ImageColors()[1]))});
    EXPECT_TRUE(BandIs(device, inks,
                       "........."
                       "..ab....."
                       "..ab....."
                       ".....AB.."))
        << "kind " << options.kind << ", " << options.bitsPerPixel << " bits";
  }
}

}  // namespace
}  // namespace qnv::test
