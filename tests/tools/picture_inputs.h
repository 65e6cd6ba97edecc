// Pictures made in memory, opened as files are, and read as a whole.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "bmp_file.h"
#include "qnvtool/input/picture_file.h"

namespace qnv::test {

// What a picture gives out when all of its rows are asked for at once.
struct WholePicture {
  int width = 0;
  int height = 0;
  int xPixelsPerMetre = 0;
  int yPixelsPerMetre = 0;
  bool topDown = false;
  int bitCount = 0;
  uint32_t compression = 0;
  std::vector<uint8_t> info;
  std::vector<uint8_t> bits;
  std::vector<std::string> notes;
};

// Opens a picture of any format, its first page. Notes are appended to `notes` unless it is null.
inline tool::PicturePtr OpenPicture(std::vector<uint8_t> file, std::vector<std::string>* notes = nullptr,
                                    const tool::PictureDecoders& decoders = {}) {
  const tool::NoteSink sink = [notes](const std::string& note) {
    if (notes != nullptr) notes->push_back(note);
  };
  return tool::OpenPictures(tool::InputOf(std::move(file), "x.bmp"), decoders, sink)->Open(0);
}

// `bitsSize`: bytes of the bits; 0: rows as the header says.
inline WholePicture ReadWhole(const std::vector<uint8_t>& file, const tool::PictureDecoders& decoders = {},
                              std::size_t bitsSize = 0) {
  WholePicture whole;
  const tool::PicturePtr picture = OpenPicture(file, &whole.notes, decoders);
  whole.width = picture->width();
  whole.height = picture->height();
  whole.xPixelsPerMetre = picture->xPixelsPerMetre();
  whole.yPixelsPerMetre = picture->yPixelsPerMetre();
  const auto rows = picture->Rows();
  const tool::DibWindow window = rows->Window(0, picture->height());
  const auto field = [&](std::size_t at) {
    return static_cast<uint32_t>(window.info[at] | window.info[at + 1] << 8 | window.info[at + 2] << 16) |
           static_cast<uint32_t>(window.info[at + 3]) << 24;
  };
  whole.topDown = static_cast<int32_t>(field(8)) < 0;
  whole.bitCount = static_cast<int>(field(14) & 0xFFFF);
  whole.compression = field(16);
  const std::size_t after = whole.compression == BI_BITFIELDS ? 12 : field(32) * 4;
  whole.info.assign(window.info, window.info + 40 + after);
  const std::size_t size =
      bitsSize != 0 ? bitsSize : tool::DibStride(whole.width, whole.bitCount) * static_cast<std::size_t>(whole.height);
  whole.bits.assign(window.bits, window.bits + size);
  return whole;
}

}  // namespace qnv::test
