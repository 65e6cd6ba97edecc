// Pictures as planes without padding, red first, and their PPM and PGM files, which any viewer shows.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/plane_image.h"

namespace qnv::test {

// channels: 3 (red, green, blue) or 1 (gray).
PlaneImage MakePicture(const std::string& name, uint32_t width, uint32_t height, uint32_t channels,
                       std::vector<uint8_t> bytes);

// ".ppm" or ".pgm", by the number of channels.
const char* PictureSuffix(const PlaneImage& picture);

// Empty when the file is missing or no binary PPM or PGM of 8 bits.
std::optional<PlaneImage> ReadPicture(const std::string& path);
bool WritePicture(const std::string& path, const PlaneImage& picture);

}  // namespace qnv::test
