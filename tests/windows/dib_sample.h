// Device-independent bitmaps of noise, in memory that both the library and GDI read.
#pragma once

#include <windows.h>

#include <cstdint>
#include <ostream>
#include <vector>

#include "windows/gdi_surface.h"

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

enum class RowOrder { kBottomUp, kTopDown };

class DibSample {
 public:
  // `gray`: every pixel is a gray that a gray band shows without rounding.
  DibSample(const DibForm& form, int32_t width, int32_t height, RowOrder order, uint64_t seed, bool gray = false);

  // Compressed rows in place of noise.
  DibSample(const DibForm& form, int32_t width, int32_t height, std::vector<uint8_t> compressed, uint64_t seed,
            bool gray = false);

  const BITMAPINFO* info() const { return reinterpret_cast<const BITMAPINFO*>(info_.data()); }
  const void* bits() const { return bits_.data(); }
  const uint8_t* Row(int32_t stored) const;
  // Changes the header alone.
  void Spoil(void (*change)(BITMAPINFOHEADER*));

  // Keeps the indices of an 8-bit image below `limit`.
  void LimitIndices(uint32_t limit);

  int32_t width() const { return width_; }
  int32_t height() const { return height_; }  // rows, whatever their order

 private:
  void WriteHeader(const DibForm& form, RowOrder order, uint64_t seed, bool gray);
  void MakeGray(const DibForm& form);

  int32_t width_;
  int32_t height_;
  std::size_t stride_ = 0;
  std::vector<uint8_t> info_;
  std::vector<uint8_t> bits_;
};

}  // namespace qnv::test
