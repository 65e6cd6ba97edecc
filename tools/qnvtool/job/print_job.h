// Prints files to pictures of pages: the work of `qnvtool print`.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "qnvtool/base/note_printer.h"
#include "qnvtool/base/workers.h"
#include "qnvtool/job/document.h"
#include "qnvtool/job/job_pages.h"
#include "qnvtool/job/print_options.h"
#include "qnvtool/layout/imposition.h"
#include "qnvtool/output/job_output.h"

namespace qnv::tool {

// Files that are printed to pages under one name. Nothing is written before Paint.
class PrintJob {
 public:
  // Lays out every file to count the pages; those of long jobs are laid out again by Paint, so that memory does not
  // grow with their number. With keepGoing, files that cannot be used are reported on standard error. Everything named
  // must outlive the object. Throws ToolError, and Interrupted, as all of these.
  PrintJob(const PrintOptions& options, const PrintParts& parts, Workers& workers, NotePrinter& notes);
  ~PrintJob();
  PrintJob(const PrintJob&) = delete;
  PrintJob& operator=(const PrintJob&) = delete;

  int sheets() const { return pages_->count(); }  // of all copies
  const std::vector<std::string>& inputs() const { return inputs_; }
  const std::vector<PageNames>& outputs() const { return output_.names(); }

  // Called with the sheet that is being written, counted from 1, and the part of it that is done, 0..1.
  using ProgressSink = std::function<void(int sheet, double share)>;

  // Paints and writes all sheets. With keepGoing the ToolError about files that cannot be used comes at the end.
  void Paint(const ProgressSink& progress);

 private:
  const PrintOptions& options_;
  Workers& workers_;
  JobOutput output_;
  std::optional<Rasteriser> rasteriser_;
  std::optional<Imposition> imposition_;
  std::optional<FontShelf> fonts_;
  PageSetup setup_;
  std::optional<DocumentOpener> opener_;
  std::optional<JobPages> pages_;
  std::vector<std::string> inputs_;
  std::size_t unusable_ = 0;  // files
};

// Prints one job. Nothing is written when a name of an output is that of an input, or when a file cannot be used; with
// keepGoing the files that can be used are printed, each other one is reported on standard error, and the ToolError
// comes at the end. Throws ToolError, and Interrupted when a signal ends the painting.
void Print(const PrintOptions& options, const PrintParts& parts);

}  // namespace qnv::tool
