// Builds BMP files in memory.
#include "qnvtool/output/bmp_writer.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "qnvdrv10.h"
#include "qnvtool/base/output_file.h"
#include "qnvtool/input/dib.h"

namespace qnv::tool {
namespace {

constexpr uint32_t kHeaders = 14 + 40;

// File header and bitmap header. colors: entries of the color table, which the caller appends. imageSize: bytes of the
// pixels.
Bytes Headers(int width, int height, int dpi, uint32_t bitCount, uint32_t compression, std::size_t colors,
              std::size_t imageSize) {
  const uint32_t offset = kHeaders + static_cast<uint32_t>(colors) * 4;
  const auto perMetre = static_cast<uint32_t>(std::lround(dpi / 0.0254));
  Bytes file{'B', 'M'};
  AppendU32(file, offset + static_cast<uint32_t>(imageSize));
  AppendU32(file, 0);
  AppendU32(file, offset);
  AppendU32(file, 40);
  AppendU32(file, static_cast<uint32_t>(width));
  AppendU32(file, static_cast<uint32_t>(height));
  AppendU16(file, 1);
  AppendU16(file, bitCount);
  AppendU32(file, compression);
  AppendU32(file, static_cast<uint32_t>(imageSize));
  AppendU32(file, perMetre);
  AppendU32(file, perMetre);
  AppendU32(file, static_cast<uint32_t>(colors));
  AppendU32(file, 0);
  return file;
}

// The number of equal pixels from `at` on, at most 255.
std::size_t RunLength(const uint8_t* row, std::size_t at, std::size_t width) {
  std::size_t end = at + 1;
  while (end < width && row[end] == row[at] && end - at < 255) ++end;
  return end - at;
}

// Encodes a row as runs of three or more equal pixels and literals of the others.
void AppendEncodedRow(Bytes& codes, const uint8_t* row, std::size_t width) {
  for (std::size_t x = 0; x < width;) {
    const std::size_t run = RunLength(row, x, width);
    std::size_t end = x;  // end of a literal: where the next run of three begins
    while (end < width && end - x < 255 && RunLength(row, end, width) < 3) ++end;
    if (run >= 3 || end - x < 3) {  // absolute runs have three pixels or more
      codes.push_back(static_cast<uint8_t>(run));
      codes.push_back(row[x]);
      x += run;
      continue;
    }
    codes.push_back(0);
    codes.push_back(static_cast<uint8_t>(end - x));
    codes.insert(codes.end(), row + x, row + end);
    if ((end - x) % 2 != 0) codes.push_back(0);
    x = end;
  }
  codes.push_back(0);
  codes.push_back(0);
}

}  // namespace

Bytes EncodeBmp24(int width, int height, int dpi, const std::vector<uint8_t>& pixels) {
  const std::size_t stride = DibStride(width, 24);
  const std::size_t row = static_cast<std::size_t>(width) * 3;
  Bytes file = Headers(width, height, dpi, 24, BI_RGB, 0, stride * static_cast<std::size_t>(height));
  for (int y = height - 1; y >= 0; --y) {
    const auto first = pixels.begin() + static_cast<std::ptrdiff_t>(static_cast<std::size_t>(y) * row);
    file.insert(file.end(), first, first + static_cast<std::ptrdiff_t>(row));
    file.insert(file.end(), stride - row, 0);
  }
  return file;
}

// Rows are encoded bottom row first, as run-length bitmaps require.
Bytes EncodeBmpRle8(int width, int height, int dpi, const std::vector<uint8_t>& indices,
                    const std::vector<uint32_t>& palette) {
  const auto row = static_cast<std::size_t>(width);
  Bytes codes;
  for (int y = height - 1; y >= 0; --y)
    AppendEncodedRow(codes, indices.data() + static_cast<std::size_t>(y) * row, row);
  codes.push_back(0);
  codes.push_back(1);
  Bytes file = Headers(width, height, dpi, 8, BI_RLE8, palette.size(), codes.size());
  for (const uint32_t color : palette) AppendU32(file, color);
  file.insert(file.end(), codes.begin(), codes.end());
  return file;
}

void WriteFile(const std::string& path, const Bytes& bytes) {
  OutputFile file(path);
  if (std::fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size()) file.Fail();
  file.Close();
}

}  // namespace qnv::tool
