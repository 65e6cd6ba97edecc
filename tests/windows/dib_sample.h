// Device-independent bitmaps of noise, in memory that both the library and GDI read.
#pragma once

#include <windows.h>

#include <cstdint>
#include <ostream>
#include <vector>

namespace qnv::test {

struct DibForm {
  const char* name;
  uint16_t bitCount;
  uint32_t compression = BI_RGB;
  uint32_t masks[3] = {};  // red, green, blue; of bit-fields
  uint32_t headerSize = 40;
  uint32_t colorsUsed = 0;
};

inline void PrintTo(const DibForm& form, std::ostream* out) { *out << form.name; }

// Every form that both sides read alike.
inline constexpr DibForm kDibForms[] = {
    {"1 bit", 1},
    {"4 bits", 4},
    {"8 bits", 8},
    {"16 bits, five each", 16},
    {"16 bits, mask 5-5-5", 16, BI_BITFIELDS, {0x7C00, 0x03E0, 0x001F}},
    {"16 bits, mask 5-6-5", 16, BI_BITFIELDS, {0xF800, 0x07E0, 0x001F}},
    {"16 bits, mask 5-6-5, blue first", 16, BI_BITFIELDS, {0x001F, 0x07E0, 0xF800}},
    {"16 bits, mask 4-4-4", 16, BI_BITFIELDS, {0x0F00, 0x00F0, 0x000F}},
    {"24 bits", 24},
    {"32 bits", 32},
    {"32 bits, the plain masks", 32, BI_BITFIELDS, {0x00FF0000, 0x0000FF00, 0x000000FF}},
    {"8 bits, header version 4", 8, BI_RGB, {}, sizeof(BITMAPV4HEADER)},
    {"16 bits, mask 5-6-5, header version 4", 16, BI_BITFIELDS, {0xF800, 0x07E0, 0x001F}, sizeof(BITMAPV4HEADER)},
    {"16 bits, mask 5-6-5, header version 5", 16, BI_BITFIELDS, {0xF800, 0x07E0, 0x001F}, sizeof(BITMAPV5HEADER)},
    {"24 bits, header version 5", 24, BI_RGB, {}, sizeof(BITMAPV5HEADER)},
};
inline constexpr DibForm kPlainForm{"24 bits", 24};
inline constexpr DibForm kRle4Form{"RLE4", 4, BI_RLE4};
inline constexpr DibForm kRle8Form{"RLE8", 8, BI_RLE8};

struct DibShape {
  int32_t width = 29;
  int32_t height = 13;
  bool topDown = false;
  uint64_t seed = 7;
  bool gray = false;               // every pixel is a gray that a gray band shows without rounding
  std::vector<uint8_t> runs = {};  // run-length data in place of noise
};

class DibSample {
 public:
  DibSample(const DibForm& form, const DibShape& shape);

  int32_t width() const { return shape_.width; }
  int32_t height() const { return shape_.height; }  // rows, whatever their order
  const BITMAPINFO* info() const { return reinterpret_cast<const BITMAPINFO*>(info_.data()); }
  BITMAPINFOHEADER* header() { return reinterpret_cast<BITMAPINFOHEADER*>(info_.data()); }
  std::vector<uint8_t>& bytes() { return bits_; }
  const void* bits() const { return bits_.data(); }
  const void* Row(uint32_t stored) const { return bits_.data() + stored * stride_; }

 private:
  void MakeGray(const DibForm& form);

  DibShape shape_;
  std::size_t stride_;
  std::vector<uint8_t> info_;
  std::vector<uint8_t> bits_;
};

}  // namespace qnv::test
