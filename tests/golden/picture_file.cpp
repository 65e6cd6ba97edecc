// Reads and writes picture files.
#include "golden/picture_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace qnv::test {

PlaneImage MakePicture(const std::string& name, uint32_t width, uint32_t height, uint32_t channels,
                       std::vector<uint8_t> bytes) {
  return {name, width, height, width * channels, static_cast<int>(channels), std::move(bytes)};
}

const char* PictureSuffix(const PlaneImage& picture) { return picture.bytesPerPixel() == 3 ? ".ppm" : ".pgm"; }

std::optional<PlaneImage> ReadPicture(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string magic;
  uint32_t width = 0, height = 0, maximum = 0;
  if (!(file >> magic >> width >> height >> maximum)) return std::nullopt;
  if ((magic != "P6" && magic != "P5") || maximum != 255 || width > 4096 || height > 4096) return std::nullopt;
  file.get();
  const uint32_t channels = magic == "P6" ? 3 : 1;
  std::vector<uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
  if (bytes.size() != std::size_t{width} * height * channels) return std::nullopt;
  return MakePicture(path, width, height, channels, std::move(bytes));
}

bool WritePicture(const std::string& path, const PlaneImage& picture) {
  std::ofstream file(path, std::ios::binary);
  file << (picture.bytesPerPixel() == 3 ? "P6\n" : "P5\n") << picture.columns() << ' ' << picture.rows() << "\n255\n";
  std::copy(picture.bytes().begin(), picture.bytes().end(), std::ostreambuf_iterator<char>(file));
  return static_cast<bool>(file.flush());
}

}  // namespace qnv::test
