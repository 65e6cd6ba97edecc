// Lays out an image file: one page with the image in its middle.
#pragma once

#include <memory>
#include <string>

#include "qnvtool/layout/page_setup.h"

namespace qnv::tool {

// How large an image becomes.
struct PictureScale {
  enum class Mode {
    kFit,     // as large as the page allows
    kFill,    // as small as covers the page's body; what is over is cut off
    kFactor,  // times the size that the file's resolution gives, 72 dots per inch where it gives none
    kPixels,  // one pixel of the page for one pixel of the picture
  };
  Mode mode = Mode::kFit;
  double factor = 1;
};

// "pixels" or a factor above 0. Throws ToolError (usage).
PictureScale ParseScale(const std::string& text);

// Where a picture lies in the body of its page: 0 at the left or top edge, 1 at the right or bottom one, 0.5 in the
// middle.
struct Alignment {
  double x = 0.5;
  double y = 0.5;
};

// "center", "left", "top-right" and so on. Throws ToolError (usage).
Alignment ParseAlignment(const std::string& text);

// What a job says about all its pictures.
struct PictureStyle {
  PictureScale scale;
  Alignment alignment;
};

// Page `number` of a file, with the picture in its body; what does not fit is cut off, which `note` is told unless the
// style asks for it. Throws ToolError (usage) when it would be too large for the rasteriser.
Page LayOutPicture(PicturePtr picture, const PictureStyle& style, const PageSetup& setup, const std::string& name,
                   int number, const NoteSink& note);

// Height over width of the picture as its resolution says, for documents that give one of the two.
double PictureAspect(const PictureFile& picture);

}  // namespace qnv::tool
