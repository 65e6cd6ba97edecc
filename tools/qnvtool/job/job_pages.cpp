// Counts the pages of a job and puts them on sheets.
#include "qnvtool/job/job_pages.h"

#include <fmt/core.h>

#include <utility>

#include "qnvtool/base/interruption.h"
#include "qnvtool/base/phase_times.h"
#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

constexpr std::size_t kMaxKept = 64;

}  // namespace

void JobPages::Add(const std::string& file) {
  if (ranges_.EndsBefore(found_ + 1)) return;
  const PhaseTimer timer(Phase::kLayout);
  const std::unique_ptr<Document> document = opener_.Open(file);
  Source source{file, found_, 0, {}};
  Page page;
  for (int read = 1; !ranges_.EndsBefore(source.before + read) && document->Next(page); ++read) {
    ThrowIfInterrupted();
    found_ = source.before + read;
    if (!ranges_.Contains(found_)) continue;
    if (source.IsKept() && kept_ < kMaxKept) {
      source.kept.push_back(std::move(page));
      ++kept_;
    }
    ++source.count;
  }
  if (!source.IsKept()) {
    kept_ -= source.kept.size();
    source.kept.clear();
  }
  wanted_ += source.count;
  sources_.push_back(std::move(source));
}

int JobPages::count() const { return (wanted_ + imposition_.count() - 1) / imposition_.count() * copies_; }

bool JobPages::Next(Page& sheet) {
  if (at_ == sources_.size() && copy_ < copies_ && wanted_ != 0) {
    ++copy_;
    at_ = 0;
  }
  if (imposition_.count() == 1) return NextPage(sheet);
  sheet = Page();
  Page page;
  for (int index = 0; index < imposition_.count() && NextPage(page); ++index) {
    imposition_.Place(std::move(page), index, sheet);
  }
  return sheet.width != 0;  // a page was placed
}

bool JobPages::NextPage(Page& page) {
  for (; at_ < sources_.size(); ++at_, done_ = 0) {
    Source& source = sources_[at_];
    if (done_ == source.count) continue;
    Page& kept = source.kept.empty() ? page : source.kept[static_cast<std::size_t>(done_)];
    if (!source.IsKept()) {
      ReadOn(source, page);
    } else if (copy_ == copies_) {
      page = std::move(kept);
    } else {
      page = kept;
    }
    if (++done_ == source.count) {  // so that the caller learns of the end of a copy
      document_ = nullptr;
      done_ = 0;
      do ++at_;
      while (at_ < sources_.size() && sources_[at_].count == 0);
    }
    return true;
  }
  return false;
}

// The next page of the file that is wanted.
void JobPages::ReadOn(const Source& source, Page& page) {
  const PhaseTimer timer(Phase::kLayout);
  if (done_ == 0) {
    document_ = opener_.Open(source.file);
    read_ = 0;
  }
  do {
    if (!document_->Next(page)) {
      throw ToolError(ExitCode::kBadInput, fmt::format("{}: became shorter while it was printed", source.file));
    }
  } while (!ranges_.Contains(source.before + ++read_));
}

}  // namespace qnv::tool
