// Counts and hands out the pages of a job.
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
  const PhaseTimer timer(Phase::kLayout);
  const std::unique_ptr<Document> document = opener_.Open(file);
  Source source{file, 0, {}};
  Page page;
  while (document->Next(page)) {
    ThrowIfInterrupted();
    if (source.count++ == static_cast<int>(source.kept.size()) && kept_ < kMaxKept) {
      source.kept.push_back(std::move(page));
      ++kept_;
    }
  }
  if (source.count != static_cast<int>(source.kept.size())) {
    kept_ -= source.kept.size();
    source.kept.clear();
  }
  count_ += source.count;
  sources_.push_back(std::move(source));
}

bool JobPages::Next(Page& page) {
  for (; at_ < sources_.size(); ++at_, done_ = 0) {
    Source& source = sources_[at_];
    if (done_ == source.count) continue;
    if (source.count == static_cast<int>(source.kept.size())) {
      page = std::move(source.kept[static_cast<std::size_t>(done_++)]);
      return true;
    }
    const PhaseTimer timer(Phase::kLayout);
    if (done_ == 0) document_ = opener_.Open(source.file);
    if (!document_->Next(page)) {
      throw ToolError(ExitCode::kBadInput, fmt::format("{}: became shorter while it was printed", source.file));
    }
    if (++done_ == source.count) document_ = nullptr;
    return true;
  }
  return false;
}

}  // namespace qnv::tool
