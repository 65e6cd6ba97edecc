// Glyph bitmaps from outline fonts.
#pragma once

#include <memory>
#include <string>

#include "qnvtool/text/plain_font.h"

namespace qnv::tool {

// Opens a font file (a path that exists) or the font of a fontconfig name such as "DejaVu Serif:bold", at a size of
// `points` on a page of `dpi` dots per inch. Characters that the font lacks are taken from an installed font that has
// them. Throws ToolError: usage for a name that fontconfig cannot resolve, bad input for a file that is no scalable
// font.
std::unique_ptr<GlyphSource> OpenFreeTypeFont(const std::string& fileOrName, double points, int dpi);

}  // namespace qnv::tool
