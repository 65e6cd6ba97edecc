// The names of the files that a job writes. They are checked before anything is painted.
#pragma once

#include <string>
#include <vector>

namespace qnv::tool {

// The names for one page; empty where the job has no such file.
struct PageNames {
  std::string picture;  // "-": standard output
  std::string tags;
  std::string overlay;
};

// "out.png" for the only page of a job; else "out-01.png", "out-02.png" and so on, with as many digits as the last
// page needs, so that names sort in the order of the pages. Devices and pipes keep their name for every page.
std::string PathOfPage(const std::string& path, int page, int pages);

// Which of the files hold all pages of the job under one name.
struct WholeJobFiles {
  bool picture = false;
  bool tags = false;
  bool overlay = false;
};

// The names of all pages. Throws ToolError (usage) when a name is that of one of the `inputs`, or of two pictures. Two
// names are the same when they lead to the same file, through links or under another spelling of the path.
std::vector<PageNames> NamePages(const PageNames& wanted, int pages, const std::vector<std::string>& inputs,
                                 const WholeJobFiles& whole = {});

}  // namespace qnv::tool
