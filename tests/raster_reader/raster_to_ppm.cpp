// Reads raster streams of printers (PWG, Apple, CUPS) through libcups, and PNG files through libpng, and writes their
// pages to standard output as PPM files one behind the other. So tests compare what a printer got with pictures.
//   raster_to_ppm FILE...
#include <cups/raster.h>
#include <fcntl.h>
#include <png.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using Pixels = std::vector<uint8_t>;

void WriteHead(unsigned width, unsigned height) { std::printf("P6\n%u %u\n255\n", width, height); }

void WritePixels(const Pixels& rgb) { std::fwrite(rgb.data(), 1, rgb.size(), stdout); }

bool ConvertPng(const char* path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_file(&image, path) == 0) return false;
  image.format = PNG_FORMAT_RGB;
  Pixels pixels(PNG_IMAGE_SIZE(image));
  if (png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr) == 0) return false;
  WriteHead(image.width, image.height);
  WritePixels(pixels);
  return true;
}

// Returns the number of pages, -1 for a stream that ends early or has other pixels than 8 bits a color.
int ConvertRaster(const char* path) {
  const int file = open(path, O_RDONLY);
  cups_raster_t* const raster = file < 0 ? nullptr : cupsRasterOpen(file, CUPS_RASTER_READ);
  if (raster == nullptr) return -1;
  int pages = 0;
  cups_page_header2_t header;
  while (cupsRasterReadHeader2(raster, &header) != 0) {
    const bool gray = header.cupsColorSpace == CUPS_CSPACE_SW;
    if (header.cupsBitsPerColor != 8 || (!gray && header.cupsColorSpace != CUPS_CSPACE_SRGB)) return -1;
    WriteHead(header.cupsWidth, header.cupsHeight);
    Pixels row(header.cupsBytesPerLine);
    Pixels rgb(gray ? 3 * row.size() : 0);
    for (unsigned y = 0; y < header.cupsHeight; ++y) {
      if (cupsRasterReadPixels(raster, row.data(), header.cupsBytesPerLine) != header.cupsBytesPerLine) return -1;
      for (std::size_t i = 0; i < rgb.size(); ++i) rgb[i] = row[i / 3];
      WritePixels(gray ? rgb : row);
    }
    ++pages;
  }
  cupsRasterClose(raster);
  close(file);
  return pages;
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string path = argv[i];
    const bool png = path.size() > 4 && path.substr(path.size() - 4) == ".png";
    if (png ? !ConvertPng(argv[i]) : ConvertRaster(argv[i]) <= 0) {
      std::fprintf(stderr, "raster_to_ppm: %s: cannot be read\n", argv[i]);
      return 1;
    }
  }
  return argc > 1 ? 0 : 1;
}
