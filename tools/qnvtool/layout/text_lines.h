// Makes page items of lines of text.
#pragma once

#include <memory>
#include <string_view>

#include "qnvtool/layout/page.h"
#include "qnvtool/text/line_breaker.h"

namespace qnv::tool {

// Natural width in pixels.
int TextWidth(std::u32string_view text, Font& font);

// The advances of a font, for the line breaker.
AdvanceOf AdvancesOf(Font& font);

// A line in one font with its natural width.
TextLine MakeLine(std::u32string_view text, const std::shared_ptr<Font>& font, int left, int baseline);

// A broken line of a paragraph; `width` above 0 justifies it to that many pixels unless it is the last.
TextLine MakeLine(std::u32string_view paragraph, const BrokenLine& line, const std::shared_ptr<Font>& font, int left,
                  int baseline, int width);

}  // namespace qnv::tool
