// Bands as pictures of letters, one a pixel. An expected picture covers the whole plane, row padding included, so a
// test that compares one also proves that nothing else was written.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <iomanip>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/test_device.h"

namespace qnv::test {

// What a letter of a picture stands for: a physical colour, stored with bits 16..23 in the first byte (an 8-bit plane
// holds that byte alone). '.' always stands for a pixel that still holds the device's fill byte.
struct PictureInk {
  char letter;
  uint32_t colour;
};
using PictureInks = std::vector<PictureInk>;

inline constexpr uint32_t Gray(uint32_t level) { return level * 0x010101u; }

// The gray level of a logical colour (red in the low byte), in all three bytes.
inline constexpr uint32_t GrayOf(uint32_t colour) {
  return Gray(((colour & 0xFF) * 30 + ((colour >> 8) & 0xFF) * 59 + ((colour >> 16) & 0xFF) * 11) / 100);
}

// A band pixel re-grayed in place: its first byte, blue, takes the weight of red.
inline constexpr uint32_t Regrayed(uint32_t colour) {
  return Gray((((colour >> 16) & 0xFF) * 30 + ((colour >> 8) & 0xFF) * 59 + (colour & 0xFF) * 11) / 100);
}

inline bool IsGrayDevice(const TestDevice& device) {
  return device.options().bitsPerPixel == (device.options().kind == QNV_KIND_SCALED ? 0 : 8);
}

inline uint32_t Physical(const TestDevice& device, uint32_t colour) {
  return IsGrayDevice(device) ? GrayOf(colour) : colour;
}

struct PicturePlane {
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t stride = 0;         // bytes
  uint32_t bytesPerPixel = 0;  // 3 or 1
  std::vector<uint8_t> bytes;

  std::size_t Offset(uint32_t column, uint32_t row) const {
    return std::size_t{row} * stride + std::size_t{column} * bytesPerPixel;
  }
  void Put(uint32_t column, uint32_t row, uint32_t colour) {
    for (uint32_t i = 0; i < bytesPerPixel; ++i) {
      bytes[Offset(column, row) + i] = static_cast<uint8_t>(colour >> (16 - 8 * i));
    }
  }
  uint32_t Get(uint32_t column, uint32_t row) const {
    uint32_t colour = 0;
    for (uint32_t i = 0; i < 3; ++i) {
      colour = colour << 8 | bytes[Offset(column, row) + (bytesPerPixel == 3 ? i : 0)];
    }
    return colour;
  }
};

inline PicturePlane CurrentBand(const TestDevice& device) {
  return {device.options().width, device.options().height, device.stride(),
          static_cast<uint32_t>(device.bytesPerPixel()), device.BandBytes()};
}

inline PicturePlane CurrentTags(const TestDevice& device) {
  return {device.options().width, device.options().height, device.tagStride(), 1, device.TagBytes()};
}

inline PicturePlane UntouchedBand(const TestDevice& device) {
  PicturePlane plane = CurrentBand(device);
  plane.bytes.assign(plane.bytes.size(), device.options().fill);
  return plane;
}

inline PicturePlane UntouchedTags(const TestDevice& device) {
  PicturePlane plane = CurrentTags(device);
  plane.bytes.assign(plane.bytes.size(), device.options().fill);
  return plane;
}

// `base` with the pixels of `picture` put in; letters run row by row, '.' keeps the base.
inline PicturePlane Drawn(PicturePlane base, const PictureInks& inks, std::string_view picture) {
  EXPECT_EQ(std::size_t{base.width} * base.height, picture.size()) << "the picture does not cover the plane";
  for (std::size_t i = 0; i < picture.size() && i < std::size_t{base.width} * base.height; ++i) {
    if (picture[i] == '.') continue;
    bool known = false;
    for (const PictureInk& ink : inks) {
      if (ink.letter != picture[i]) continue;
      base.Put(static_cast<uint32_t>(i % base.width), static_cast<uint32_t>(i / base.width), ink.colour);
      known = true;
    }
    EXPECT_TRUE(known) << "no ink for letter " << picture[i];
  }
  return base;
}

inline std::string HexBytes(const uint8_t* bytes, std::size_t count) {
  std::ostringstream text;
  for (std::size_t i = 0; i < count; ++i) text << std::hex << std::setw(2) << std::setfill('0') << int{bytes[i]};
  return text.str();
}

inline testing::AssertionResult SamePlane(const PicturePlane& expected, const PicturePlane& got) {
  if (expected.bytes.size() != got.bytes.size()) return testing::AssertionFailure() << "planes of different sizes";
  for (uint32_t row = 0; row < expected.height; ++row) {
    for (uint32_t at = 0; at < expected.stride; ++at) {
      const std::size_t offset = std::size_t{row} * expected.stride + at;
      if (expected.bytes[offset] == got.bytes[offset]) continue;
      const uint32_t column = at / expected.bytesPerPixel;
      auto failure = testing::AssertionFailure();
      if (column >= expected.width) {
        return failure << "row " << row << ": padding byte " << at - expected.width * expected.bytesPerPixel
                       << " expected " << HexBytes(&expected.bytes[offset], 1) << " got "
                       << HexBytes(&got.bytes[offset], 1);
      }
      const std::size_t pixel = expected.Offset(column, row);
      return failure << "first differing pixel: column " << column << " row " << row << " expected "
                     << HexBytes(&expected.bytes[pixel], expected.bytesPerPixel) << " got "
                     << HexBytes(&got.bytes[pixel], expected.bytesPerPixel);
    }
  }
  return testing::AssertionSuccess();
}

// `got` in the letters of `inks`, for the failure text; '?' where no ink fits.
inline std::string Lettered(const PicturePlane& got, const PicturePlane& untouched, const PictureInks& inks) {
  std::string text;
  for (uint32_t row = 0; row < got.height; ++row) {
    text += '\n';
    for (uint32_t column = 0; column < got.width; ++column) {
      char letter = got.Get(column, row) == untouched.Get(column, row) ? '.' : '?';
      for (const PictureInk& ink : inks) {
        const uint32_t colour = got.bytesPerPixel == 3 ? ink.colour & 0xFFFFFF : Gray((ink.colour >> 16) & 0xFF);
        if (got.Get(column, row) == colour) letter = ink.letter;
      }
      text += letter;
    }
  }
  return text;
}

inline testing::AssertionResult PlaneIs(const PicturePlane& got, const PicturePlane& untouched, const PictureInks& inks,
                                        std::string_view picture) {
  testing::AssertionResult same = SamePlane(Drawn(untouched, inks, picture), got);
  if (!same && got.width <= 64) same << Lettered(got, untouched, inks);
  return same;
}

// The band shows exactly this picture, padding and everything outside the band's memory are untouched.
inline testing::AssertionResult BandIs(const TestDevice& device, const PictureInks& inks, std::string_view picture) {
  if (!device.FencesIntact()) return testing::AssertionFailure() << "memory outside the planes was written";
  return PlaneIs(CurrentBand(device), UntouchedBand(device), inks, picture);
}

inline testing::AssertionResult TagsAre(const TestDevice& device, const PictureInks& inks, std::string_view picture) {
  if (!device.FencesIntact()) return testing::AssertionFailure() << "memory outside the planes was written";
  return PlaneIs(CurrentTags(device), UntouchedTags(device), inks, picture);
}

inline testing::AssertionResult BandUntouched(const TestDevice& device) {
  if (!device.FencesIntact()) return testing::AssertionFailure() << "memory outside the planes was written";
  return SamePlane(UntouchedBand(device), CurrentBand(device));
}

// Read-only input of a call at the very end of a fenced block, so that reading past it stops the test.
class FencedInput {
 public:
  explicit FencedInput(const std::vector<uint8_t>& bytes) : buffer_(bytes.size(), 0), original_(bytes) {
    if (!bytes.empty()) std::memcpy(buffer_.data(), bytes.data(), bytes.size());
  }
  const void* data() const { return buffer_.data(); }
  bool Unchanged() const {
    return buffer_.FencesIntact() &&
           (original_.empty() || std::memcmp(buffer_.data(), original_.data(), original_.size()) == 0);
  }

 private:
  FencedBuffer buffer_;
  std::vector<uint8_t> original_;
};

}  // namespace qnv::test
