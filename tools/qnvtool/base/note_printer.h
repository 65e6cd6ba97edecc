// Shows remarks for the user.
#pragma once

#include <mutex>
#include <set>
#include <string>

namespace qnv::tool {

// Writes remarks to standard error, the same one only once. Several threads may use it.
class NotePrinter {
 public:
  explicit NotePrinter(bool quiet) : quiet_(quiet) {}

  // `name`: what the remark is about, a file for example; may be empty.
  void Show(const std::string& name, const std::string& remark);

 private:
  const bool quiet_;
  std::mutex mutex_;
  std::set<std::string> shown_;
};

}  // namespace qnv::tool
