// The names of the files that a job writes. They are checked before anything is painted.
#pragma once

#include <memory>
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

// The names of all pages.
std::vector<PageNames> AllPageNames(const PageNames& wanted, int pages, const WholeJobFiles& whole = {});

// The files that a run reads and writes. Two names are the same when they lead to the same file, through links or under
// another spelling of the path. Standard input and output, devices and pipes do not count.
class FileClaims {
 public:
  FileClaims();
  ~FileClaims();
  FileClaims(const FileClaims&) = delete;
  FileClaims& operator=(const FileClaims&) = delete;

  void AddInput(const std::string& path);

  // Requires: all inputs were added. Throws ToolError (usage) when the file is an input or was added before.
  void AddOutput(const std::string& path);
  void AddOutputs(const std::vector<PageNames>& pages);

 private:
  class FileSet;
  const std::unique_ptr<FileSet> read_;
  const std::unique_ptr<FileSet> written_;
};

// The names of all pages, checked. Throws ToolError (usage) when a name is that of one of the `inputs`, or of two
// pictures.
std::vector<PageNames> NamePages(const PageNames& wanted, int pages, const std::vector<std::string>& inputs,
                                 const WholeJobFiles& whole = {});

}  // namespace qnv::tool
