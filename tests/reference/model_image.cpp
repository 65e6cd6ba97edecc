// Images on a device with one band.
#include "reference/band_model.h"

namespace qnv::reference {
namespace {

class OriginAtZero {
 public:
  explicit OriginAtZero(Point* origin) : origin_(origin), saved_(*origin) { *origin = {0, 0}; }
  ~OriginAtZero() { *origin_ = saved_; }
  OriginAtZero(const OriginAtZero&) = delete;
  OriginAtZero& operator=(const OriginAtZero&) = delete;

 private:
  Point* origin_;
  Point saved_;
};

}  // namespace

uint32_t BandModel::StretchDIBits(const ImageArgs& args) {
  std::optional<ImageWalk> walk = ImageWalk::Begin(args, origin_, CallerBand());
  if (!walk) return 0;
  const OriginAtZero guard(&origin_);
  if (args.rop == SRCCOPY) {
    if (scaled()) return ScaledCopy(*walk);
    while (!walk->AtEnd()) StoreImageRow(*walk, walk->Next());
    return 1;
  }
  if (args.rop > 0x00FFFFFF) {
    if (args.rop != ROP_MINIMUM || scaled()) return 1;
    std::vector<Rgb> buffer(static_cast<std::size_t>(walk->columns()));
    while (!walk->AtEnd()) {
      const ImageWalk::Row row = walk->Next();
      for (std::size_t x = 0; x < row.pixels.size(); ++x) buffer[x] = row.pixels[x].value_or(buffer[x]);
      MinimumImageRow(*walk, row, buffer);
    }
    return 1;
  }
  return BlitRows(*walk, args);
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
    for (int x = walk.left(); x < walk.left() + walk.columns(); ++x) {
      plane_.Write(x, walk.top() + row.first + i, plane_.Read(x, walk.top() + row.first));
    }
  }
}

void BandModel::MinimumImageRow(const ImageWalk& walk, const ImageWalk::Row& row, const std::vector<Rgb>& buffer) {
  for (int i = 0; i < row.count; ++i) {
    for (int x = 0; x < walk.columns(); ++x) {
      const int column = walk.left() + x;
      const int bandRow = walk.top() + row.first + i;
      const uint32_t old = plane_.Read(column, bandRow);
      const Rgb c = buffer[static_cast<std::size_t>(x)];
      uint32_t value = std::min<uint32_t>(old & 0xFF, c.Gray());
      if (plane_.bytesPerPixel() == 3) {
        value = std::min<uint32_t>(old & 0xFF, c.blue) | std::min<uint32_t>(old >> 8 & 0xFF, c.green) << 8 |
                std::min<uint32_t>(old >> 16 & 0xFF, c.red) << 16;
      }
      plane_.Write(column, bandRow, value);
    }
  }
}

void BandModel::SetRowBlit(RowBlit* blit, const ImageWalk& walk, const ImageArgs& args, int y, uint32_t rop,
                           const std::vector<uint8_t>& buffer, int bufferWidth) const {
  const int bytes = plane_.bytesPerPixel();
  blit->source = {0,
                  static_cast<int16_t>(bufferWidth),
                  1,
                  static_cast<uint16_t>(bufferWidth * bytes),
                  1,
                  static_cast<uint8_t>(8 * bytes),
                  buffer.data()};
  blit->noClip = {0, 0, 0, 0};
  blit->args = {walk.clip().left, walk.clip().top + y, &blit->source, walk.left(), 0, walk.columns(), 1, rop,
                args.brush,       args.drawMode,       &blit->noClip};
}

uint32_t BandModel::BlitRows(ImageWalk& walk, const ImageArgs& args) {
  const bool grayRows = inPlaceGray();
  const uint16_t depth = description_.bitsPerPixel;
  if (scaled()) description_.bitsPerPixel = 24;
  const int bytes = scaled() ? 3 : plane_.bytesPerPixel();
  const int width = static_cast<int>(description_.width);
  const int bufferWidth = scaled() ? map_->ToPage(width) : width;
  std::vector<uint8_t> buffer;
  while (!walk.AtEnd()) {
    const ImageWalk::Row row = walk.Next();
    buffer.assign(static_cast<std::size_t>(std::max(bufferWidth, walk.left() + walk.columns()) * bytes), 0);
    for (std::size_t x = 0; x < row.pixels.size(); ++x) {
      if (!row.pixels[x]) continue;
      const Rgb c = *row.pixels[x];
      uint8_t* to = buffer.data() + (static_cast<std::size_t>(walk.left()) + x) * static_cast<std::size_t>(bytes);
      if (bytes == 1 || grayRows) {
        std::fill_n(to, bytes, c.Gray());
      } else {
        to[0] = c.red;
        to[1] = c.green;
        to[2] = c.blue;
      }
    }
    for (int i = 0; i < row.count; ++i) {
      RowBlit blit;
      SetRowBlit(&blit, walk, args, row.first + i, args.rop, buffer, bufferWidth);
      BitBlt(blit.args);
    }
  }
  description_.bitsPerPixel = depth;
  return 1;
}

}  // namespace qnv::reference
