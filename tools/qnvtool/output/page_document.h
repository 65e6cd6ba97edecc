// Files that hold all pages of a job.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qnvtool/layout/page_words.h"
#include "qnvtool/output/picture_writer.h"

namespace qnv::tool {

// A file that is complete, and gets its name, in Finish(). Pages follow one another: a page is finished before the next
// one starts.
class PageDocument {
 public:
  virtual ~PageDocument() = default;

  // Starts a page. The writer of its rows must not outlive the document; its Finish() ends the page. `words` may be
  // shown to programs that search the document; they do not change the picture. Throws ToolError (cannot write).
  virtual std::unique_ptr<PictureWriter> StartPage(const PictureForm& form, const std::vector<PageWord>& words) = 0;

  // Ends the file. Throws ToolError (cannot write).
  virtual void Finish() = 0;
};

}  // namespace qnv::tool
