// The model's checks of an image and the walk over its rows.
#include "reference/image_walk.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace qnv::reference {
namespace {

bool HeaderIsUsable(const BITMAPINFOHEADER& header) {
  constexpr int kDepths[] = {1, 4, 8, 16, 24, 32};
  const bool known = std::find(std::begin(kDepths), std::end(kDepths), header.biBitCount) != std::end(kDepths);
  if (header.biPlanes != 1 || !known) return false;
  if (header.biWidth < 1 || header.biWidth > 32767) return false;
  if (header.biHeight == 0 || header.biHeight > 32767 || header.biHeight < -32767) return false;
  if (header.biCompression == BI_RLE8 && header.biBitCount != 8) return false;
  return header.biCompression != BI_RLE4 || header.biBitCount == 4;
}

int64_t ToInteger(double value) {
  if (!(value >= -9223372036854775808.0 && value < 9223372036854775808.0)) return 0;
  return static_cast<int64_t>(value);
}

int LowWord(double value) {
  return static_cast<int16_t>(static_cast<uint16_t>(static_cast<uint64_t>(ToInteger(value))));
}

uint32_t Fixed(double value) { return static_cast<uint32_t>(static_cast<uint64_t>(ToInteger(0.5 + value * 65536.0))); }

uint32_t Pixels(int value) { return static_cast<uint32_t>(value) * 65536u; }

bool IsNegative(uint32_t value) { return (value & 0x80000000u) != 0; }

uint32_t Magnitude(uint32_t value) { return IsNegative(value) ? 0u - value : value; }

// Whole pixels reached by a 16.16 position, rounded at one half and cut to 16 bits.
int Reached(uint32_t position) { return static_cast<uint16_t>(static_cast<int32_t>(position + 32768u) / 65536); }

}  // namespace

std::optional<ImageWalk> ImageWalk::Begin(const ImageArgs& args, Point origin, const Rect& band) {
  if (args.clip == nullptr || (args.get & 0xFFFF) == 1 || args.bitmapInfo == nullptr) return std::nullopt;
  BITMAPINFOHEADER header;
  std::memcpy(&header, args.bitmapInfo, sizeof header);
  if (!HeaderIsUsable(header) || args.bits == nullptr) return std::nullopt;

  const Point destination{args.dstX + origin.x, args.dstY + origin.y};
  const int farX = destination.x + args.dstWidth;
  const int farY = destination.y + args.dstHeight;
  const Rect target{std::min(destination.x, farX), std::min(destination.y, farY), std::max(destination.x, farX),
                    std::max(destination.y, farY)};
  ImageWalk walk;
  walk.band_ = band;
  walk.clip_ = Intersect(Intersect(target, Shift(ToRect(*args.clip), origin)), band);
  if (IsEmpty(walk.clip_)) return std::nullopt;

  if (!walk.Map(args, destination, header)) return std::nullopt;
  walk.image_ = std::make_shared<DibImage>(args.bitmapInfo, args.bits, walk.sourceTop_ + walk.sourceRows_);
  return walk;
}

bool ImageWalk::Map(const ImageArgs& args, Point destination, const BITMAPINFOHEADER& header) {
  const int sourceHeight = std::abs(header.biHeight);
  int sourceX = args.srcX;
  int sourceY = args.srcY;
  int width = args.srcWidth;
  int height = args.srcHeight;
  if (header.biHeight < 0) {
    sourceY = sourceHeight - sourceY;
    height = -height;
  }
  if (height == 0 && sourceY != 0) {
    sourceY -= 1;
    height = 1;
  }
  if (width == 0 && sourceX != 0) {
    sourceX -= 1;
    width = 1;
  }

  const double ky = static_cast<double>(height) / args.dstHeight;
  const double kx = static_cast<double>(width) / args.dstWidth;
  const double yBase = (static_cast<double>(destination.y) + args.dstHeight) * ky + sourceY;
  const double xBase = sourceX - destination.x * kx;

  const bool sameY = (height < 0) == (args.dstHeight < 0);
  const bool sameX = (width < 0) == (args.dstWidth < 0);
  const int top = std::max(LowWord(std::floor(yBase - (sameY ? clip_.bottom : clip_.top) * ky)), 0);
  const int bottom = std::min(LowWord(std::ceil(yBase - (sameY ? clip_.top : clip_.bottom) * ky)), sourceHeight);
  const int left = std::max(LowWord(std::floor((sameX ? clip_.left : clip_.right) * kx + xBase)), 0);
  const int right = std::min(LowWord(std::ceil((sameX ? clip_.right : clip_.left) * kx + xBase)), int{header.biWidth});
  if (top >= bottom || left >= right) return false;

  // Where the edges of that source rectangle fall, relative to the band.
  const uint32_t targetTop = Fixed((yBase - bottom) / ky) - Pixels(band_.top);
  const uint32_t targetLeft = Fixed((left - xBase) / kx) - Pixels(band_.left);
  const uint32_t targetHeight = Fixed((yBase - top) / ky) - Pixels(band_.top) - targetTop;
  const uint32_t targetWidth = Fixed((right - xBase) / kx) - Pixels(band_.left) - targetLeft;

  sourceLeft_ = left;
  sourceTop_ = top;
  sourceColumns_ = right - left;
  sourceRows_ = bottom - top;
  mirrorX_ = IsNegative(targetWidth);
  mirrorY_ = IsNegative(targetHeight);
  xStep_ = Magnitude(targetWidth) / static_cast<uint32_t>(sourceColumns_);
  yStep_ = Magnitude(targetHeight) / static_cast<uint32_t>(sourceRows_);
  yPosition_ = targetTop - Pixels(this->top()) - (mirrorY_ ? Magnitude(targetHeight) : 0);
  xStart_ = targetLeft - Pixels(this->left()) - (mirrorX_ ? Magnitude(targetWidth) : 0);
  return true;
}

ImageWalk::Row ImageWalk::Next() {
  Row row;
  const int walked = nextSourceRow_++;
  yPosition_ += yStep_;
  if (rowsDone_ >= rows()) return row;
  row.converted = true;
  row.first = rowsDone_;
  const int done = std::min(Reached(yPosition_), rows());
  // The count is a 16-bit difference; what lies past the destination is never painted.
  row.count = std::min<int>(static_cast<uint16_t>(done - rowsDone_), rows() - rowsDone_);
  rowsDone_ = done;

  // Stored rows run from the bottom of the picture up, so an upright picture is walked from the last one.
  const int storedRow = mirrorY_ ? sourceTop_ + walked : sourceTop_ + sourceRows_ - 1 - walked;
  row.pixels.resize(static_cast<std::size_t>(columns()));
  uint32_t position = xStart_;
  int previous = 0;
  for (int i = 0; i < sourceColumns_; ++i) {
    position += xStep_;
    const int upTo = std::min(Reached(position), columns());
    if (upTo > previous) {
      const int column = mirrorX_ ? sourceLeft_ + sourceColumns_ - 1 - i : sourceLeft_ + i;
      const Rgb color = image_->Pixel(column, storedRow);
      for (int x = previous; x < upTo; ++x) row.pixels[static_cast<std::size_t>(x)] = color;
    }
    previous = upTo;
  }
  return row;
}

}  // namespace qnv::reference
