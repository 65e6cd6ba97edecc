// BMP files of every header generation, made field by field, and files of noise.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <vector>

#include "qnvdrv10.h"

namespace qnv::test {

struct BmpFile {
  uint32_t headerSize = 40;
  int32_t width = 5;
  int32_t height = 3;
  uint16_t planes = 1;
  uint16_t bitCount = 24;
  uint32_t compression = 0;
  uint32_t imageSize = 0;
  uint32_t colors = 0;  // biClrUsed
  uint32_t xPixelsPerMetre = 0;
  uint32_t yPixelsPerMetre = 0;
  std::vector<uint32_t> masks = {};  // after a 40-byte header, else at their place inside the header
  std::vector<uint32_t> table = {};  // 0xRRGGBB
  std::vector<uint8_t> pixels = {};  // as they stand in the file
  int32_t offsetChange = 0;          // added to the right bfOffBits

  // Bytes from one row to the next.
  std::size_t stride() const { return (static_cast<std::size_t>(width) * bitCount + 31) / 32 * 4; }

  std::vector<uint8_t> Bytes() const {
    std::vector<uint8_t> file{'B', 'M'};
    file.resize(14);  // bfOffBits follows below
    Put(file, 4, headerSize);
    for (const int32_t side : {width, height}) Put(file, headerSize == 12 ? 2 : 4, static_cast<uint32_t>(side));
    Put(file, 2, planes);
    Put(file, 2, bitCount);
    if (headerSize >= 40) {
      for (const uint32_t field : {compression, imageSize, xPixelsPerMetre, yPixelsPerMetre, colors, 0u}) {
        Put(file, 4, field);
      }
    }
    for (const uint32_t mask : masks) Put(file, 4, mask);
    // What the larger headers hold besides is not zero, so that a reader at a wrong place shows itself.
    while (file.size() < 14 + headerSize) file.push_back(0x5A);
    for (const uint32_t color : table) Put(file, headerSize == 12 ? 3 : 4, color);
    const uint32_t offset = static_cast<uint32_t>(file.size()) + static_cast<uint32_t>(offsetChange);
    for (std::size_t i = 0; i < 4; ++i) file[10 + i] = static_cast<uint8_t>(offset >> 8 * i);
    file.insert(file.end(), pixels.begin(), pixels.end());
    return file;
  }

 private:
  static void Put(std::vector<uint8_t>& file, int bytes, uint32_t value) {
    for (int i = 0; i < bytes; ++i) file.push_back(static_cast<uint8_t>(value >> 8 * i));
  }
};

// Noise to be painted: every bit of every pixel counts. Run-length codes are noise too: runs, absolute stretches, jumps
// and ends wherever they fall.
inline BmpFile NoiseBmp(uint16_t bits, int32_t width, int32_t height, uint32_t compression = BI_RGB) {
  const bool runs = compression == BI_RLE4 || compression == BI_RLE8;
  BmpFile file;
  file.bitCount = bits;
  file.width = width;
  file.height = height;
  file.compression = compression;
  if (bits <= 8) {
    for (uint32_t i = 0; i < 1u << bits; ++i) file.table.push_back(i * 0x3F1D07 & 0xFFFFFF);
  }
  uint32_t state = bits * 77u + static_cast<uint32_t>(width);
  const std::size_t size = runs ? 900 : file.stride() * static_cast<std::size_t>(std::abs(height));
  for (std::size_t i = 0; i < size; ++i) {
    state = state * 1664525 + 1013904223;
    file.pixels.push_back(static_cast<uint8_t>(state >> 24));
  }
  return file;
}

}  // namespace qnv::test
