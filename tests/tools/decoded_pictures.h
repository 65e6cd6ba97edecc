// What pictures of PNG, JPEG and TIFF files show when they are read, also of damaged files.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "picture_inputs.h"
#include "qnvtool/input/jpeg_reader.h"
#include "qnvtool/input/png_reader.h"
#include "qnvtool/input/tiff_reader.h"
#include "tool_errors.h"

namespace qnv::test::picture_formats {

using FileBytes = std::vector<uint8_t>;

inline const tool::PictureDecoders kDecoders{tool::OpenPng, tool::OpenJpeg, tool::OpenTiff};

// The color of a pixel that a bitmap shows, 0xRRGGBB; y counts from the top.
inline uint32_t ColorOf(const WholePicture& picture, int x, int y) {
  const std::size_t stride = tool::DibStride(picture.width, picture.bitCount);
  const int stored = picture.topDown ? y : picture.height - 1 - y;
  const uint8_t* const row = picture.bits.data() + static_cast<std::size_t>(stored) * stride;
  const auto column = static_cast<std::size_t>(x);
  if (picture.bitCount >= 24) {
    const uint8_t* const pixel = row + column * static_cast<std::size_t>(picture.bitCount / 8);
    return static_cast<uint32_t>(pixel[2] << 16 | pixel[1] << 8 | pixel[0]);
  }
  const auto bits = static_cast<std::size_t>(picture.bitCount);
  const std::size_t index = row[column * bits / 8] >> (8 - bits - column * bits % 8) & ((1u << bits) - 1);
  return tool::U32At(picture.info, 40 + index * 4);
}

using ColorAt = std::function<uint32_t(int x, int y)>;

inline void ExpectColors(const WholePicture& picture, const ColorAt& expected) {
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      ASSERT_EQ(ColorOf(picture, x, y), expected(x, y)) << x << ',' << y;
    }
  }
}

inline uint32_t Over(uint32_t value, uint32_t alpha) { return (value * alpha + 255 * (255 - alpha) + 127) / 255; }

inline uint32_t OverWhite(uint32_t color, uint32_t alpha) {
  return Over(color >> 16, alpha) << 16 | Over(color >> 8 & 0xFF, alpha) << 8 | Over(color & 0xFF, alpha);
}

// Components that differ between neighbors, columns, rows and channels.
inline uint32_t Component(int x, int y, int channel, uint32_t largest) {
  return static_cast<uint32_t>(x * 37 + y * 101 + channel * 71 + x * y) % (largest + 1);
}

// Reads a file that may be damaged. The error, or the picture.
struct Tried {
  std::string error;
  WholePicture picture;
};

inline Tried Try(const FileBytes& file) {
  Tried tried;
  tried.error = InputErrorOf([&] { tried.picture = ReadWhole(file, kDecoders); });
  EXPECT_EQ(tried.error.find('\n'), std::string::npos) << tried.error;
  return tried;
}

// The first `size` bytes of a file, in a block of their own.
inline FileBytes CutTo(const FileBytes& whole, std::size_t size) {
  return {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)};
}

// How many of the files that break off at every length still give a picture.
inline int ReadOfCutFiles(const FileBytes& whole) {
  int read = 0;
  for (std::size_t size = 0; size < whole.size(); ++size) read += Try(CutTo(whole, size)).error.empty() ? 1 : 0;
  return read;
}

// How many of the files are refused in which one byte, from the one at `first` on, has these bits inverted.
inline int RefusedOfDamagedFiles(const FileBytes& whole, std::size_t first, const std::vector<uint8_t>& bits) {
  int refused = 0;
  for (std::size_t at = first; at < whole.size(); ++at) {
    for (const uint8_t inverted : bits) {
      FileBytes damaged = whole;
      damaged[at] ^= inverted;
      refused += Try(damaged).error.empty() ? 0 : 1;
    }
  }
  return refused;
}

// Files cut at every length: an error, or the upper rows as they should be, the rest white, and a note that says how
// many. Returns the number of cut files that gave a picture.
inline int ExpectCutFilesAreRead(const FileBytes& whole, const ColorAt& expected) {
  int pictures = 0;
  int rowsBefore = 0;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    SCOPED_TRACE(testing::Message() << "cut to " << size << " of " << whole.size());
    const Tried tried = Try(CutTo(whole, size));
    if (!tried.error.empty()) {
      EXPECT_EQ(pictures, 0) << tried.error;  // once the headers are there, there is a picture
      continue;
    }
    ++pictures;
    const WholePicture& picture = tried.picture;
    int missing = 0;
    for (const std::string& note : picture.notes) std::sscanf(note.c_str(), "%d of", &missing);
    const int rows = picture.height - missing;
    EXPECT_GE(rows, rowsBefore);
    rowsBefore = rows;
    ExpectColors(picture, [&](int x, int y) { return y < rows ? expected(x, y) : 0xFFFFFF; });
    if (testing::Test::HasFailure()) return pictures;
  }
  return pictures;
}

}  // namespace qnv::test::picture_formats
