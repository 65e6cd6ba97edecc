// Images on a device with one band.
#include <utility>

#include "reference/band_model.h"

namespace qnv::reference {
uint32_t BandModel::StretchDIBits(const ImageArgs& args) {
  std::optional<ImageWalk> walk = ImageWalk::Begin(args, origin_, CallerBand());
  if (!walk) return 0;
  const Point origin = std::exchange(origin_, {0, 0});
  const uint32_t result = RunImage(*walk, args);
  origin_ = origin;
  return result;
}

uint32_t BandModel::RunImage(ImageWalk& walk, const ImageArgs& args) {
  if (args.rop == SRCCOPY) {
    if (scaled()) return ScaledCopy(walk);
    while (!walk.AtEnd()) StoreImageRow(walk, walk.Next());
    return 1;
  }
  const bool extended = args.rop > 0x00FFFFFF;
  if (extended && (args.rop != ROP_MINIMUM || scaled())) return 1;
  std::vector<Rgb> colors;
  while (!walk.AtEnd()) {
    const ImageWalk::Row row = walk.Next();
    row.PutInto(&colors, extended);
    if (extended) {
      MinimumImageRow(walk, row, colors);
      continue;
    }
    RowBlits(walk, row, colors, args, args.rop, [&](const BlitArgs& blit) {
      const uint16_t depth = description_.bitsPerPixel;
      if (scaled()) description_.bitsPerPixel = 24;
      BitBlt(blit);
      description_.bitsPerPixel = depth;
    });
  }
  return 1;
}

void BandModel::StoreImageRow(const ImageWalk& walk, const ImageWalk::Row& row) {
  if (!row.converted) return;
  // Stored even when it covers no row: the next source row then covers it.
  for (std::size_t x = 0; x < row.pixels.size(); ++x) {
    if (!row.pixels[x]) continue;
    const Rgb c = *row.pixels[x];
    const uint32_t value =
        plane_.bytesPerPixel() == 3 ? uint32_t{c.red} << 16 | uint32_t{c.green} << 8 | c.blue : c.Gray();
    plane_.Write(walk.left() + static_cast<int>(x), walk.top() + row.first, value);
  }
  for (int i = 1; i < row.count; ++i) {
    CopyColumns(walk.left(), walk.left() + walk.columns(), walk.top() + row.first, walk.top() + row.first + i);
  }
}

void BandModel::CopyColumns(int left, int right, int fromRow, int toRow) {
  for (int column = left; column < right; ++column) plane_.Write(column, toRow, plane_.Read(column, fromRow));
}

void BandModel::MinimumImageRow(const ImageWalk& walk, const ImageWalk::Row& row, const std::vector<Rgb>& colors) {
  for (int i = 0; i < row.count; ++i) {
    for (int x = 0; x < walk.columns(); ++x) {
      const int column = walk.left() + x;
      const int bandRow = walk.top() + row.first + i;
      const uint32_t old = plane_.Read(column, bandRow);
      const Rgb c = colors[static_cast<std::size_t>(x)];
      uint32_t value = std::min<uint32_t>(old & 0xFF, c.Gray());
      if (plane_.bytesPerPixel() == 3) {
        value = std::min<uint32_t>(old & 0xFF, c.blue) | std::min<uint32_t>(old >> 8 & 0xFF, c.green) << 8 |
                std::min<uint32_t>(old >> 16 & 0xFF, c.red) << 16;
      }
      plane_.Write(column, bandRow, value);
    }
  }
}

void BandModel::RowBlits(const ImageWalk& walk, const ImageWalk::Row& row, const std::vector<Rgb>& colors,
                         const ImageArgs& args, uint32_t rop, const std::function<void(const BlitArgs&)>& blit) const {
  const int bytes = plane_.bytesPerPixel();
  const int width = static_cast<int>(description_.width);
  const int bitmapWidth = scaled() ? map_->ToPage(width) : width;
  std::vector<uint8_t> bits(static_cast<std::size_t>(std::max(bitmapWidth, walk.left() + walk.columns()) * bytes));
  uint8_t* to = bits.data() + walk.left() * bytes;
  for (const Rgb& c : colors) {
    const Rgb stored = bytes == 1 || inPlaceGray() ? Rgb{c.Gray(), c.Gray(), c.Gray()} : c;
    const uint8_t inSourceOrder[] = {stored.red, stored.green, stored.blue};
    to = std::copy_n(inSourceOrder, bytes, to);
  }
  const SourceBitmap source{
      0, static_cast<int16_t>(bitmapWidth), 1,          static_cast<uint16_t>(bitmapWidth * bytes),
      1, static_cast<uint8_t>(8 * bytes),   bits.data()};
  const BandRect noClip{0, 0, 0, 0};
  const Rect& clip = walk.clip();
  for (int y = clip.top + row.first; y < clip.top + row.first + row.count; ++y) {
    blit({clip.left, y, &source, walk.left(), 0, walk.columns(), 1, rop, args.brush, args.drawMode, &noClip});
  }
}

}  // namespace qnv::reference
