// Where on the page the calls of a file may paint.
#pragma once

#include <string>
#include <vector>

#include "calls/call_file.h"
#include "calls/call_reach.h"
#include "calls/functions.h"

namespace qnv::tool {

// A rectangle of a page, or of the band's own grid on a resolution-mapping device; half-open.
struct PageArea {
  int64_t left = 0, top = 0, right = 0, bottom = 0;

  bool Meets(const BandRect& rect) const {
    return left < right && top < bottom && left < rect.right && rect.left < right && top < rect.bottom &&
           rect.top < bottom;
  }
};

struct CallArea {
  PageArea area;       // empty for a call that paints nothing
  int64_t pixels = 0;  // of it
};

// One for each call, by a replay of the file. Throws ToolError for a file that cannot be replayed.
std::vector<CallArea> CallAreas(const calls::CallFile& file, const calls::Functions& functions,
                                const std::string& path);

// "LEFT,TOP,RIGHT,BOTTOM". Throws ToolError.
BandRect ParseRect(const std::string& text);

}  // namespace qnv::tool
