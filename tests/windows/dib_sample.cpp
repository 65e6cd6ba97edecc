// Makes bitmaps of noise in every depth and compression.
#include "windows/dib_sample.h"

#include <algorithm>
#include <cstring>

#include "support/random_bytes.h"

namespace qnv::test {

DibSample::DibSample(const DibForm& form, const DibShape& shape)
    : shape_(shape),
      stride_((static_cast<std::size_t>(shape.width) * form.bitCount + 31) / 32 * 4),
      bits_(shape.runs.empty() ? std::vector<uint8_t>(stride_ * static_cast<std::size_t>(shape.height)) : shape.runs) {
  RandomBytes random(shape.seed);
  if (shape.runs.empty()) {
    for (uint8_t& byte : bits_) byte = random.Byte();
    if (shape.gray) MakeGray(form);
  }

  // Longer headers hold the masks at the byte where shorter ones are followed by them.
  const bool masked = form.compression == BI_BITFIELDS;
  const std::size_t colors = form.bitCount > 8 ? 0 : form.colorsUsed != 0 ? form.colorsUsed : 1u << form.bitCount;
  info_.resize(std::max<std::size_t>(form.headerSize, masked ? 52 : 40) + colors * sizeof(RGBQUAD));
  header()->biSize = form.headerSize;
  header()->biWidth = shape.width;
  header()->biHeight = shape.topDown ? -shape.height : shape.height;
  header()->biPlanes = 1;
  header()->biBitCount = form.bitCount;
  header()->biCompression = form.compression;
  header()->biSizeImage = static_cast<DWORD>(bits_.size());  // the platform asks for it where rows are compressed
  header()->biClrUsed = form.colorsUsed;
  if (masked) std::memcpy(info_.data() + 40, form.masks, sizeof form.masks);
  RandomBytes table(shape.seed + 1000);
  for (std::size_t i = 0; i < colors; ++i) {
    RGBQUAD color{};
    color.rgbBlue = table.Byte();
    color.rgbGreen = shape.gray ? color.rgbBlue : table.Byte();
    color.rgbRed = shape.gray ? color.rgbBlue : table.Byte();
    std::memcpy(info_.data() + form.headerSize + i * sizeof color, &color, sizeof color);
  }
}

// Gray tables are enough where there is one.
void DibSample::MakeGray(const DibForm& form) {
  const bool fiveEach = form.compression == BI_RGB || form.masks[0] == 0x7C00;
  for (std::size_t i = 0; form.bitCount == 16 && i + 1 < bits_.size(); i += 2) {
    // Components of different widths meet only in black and white.
    const uint16_t level = fiveEach ? bits_[i] & 31 : (bits_[i] & 1) * 31;
    const uint16_t pixel = static_cast<uint16_t>(fiveEach ? level * 0x0421 : level != 0 ? 0xFFFF : 0);
    std::memcpy(&bits_[i], &pixel, sizeof pixel);
  }
  for (std::size_t row = 0; form.bitCount > 16 && row < bits_.size(); row += stride_) {
    for (std::size_t i = row; i + 3 <= row + stride_; i += form.bitCount / 8u) bits_[i + 1] = bits_[i + 2] = bits_[i];
  }
}

}  // namespace qnv::test
