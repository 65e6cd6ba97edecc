// The color of one pixel of a device-independent bitmap, and the decoding of run-length sources.
#include <cstring>

#include "reference/image_walk.h"

namespace qnv::reference {
namespace {

template <class T>
T ReadAs(const uint8_t* from) {
  T value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

// One color of a 16-bit pixel: the masked bits moved to the top of a byte, the gap below filled from the top.
uint8_t Component16(uint32_t pixel, uint32_t mask) {
  int up = 16;
  while ((1u << (16 - up)) < mask) --up;
  const uint32_t gap = (255u - ((mask << up) >> 8)) & 0xFFFF;
  int fill = 8;
  while ((1u << (8 - fill)) <= gap) --fill;
  const uint32_t value = ((pixel & mask) << up) >> 8;
  return static_cast<uint8_t>(value + (fill < 0 ? 0 : value >> fill));
}

}  // namespace

DibImage::DibImage(const void* info, const void* bits, int rowsUsed)
    : info_(static_cast<const uint8_t*>(info)), bits_(static_cast<const uint8_t*>(bits)) {
  std::memcpy(&header_, info, sizeof header_);
  const std::size_t rowBits = static_cast<std::size_t>(header_.biWidth) * header_.biBitCount;
  stride_ = ((rowBits + 7) / 8 + 3) / 4 * 4;
  if (header_.biCompression == BI_RLE8 || header_.biCompression == BI_RLE4) {
    decoded_ = DecodeRle(bits_, header_.biCompression == BI_RLE4, header_.biWidth, rowsUsed);
  }
}

Rgb DibImage::Pixel(int column, int storedRow) const {
  if (!decoded_.empty()) {
    return TableColor(decoded_[static_cast<std::size_t>(storedRow) * static_cast<std::size_t>(header_.biWidth) +
                               static_cast<std::size_t>(column)]);
  }
  const uint8_t* row = bits_ + static_cast<std::size_t>(storedRow) * stride_;
  const std::size_t x = static_cast<std::size_t>(column);
  switch (header_.biBitCount) {
    case 1: return TableColor(row[x / 8] >> (7 - x % 8) & 1u);
    case 4: return TableColor(x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 15u);
    case 8: return TableColor(row[x]);
    case 16: return Color16(ReadAs<uint16_t>(row + 2 * x));
    case 24: return {row[3 * x], row[3 * x + 1], row[3 * x + 2]};
    default: return {row[4 * x], row[4 * x + 1], row[4 * x + 2]};
  }
}

Rgb DibImage::TableColor(uint32_t index) const {
  const uint32_t full = 1u << header_.biBitCount;
  if (header_.biClrUsed != 0 && header_.biClrUsed < full && index >= header_.biClrUsed) return {255, 255, 255};
  const uint8_t* entry = info_ + header_.biSize + std::size_t{4} * index;
  return {entry[0], entry[1], entry[2]};
}

Rgb DibImage::Color16(uint32_t pixel) const {
  uint32_t red = 0x7C00, green = 0x03E0, blue = 0x001F;
  if (header_.biCompression == BI_BITFIELDS) {
    red = ReadAs<uint32_t>(info_ + 40) & 0xFFFF;
    green = ReadAs<uint32_t>(info_ + 44) & 0xFFFF;
    blue = ReadAs<uint32_t>(info_ + 48) & 0xFFFF;
  }
  return {Component16(pixel, blue), Component16(pixel, green), Component16(pixel, red)};
}

std::vector<uint8_t> DecodeRle(const uint8_t* data, bool fourBits, int width, int rows) {
  std::vector<uint8_t> out(static_cast<std::size_t>(width) * static_cast<std::size_t>(rows), 0);
  int x = 0;
  int y = 0;
  const auto put = [&](uint8_t index) {
    if (x >= width) return;
    out[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)] = index;
    ++x;
  };
  const auto nibble = [](const uint8_t* from, int i) {
    return static_cast<uint8_t>(i % 2 == 0 ? from[i / 2] >> 4 : from[i / 2] & 15);
  };
  // Pixels that no code writes are index 0, as the picture starts out.
  while (y < rows) {
    const uint8_t length = *data++;
    const uint8_t value = *data++;
    if (length != 0) {
      for (int i = 0; i < length; ++i) put(fourBits ? nibble(&value, i % 2) : value);
    } else if (value == 0) {
      x = 0;
      ++y;
    } else if (value == 1) {
      break;
    } else if (value == 2) {
      x = std::min(x + data[0], width);
      y += data[1];
      data += 2;
    } else if (fourBits) {
      for (int i = 0; i < value; ++i) put(nibble(data, i));
      data += (value + 3) / 4 * 2;
    } else {
      // An overlong run gives up the bytes that do not fit: they are taken as codes again.
      const int fitting = std::min<int>(value, width - x);
      for (int i = 0; i < fitting; ++i) put(data[i]);
      data += (fitting + 1) / 2 * 2;
    }
  }
  return out;
}

}  // namespace qnv::reference
