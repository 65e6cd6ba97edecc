// JPEG files, written by libjpeg.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>
// Needs the types of <cstdio>.
#include <jpeglib.h>

#include "decoded_pictures.h"

namespace qnv::test::picture_formats {

struct JpegSample {
  int width = 32;
  int height = 16;
  J_COLOR_SPACE colors = JCS_RGB;  // of the pixels below; CMYK stays what it is
  bool progressive = false;
  bool adobe = true;    // of CMYK: complements
  int density = 0;      // dots per inch
  FileBytes exif = {};  // behind "Exif\0\0"
  std::function<uint8_t(int x, int y, int channel)> value = nullptr;

  FileBytes Bytes() const {
    jpeg_compress_struct jpeg;
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &memory, &size);
    jpeg.image_width = static_cast<JDIMENSION>(width);
    jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = colors == JCS_GRAYSCALE ? 1 : colors == JCS_CMYK ? 4 : 3;
    jpeg.in_color_space = colors;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, 100, TRUE);
    if (progressive) jpeg_simple_progression(&jpeg);
    if (colors == JCS_CMYK) jpeg.write_Adobe_marker = adobe ? TRUE : FALSE;
    if (density != 0) {
      jpeg.density_unit = 1;
      jpeg.X_density = jpeg.Y_density = static_cast<UINT16>(density);
    }
    jpeg_start_compress(&jpeg, TRUE);
    if (!exif.empty()) {
      FileBytes marker{'E', 'x', 'i', 'f', 0, 0};
      marker.insert(marker.end(), exif.begin(), exif.end());
      jpeg_write_marker(&jpeg, JPEG_APP0 + 1, marker.data(), static_cast<unsigned>(marker.size()));
    }
    FileBytes row(static_cast<std::size_t>(width * jpeg.input_components));
    for (int y = 0; y < height; ++y) {
      for (int i = 0; i < width * jpeg.input_components; ++i) {
        row[static_cast<std::size_t>(i)] = value(i / jpeg.input_components, y, i % jpeg.input_components);
      }
      JSAMPROW rows[1] = {row.data()};
      jpeg_write_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    FileBytes bytes(memory, memory + size);
    jpeg_destroy_compress(&jpeg);
    std::free(memory);
    return bytes;
  }
};

inline uint8_t Smooth(int x, int y, int channel) { return static_cast<uint8_t>((x * 5 + y * 9 + channel * 60) % 256); }

}  // namespace qnv::test::picture_formats
