// Glyph bitmaps from outline fonts.
#pragma once

#include <memory>
#include <string>

#include "font.h"

namespace qnv::tool {

// A font file (a path that exists) or a fontconfig name such as "DejaVu Serif:bold", at `points` on a page of `dpi`.
// Characters that the font lacks come from whatever installed font has them. Throws ToolError: usage for a name
// that fontconfig cannot resolve, bad input for a file that is no scalable font.
std::unique_ptr<GlyphSource> OpenFreeTypeFont(const std::string& fileOrName, double points, int dpi);

}  // namespace qnv::tool
