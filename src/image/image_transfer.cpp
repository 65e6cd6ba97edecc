// Sets up an image transfer, in this order: check the arguments, clip the destination, map it to the source, prepare
// colors, plan the columns.
#include "image/image_transfer.h"

#include <cstring>

namespace qnv {

bool ImageTransfer::Prepare(const PaintState& paint, const Rect& bandRect, PixelTarget target,
                            const ImageArguments& a) {
  if (a.clip == nullptr || a.get == 1 || a.bitmapInfo == nullptr || a.bits == nullptr) return false;
  if (!ReadDib(a.bitmapInfo, &dib_)) return false;

  const StretchRequest request{WrapAdd(a.dstX, paint.origin.x),
                               WrapAdd(a.dstY, paint.origin.y),
                               a.dstWidth,
                               a.dstHeight,
                               a.srcX,
                               a.srcY,
                               a.srcWidth,
                               a.srcHeight};
  const int32_t xEnd = WrapAdd(request.dstX, request.dstWidth);
  const int32_t yEnd = WrapAdd(request.dstY, request.dstHeight);
  clipped_ = {MinOf(request.dstX, xEnd), MinOf(request.dstY, yEnd), MaxOf(request.dstX, xEnd),
              MaxOf(request.dstY, yEnd)};
  RectIntersect(clipped_, clipped_, Shifted(*a.clip, paint.origin.x, paint.origin.y));
  if (!RectIntersect(clipped_, clipped_, bandRect)) return false;

  SourceMapping mapping;
  if (!MapSource(request, clipped_, bandRect, dib_.width, dib_.height, dib_.topDown, &mapping)) return false;
  leftInBand_ = WrapSubtract(clipped_.left, bandRect.left);
  const int32_t topInBand = WrapSubtract(clipped_.top, bandRect.top);

  bits_ = static_cast<const uint8_t*>(a.bits);
  rows_ = &paint.rows;
  target_ = target;
  if (dib_.HasPalette()) MakeColorTable(dib_, target_, &colors_.table);
  if (dib_.bitCount == 16) colors_.masks = MakePixelMasks(dib_, target_);
  const uint32_t rowBits = dib_.IsRle() ? 8 : dib_.bitCount;
  convert_ = RowConverterFor(rowBits, target_);

  walk_ = RowWalk(MakeStepping(mapping.dstTop, mapping.dstHeight, mapping.rows, topInBand,
                               WrapSubtract(clipped_.bottom, clipped_.top)));
  const Stepping columns = MakeStepping(mapping.dstLeft, mapping.dstWidth, mapping.columns, leftInBand_, Width());
  if (!buffers_.columns.Make(columns, mapping, rowBits, target_)) return false;
  // Rows are painted from the top down. That runs backwards through rows stored bottom-up; a top-down bitmap counts as
  // mirrored here.
  firstRow_ = mapping.mirrorY ? mapping.top : mapping.top + mapping.rows - 1;
  rowAdvance_ = mapping.mirrorY ? 1 : -1;
  return !dib_.IsRle() || rleRows_.Find(dib_, bits_, mapping, buffers_);
}

const uint8_t* ImageTransfer::SourceRow(int32_t stored) const {
  if (dib_.IsRle()) return rleRows_.Row(stored);
  return bits_ + static_cast<std::size_t>(stored) * DibRowBytes(dib_.width, dib_.bitCount);
}

void ImageTransfer::ConvertRow(uint8_t* out) {
  const int32_t stored = firstRow_ + walk_.Index() * rowAdvance_;
  buffers_.columns.Apply(out, SourceRow(stored), convert_, ConverterContext{colors_, *rows_});
}

uint8_t* ImageTransfer::TakeRowBuffer(int32_t before) {
  // Three bytes a pixel even for gray rows, because a dual-plane device described with 8 bits reads them as color.
  const std::size_t bytes = (static_cast<std::size_t>(before) + RowPixels() + 1) * 3;
  auto* buffer = buffers_.row.Take<uint8_t>(bytes);
  if (buffer != nullptr) std::memset(buffer, 0, bytes);
  return buffer;
}

}  // namespace qnv
