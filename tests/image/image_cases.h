// One image, one call, what it shows. The columns and the rows of an image are chosen each by themselves, so a case
// writes what a band shows as two lines: of every band column the image's column, 'a' the leftmost, and of every band
// row the image's row, '0' the top one. '.' is a column or row that stays untouched, and so is what is left out.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "image/dib_builder.h"
#include "support/random_bytes.h"
#include "support/transfer_model.h"

namespace qnv::test {

inline constexpr int32_t kImageColumns = 13;  // of the band
inline constexpr int32_t kImageRows = 9;

// SRCCOPY writes straight into the band; with any other low word the same operation paints row by row by transfers.
inline constexpr uint32_t kCopyByTransfer = 0x00CC0000;

// The letter that an image holds at a column and row: neighbors are unlike, and a part of it shows where it comes from.
inline char ImageLetter(int32_t column, int32_t row) { return static_cast<char>('a' + (column + 5 * row) % 16); }

struct ImageSize {
  int32_t width = 4;
  int32_t height = 3;
};

inline Dib LetterDib(const ImageSize& size, const DibShape& shape) {
  std::string picture;
  for (int32_t row = 0; row < size.height; ++row) {
    for (int32_t column = 0; column < size.width; ++column) picture += ImageLetter(column, row);
  }
  return PictureDib(size.width, picture, shape);
}

// The columns of an image, `count` of them from band column `left` on.
inline std::string ColumnsFrom(int32_t left, int32_t count) {
  std::string columns(static_cast<std::size_t>(left), '.');
  for (int32_t i = 0; i < count; ++i) columns += static_cast<char>('a' + i);
  return columns;
}

// The picture of a band from the two lines of a case.
inline std::string BandPicture(std::string_view columns, std::string_view rows, int32_t bandColumns = kImageColumns) {
  std::string picture;
  for (char row : rows) {
    std::string line(static_cast<std::size_t>(bandColumns), '.');
    for (std::size_t x = 0; x < columns.size(); ++x) {
      if (row != '.' && columns[x] != '.') line[x] = ImageLetter(columns[x] - 'a', row - '0');
    }
    picture += line + ' ';
  }
  return picture;
}

// `plane` with every pixel that two such lines show changed: to what `change` makes of the image's color there, as the
// device takes it, and of the color that the plane held.
template <typename Change>
PlaneImage Changed(const TestDevice& device, PlaneImage plane, std::string_view columns, std::string_view rows,
                   Change change) {
  for (uint32_t y = 0; y < rows.size(); ++y) {
    for (uint32_t x = 0; x < columns.size(); ++x) {
      if (rows[y] == '.' || columns[x] == '.') continue;
      const char letter = ImageLetter(columns[x] - 'a', rows[y] - '0');
      const uint32_t source = Physical(device, ImageColors()[static_cast<std::size_t>(letter - 'a')]);
      plane.SetColor(x, y, change(source, plane.Color(x, y), x, y));
    }
  }
  return plane;
}

// A ternary operation and the minimum on the three bytes of a color.
inline uint32_t Rop3Color(uint32_t index, uint32_t pattern, uint32_t source, uint32_t dest) {
  uint32_t color = 0;
  for (uint32_t shift : {0u, 8u, 16u}) {
    color |= uint32_t{Rop3Byte(static_cast<uint8_t>(index), static_cast<uint8_t>(pattern >> shift),
                               static_cast<uint8_t>(source >> shift), static_cast<uint8_t>(dest >> shift))}
             << shift;
  }
  return color;
}

inline uint32_t MinimumColor(uint32_t source, uint32_t dest) {
  uint32_t color = 0;
  for (uint32_t shift : {0u, 8u, 16u}) color |= std::min(source >> shift & 0xFF, dest >> shift & 0xFF) << shift;
  return color;
}

struct ImageCase {
  const char* name;
  ImageSize image;
  ImagePlace place;
  std::string columns;
  std::string rows;
  BandRect clip = kEverywhere;
  BandCorner band{};
  DrawingOrigin origin{};
};

struct ImageSweep {
  std::vector<bool> topDown = {false, true};
  std::vector<uint32_t> rops = {SRCCOPY, kCopyByTransfer, ROP_MINIMUM};
  std::vector<uint16_t> depths = {1, 4, 8, 16, 24, 32};
};

// Every case on both band depths, that of the minimum over white, where it shows the image. A case that shows nothing
// is refused with 0.
inline void RunImageCases(const std::vector<ImageCase>& cases, const ImageSweep& sweep = {}) {
  for (const ImageCase& c : cases) {
    for (uint16_t bandDepth : {uint16_t{24}, uint16_t{8}}) {
      for (uint16_t depth : sweep.depths) {
        for (bool topDown : sweep.topDown) {
          for (uint32_t rop : sweep.rops) {
            SCOPED_TRACE(std::string(c.name) + ", " + std::to_string(depth) + "-bit image, " +
                         (topDown ? "top-down, " : "bottom-up, ") + std::to_string(bandDepth) + "-bit band, rop " +
                         std::to_string(rop));
            TestDevice device({.bitsPerPixel = bandDepth,
                               .width = kImageColumns,
                               .height = kImageRows,
                               .left = c.band.left,
                               .top = c.band.top,
                               .fill = static_cast<uint8_t>(rop == ROP_MINIMUM ? 0xFF : 0xCC)});
            device.SetOrigin(c.origin.x, c.origin.y);
            const Dib dib = LetterDib(c.image, {.bitCount = depth, .topDown = topDown});
            EXPECT_EQ(c.rows.empty() ? 0u : 1u, Stretch(device, dib, c.place, {.rop = rop, .clip = c.clip}));
            EXPECT_TRUE(BandIs(device, ImageInks(device, depth), BandPicture(c.columns, c.rows)));
          }
        }
      }
    }
  }
}

}  // namespace qnv::test
