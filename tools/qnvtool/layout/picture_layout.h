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
    kFactor,  // times the size that the file's resolution gives, 72 dots per inch where it gives none
    kPixels,  // one pixel of the page for one pixel of the picture
  };
  Mode mode = Mode::kFit;
  double factor = 1;
};

// "pixels" or a factor above 0. Throws ToolError (usage).
PictureScale ParseScale(const std::string& text);

// Page `number` of a file, with the picture in the middle of its body; what does not fit is cut off. Throws ToolError
// (usage) when it would be too large for the rasteriser.
Page LayOutPicture(PicturePtr picture, const PictureScale& scale, const PageSetup& setup, const std::string& name,
                   int number = 1);

// Height over width of the picture as its resolution says, for documents that give one of the two.
double PictureAspect(const PictureFile& picture);

}  // namespace qnv::tool
