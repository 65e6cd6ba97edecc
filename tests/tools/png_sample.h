// PNG files of every kind, written by libpng, and what they show.
#pragma once

#include <png.h>

#include <vector>

#include "decoded_pictures.h"

namespace qnv::test::picture_formats {

struct PngSample {
  int type = PNG_COLOR_TYPE_RGB;
  int depth = 8;
  bool interlaced = false;
  bool hasKey = false;  // tRNS: the alphas of a palette, or the color of pixel (0, 0)
  uint32_t pixelsPerMetre = 0;
  int width = 13;
  int height = 11;

  int channels() const {
    return type == PNG_COLOR_TYPE_RGB          ? 3
           : type == PNG_COLOR_TYPE_RGB_ALPHA  ? 4
           : type == PNG_COLOR_TYPE_GRAY_ALPHA ? 2
                                               : 1;
  }
  uint32_t largest() const { return (1u << depth) - 1; }
  uint32_t Value(int x, int y, int channel) const { return Component(x, y, channel, largest()); }

  static uint32_t PaletteColor(uint32_t i) { return (i * 0x3F1D07 + 0x102030) & 0xFFFFFF; }
  static uint32_t PaletteAlpha(uint32_t i) { return i * 91 % 256; }

  // What is to be shown.
  uint32_t Color(int x, int y) const {
    const auto byte = [&](int channel) {
      const uint32_t value = Value(x, y, channel);
      return depth == 16 ? (value * 255 + 32767) / 65535 : value * 255 / largest();
    };
    if (type == PNG_COLOR_TYPE_PALETTE) {
      const uint32_t index = Value(x, y, 0);
      return hasKey ? OverWhite(PaletteColor(index), PaletteAlpha(index)) : PaletteColor(index);
    }
    if (hasKey) {
      bool isKey = true;
      for (int c = 0; c < channels(); ++c) isKey &= Value(x, y, c) == Value(0, 0, c);
      if (isKey) return 0xFFFFFF;
    }
    const bool gray = channels() < 3;
    const uint32_t color = gray ? byte(0) * 0x010101 : byte(0) << 16 | byte(1) << 8 | byte(2);
    return channels() % 2 == 0 ? OverWhite(color, byte(channels() - 1)) : color;
  }

  FileBytes Bytes() const {
    FileBytes bytes;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_set_write_fn(
        png, &bytes,
        [](png_structp p, png_bytep data, png_size_t size) {
          auto* const to = static_cast<FileBytes*>(png_get_io_ptr(p));
          to->insert(to->end(), data, data + size);
        },
        nullptr);
    png_set_IHDR(png, info, static_cast<uint32_t>(width), static_cast<uint32_t>(height), depth, type,
                 interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_color palette[256];
    png_byte alphas[256];
    for (uint32_t i = 0; i < 256; ++i) {
      const uint32_t color = PaletteColor(i);
      palette[i] = {static_cast<png_byte>(color >> 16), static_cast<png_byte>(color >> 8),
                    static_cast<png_byte>(color)};
      alphas[i] = static_cast<png_byte>(PaletteAlpha(i));
    }
    if (type == PNG_COLOR_TYPE_PALETTE) png_set_PLTE(png, info, palette, 1 << depth);
    if (hasKey) {
      png_color_16 key{};
      key.gray = key.red = static_cast<png_uint_16>(Value(0, 0, 0));
      key.green = static_cast<png_uint_16>(Value(0, 0, 1));
      key.blue = static_cast<png_uint_16>(Value(0, 0, 2));
      png_set_tRNS(png, info, alphas, type == PNG_COLOR_TYPE_PALETTE ? 1 << depth : 0, &key);
    }
    if (pixelsPerMetre != 0) png_set_pHYs(png, info, pixelsPerMetre, pixelsPerMetre * 2, PNG_RESOLUTION_METER);
    png_write_info(png, info);
    std::vector<FileBytes> rows;
    std::vector<png_bytep> pointers;
    for (int y = 0; y < height; ++y) {
      FileBytes row((static_cast<std::size_t>(width * channels() * depth) + 7) / 8);
      for (int i = 0; i < width * channels(); ++i) {
        const uint32_t value = Value(i / channels(), y, i % channels());
        const auto bit = static_cast<std::size_t>(i) * static_cast<std::size_t>(depth);
        if (depth == 16) {
          row[bit / 8] = static_cast<uint8_t>(value >> 8);
          row[bit / 8 + 1] = static_cast<uint8_t>(value);
        } else {
          row[bit / 8] = static_cast<uint8_t>(row[bit / 8] | value << (8 - static_cast<std::size_t>(depth) - bit % 8));
        }
      }
      rows.push_back(row);
    }
    pointers.reserve(rows.size());
    for (FileBytes& row : rows) pointers.push_back(row.data());
    png_write_image(png, pointers.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    return bytes;
  }
};

}  // namespace qnv::test::picture_formats
