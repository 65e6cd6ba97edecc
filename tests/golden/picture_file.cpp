// Reads and writes picture files, and says where two pictures differ.
#include "golden/picture_file.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>

namespace qnv::test {
namespace {

std::size_t PixelOffset(const Picture& picture, uint32_t column, uint32_t row) {
  return (std::size_t{row} * picture.width + column) * picture.channels;
}

bool SamePixel(const Picture& a, const Picture& b, uint32_t column, uint32_t row) {
  const std::size_t offset = PixelOffset(a, column, row);
  for (uint32_t i = 0; i < a.channels; ++i) {
    if (a.bytes[offset + i] != b.bytes[offset + i]) return false;
  }
  return true;
}

std::string Hex(const Picture& picture, uint32_t column, uint32_t row) {
  std::string text;
  for (uint32_t i = 0; i < picture.channels; ++i) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", unsigned{picture.bytes[PixelOffset(picture, column, row) + i]});
    text += digits;
  }
  return text;
}

}  // namespace

const char* PictureSuffix(const Picture& picture) { return picture.channels == 3 ? ".ppm" : ".pgm"; }

std::optional<Picture> ReadPicture(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string magic;
  Picture picture;
  uint32_t maximum = 0;
  if (!(file >> magic >> picture.width >> picture.height >> maximum)) return std::nullopt;
  if ((magic != "P6" && magic != "P5") || maximum != 255) return std::nullopt;
  if (picture.width > 4096 || picture.height > 4096) return std::nullopt;
  file.get();
  picture.channels = magic == "P6" ? 3 : 1;
  picture.bytes.assign(std::istreambuf_iterator<char>(file), {});
  if (picture.bytes.size() != std::size_t{picture.width} * picture.height * picture.channels) return std::nullopt;
  return picture;
}

bool WritePicture(const std::string& path, const Picture& picture) {
  std::ofstream file(path, std::ios::binary);
  file << (picture.channels == 3 ? "P6\n" : "P5\n") << picture.width << ' ' << picture.height << "\n255\n";
  for (uint8_t byte : picture.bytes) file.put(static_cast<char>(byte));
  return static_cast<bool>(file.flush());
}

Picture DifferencePicture(const Picture& expected, const Picture& got) {
  Picture difference{expected.width, expected.height, 3, {}};
  for (uint32_t row = 0; row < expected.height; ++row) {
    for (uint32_t column = 0; column < expected.width; ++column) {
      const uint8_t rest = SamePixel(expected, got, column, row) ? 255 : 0;
      difference.bytes.insert(difference.bytes.end(), {255, rest, rest});
    }
  }
  return difference;
}

std::string DescribeDifference(const Picture& expected, const Picture& got) {
  std::ostringstream text;
  if (expected.width != got.width || expected.height != got.height || expected.channels != got.channels) {
    text << "expected " << expected.width << " x " << expected.height << " x " << expected.channels << ", got "
         << got.width << " x " << got.height << " x " << got.channels;
    return text.str();
  }
  std::size_t count = 0;
  for (uint32_t row = 0; row < expected.height; ++row) {
    for (uint32_t column = 0; column < expected.width; ++column) {
      if (SamePixel(expected, got, column, row)) continue;
      if (count++ == 0) {
        text << "column " << column << " row " << row << " expected " << Hex(expected, column, row) << " got "
             << Hex(got, column, row);
      }
    }
  }
  text << ", " << count << " pixels differ";
  return text.str();
}

}  // namespace qnv::test
