// The words of a page with their places, for formats that can be searched.
#pragma once

#include <string>
#include <vector>

#include "qnvtool/layout/page.h"

namespace qnv::tool {

// A word in page pixels. It has no spaces.
struct PageWord {
  std::u32string text;  // in reading order
  int left = 0;
  int baseline = 0;
  int width = 0;
  int ascent = 0;  // of its font
  int descent = 0;
  bool rightToLeft = false;
};

// In the order in which they are read.
std::vector<PageWord> WordsOf(const Page& page);

}  // namespace qnv::tool
