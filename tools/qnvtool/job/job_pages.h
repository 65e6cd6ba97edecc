// The pages of a job, one after the other.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qnvtool/job/document.h"

namespace qnv::tool {

// Files are laid out twice: to count their pages, and to print them. The pages of a short job are kept from the first
// pass.
class JobPages {
 public:
  explicit JobPages(DocumentOpener& opener) : opener_(opener) {}

  // Adds the pages of a file. Throws ToolError.
  void Add(const std::string& file);

  int count() const { return count_; }

  // The next page; false behind the last. Throws ToolError.
  bool Next(Page& page);

 private:
  struct Source {
    std::string file;
    int count = 0;
    std::vector<Page> kept;  // all or none
  };

  DocumentOpener& opener_;
  std::vector<Source> sources_;
  std::size_t kept_ = 0;
  int count_ = 0;
  std::size_t at_ = 0;  // source
  int done_ = 0;        // pages of it
  std::unique_ptr<Document> document_;
};

}  // namespace qnv::tool
