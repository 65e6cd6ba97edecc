// The sheets of a job, one after the other.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qnvtool/job/document.h"
#include "qnvtool/layout/imposition.h"
#include "qnvtool/layout/page_ranges.h"

namespace qnv::tool {

// Chooses the pages that are wanted, puts them on sheets, and gives all sheets as many times as copies are wanted.
// Files are laid out to count their pages, and again for each copy; the pages of a short job are kept from the first
// time.
class JobPages {
 public:
  // What is named must outlive the object.
  JobPages(DocumentOpener& opener, const Imposition& imposition, const PageRanges& ranges, int copies)
      : opener_(opener), imposition_(imposition), ranges_(ranges), copies_(copies) {}

  // Adds the pages of a file. Throws ToolError.
  void Add(const std::string& file);

  int found() const { return found_; }  // pages that were looked at to find those that are wanted
  int count() const;                    // sheets of all copies

  // The next sheet; false behind the last. Throws ToolError.
  bool Next(Page& sheet);

 private:
  struct Source {
    std::string file;
    int before = 0;          // pages of the job before this file
    int count = 0;           // pages of the file that are wanted
    std::vector<Page> kept;  // all that are wanted, or none
    bool IsKept() const { return count == static_cast<int>(kept.size()); }
  };

  bool NextPage(Page& page);
  void ReadOn(const Source& source, Page& page);

  DocumentOpener& opener_;
  const Imposition& imposition_;
  const PageRanges& ranges_;
  const int copies_;
  std::vector<Source> sources_;
  std::size_t kept_ = 0;
  int found_ = 0;
  int wanted_ = 0;  // pages of a copy
  int copy_ = 1;
  std::size_t at_ = 0;  // source
  int done_ = 0;        // pages of it that were given
  int read_ = 0;        // pages that were read from document_
  std::unique_ptr<Document> document_;
};

}  // namespace qnv::tool
