// Images: depths, scales, mirrors, operations, run-length data.
#include "golden/scene.h"

namespace qnv::test {
namespace {

constexpr uint16_t kDepths[] = {1, 4, 8, 16, 24, 32};

void PaintDepths(const TestDevice& device) {
  for (int32_t i = 0; i < 6; ++i) {
    const int32_t x = 4 + i % 3 * 54;
    const int32_t y = 4 + i / 3 * 56;
    const Dib dib = PhotoDib(kDepths[i], i % 2 == 1);
    EXPECT_EQ(1u, Stretch(device, dib, PhotoAt(x, y, kPhotoWidth, kPhotoHeight)));
    Caption(device, x, y + 42, std::to_string(kDepths[i]) + " BITS");
  }
}

// A picture of runs and gaps: rows from the bottom, each some of its letters, jumped over where there are none.
std::vector<uint8_t> Flag(bool fourBits) {
  RleWriter writer;
  const int even = fourBits ? 0x12 : 1;
  writer.Run(40, even).EndOfLine().Run(40, even).Delta(0, 1);
  for (int row = 2; row < 30; ++row) {
    writer.Delta(row / 2, 0).Run(10, fourBits ? 0x33 : 3);
    writer.Literal(7, fourBits ? std::vector{0x45, 0x67, 0x89, 0xA0} : std::vector{4, 5, 6, 7, 8, 9, 10});
    if (row == 15) writer.Delta(3, 0).Run(60, fourBits ? 0xBB : 11);  // to the end of the row and past it
    writer.EndOfLine();
  }
  writer.Run(20, fourBits ? 0xCD : 12).EndOfBitmap();
  return writer.bytes();
}

std::vector<PlaneImage> PaintImageDepths() {
  const Cleared<TestDevice> device({.width = 166, .height = 112});
  PaintDepths(device);
  return {BandPicture("image_depths", device)};
}

std::vector<PlaneImage> PaintImageScales() {
  const Cleared<TestDevice> device({.width = 240, .height = 176});
  const Dib dib = PhotoDib(24);
  const Dib packed = PhotoDib(4);
  Stretch(device, dib, PhotoAt(4, 4, 48, 40));
  Stretch(device, dib, PhotoAt(104, 4, -48, 40));                                    // mirrored left to right
  Stretch(device, dib, PhotoAt(108, 44, 48, -40));                                   // upside down
  Stretch(device, dib, PhotoAt(208, 44, -48, -40));                                  // both
  Stretch(device, dib, PhotoAt(4, 48, 96, 80));                                      // doubled
  Stretch(device, packed, PhotoAt(104, 48, 70, 33));                                 // by parts of a pixel
  Stretch(device, dib, PhotoAt(104, 84, 31, 25));                                    // smaller
  Stretch(device, packed, PhotoAt(139, 84, 13, 44));                                 // narrow
  Stretch(device, dib, {178, 48, 56, 56, 28, 22, 14, 14});                           // the sun alone, fourfold
  Stretch(device, dib, PhotoAt(156, 84, 200, 100), {.clip = {156, 108, 236, 172}});  // clipped
  Stretch(device, dib, PhotoAt(-60, 132, 150, 60));                                  // out of the band
  // Operations on a hatched ground.
  FillRectangle(device, {94, 132, 152, 172}, HatchBrush(device.handle(), HS_DIAGCROSS, 0x0000FF), MakeDrawMode());
  Stretch(device, dib, PhotoAt(96, 134, 26, 36), {.rop = SRCINVERT});
  Stretch(device, dib, PhotoAt(124, 134, 26, 36), {.rop = ROP_MINIMUM});
  return {BandPicture("image_scales", device)};
}

std::vector<PlaneImage> PaintImagesOnGray() {
  const Cleared<TestDevice> device({.bitsPerPixel = 8, .width = 166, .height = 156});
  PaintDepths(device);
  const Dib dib = PhotoDib(8);
  Stretch(device, dib, PhotoAt(52, 114, -48, 40));
  Stretch(device, dib, PhotoAt(58, 154, 100, -40), {.rop = NOTSRCCOPY});
  return {BandPicture("images_on_gray", device)};
}

std::vector<PlaneImage> PaintRunLengthImages() {
  const Cleared<TestDevice> device({.width = 140, .height = 104});
  for (int32_t i = 0; i < 2; ++i) {
    const bool fourBits = i == 1;
    const DibShape shape{.bitCount = static_cast<uint16_t>(fourBits ? 4 : 8),
                         .compression = fourBits ? BI_RLE4 : BI_RLE8};
    const Dib dib(DibInfo(40, 32, shape, FullTable(shape.bitCount)), Flag(fourBits));
    Stretch(device, dib, {4 + 68 * i, 4, 40, 32, 0, 0, 40, 32});
    Stretch(device, dib, {64 + 68 * i, 4, -17, 32, 0, 0, 40, 32});   // narrow, mirrored
    Stretch(device, dib, {4 + 68 * i, 38, 60, 60, 10, 10, 20, 20});  // the middle, threefold
  }
  return {BandPicture("run_length_images", device)};
}

}  // namespace

std::vector<PaintedScene> ImageScenes() {
  return {{"image_depths", PaintImageDepths},
          {"image_scales", PaintImageScales},
          {"images_on_gray", PaintImagesOnGray},
          {"run_length_images", PaintRunLengthImages}};
}

}  // namespace qnv::test
