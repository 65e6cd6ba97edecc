// Picture files, written part by part as the bands are finished. A file gets its name when it is complete.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qnv::tool {

// Levels of compression are those of zlib: 0 stores, 1 is fast, 9 small. The default is chosen for each part of a
// picture.
inline constexpr int kDefaultCompression = -1;
inline constexpr int kMaxCompression = 9;

// The size of a picture and the form of its rows.
struct PictureForm {
  enum class Pixels {
    kColor,    // 3 bytes a pixel: blue, green, red
    kGray,     // 1 byte a pixel
    kGrayOf3,  // 3 equal bytes a pixel, written as one
    kTags,     // 1 byte a pixel; PNG files show it through the colors of the tag legend
  };
  int width = 0;
  int height = 0;
  int dpi = 0;  // recorded in files whose format has a place for it
  Pixels pixels = Pixels::kColor;
  int compression = kDefaultCompression;  // in files whose format has levels
};

// Colors of the tag legend, 0xRRGGBB: cells of opaque text, graphics and paper, images.
inline constexpr uint32_t kTagTextCell = 0xF2C300;
inline constexpr uint32_t kTagGraphics = 0xE8EEF4;
inline constexpr uint32_t kTagImage = 0xC8102E;

// A piece of what a file holds of its rows, as the RowEncoder of the format makes it.
struct EncodedPiece {
  std::vector<uint8_t> bytes;
  uint32_t checksum = 0;  // in zlib streams: Adler-32 of what was compressed
  std::size_t size = 0;   // of the same, bytes
};

using EncodedRows = std::vector<EncodedPiece>;

class PictureWriter {
 public:
  virtual ~PictureWriter() = default;

  // The next rows of the picture. Throws ToolError (cannot write).
  virtual void Write(const EncodedRows& rows) = 0;

  // Ends the file. A file that is not finished is removed. Throws ToolError (cannot write).
  virtual void Finish() = 0;
};

// Bytes of a row in the byte order of files, and of the same row as devices have it.
std::size_t FileRowSize(const PictureForm& form);
std::size_t DeviceRowSize(const PictureForm& form);

// Converts a row to the byte order of files: red, green, blue, or one byte a pixel.
void ConvertRow(const PictureForm& form, const uint8_t* row, std::vector<uint8_t>& result);

enum class PictureFormat { kPng, kPnm, kTiff, kPdf, kPwg, kUrf, kCups };

// The values of --format, and what the names of files end in.
inline constexpr const char* kFormatNames[] = {"png", "ppm", "pgm", "tiff", "pdf", "pwg", "urf", "cups"};
inline constexpr const char* kFormatEndings = "png|ppm|pgm|tif|tiff|pdf|pwg|urf|ras";

// The format of a file: that of `name` (one of kFormatNames) or, when it is empty, that of the extension of `path`, PNM
// for "-". Throws ToolError (usage) for an extension without a format.
PictureFormat FormatOf(const std::string& path, const std::string& name);

// Whether a file of this format holds all pages of a job; else each page is a file.
constexpr bool HoldsAllPages(PictureFormat format) {
  return format != PictureFormat::kPng && format != PictureFormat::kPnm;
}

// Whether files of this format can be compressed more or less.
constexpr bool HasCompressionLevels(PictureFormat format) {
  return format == PictureFormat::kPng || format == PictureFormat::kTiff || format == PictureFormat::kPdf;
}

// A binary PPM (color) or PGM file (gray, tags). On standard output ("-") pictures may follow one another.
std::unique_ptr<PictureWriter> CreatePnmFile(const std::string& path, const PictureForm& form);

}  // namespace qnv::tool
