// Picture files, written row by row as the bands are finished.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace qnv::tool {

struct PictureForm {
  enum class Pixels {
    kColour,   // 3 bytes a pixel: blue, green, red
    kGray,     // 1 byte a pixel
    kGrayOf3,  // 3 equal bytes a pixel, written as one
    kTags,     // 1 byte a pixel; PNG files show it through the colours of the tag legend
  };
  int width = 0;
  int height = 0;
  int dpi = 0;  // recorded in PNG files
  Pixels pixels = Pixels::kColour;
};

// Colours of the tag legend, 0xRRGGBB: cells of opaque text, graphics and paper, images.
inline constexpr uint32_t kTagTextCell = 0xF2C300;
inline constexpr uint32_t kTagGraphics = 0xE8EEF4;
inline constexpr uint32_t kTagImage = 0xC8102E;

class PictureWriter {
 public:
  virtual ~PictureWriter() = default;

  // The next `rows` rows of the picture. Throws ToolError (cannot write).
  virtual void WriteRows(const uint8_t* first, std::size_t stride, int rows) = 0;

  // Ends the file; without it a named file is removed again. Throws ToolError (cannot write).
  virtual void Finish() = 0;
};

// One row in the order of bytes that files have: red, green, blue; or a single byte.
void ConvertRow(const PictureForm& form, const uint8_t* row, std::vector<uint8_t>& result);

// The name ends in .ppm, .pgm or .pnm.
bool IsPnmName(const std::string& path);

// A binary PPM (colour) or PGM file (gray, tags).
std::unique_ptr<PictureWriter> CreatePnmFile(const std::string& path, const PictureForm& form);

// Binary PPM (colour) or PGM (gray) on standard output. Pictures may follow one another.
std::unique_ptr<PictureWriter> WritePictureToStdout(const PictureForm& form);

// "out.png" for page 1, "out-2.png" for page 2 and so on.
std::string PathOfPage(const std::string& path, int page);

}  // namespace qnv::tool
