// What all documents of a job share: the sheet, the fonts, the line at the top of the pages.
#pragma once

#include <string>

#include "qnvtool/layout/page.h"
#include "qnvtool/layout/paper.h"
#include "qnvtool/text/font_shelf.h"

namespace qnv::tool {

struct PageSetup {
  Sheet sheet;
  FontShelf* fonts = nullptr;
  double points = 11;  // size of body text
  bool header = true;
};

// A page of the size of the sheet, without items.
Page EmptyPage(const PageSetup& setup);

// The part of the sheet left to documents: inside the margins, below the header.
Rect BodyOf(const PageSetup& setup);

// Writes the document's name and the page number at the top of the page, over a rule. Does nothing when the job has
// no headers.
void AddHeader(Page& page, const PageSetup& setup, const std::string& name, int number);

}  // namespace qnv::tool
