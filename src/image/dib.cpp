// Checks the header of a device-independent bitmap. Everything here may have been written by somebody hostile.
#include "image/dib.h"

#include <cstring>

namespace qnv {
namespace {

constexpr int32_t kMaxPixels = 32767;  // width and height, so that source rectangles fit 16 bits

// Limits for biSize, which says where the color table begins: not inside the header, and not farther from it than hosts
// can be expected to hold memory for.
constexpr uint32_t kMinTableOffset = 40;
constexpr uint32_t kMaxTableOffset = 4096;

// Bitmaps whose data are rows of pixels or run lengths. 4 and 5 stand for embedded files in a format of their own,
// values above 6 are not defined.
constexpr uint32_t kMaxRowCompression = BI_BITFIELDS;
constexpr uint32_t kAlphaBitfields = 6;  // read as plain rows

bool IsDepth(uint16_t bits) { return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32; }

}  // namespace

bool ReadDib(const void* bitmapInfo, Dib* dib) {
  BITMAPINFOHEADER header;
  std::memcpy(&header, bitmapInfo, sizeof header);
  if (header.biPlanes != 1 || !IsDepth(header.biBitCount)) return false;
  if (header.biWidth < 1 || header.biWidth > kMaxPixels) return false;
  if (header.biHeight == 0 || header.biHeight < -kMaxPixels || header.biHeight > kMaxPixels) return false;
  if (header.biCompression == BI_RLE8 && header.biBitCount != 8) return false;
  if (header.biCompression == BI_RLE4 && header.biBitCount != 4) return false;
  if (header.biCompression > kMaxRowCompression && header.biCompression != kAlphaBitfields) return false;
  const bool hasPalette = header.biBitCount <= 8;
  if (hasPalette && (header.biSize < kMinTableOffset || header.biSize > kMaxTableOffset)) return false;
  dib->width = header.biWidth;
  dib->topDown = header.biHeight < 0;
  dib->height = dib->topDown ? -header.biHeight : header.biHeight;
  dib->bitCount = header.biBitCount;
  dib->compression = header.biCompression;
  dib->colorsUsed = header.biClrUsed;
  dib->info = static_cast<const uint8_t*>(bitmapInfo);
  dib->infoSize = header.biSize;
  return true;
}

}  // namespace qnv
