// Makes one image call on both sides.
#include "windows/image_pair.h"

namespace qnv::test {

ImageArea WholeImage(const DibSample& dib, int32_t dstX, int32_t dstY, int32_t factor) {
  return {dstX, dstY, dib.width() * factor, dib.height() * factor, 0, 0, dib.width(), dib.height()};
}

ImageArea Mirrored(ImageArea area, unsigned mirror) {
  const auto turn = [](int32_t* start, int32_t* extent) {
    *start += *extent;
    *extent = -*extent;
  };
  if ((mirror & kTurnDstX) != 0) turn(&area.dstX, &area.dstWidth);
  if ((mirror & kTurnDstY) != 0) turn(&area.dstY, &area.dstHeight);
  if ((mirror & kTurnSrcX) != 0) turn(&area.srcX, &area.srcWidth);
  if ((mirror & kTurnSrcY) != 0) turn(&area.srcY, &area.srcHeight);
  return area;
}

ImageArea PlatformArea(ImageArea area) {
  // The platform's turned extent starts with the pixel named, the library's ends before it. Source rows count upwards.
  if (area.dstWidth < 0) --area.dstX;
  if (area.dstHeight < 0) --area.dstY;
  if (area.srcWidth < 0) --area.srcX;
  if (area.srcHeight < 0) ++area.srcY;
  return area;
}

uint32_t PaintLibraryImage(const Witness& witness, const ImagePair& pair) {
  const ImageArea& area = pair.area;
  const DRAWMODE mode = MakeDrawMode();
  return QNVStretchDIBits(witness.handle(), 0, area.dstX, area.dstY, area.dstWidth, area.dstHeight, area.srcX,
                          area.srcY, area.srcWidth, area.srcHeight, pair.dib->bits(), pair.dib->info(), nullptr,
                          pair.rop, pair.brush ? &pair.brush->library : nullptr, &mode, &pair.clip) &
         0xFFFF;
}

int PaintPlatformImage(const Witness& witness, const ImagePair& pair) {
  const ImageArea& area = pair.area;
  const ClippedTo clipped(witness.dc(), pair.clip);
  const Selected brush(witness.dc(), pair.brush ? pair.brush->platform.get() : GetStockObject(NULL_BRUSH));
  return StretchDIBits(witness.dc(), area.dstX, area.dstY, area.dstWidth, area.dstHeight, area.srcX, area.srcY,
                       area.srcWidth, area.srcHeight, pair.dib->bits(), pair.dib->info(), DIB_RGB_COLORS, pair.rop);
}

void PaintBoth(const Witness& witness, const ImagePair& pair) {
  EXPECT_EQ(1u, PaintLibraryImage(witness, pair));
  ImagePair platform = pair;
  platform.area = PlatformArea(pair.area);
  EXPECT_NE(0, PaintPlatformImage(witness, platform));
}

}  // namespace qnv::test
