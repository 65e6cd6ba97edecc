// What an image transfer refuses, and that a refused one touches nothing.
#include <gtest/gtest.h>

#include "image/image_cases.h"

namespace qnv::test {
namespace {

const DeviceOptions kDevices[] = {
    {.bitsPerPixel = 24, .width = 9, .height = 5},
    {.bitsPerPixel = 8, .width = 9, .height = 5},
    {.kind = QNV_KIND_SCALED, .bitsPerPixel = 24, .width = 9, .height = 5},
    {.bitsPerPixel = 24, .width = 9, .height = 5, .tagPlane = true},
};

constexpr ImagePlace kWholeImage{0, 0, 4, 2, 0, 0, 4, 2};

testing::AssertionResult Untouched(const TestDevice& device) {
  const testing::AssertionResult band = BandUntouched(device);
  return band && device.options().tagPlane ? TagsShow(device, UntouchedTags(device)) : band;
}

// What a caller may get wrong besides the bitmap and the place.
uint32_t StretchWith(const TestDevice& device, uint32_t get, const void* bits, const void* info, const BandRect* clip) {
  const DRAWMODE mode = MakeDrawMode();
  return QNVStretchDIBits(device.handle(), get, 0, 0, 4, 2, 0, 0, 4, 2, bits, info, nullptr, SRCCOPY, nullptr, &mode,
                          clip) &
         0xFFFF;
}

// Only a low word of 1 asks for reading back.
TEST(ImageValidation, ReadingBackIsRefused) {
  const Dib dib = LetterDib({4, 2}, {});
  for (const DeviceOptions& options : kDevices) {
    for (uint32_t get : {0u, 1u, 2u, 0xFFFFu, 0x10001u, 0x10000u}) {
      TestDevice device(options);
      const bool refused = (get & 0xFFFF) == 1;
      EXPECT_EQ(refused ? 0u : 1u, StretchWith(device, get, dib.bits(), dib.info(), &kEverywhere)) << "get " << get;
      EXPECT_EQ(refused, static_cast<bool>(Untouched(device))) << "get " << get;
      EXPECT_TRUE(device.FencesIntact());
    }
  }
}

TEST(ImageValidation, NullPointers) {
  const Dib dib = LetterDib({4, 2}, {});
  for (const DeviceOptions& options : kDevices) {
    TestDevice device(options);
    EXPECT_EQ(0u, StretchWith(device, 0, dib.bits(), nullptr, &kEverywhere));
    EXPECT_EQ(0u, StretchWith(device, 0, nullptr, dib.info(), &kEverywhere));
    EXPECT_EQ(0u, StretchWith(device, 0, dib.bits(), dib.info(), nullptr));
    EXPECT_TRUE(Untouched(device));
    EXPECT_EQ(1u, StretchWith(device, 0, dib.bits(), dib.info(), &kEverywhere));
  }
}

TEST(ImageValidation, BadHeaders) {
  struct Case {
    const char* name;
    int32_t width;
    int32_t height;  // as stored
    uint16_t planes;
    uint16_t bitCount;
    uint32_t compression;
  };
  std::vector<Case> cases = {
      {"no planes", 4, 2, 0, 24, BI_RGB},
      {"two planes", 4, 2, 2, 24, BI_RGB},
      {"three planes of 8", 4, 2, 3, 8, BI_RGB},
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
  for (int depth : {0, 2, 3, 5, 12, 15, 31, 33, 48, 64, 65535}) {
    cases.push_back({"a depth that no image has", 4, 2, 1, static_cast<uint16_t>(depth), BI_RGB});
  }
  for (const DeviceOptions& options : kDevices) {
    for (const Case& c : cases) {
      for (uint32_t rop : {SRCCOPY, SRCAND, ROP_MINIMUM}) {
        SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(c.bitCount) + " bits, rop " + std::to_string(rop));
        TestDevice device(options);
        const DibShape shape{.bitCount = c.bitCount, .compression = c.compression, .planes = c.planes};
        const Dib dib(DibInfo(c.width, c.height, shape, std::vector<uint32_t>(256, 0)), std::vector<uint8_t>(64, 0));
        EXPECT_EQ(0u, Stretch(device, dib, kWholeImage, {.rop = rop}));
        // Rows that would be the first stored ones of an image 32768 rows high.
        EXPECT_EQ(0u, Stretch(device, dib, {0, 0, 4, 2, 0, 32765, 4, 2}, {.rop = rop}));
        EXPECT_EQ(0u, QNVDevSetDIBitsToDevice(device.handle(), 0, 0, 0, 2, &kEverywhere, nullptr, dib.bits(),
                                              dib.info(), nullptr) &
                          0xFFFF);
        EXPECT_TRUE(Untouched(device));
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
  EXPECT_TRUE(BandIs(device, {{'r', 0x0000FF}, {'g', 0x00FF00}}, "ggggggggg r........ r........ r........ r........"));
}

// Nothing to paint: the result is 0, whatever the operation.
TEST(ImageValidation, NothingToPaint) {
  struct Case {
    const char* name;
    ImagePlace place;
    BandRect clip = kEverywhere;
  };
  const Case cases[] = {
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
    for (const Case& c : cases) {
      for (uint32_t rop : {SRCCOPY, SRCPAINT, ROP_MINIMUM}) {
        TestDevice device(options);
        EXPECT_EQ(0u, Stretch(device, LetterDib({4, 2}, {}), c.place, {.rop = rop, .clip = c.clip}))
            << c.name << ", kind " << options.kind << ", rop " << std::hex << rop;
        EXPECT_TRUE(Untouched(device)) << c.name;
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
    EXPECT_EQ(0u, Stretch(device, bad, kWholeImage));
    EXPECT_EQ(0u, Stretch(device, good, {50, 0, 2, 1, 0, 0, 2, 1}));
    EXPECT_EQ(1u, Stretch(device, good, {0, 0, 2, 1, 0, 0, 2, 1}, {.rop = SRCCOPY}));
    EXPECT_EQ(1u, Stretch(device, good, {3, 2, 2, 1, 0, 0, 2, 1}, {.rop = NOTSRCERASE}));
    EXPECT_EQ(1u, Stretch(device, good, {0, 1, 2, 1, 0, 0, 2, 1}));
    PictureInks inks = ImageInks(device);
    const auto notErase = [&](uint32_t s) { return ~(s | 0xCCCCCC) & 0xFFFFFF; };
    inks.push_back({'A', notErase(Physical(device, ImageColors()[0]))});
    inks.push_back({'B', notErase(Physical(device, ImageColors()[1]))});
    EXPECT_TRUE(BandIs(device, inks, "......... ..ab..... ..ab..... .....AB.."))
        << "kind " << options.kind << ", " << options.bitsPerPixel << " bits";
  }
}

}  // namespace
}  // namespace qnv::test
