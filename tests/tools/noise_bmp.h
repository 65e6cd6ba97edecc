// BMP files of noise, to be painted: every bit of every pixel counts.
#pragma once

#include <cstdlib>

#include "bmp_file.h"
#include "qnvdrv10.h"

namespace qnv::test {

// Run-length codes are noise too: runs, absolute stretches, jumps and ends wherever they fall.
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
