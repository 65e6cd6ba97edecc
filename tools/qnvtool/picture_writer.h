// Picture files, written row by row as the bands are finished. A file gets its name when it is complete.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qnv::tool {

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
};

// Colors of the tag legend, 0xRRGGBB: cells of opaque text, graphics and paper, images.
inline constexpr uint32_t kTagTextCell = 0xF2C300;
inline constexpr uint32_t kTagGraphics = 0xE8EEF4;
inline constexpr uint32_t kTagImage = 0xC8102E;

class PictureWriter {
 public:
  virtual ~PictureWriter() = default;

  // The next `rows` rows of the picture. Throws ToolError (cannot write).
  virtual void WriteRows(const uint8_t* first, std::size_t stride, int rows) = 0;

  // Ends the file; without it nothing is left of it. Throws ToolError (cannot write).
  virtual void Finish() = 0;
};

// One row in the order of bytes that files have: red, green, blue; or a single byte.
void ConvertRow(const PictureForm& form, const uint8_t* row, std::vector<uint8_t>& result);

enum class PictureFormat { kPng, kPnm };

// The format that `name` ("png", "ppm", "pgm", "pnm") stands for, or, when it is empty, the one that the extension of
// `path` says; "-" is PNM then. Throws ToolError (usage) for an extension that stands for none.
PictureFormat FormatOf(const std::string& path, const std::string& name);

// A binary PPM (color) or PGM file (gray, tags). On standard output ("-") pictures may follow one another.
std::unique_ptr<PictureWriter> CreatePnmFile(const std::string& path, const PictureForm& form);

}  // namespace qnv::tool
