// Comparing planes, and planes as pictures of letters.
#include "support/plane_image.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

#include "support/text.h"

namespace qnv::test {
namespace {

std::string HexText(const PlaneImage& image, std::size_t offset, std::size_t count) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    char digits[4];
    std::snprintf(digits, sizeof digits, i == 0 ? "%02X" : " %02X", image.bytes()[offset + i]);
    text += digits;
  }
  return text;
}

// The smallest rectangle, in columns and rows of the plane, that holds every difference; all zeros without one.
// Differences in the padding of a row lie in the columns past the plane's last.
BandRect TouchedRect(const PlaneImage& before, const PlaneImage& after) {
  BandRect touched{0, 0, 0, 0};
  for (std::size_t offset = 0; offset < before.bytes().size(); ++offset) {
    if (before.bytes()[offset] == after.bytes()[offset]) continue;
    const int32_t row = static_cast<int32_t>(offset / before.stride());
    const int32_t column = static_cast<int32_t>(offset % before.stride()) / before.bytesPerPixel();
    if (touched.right == 0) touched = {column, row, column + 1, row + 1};
    touched.left = std::min(touched.left, column);
    touched.right = std::max(touched.right, column + 1);
    touched.bottom = row + 1;
  }
  return touched;
}

// What is left to compare once nothing around either plane was written.
template <class Compare>
testing::AssertionResult IfIntact(const TestDevice& device, Compare compare) {
  if (device.FencesIntact()) return compare();
  return testing::AssertionFailure() << "memory outside the planes was written";
}

PlaneImage Untouched(const TestDevice& device, PlaneImage plane) {
  plane.FillBytes(device.options().fill);
  return plane;
}

}  // namespace

PlaneImage::PlaneImage(std::string name, uint32_t columns, uint32_t rows, uint32_t stride, int bytesPerPixel,
                       std::vector<uint8_t> bytes)
    : name_(std::move(name)),
      columns_(columns),
      rows_(rows),
      stride_(stride),
      bytesPerPixel_(bytesPerPixel),
      bytes_(std::move(bytes)) {
  if (bytes_.size() != std::size_t{stride_} * rows_) throw std::invalid_argument("plane of another size");
}

std::size_t PlaneImage::Offset(int64_t column, int64_t row) const {
  if (column < 0 || row < 0 || column >= columns() || row >= rows()) throw std::out_of_range("pixel outside the plane");
  return static_cast<std::size_t>(row) * stride_ + static_cast<std::size_t>(column * bytesPerPixel_);
}

void PlaneImage::SetColor(int64_t column, int64_t row, uint32_t color) {
  uint8_t* pixel = bytes_.data() + Offset(column, row);
  for (int i = 0; i < bytesPerPixel_; ++i) pixel[i] = static_cast<uint8_t>(color >> (16 - 8 * i));
}

uint32_t PlaneImage::Color(int64_t column, int64_t row) const {
  const uint8_t* pixel = bytes_.data() + Offset(column, row);
  return bytesPerPixel_ == 1 ? Gray(pixel[0]) : uint32_t{pixel[0]} << 16 | uint32_t{pixel[1]} << 8 | pixel[2];
}

void PlaneImage::Set(int32_t column, int32_t row, const PixelBytes& value) {
  std::copy_n(value.begin(), bytesPerPixel_, At(column, row));
}

void PlaneImage::Fill(const BandRect& area, const PixelBytes& value) {
  for (int32_t row = area.top; row < area.bottom; ++row) {
    for (int32_t column = area.left; column < area.right; ++column) Set(column, row, value);
  }
}

PlaneImage BandImage(const TestDevice& device) {
  const DeviceOptions& options = device.options();
  return {"band", options.width, options.height, device.stride(), device.bytesPerPixel(), device.BandBytes()};
}

PlaneImage TagImage(const TestDevice& device) {
  const DeviceOptions& options = device.options();
  return {"tag plane", options.width, options.height, device.tagStride(), 1, device.TagBytes()};
}

void LoadBand(TestDevice* device, const PlaneImage& image) {
  if (device->band().size() != image.bytes().size()) throw std::invalid_argument("image of another plane");
  std::copy(image.bytes().begin(), image.bytes().end(), device->band().data());
}

testing::AssertionResult SameImage(const PlaneImage& expected, const PlaneImage& got) {
  if (expected.bytes().size() != got.bytes().size()) {
    return testing::AssertionFailure() << expected.name() << ": images of different sizes";
  }
  if (expected.bytes() == got.bytes()) return testing::AssertionSuccess();
  const auto first = std::mismatch(expected.bytes().begin(), expected.bytes().end(), got.bytes().begin());
  const std::size_t offset = static_cast<std::size_t>(first.first - expected.bytes().begin());
  const std::size_t row = offset / expected.stride(), byteInRow = offset % expected.stride();
  const std::size_t size = static_cast<std::size_t>(expected.bytesPerPixel()), column = byteInRow / size;
  const bool padding = static_cast<int32_t>(column) >= expected.columns();
  const std::size_t from = padding ? offset : offset - byteInRow % size, count = padding ? 1 : size;
  testing::AssertionResult failure = testing::AssertionFailure() << expected.name();
  failure << (padding ? Text(" padding of row ", row, ", byte ", byteInRow) : Text(" pixel (", column, ", ", row, ")"))
          << ": expected " << HexText(expected, from, count) << ", got " << HexText(got, from, count);
  return failure << "; differences within " << Describe(TouchedRect(expected, got));
}

testing::AssertionResult BandShows(const TestDevice& device, const PlaneImage& expected) {
  return IfIntact(device, [&] { return SameImage(expected, BandImage(device)); });
}

testing::AssertionResult TagsShow(const TestDevice& device, const PlaneImage& expected) {
  return IfIntact(device, [&] { return SameImage(expected, TagImage(device)); });
}

PlaneImage UntouchedBand(const TestDevice& device) { return Untouched(device, BandImage(device)); }

PlaneImage UntouchedTags(const TestDevice& device) { return Untouched(device, TagImage(device)); }

testing::AssertionResult BandUntouched(const TestDevice& device) { return BandShows(device, UntouchedBand(device)); }

PlaneImage Drawn(PlaneImage base, const PictureInks& inks, std::string_view picture) {
  int32_t pixel = 0;
  for (char letter : picture) {
    if (letter == ' ') {
      EXPECT_EQ(0, pixel % base.columns()) << "a blank within a row of the picture";
      continue;
    }
    const int32_t column = pixel % base.columns();
    const int32_t row = pixel++ / base.columns();
    if (letter == '.') continue;
    const auto ink = std::find_if(inks.begin(), inks.end(), [&](const PictureInk& i) { return i.letter == letter; });
    if (ink == inks.end() || row >= base.rows()) {
      ADD_FAILURE() << "letter " << letter << " of the picture has no ink or no pixel";
      return base;
    }
    base.SetColor(column, row, ink->color);
  }
  EXPECT_EQ(0, pixel % base.columns()) << "the picture ends within a row";
  EXPECT_LE(pixel, base.columns() * base.rows()) << "the picture is larger than the plane";
  return base;
}

testing::AssertionResult PlaneIs(const PlaneImage& got, const PlaneImage& untouched, const PictureInks& inks,
                                 std::string_view picture) {
  testing::AssertionResult same = SameImage(Drawn(untouched, inks, picture), got);
  if (same || got.columns() > 64) return same;
  for (int32_t row = 0; row < got.rows(); ++row) {
    same << '\n';
    for (int32_t column = 0; column < got.columns(); ++column) {
      const uint32_t color = got.Color(column, row);
      char letter = color == untouched.Color(column, row) ? '.' : '?';
      for (const PictureInk& ink : inks) {
        const uint32_t stored = got.bytesPerPixel() == 3 ? ink.color & 0xFFFFFF : Gray((ink.color >> 16) & 0xFF);
        if (color == stored) letter = ink.letter;
      }
      same << letter;
    }
  }
  return same;
}

testing::AssertionResult BandIs(const TestDevice& device, const PictureInks& inks, std::string_view picture) {
  return IfIntact(device, [&] { return PlaneIs(BandImage(device), UntouchedBand(device), inks, picture); });
}

bool IsGrayDevice(const TestDevice& device) {
  return device.options().bitsPerPixel == (device.options().kind == QNV_KIND_SCALED ? 0 : 8);
}

uint32_t Physical(const TestDevice& device, uint32_t color) { return IsGrayDevice(device) ? GrayOf(color) : color; }

std::string Describe(const BandRect& rect) {
  return Text("(", rect.left, ", ", rect.top, ", ", rect.right, ", ", rect.bottom, ")");
}

}  // namespace qnv::test
