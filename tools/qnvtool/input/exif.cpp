// Reads EXIF data, all of whose offsets may be wrong.
#include "qnvtool/input/exif.h"

#include <cmath>

namespace qnv::tool {
namespace {

// Numbers in the byte order of the data; 0 outside of it.
class Numbers {
 public:
  Numbers(const uint8_t* bytes, std::size_t size, bool bigEndian) : bytes_(bytes), size_(size), big_(bigEndian) {}

  uint32_t Take(uint64_t at, std::size_t count) const {
    if (at > size_ || size_ - at < count) return 0;
    uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i) {
      value = value << 8 | bytes_[at + (big_ ? i : count - 1 - i)];
    }
    return value;
  }
  uint32_t Short(uint64_t at) const { return Take(at, 2); }
  uint32_t Long(uint64_t at) const { return Take(at, 4); }

  // A fraction that stands elsewhere; `at` holds the offset.
  double Rational(uint64_t at) const {
    const uint64_t where = Long(at);
    const uint32_t denominator = Long(where + 4);
    return denominator == 0 ? 0 : static_cast<double>(Long(where)) / denominator;
  }

 private:
  const uint8_t* const bytes_;
  const std::size_t size_;
  const bool big_;
};

}  // namespace

int PixelsPerMetre(double resolution, int unit) {
  const double perMetre = unit == 3 ? resolution * 100 : resolution / 0.0254;
  // Beyond these limits a picture would be smaller than a dot or larger than a field.
  if ((unit != 2 && unit != 3) || !(perMetre >= 1) || perMetre > 1e7) return 0;
  return static_cast<int>(std::lround(perMetre));
}

Exif ReadExif(const uint8_t* bytes, std::size_t size) {
  constexpr uint32_t kOrientation = 0x112;
  constexpr uint32_t kXResolution = 0x11A;
  constexpr uint32_t kYResolution = 0x11B;
  constexpr uint32_t kUnit = 0x128;
  Exif exif;
  if (size < 8 || bytes[0] != bytes[1] || (bytes[0] != 'I' && bytes[0] != 'M')) return exif;
  const Numbers numbers(bytes, size, bytes[0] == 'M');
  if (numbers.Short(2) != 42) return exif;
  const uint64_t directory = numbers.Long(4);
  const uint32_t entries = numbers.Short(directory);
  double x = 0;
  double y = 0;
  int unit = 2;
  for (uint32_t i = 0; i < entries; ++i) {
    const uint64_t at = directory + 2 + uint64_t{i} * 12;
    switch (numbers.Short(at)) {
      case kOrientation: exif.orientation = OrientationOf(static_cast<int>(numbers.Short(at + 8))); break;
      case kXResolution: x = numbers.Rational(at + 8); break;
      case kYResolution: y = numbers.Rational(at + 8); break;
      case kUnit: unit = static_cast<int>(numbers.Short(at + 8)); break;
      default: break;
    }
  }
  exif.xPixelsPerMetre = PixelsPerMetre(x, unit);
  exif.yPixelsPerMetre = PixelsPerMetre(y, unit);
  return exif;
}

}  // namespace qnv::tool
