// Makes the names of outputs out of those of the files.
#include "qnvtool/job/each_file.h"

#include <fmt/core.h>

#include <algorithm>
#include <filesystem>

#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

namespace fs = std::filesystem;

bool HasBraces(const std::string& pattern) { return pattern.find('{') != std::string::npos; }

// `out` as a pattern.
std::string PatternOf(const PrintOptions& options, std::string& newFolder) {
  std::string out = options.out;
  std::error_code error;
  if (!out.ends_with('/') && !fs::is_directory(out, error)) return out;
  if (options.format.empty()) {
    throw ToolError(ExitCode::kUsage,
                    fmt::format("-o {}: is a folder; choose the format of its files with --format", out));
  }
  newFolder = out;
  if (!out.ends_with('/')) out += '/';
  return out + "{name}." + (options.format == "cups" ? "ras" : options.format);
}

}  // namespace

std::string ExpandPattern(const std::string& pattern, const std::string& file, std::size_t number, std::size_t count) {
  const fs::path path(file);
  std::string result;
  for (std::size_t at = 0; at < pattern.size();) {
    if (pattern[at] != '{') {
      result += pattern[at++];
      continue;
    }
    const std::size_t end = pattern.find('}', at);
    const std::string word = end == std::string::npos ? pattern.substr(at) : pattern.substr(at, end + 1 - at);
    if (word == "{name}") {
      result += path.stem().string();
    } else if (word == "{file}") {
      result += path.filename().string();
    } else if (word == "{folder}") {
      result += path.has_parent_path() ? path.parent_path().string() : ".";
    } else if (word == "{number}") {
      result += fmt::format("{:0{}}", number, fmt::format("{}", count).size());
    } else {
      throw ToolError(ExitCode::kUsage,
                      fmt::format("{}: unknown {}; use {{name}}, {{file}}, {{folder}} or {{number}}", pattern, word));
    }
    at += word.size();
  }
  return result;
}

std::vector<ListedJob> JobsOfFiles(const PrintOptions& options, const std::string& values, std::string& newFolder) {
  const std::string out = PatternOf(options, newFolder);
  const auto refuse = [](const std::string& message) { throw ToolError(ExitCode::kUsage, message); };
  if (out == "-") refuse("--each writes files, not standard output");
  for (const std::string& pattern : {out, options.tags, options.overlay}) {
    if (pattern.empty() || HasBraces(pattern) || options.files.size() == 1) continue;
    refuse(fmt::format("--each: {} is the same for all files; name a folder, such as out/, or use {{name}}", pattern));
  }
  std::vector<ListedJob> jobs;
  for (const std::string& file : options.files) {
    if (file == "-") refuse("--each: standard input has no name; print it by itself");
    const auto expand = [&](const std::string& pattern) {
      return ExpandPattern(pattern, file, jobs.size() + 1, options.files.size());
    };
    ListedJob job{.name = file, .options = options, .key = values};
    job.options.files = {file};
    job.options.out = expand(out);
    job.options.tags = expand(options.tags);
    job.options.overlay = expand(options.overlay);
    job.options.keepGoing = false;
    FinishKey(job);
    jobs.push_back(std::move(job));
  }
  return jobs;
}

}  // namespace qnv::tool
