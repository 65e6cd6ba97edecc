// Parses lists of pages.
#include "qnvtool/layout/page_ranges.h"

#include <fmt/core.h>

#include <algorithm>
#include <charconv>
#include <climits>
#include <string_view>

#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

// A page number that is the whole text; `open` for an empty text. 0 when it is neither.
int PageOr(std::string_view text, int open) {
  if (text.empty()) return open;
  int page = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), page);
  return error == std::errc() && end == text.data() + text.size() && page > 0 ? page : 0;
}

}  // namespace

PageRanges::PageRanges(const std::string& text) {
  std::string_view rest = text;
  for (bool more = true; more;) {
    const std::size_t comma = rest.find(',');
    const std::string_view part = rest.substr(0, comma);
    more = comma != std::string_view::npos;
    if (more) rest.remove_prefix(comma + 1);
    const std::size_t dash = part.find('-');
    const bool range = dash != std::string_view::npos && part.size() > 1;
    const int first = PageOr(part.substr(0, dash), range ? 1 : 0);
    const int last = range ? PageOr(part.substr(dash + 1), INT_MAX) : first;
    if (first == 0 || last < first) {
      throw ToolError(ExitCode::kUsage,
                      fmt::format("--pages {}: use page numbers from 1 on and ranges, for example 2-5,8 or 10-", text));
    }
    ranges_.push_back({first, last});
  }
}

bool PageRanges::Contains(int page) const {
  return ranges_.empty() || std::any_of(ranges_.begin(), ranges_.end(),
                                        [&](const Range& range) { return range.first <= page && page <= range.last; });
}

bool PageRanges::EndsBefore(int page) const {
  return !ranges_.empty() &&
         std::all_of(ranges_.begin(), ranges_.end(), [&](const Range& range) { return range.last < page; });
}

}  // namespace qnv::tool
