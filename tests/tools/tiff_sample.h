// TIFF files of every kind, written by libtiff, and what they show.
#pragma once

#include <tiffio.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "decoded_pictures.h"

namespace qnv::test::picture_formats {

struct TiffSample {
  uint16_t photometric = PHOTOMETRIC_RGB;
  uint16_t bits = 8;
  uint16_t samples = 3;
  uint16_t compression = COMPRESSION_NONE;
  uint16_t planar = PLANARCONFIG_CONTIG;
  uint16_t orientation = 1;
  uint32_t rowsPerStrip = 5;
  uint32_t tile = 0;   // side
  uint16_t alpha = 0;  // kind of the last sample; 0: none
  uint16_t fillOrder = FILLORDER_MSB2LSB;
  float dpi = 0;
  const char* mode = "w";  // "wb": big endian, "wl": little endian, "w8": BigTIFF
  int width = 21;
  int height = 18;

  uint32_t Value(int x, int y, int sample) const { return Component(x, y, sample, (1u << bits) - 1); }

  static uint16_t MapValue(uint32_t i, int channel) {
    return static_cast<uint16_t>((i * 37 + static_cast<uint32_t>(channel) * 90 + 5) % 256 * 257);
  }

  // A row, or a part of one: of all samples, or of one plane.
  FileBytes Row(int y, int left, int columns, int plane) const {
    const int each = plane < 0 ? samples : 1;
    FileBytes row((static_cast<std::size_t>(columns * each * bits) + 7) / 8);
    for (int i = 0; i < columns * each; ++i) {
      const int x = left + i / each;
      if (x >= width || y >= height) continue;
      const uint32_t value = Value(x, y, plane < 0 ? i % each : plane);
      const auto bit = static_cast<std::size_t>(i) * bits;
      if (bits == 16) {
        const auto word = static_cast<uint16_t>(value);
        std::memcpy(row.data() + bit / 8, &word, 2);
      } else {
        row[bit / 8] = static_cast<uint8_t>(row[bit / 8] | value << (8 - std::size_t{bits} - bit % 8));
      }
    }
    return row;
  }

  void AddTo(TIFF* tiff) const {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<uint32_t>(width));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<uint32_t>(height));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometric);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, compression);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, planar);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, orientation);
    if (fillOrder != FILLORDER_MSB2LSB) TIFFSetField(tiff, TIFFTAG_FILLORDER, fillOrder);
    if (alpha != 0) TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha);
    if (dpi > 0) {
      TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
      TIFFSetField(tiff, TIFFTAG_XRESOLUTION, dpi);
      TIFFSetField(tiff, TIFFTAG_YRESOLUTION, dpi * 2);
    }
    std::vector<uint16_t> map[3];
    if (photometric == PHOTOMETRIC_PALETTE) {
      for (int c = 0; c < 3; ++c) {
        for (uint32_t i = 0; i < 1u << bits; ++i) map[c].push_back(MapValue(i, c));
      }
      TIFFSetField(tiff, TIFFTAG_COLORMAP, map[0].data(), map[1].data(), map[2].data());
    }
    const int planes = planar == PLANARCONFIG_SEPARATE ? samples : 1;
    if (tile != 0) {
      TIFFSetField(tiff, TIFFTAG_TILEWIDTH, tile);
      TIFFSetField(tiff, TIFFTAG_TILELENGTH, tile);
      const int side = static_cast<int>(tile);
      for (int top = 0; top < height; top += side) {
        for (int left = 0; left < width; left += side) {
          FileBytes bytes;
          for (int y = top; y < top + side; ++y) {
            const FileBytes row = Row(y, left, side, -1);
            bytes.insert(bytes.end(), row.begin(), row.end());
          }
          TIFFWriteTile(tiff, bytes.data(), static_cast<uint32_t>(left), static_cast<uint32_t>(top), 0, 0);
        }
      }
    } else {
      TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, rowsPerStrip);
      for (int plane = 0; plane < planes; ++plane) {
        for (int y = 0; y < height; ++y) {
          FileBytes row = Row(y, 0, width, planes > 1 ? plane : -1);
          TIFFWriteScanline(tiff, row.data(), static_cast<uint32_t>(y), static_cast<uint16_t>(plane));
        }
      }
    }
  }

  // What is to be shown for pixel (x, y) of the file.
  uint32_t Color(int x, int y) const {
    const auto byte = [&](int sample) {
      const uint32_t value = Value(x, y, sample);
      return bits == 16 ? (value + 128) / 257 : value * 255 / ((1u << bits) - 1);
    };
    switch (photometric) {
      case PHOTOMETRIC_MINISBLACK: return byte(0) * 0x010101;
      case PHOTOMETRIC_MINISWHITE: return (255 - byte(0)) * 0x010101;
      case PHOTOMETRIC_PALETTE: {
        const uint32_t index = Value(x, y, 0);
        return static_cast<uint32_t>(MapValue(index, 0) >> 8) << 16 |
               static_cast<uint32_t>(MapValue(index, 1) >> 8) << 8 | static_cast<uint32_t>(MapValue(index, 2) >> 8);
      }
      case PHOTOMETRIC_SEPARATED: {
        const auto mix = [&](int ink) { return (255 - byte(ink)) * (255 - byte(3)) / 255; };
        return mix(0) << 16 | mix(1) << 8 | mix(2);
      }
      default: break;
    }
    return byte(0) << 16 | byte(1) << 8 | byte(2);
  }
};

inline FileBytes TiffBytes(const std::vector<TiffSample>& pages, int thumbnail = -1) {
  const std::string path = testing::TempDir() + "/tiff_sample.tif";
  TIFF* const tiff = TIFFOpen(path.c_str(), pages.front().mode);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    if (static_cast<int>(i) == thumbnail) TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, FILETYPE_REDUCEDIMAGE);
    pages[i].AddTo(tiff);
    TIFFWriteDirectory(tiff);
  }
  TIFFClose(tiff);
  tool::Bytes bytes = tool::OpenInput(path)->All(std::size_t{1} << 30, "a test");
  std::remove(path.c_str());
  return bytes;
}

}  // namespace qnv::test::picture_formats
