// Writes the headers of bitmaps.
#include "qnvtool/input/dib.h"

#include "qnvdrv10.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kRowsAt = 8;  // biHeight

int Lightness(uint32_t color) {
  return static_cast<int>((color >> 16 & 0xFF) * 30 + (color >> 8 & 0xFF) * 59 + (color & 0xFF) * 11);
}

}  // namespace

Bytes MakeDibInfo(const DibForm& form, int rows) {
  Bytes info;
  AppendU32(info, 40);
  AppendU32(info, static_cast<uint32_t>(form.width));
  AppendU32(info, static_cast<uint32_t>(rows));
  AppendU16(info, 1);
  AppendU16(info, static_cast<uint32_t>(form.bitCount));
  AppendU32(info, form.compression);
  for (int i = 0; i < 3; ++i) AppendU32(info, 0);  // biSizeImage and the resolution, which nobody reads
  AppendU32(info, static_cast<uint32_t>(form.table.size()));
  AppendU32(info, 0);
  for (const uint32_t color : form.table) AppendU32(info, color);
  if (form.compression == BI_BITFIELDS) {
    for (const uint32_t mask : form.masks) AppendU32(info, mask);
  }
  return info;
}

void SetDibRows(Bytes& info, int rows) {
  for (std::size_t i = 0; i < 4; ++i) info[kRowsAt + i] = static_cast<uint8_t>(static_cast<uint32_t>(rows) >> 8 * i);
}

Bytes WhiteRow(const DibForm& form) {
  if (form.bitCount > 8) return Bytes(form.stride(), 0xFF);
  std::size_t lightest = 0;
  for (std::size_t i = 1; i < form.table.size(); ++i) {
    if (Lightness(form.table[i]) > Lightness(form.table[lightest])) lightest = i;
  }
  uint32_t byte = static_cast<uint32_t>(lightest);
  for (int bits = form.bitCount; bits < 8; bits *= 2) byte |= byte << bits;
  return Bytes(form.stride(), static_cast<uint8_t>(byte));
}

void WidenRowTo4(const uint8_t* from, int width, uint8_t* to) {
  for (std::size_t x = 0; x < static_cast<std::size_t>(width); ++x) {
    const int index = from[x / 4] >> (6 - x % 4 * 2) & 3;
    uint8_t& byte = to[x / 2];
    byte = x % 2 == 0 ? static_cast<uint8_t>(index << 4) : static_cast<uint8_t>(byte | index);
  }
}

}  // namespace qnv::tool
