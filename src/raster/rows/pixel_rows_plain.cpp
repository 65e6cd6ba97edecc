// Level plain: image kernels, one pixel at a time. They define the results that the kernels of all other levels must
// have.
#include <algorithm>
#include <cstring>

#include "raster/rows/gray_weights.h"
#include "raster/rows/row_tables.h"
#include "raster/rows/store_pixel.h"

namespace qnv::plain {
namespace {

// The remainder of the division is dropped.
uint8_t GrayOf(uint32_t red, uint32_t green, uint32_t blue) {
  return static_cast<uint8_t>((red * kRedWeight + green * kGreenWeight + blue * kBlueWeight) / kGrayDivisor);
}

template <std::size_t kBytes>
void ExpandBytes(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table) {
  StorePixels<kBytes>(dst, pixels, [=](std::size_t i) { return table[source[i]]; });
}

// The high half of a byte is the left one of its two pixels.
template <std::size_t kBytes>
void ExpandNibbles(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table) {
  StorePixels<kBytes>(dst, pixels, [=](std::size_t i) {
    const std::size_t at = i + (odd ? 1 : 0);
    return table[at % 2 == 0 ? source[at / 2] >> 4 : source[at / 2] & 0x0F];
  });
}

template <std::size_t kBytes>
void Reverse(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i) std::memcpy(dst + kBytes * i, source + kBytes * (pixels - 1 - i), kBytes);
}

}  // namespace

void ExpandBytesRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table) {
  ExpandBytes<3>(dst, source, pixels, table);
}

void ExpandBytesRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table) {
  ExpandBytes<1>(dst, source, pixels, table);
}

void ExpandNibblesRow24(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table) {
  ExpandNibbles<3>(dst, source, odd, pixels, table);
}

void ExpandNibblesRow8(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table) {
  ExpandNibbles<1>(dst, source, odd, pixels, table);
}

void UnpackRow16(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks) {
  for (std::size_t i = 0; i < pixels; ++i) {
    const uint32_t pixel = static_cast<uint32_t>(source[2 * i] | source[2 * i + 1] << 8);
    for (std::size_t c = 0; c < 3; ++c) dst[3 * i + c] = masks.component[c].Extract(pixel);
  }
}

void PackRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  StorePixels<3>(dst, pixels, [=](std::size_t i) {
    uint32_t pixel;
    std::memcpy(&pixel, source + 4 * i, 4);
    return pixel;
  });
}

void PackSwapRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  StorePixels<3>(dst, pixels, [=](std::size_t i) {
    uint32_t pixel;
    std::memcpy(&pixel, source + 4 * i, 4);
    return (pixel & 0xFF00) | (pixel & 0xFF) << 16 | (pixel >> 16 & 0xFF);
  });
}

void GrayRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i) {
    dst[i] = GrayOf(source[3 * i + 2], source[3 * i + 1], source[3 * i]);
  }
}

void GrayRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i) {
    dst[i] = GrayOf(source[4 * i + 2], source[4 * i + 1], source[4 * i]);
  }
}

void GrayRow16(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks) {
  for (std::size_t i = 0; i < pixels; ++i) {
    const uint32_t pixel = static_cast<uint32_t>(source[2 * i] | source[2 * i + 1] << 8);
    const ComponentMask* const m = masks.component;
    dst[i] = GrayOf(m[2].Extract(pixel), m[1].Extract(pixel), m[0].Extract(pixel));
  }
}

void RegrayRow24(uint8_t* dst, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i, dst += 3) {
    dst[0] = dst[1] = dst[2] = GrayOf(dst[0], dst[1], dst[2]);
  }
}

void TripleRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) {
  for (std::size_t i = 0; i < pixels; ++i, dst += 3) dst[0] = dst[1] = dst[2] = source[i];
}

void MarkRow24(uint8_t* marks, const uint8_t* source, std::size_t pixels, uint8_t skip, uint8_t mark) {
  for (std::size_t i = 0; i < pixels; ++i, source += 3) {
    if (source[0] != skip || source[1] != skip || source[2] != skip) marks[i] = mark;
  }
}

void ReverseRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels) { Reverse<3>(dst, source, pixels); }

void ReverseRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels) { Reverse<1>(dst, source, pixels); }

void RepeatRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor) {
  for (std::size_t i = 0; i < pixels; ++i) std::memcpy(dst + 3 * i, source + 3 * (i / factor), 3);
}

void RepeatRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor) {
  for (std::size_t i = 0; i < pixels; ++i) dst[i] = source[i / factor];
}

void ShuffleRow(uint8_t* dst, const uint8_t* source, const ShuffleGroup* groups, std::size_t stride,
                std::size_t total) {
  for (std::size_t done = 0; done < total; done += stride, ++groups) {
    const std::size_t count = std::min(stride, total - done);
    for (std::size_t i = 0; i < count; ++i) dst[done + i] = source[groups->from + groups->bytes[i]];
  }
}

// Every entry has a plain kernel.
constinit const PixelRows kPixelRows = {
    .ExpandBytesRow24 = plain::ExpandBytesRow24,
    .ExpandBytesRow8 = plain::ExpandBytesRow8,
    .ExpandNibblesRow24 = plain::ExpandNibblesRow24,
    .ExpandNibblesRow8 = plain::ExpandNibblesRow8,
    .UnpackRow16 = plain::UnpackRow16,
    .PackRow32 = plain::PackRow32,
    .PackSwapRow32 = plain::PackSwapRow32,
    .GrayRow24 = plain::GrayRow24,
    .GrayRow32 = plain::GrayRow32,
    .GrayRow16 = plain::GrayRow16,
    .RegrayRow24 = plain::RegrayRow24,
    .TripleRow24 = plain::TripleRow24,
    .MarkRow24 = plain::MarkRow24,
    .ReverseRow24 = plain::ReverseRow24,
    .ReverseRow8 = plain::ReverseRow8,
    .RepeatRow24 = plain::RepeatRow24,
    .RepeatRow8 = plain::RepeatRow8,
    .ShuffleRow = plain::ShuffleRow,
};

}  // namespace qnv::plain
