// Reads and writes picture files, and says where two pictures differ.
#include "golden/picture_file.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

namespace qnv::test {
namespace {

std::string SizeText(const Picture& picture) {
  return std::to_string(picture.width) + " x " + std::to_string(picture.height) + " x " +
         std::to_string(picture.channels);
}

std::string Hex(const uint8_t* pixel, uint32_t channels) {
  std::string text;
  for (uint32_t i = 0; i < channels; ++i) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02x", unsigned{pixel[i]});
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
  std::copy(picture.bytes.begin(), picture.bytes.end(), std::ostreambuf_iterator<char>(file));
  return static_cast<bool>(file.flush());
}

PictureDifference DifferenceOf(const Picture& expected, const Picture& got) {
  const uint32_t channels = expected.channels;
  if (expected.width != got.width || expected.height != got.height || channels != got.channels) {
    return {"expected " + SizeText(expected) + ", got " + SizeText(got), std::nullopt};
  }
  Picture picture{expected.width, expected.height, 3, {}};
  std::string text;
  std::size_t count = 0;
  for (std::size_t pixel = 0; pixel < std::size_t{expected.width} * expected.height; ++pixel) {
    const uint8_t* const a = expected.bytes.data() + pixel * channels;
    const uint8_t* const b = got.bytes.data() + pixel * channels;
    const bool same = std::equal(a, a + channels, b);
    const uint8_t rest = same ? 255 : 0;
    picture.bytes.insert(picture.bytes.end(), {255, rest, rest});
    if (same || ++count != 1) continue;
    text = "column " + std::to_string(pixel % expected.width) + " row " + std::to_string(pixel / expected.width) +
           " expected " + Hex(a, channels) + " got " + Hex(b, channels);
  }
  return {text + ", " + std::to_string(count) + " pixels differ", picture};
}

}  // namespace qnv::test
