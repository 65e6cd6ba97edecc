// A page as a list of items to paint, in page pixels. The printer goes through the list once for every band.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "qnvtool/base/geometry.h"
#include "qnvtool/input/picture_file.h"
#include "qnvtool/layout/span_region.h"
#include "qnvtool/text/font.h"

namespace qnv::tool {

// Logical colors, 0x00BBGGRR.
using Color = uint32_t;
inline constexpr Color kBlack = 0;
inline constexpr Color kWhite = 0x00FFFFFF;

// A line of text.
struct TextLine {
  int left = 0;
  int baseline = 0;
  Color color = kBlack;
  int breakExtra = 0;  // pixels that the rasteriser distributes over the spaces of the one-byte runs
  int breakCount = 0;  // spaces in these
  std::vector<TextRun> runs;
  // What the line says, in reading order, and where, for formats that can be searched. A soft hyphen at the end stands
  // for a hyphen that the text does not have.
  std::u32string text;
  std::vector<CharacterPlace> places;  // of each character, from `left`
  int width = 0;                       // pixels from `left`
  int ascent = 0;                      // nominal pixels above the baseline
  int descent = 0;                     // and below
};

// How a figure is filled.
struct Fill {
  enum class Kind {
    kPen,    // painted with a pen of the color
    kSolid,  // painted with a brush of the color
    kHatch,  // HS_ lines in the color
    kBits,   // an 8 x 8 pattern, clear bits in the color, set bits in the background
    kWeave,  // an 8 x 8 pattern of mixtures of color and background
  };
  Kind kind = Kind::kSolid;
  Color color = kBlack;
  Color background = kWhite;
  bool opaque = false;  // the gaps of a hatch are painted in the background color
  int hatch = 0;
  std::array<uint8_t, 8> bits{};
};

// A set of pixels to paint.
struct Figure {
  SpanRegion region;
  Fill fill;
  int16_t rop2 = 13;  // R2_COPYPEN
};

// An image to paint.
struct Picture {
  PicturePtr file;
  std::string name;           // for messages; in a figure file the path that the image was read from
  Rect place;                 // where the whole picture lies
  Rect clip;                  // the part that is shown
  uint32_t rop = 0x00CC0020;  // SRCCOPY
};

struct Page {
  int width = 0;
  int height = 0;
  std::vector<std::variant<TextLine, Figure, Picture>> items;
};

}  // namespace qnv::tool
