// Small pictures and their PPM and PGM files, which any viewer shows.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qnv::test {

struct Picture {
  uint32_t width = 0;
  uint32_t height = 0;
  uint32_t channels = 3;       // 3: red, green, blue; 1: gray
  std::vector<uint8_t> bytes;  // width * height * channels, top row first

  bool operator==(const Picture&) const = default;
};

// ".ppm" or ".pgm", by the number of channels.
const char* PictureSuffix(const Picture& picture);

// Empty when the file is missing or no binary PPM or PGM of 8 bits.
std::optional<Picture> ReadPicture(const std::string& path);
bool WritePicture(const std::string& path, const Picture& picture);

// What keeps two pictures apart.
struct PictureDifference {
  std::string text;                // "column 3 row 7 expected 0a0b0c got 0a0b0d, 12 pixels differ", or the sizes
  std::optional<Picture> picture;  // white where both agree, red where they do not; none for unlike sizes
};
PictureDifference DifferenceOf(const Picture& expected, const Picture& got);

}  // namespace qnv::test
