// Paper sizes: names and millimetres on the command line, pixels on the page.
#pragma once

#include <string>

#include "qnvtool/base/geometry.h"

namespace qnv::tool {

struct Paper {
  double widthMm = 210;
  double heightMm = 297;
};

// Parses a name of paper_names.h (any case) or a size in mm or in, for example "100x150mm". Throws ToolError (usage)
// for anything else and for sides outside 5..3000 mm.
Paper ParsePaper(const std::string& text);

// Millimetres to pixels at `dpi`, to the nearest pixel.
int PixelsFromMm(double mm, int dpi);

// A sheet in page pixels: its whole size, and the part inside the margin that documents may use.
struct Sheet {
  int dpi = 0;
  int width = 0;
  int height = 0;
  Rect content;
};

// Computes the sheet. Throws ToolError (usage) when the margin leaves nothing, or when the sheet is larger than the
// 16-bit coordinates of spans.
Sheet MakeSheet(const Paper& paper, int dpi, double marginMm);

}  // namespace qnv::tool
