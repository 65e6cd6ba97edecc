// Names the files of all pages and finds names that lead to the same file.
#include "qnvtool/output/output_names.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <set>

#include "qnvtool/base/file_names.h"
#include "qnvtool/base/tool_error.h"
#ifndef _WIN32
#include <sys/stat.h>
#endif

namespace qnv::tool {
namespace {

namespace fs = std::filesystem;

// Whether the path is a device, a pipe or the like.
bool IsSpecial(const std::string& path) {
  std::error_code error;
  const fs::file_status status = fs::status(PathOf(path), error);
  return fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status);
}

}  // namespace

// Inserts the number of the page before the extension.
std::string PathOfPage(const std::string& path, int page, int pages) {
  if (pages == 1 || path.empty() || path == "-" || IsSpecial(path)) return path;
  const auto digits = std::max<std::size_t>(2, fmt::format("{}", pages).size());
  const fs::path whole = PathOf(path);
  fs::path result = whole.parent_path() / whole.stem();
  result += fmt::format("-{:0{}}", page, digits);
  result += whole.extension();
  return FileNameOf(result);
}

std::vector<PageNames> AllPageNames(const PageNames& wanted, int pages, const WholeJobFiles& whole) {
  std::vector<PageNames> names;
  names.reserve(static_cast<std::size_t>(pages));
  for (int page = 1; page <= pages; ++page) {
    const auto name = [&](const std::string& path, bool holdsAll) {
      return holdsAll ? path : PathOfPage(path, page, pages);
    };
    names.push_back(
        {name(wanted.picture, whole.picture), name(wanted.tags, whole.tags), name(wanted.overlay, whole.overlay)});
  }
  return names;
}

// A set of files. Existing files are compared by device and number, which also finds hard links; all files by their
// path with links and dots resolved.
class FileClaims::FileSet {
 public:
  // False when the file was in the set already.
  bool Add(const std::string& path) {
    bool isNew = paths_.insert(Resolved(path)).second;
#ifndef _WIN32
    struct stat file;
    if (stat(path.c_str(), &file) == 0) isNew = numbers_.insert({file.st_dev, file.st_ino}).second && isNew;
#endif
    return isNew;
  }

  bool Has(const std::string& path) const {
#ifndef _WIN32
    struct stat file;
    if (stat(path.c_str(), &file) == 0 && numbers_.count({file.st_dev, file.st_ino}) != 0) return true;
#endif
    return paths_.count(Resolved(path)) != 0;
  }

 private:
  // The path in a form that is the same for all spellings of it.
  static std::string Resolved(const std::string& path) {
    std::error_code error;
    fs::path result = fs::weakly_canonical(fs::absolute(PathOf(path), error), error);
    if (error) result = PathOf(path).lexically_normal();
#ifdef _WIN32
    std::string text = FileNameOf(result);  // names on Windows are not case-sensitive
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
#else
    return FileNameOf(result);
#endif
  }

  std::set<std::string> paths_;
#ifndef _WIN32
  std::set<std::pair<dev_t, ino_t>> numbers_;
#endif
};

FileClaims::FileClaims() : read_(std::make_unique<FileSet>()), written_(std::make_unique<FileSet>()) {}

FileClaims::~FileClaims() = default;

void FileClaims::AddInput(const std::string& path) {
  if (!path.empty() && path != "-") read_->Add(path);
}

void FileClaims::AddOutput(const std::string& path) {
  if (path.empty() || path == "-" || IsSpecial(path)) return;
  if (read_->Has(path)) {
    throw ToolError(ExitCode::kUsage, fmt::format("{}: is an input file and would be overwritten", path));
  }
  if (!written_->Add(path)) {
    throw ToolError(ExitCode::kUsage, fmt::format("{}: named for two different pictures", path));
  }
}

void FileClaims::AddOutputs(const std::vector<PageNames>& pages) {
  const PageNames* before = nullptr;
  for (const PageNames& page : pages) {
    for (std::string PageNames::*const kind : {&PageNames::picture, &PageNames::tags, &PageNames::overlay}) {
      const bool holdsAll = before != nullptr && before->*kind == page.*kind;
      if (!holdsAll) AddOutput(page.*kind);
    }
    before = &page;
  }
}

std::vector<PageNames> NamePages(const PageNames& wanted, int pages, const std::vector<std::string>& inputs,
                                 const WholeJobFiles& whole) {
  FileClaims claims;
  for (const std::string& input : inputs) claims.AddInput(input);
  std::vector<PageNames> names = AllPageNames(wanted, pages, whole);
  claims.AddOutputs(names);
  return names;
}

}  // namespace qnv::tool
