// Writes each remark once.
#include "qnvtool/base/note_printer.h"

#include <fmt/core.h>

#include <cstdio>

namespace qnv::tool {

void NotePrinter::Show(const std::string& name, const std::string& remark) {
  if (quiet_) return;
  const std::string line = fmt::format("qnvtool: {}{}note: {}\n", name, name.empty() ? "" : ": ", remark);
  const std::lock_guard<std::mutex> lock(mutex_);
  if (shown_.insert(line).second) std::fputs(line.c_str(), stderr);
}

}  // namespace qnv::tool
