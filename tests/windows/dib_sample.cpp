// Makes bitmaps of noise in every depth and compression.
#include "windows/dib_sample.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "support/random_bytes.h"

namespace qnv::test {
namespace {

std::size_t StrideOf(int32_t width, uint16_t bitCount) {
  return ((static_cast<std::size_t>(width) * bitCount + 31) / 32) * 4;
}

// One color of a header's table.
RGBQUAD NoiseColor(RandomBytes* random, bool gray) {
  const uint8_t blue = random->Byte();
  return gray ? RGBQUAD{blue, blue, blue, 0} : RGBQUAD{blue, random->Byte(), random->Byte(), 0};
}

}  // namespace

DibSample::DibSample(const DibForm& form, int32_t width, int32_t height, RowOrder order, uint64_t seed, bool gray)
    : width_(width), height_(height), stride_(StrideOf(width, form.bitCount)) {
  WriteHeader(form, order, seed, gray);
  bits_.resize(stride_ * static_cast<std::size_t>(height));
  RandomBytes random(seed);
  for (uint8_t& byte : bits_) byte = random.Byte();
  if (gray) MakeGray(form);
}

DibSample::DibSample(const DibForm& form, int32_t width, int32_t height, std::vector<uint8_t> compressed, uint64_t seed,
                     bool gray)
    : width_(width), height_(height), bits_(std::move(compressed)) {
  WriteHeader(form, RowOrder::kBottomUp, seed, gray);
}

const uint8_t* DibSample::Row(int32_t stored) const {
  return bits_.data() + static_cast<std::size_t>(stored) * stride_;
}

void DibSample::Spoil(void (*change)(BITMAPINFOHEADER*)) {
  BITMAPINFOHEADER header;
  std::memcpy(&header, info_.data(), sizeof header);
  change(&header);
  std::memcpy(info_.data(), &header, sizeof header);
}

void DibSample::LimitIndices(uint32_t limit) {
  for (uint8_t& index : bits_) index = static_cast<uint8_t>(index % limit);
}

void DibSample::WriteHeader(const DibForm& form, RowOrder order, uint64_t seed, bool gray) {
  // Longer headers hold the masks at the byte where shorter ones are followed by them.
  const bool masked = form.compression == BI_BITFIELDS;
  const std::size_t colors = form.bitCount > 8 ? 0 : form.colorsUsed != 0 ? form.colorsUsed : 1u << form.bitCount;
  info_.resize(std::max<std::size_t>(form.headerSize, masked ? 52 : 40) + colors * sizeof(RGBQUAD));
  BITMAPINFOHEADER header{};
  header.biSize = form.headerSize;
  header.biWidth = width_;
  header.biHeight = order == RowOrder::kTopDown ? -height_ : height_;
  header.biPlanes = 1;
  header.biBitCount = form.bitCount;
  header.biCompression = form.compression;
  header.biSizeImage = static_cast<DWORD>(bits_.size());  // the platform asks for it where rows are compressed
  header.biClrUsed = form.colorsUsed;
  std::memcpy(info_.data(), &header, sizeof header);
  if (masked) std::memcpy(info_.data() + 40, form.masks, sizeof form.masks);
  RandomBytes random(seed + 1000);
  for (std::size_t i = 0; i < colors; ++i) {
    const RGBQUAD color = NoiseColor(&random, gray);
    std::memcpy(info_.data() + form.headerSize + i * sizeof color, &color, sizeof color);
  }
}

void DibSample::MakeGray(const DibForm& form) {
  const bool fiveEach = form.compression == BI_RGB || form.masks[0] == 0x7C00;
  switch (form.bitCount) {
    case 16:
      for (std::size_t i = 0; i + 1 < bits_.size(); i += 2) {
        // Components of different widths meet only in black and white.
        const uint16_t level = fiveEach ? bits_[i] & 31 : (bits_[i] & 1) * 31;
        const uint16_t pixel = static_cast<uint16_t>(fiveEach ? level * 0x0421 : level != 0 ? 0xFFFF : 0);
        std::memcpy(&bits_[i], &pixel, sizeof pixel);
      }
      break;
    case 24:
    case 32: {
      const std::size_t step = form.bitCount / 8u;
      for (std::size_t row = 0; row < bits_.size(); row += stride_) {
        for (std::size_t i = row; i + 3 <= row + stride_; i += step) bits_[i + 1] = bits_[i + 2] = bits_[i];
      }
      break;
    }
    default: break;  // gray tables are enough
  }
}

}  // namespace qnv::test
