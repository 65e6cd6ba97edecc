// The bytes of one plane, row padding included: what a test expects, and what it finds. A comparison of two therefore
// also proves that padding and rows that nobody should touch were left alone.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "support/test_device.h"

namespace qnv::test {

using PixelBytes = std::array<uint8_t, 3>;

class PlaneImage {
 public:
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

 private:
  std::size_t Offset(int32_t column, int32_t row) const;

  std::string name_;
  uint32_t columns_;
  uint32_t rows_;
  uint32_t stride_;
  int bytesPerPixel_;
  std::vector<uint8_t> bytes_;
};

PlaneImage BandImage(const TestDevice& device);
PlaneImage TagImage(const TestDevice& device);  // Requires: the device has a tag plane.

// Writes the image's bytes into the host's memory of that plane.
void LoadBand(TestDevice* device, const PlaneImage& image);
void LoadTags(TestDevice* device, const PlaneImage& image);

// On a difference: the plane, the first differing pixel with both values, and how far the differences reach.
testing::AssertionResult SameImage(const PlaneImage& expected, const PlaneImage& got);

// The device's plane holds exactly `expected`, and nothing around either plane was written.
testing::AssertionResult BandShows(const TestDevice& device, const PlaneImage& expected);
testing::AssertionResult TagsShow(const TestDevice& device, const PlaneImage& expected);

// The smallest rectangle, in columns and rows of the plane, that holds every difference; all zeros without one.
// Differences in the padding of a row lie in the columns past the plane's last.
BandRect TouchedRect(const PlaneImage& before, const PlaneImage& after);
testing::AssertionResult TouchedExactly(const PlaneImage& before, const PlaneImage& after, const BandRect& expected);

std::string Describe(const BandRect& rect);
bool IsEmpty(const BandRect& rect);

}  // namespace qnv::test
