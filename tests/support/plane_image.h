// The bytes of one plane, row padding included: what a test expects, and what it finds. A comparison of two therefore
// also proves that padding and rows that nobody should touch were left alone. Small planes are written as pictures of
// letters, one a pixel.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/test_device.h"

namespace qnv::test {

using PixelBytes = std::array<uint8_t, 3>;

class PlaneImage {
 public:
  PlaneImage() = default;
  PlaneImage(std::string name, uint32_t columns, uint32_t rows, uint32_t stride, int bytesPerPixel,
             std::vector<uint8_t> bytes);

  const std::string& name() const { return name_; }
  int32_t columns() const { return static_cast<int32_t>(columns_); }
  int32_t rows() const { return static_cast<int32_t>(rows_); }
  uint32_t stride() const { return stride_; }
  int bytesPerPixel() const { return bytesPerPixel_; }
  const std::vector<uint8_t>& bytes() const { return bytes_; }

  // The pixel's first byte; throws outside the plane.
  uint8_t* At(int32_t column, int32_t row) { return bytes_.data() + Offset(column, row); }
  const uint8_t* At(int32_t column, int32_t row) const { return bytes_.data() + Offset(column, row); }

  // Stores the first one or three bytes.
  void Set(int32_t column, int32_t row, const PixelBytes& value);
  void Fill(const BandRect& area, const PixelBytes& value);

  // The same with a physical color, whose bits 16..23 are the pixel's first byte; a plane of one byte a pixel stores
  // that byte alone, and gives it back as a gray.
  void SetColor(int64_t column, int64_t row, uint32_t color);
  uint32_t Color(int64_t column, int64_t row) const;

  // Stores one value in every byte, padding included.
  void FillBytes(uint8_t value) { bytes_.assign(bytes_.size(), value); }

 private:
  std::size_t Offset(int64_t column, int64_t row) const;

  std::string name_;
  uint32_t columns_ = 0;
  uint32_t rows_ = 0;
  uint32_t stride_ = 0;
  int bytesPerPixel_ = 1;
  std::vector<uint8_t> bytes_;
};

PlaneImage BandImage(const TestDevice& device);
PlaneImage TagImage(const TestDevice& device);  // Requires: the device has a tag plane.

// Writes the image's bytes into the host's memory of the band.
void LoadBand(TestDevice* device, const PlaneImage& image);

// On a difference: the plane, the first differing pixel with both values, and how far the differences reach.
testing::AssertionResult SameImage(const PlaneImage& expected, const PlaneImage& got);

// The device's plane holds exactly `expected`, and nothing around either plane was written.
testing::AssertionResult BandShows(const TestDevice& device, const PlaneImage& expected);
testing::AssertionResult TagsShow(const TestDevice& device, const PlaneImage& expected);

// The planes as they were before the first call: the device's fill byte everywhere.
PlaneImage UntouchedBand(const TestDevice& device);
PlaneImage UntouchedTags(const TestDevice& device);
testing::AssertionResult BandUntouched(const TestDevice& device);

// What a letter of a picture stands for: a physical color. '.' always stands for a pixel that was left alone.
struct PictureInk {
  char letter;
  uint32_t color;
};
using PictureInks = std::vector<PictureInk>;

// `base` with a picture put in. Letters run row by row; blanks between rows are ignored. Rows below the last one given
// keep the base.
PlaneImage Drawn(PlaneImage base, const PictureInks& inks, std::string_view picture);

// The plane is `untouched` but for the picture. On a difference the failure also shows `got` in letters, '?' where no
// ink fits.
testing::AssertionResult PlaneIs(const PlaneImage& got, const PlaneImage& untouched, const PictureInks& inks,
                                 std::string_view picture);

// The plane shows this picture, and nothing around either plane was written.
testing::AssertionResult BandIs(const TestDevice& device, const PictureInks& inks, std::string_view picture);

inline constexpr uint32_t Gray(uint32_t level) { return level * 0x010101u; }

// The gray level of a logical color (red in the low byte), in all three bytes.
inline constexpr uint32_t GrayOf(uint32_t color) {
  return Gray(((color & 0xFF) * 30 + ((color >> 8) & 0xFF) * 59 + ((color >> 16) & 0xFF) * 11) / 100);
}

// The gray of a band pixel that is made gray once more in place: its first byte, blue, takes the weight of red.
inline constexpr uint32_t Regrayed(uint32_t color) {
  return Gray((((color >> 16) & 0xFF) * 30 + ((color >> 8) & 0xFF) * 59 + (color & 0xFF) * 11) / 100);
}

// The physical color that the device makes of a logical one.
bool IsGrayDevice(const TestDevice& device);
uint32_t Physical(const TestDevice& device, uint32_t color);

std::string Describe(const BandRect& rect);

}  // namespace qnv::test
