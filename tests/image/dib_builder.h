// Device-independent bitmaps as a document would bring them, drawn in the tests as pictures of letters.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "support/image_place.h"
#include "support/plane_image.h"

namespace qnv::test {

// Letters of images: 'a' + table index. Every component is exact in five bits, and the grays are distinct.
inline const std::vector<uint32_t>& ImageColors() {
  static const std::vector<uint32_t> colors = {
      0x0000FF, 0x00FF00, 0xFF0000, 0xFFFFFF, 0x000000, 0x00FFFF, 0xFF00FF, 0xFFFF00,
      0x848484, 0x000084, 0x008400, 0x840000, 0x0084FF, 0x84FF00, 0xFF0084, 0x8484FF,
  };
  return colors;
}

inline constexpr uint32_t ColorsOfDepth(uint16_t bitCount) { return bitCount == 1 ? 2 : 16; }

struct DibShape {
  uint16_t bitCount = 24;
  uint32_t compression = BI_RGB;
  bool topDown = false;
  uint32_t headerSize = 40;
  uint32_t colorsUsed = 0;
  uint16_t planes = 1;
};

// Header, table or masks, and rows, each in fenced memory of exactly the size that the header announces.
class Dib {
 public:
  Dib(const std::vector<uint8_t>& info, const std::vector<uint8_t>& bits) : info_(info), bits_(bits) {}
  const void* info() const { return info_.data(); }
  const void* bits() const { return bits_.data(); }
  bool Unchanged() const { return info_.Unchanged() && bits_.Unchanged(); }

 private:
  FencedInput info_;
  FencedInput bits_;
};

inline void Append32(std::vector<uint8_t>& bytes, uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

inline void Append16(std::vector<uint8_t>& bytes, uint32_t value) {
  bytes.push_back(static_cast<uint8_t>(value));
  bytes.push_back(static_cast<uint8_t>(value >> 8));
}

// The header padded to headerSize, then `table` as blue, green, red, unused. The bytes behind the first 40 of a longer
// header are garbage that must not be taken for a table.
inline std::vector<uint8_t> DibInfo(int32_t width, int32_t height, const DibShape& shape,
                                    const std::vector<uint32_t>& table = {}) {
  std::vector<uint8_t> info;
  Append32(info, shape.headerSize);
  Append32(info, static_cast<uint32_t>(width));
  Append32(info, static_cast<uint32_t>(shape.topDown ? -height : height));
  Append16(info, shape.planes);
  Append16(info, shape.bitCount);
  Append32(info, shape.compression);
  for (uint32_t unread : {0xDEADBEEFu, 0x80000000u, 0x7FFFFFFFu}) Append32(info, unread);
  Append32(info, shape.colorsUsed);
  Append32(info, 0xFFFFFFFF);
  info.resize(std::max<std::size_t>(shape.headerSize, 40), 0x5A);
  for (uint32_t color : table) {
    info.push_back(static_cast<uint8_t>(color >> 16));
    info.push_back(static_cast<uint8_t>(color >> 8));
    info.push_back(static_cast<uint8_t>(color));
    info.push_back(0xEE);
  }
  return info;
}

inline uint32_t DibStride(int32_t width, uint16_t bitCount) {
  return ((static_cast<uint32_t>(width) * bitCount + 7) / 8 + 3) & ~3u;
}

// Full table of a depth; entries without a letter are a color that no test expects.
inline std::vector<uint32_t> FullTable(uint16_t bitCount) {
  std::vector<uint32_t> table;
  if (bitCount > 8) return table;
  for (uint32_t i = 0; i < 1u << bitCount; ++i) table.push_back(i < 16 ? ImageColors()[i] : 0x123456);
  return table;
}

// One row of pixel values (table indices below 16 bits, colors from 16 bits on), padded to whole words by `padding`.
inline void AppendDibRow(std::vector<uint8_t>& bits, const std::vector<uint32_t>& values, uint16_t bitCount,
                         uint8_t padding = 0x3C) {
  std::vector<uint8_t> row(DibStride(static_cast<int32_t>(values.size()), bitCount), padding);
  for (std::size_t x = 0; x < values.size(); ++x) {
    const uint32_t v = values[x];
    switch (bitCount) {
      case 1: row[x / 8] = static_cast<uint8_t>((row[x / 8] & ~(0x80u >> (x % 8))) | (v & 1) << (7 - x % 8)); break;
      case 4:
        row[x / 2] = static_cast<uint8_t>(x % 2 == 0 ? (row[x / 2] & 0x0Fu) | v << 4 : (row[x / 2] & 0xF0u) | v);
        break;
      default:
        for (uint32_t i = 0; i < bitCount / 8u; ++i) row[x * (bitCount / 8u) + i] = static_cast<uint8_t>(v >> (8 * i));
    }
  }
  bits.insert(bits.end(), row.begin(), row.end());
}

// The pixel value that shows a color at a depth. Unused bits are set, to show that they are not read.
inline uint32_t DibPixel(uint32_t index, uint16_t bitCount) {
  const uint32_t color = ImageColors()[index];
  const uint32_t red = color & 0xFF;
  const uint32_t green = (color >> 8) & 0xFF;
  const uint32_t blue = (color >> 16) & 0xFF;
  switch (bitCount) {
    case 16: return 0x8000 | (red >> 3) << 10 | (green >> 3) << 5 | blue >> 3;
    case 24: return red << 16 | green << 8 | blue;
    case 32: return 0xA5000000 | red << 16 | green << 8 | blue;
    default: return index;
  }
}

// A bitmap from a picture, top row first; the letter's index wraps at the depth's number of colors.
inline Dib PictureDib(int32_t width, std::string_view picture, const DibShape& shape) {
  const std::size_t columns = static_cast<std::size_t>(width);
  const std::size_t rows = picture.size() / columns;
  std::vector<uint8_t> bits;
  for (std::size_t i = 0; i < rows; ++i) {
    const std::size_t row = shape.topDown ? i : rows - 1 - i;
    std::vector<uint32_t> values;
    for (char letter : picture.substr(row * columns, columns)) {
      const uint32_t index = static_cast<uint32_t>(letter - 'a') % ColorsOfDepth(shape.bitCount);
      values.push_back(DibPixel(index, shape.bitCount));
    }
    AppendDibRow(bits, values, shape.bitCount);
  }
  return Dib(DibInfo(width, static_cast<int32_t>(rows), shape, FullTable(shape.bitCount)), bits);
}

// What the letters look like on a device, for an image of that depth.
inline PictureInks ImageInks(const TestDevice& device, uint16_t bitCount = 24) {
  PictureInks inks;
  for (uint32_t i = 0; i < 16; ++i) {
    inks.push_back({static_cast<char>('a' + i), Physical(device, ImageColors()[i % ColorsOfDepth(bitCount)])});
  }
  return inks;
}

struct ImageSetup {
  uint32_t rop = SRCCOPY;
  const PhysicalBrush* brush = nullptr;
  const DRAWMODE* drawMode = nullptr;
  BandRect clip = kEverywhere;
};

// The call; gives the 16-bit result.
inline uint32_t Stretch(const TestDevice& device, const Dib& dib, const ImagePlace& p, const ImageSetup& setup = {}) {
  const DRAWMODE mode = MakeDrawMode();
  const BandRect clip = setup.clip;
  const uint32_t result = QNVStretchDIBits(device.handle(), 0, p.dstX, p.dstY, p.dstWidth, p.dstHeight, p.srcX, p.srcY,
                                           p.srcWidth, p.srcHeight, dib.bits(), dib.info(), nullptr, setup.rop,
                                           setup.brush, setup.drawMode ? setup.drawMode : &mode, &clip);
  EXPECT_TRUE(dib.Unchanged()) << "the bitmap was written";
  EXPECT_EQ(0, std::memcmp(&clip, &setup.clip, sizeof clip)) << "the clip rectangle was written";
  return result & 0xFFFF;
}

// RLE data, code by code.
class RleWriter {
 public:
  RleWriter& Run(int count, int value) { return Bytes({count, value}); }
  RleWriter& EndOfLine() { return Bytes({0, 0}); }
  RleWriter& EndOfBitmap() { return Bytes({0, 1}); }
  RleWriter& Delta(int dx, int dy) { return Bytes({0, 2, dx, dy}); }
  // Literal bytes behind their count, padded to an even number.
  RleWriter& Literal(int count, const std::vector<int>& literal) {
    Bytes({0, count});
    for (int value : literal) Bytes({value});
    if (literal.size() % 2 != 0) Bytes({0xFF});
    return *this;
  }
  RleWriter& Bytes(const std::vector<int>& values) {
    for (int value : values) bytes_.push_back(static_cast<uint8_t>(value));
    return *this;
  }
  const std::vector<uint8_t>& bytes() const { return bytes_; }

 private:
  std::vector<uint8_t> bytes_;
};

}  // namespace qnv::test
