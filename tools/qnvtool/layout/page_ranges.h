// Lists of pages such as "2-5,8".
#pragma once

#include <string>
#include <vector>

namespace qnv::tool {

// The pages of a job that are printed, counted from 1 over all files.
class PageRanges {
 public:
  PageRanges() = default;  // all
  // Page numbers and ranges, separated by commas; "-3" ends at a page, "8-" goes on to the last. Order and repetitions
  // do not matter: pages are printed once, in the order of the documents. Throws ToolError (usage).
  explicit PageRanges(const std::string& text);

  bool Contains(int page) const;
  // Whether no page from this one on is printed, so that the rest of a document need not be read.
  bool EndsBefore(int page) const;

 private:
  struct Range {
    int first, last;
  };
  std::vector<Range> ranges_;
};

}  // namespace qnv::tool
