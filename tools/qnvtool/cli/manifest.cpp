// Reads manifests line by line; the options are those of the command line.
#include "qnvtool/cli/manifest.h"

#include <fmt/core.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <set>

#include "qnvtool/base/file_bytes.h"
#include "qnvtool/base/json.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/cli/help_text.h"

namespace qnv::tool {
namespace {

[[noreturn]] void Wrong(const std::string& what) { throw ToolError(ExitCode::kUsage, what); }

// "--out" of "-o,--out".
std::string LongName(const Option& option) { return option.names.substr(option.names.rfind(',') + 1); }

// What a value of an option is given as on the command line.
std::string WordOf(const std::string& name, const JsonValue& value) {
  if (!value.isString() && value.kind != JsonValue::Kind::kNumber) {
    Wrong(fmt::format("\"{}\" takes a text or a number", name));
  }
  return value.text;
}

// Gives an option the value that a line has for it.
struct Setter {
  const std::string& name;
  const JsonValue& value;

  void operator()(const Flag& flag) const {
    const bool yes = value.kind == JsonValue::Kind::kTrue;
    if (!yes && value.kind != JsonValue::Kind::kFalse) Wrong(fmt::format("\"{}\" takes true or false", name));
    *flag.given = yes;
  }
  void operator()(const Text& text) const { *text.value = WordOf(name, value); }
  void operator()(const Words&) const { Wrong(fmt::format("\"{}\" is no option", name)); }
  void operator()(const WholeNumber& number) const {
    *number.value = ParseWholeNumber("--" + name, WordOf(name, value), number.min, number.max);
  }
  void operator()(const Decimal& number) const {
    *number.value = ParseDecimal("--" + name, WordOf(name, value), number.min, number.max);
  }
  void operator()(const OneOf& one) const { *one.value = ParseChoice("--" + name, WordOf(name, value), one.choices); }
};

struct ValueText {
  std::string operator()(const Flag& flag) const { return *flag.given ? "true" : "false"; }
  std::string operator()(const Text& text) const { return JsonText(*text.value); }
  std::string operator()(const Words&) const { return {}; }
  std::string operator()(const WholeNumber& number) const { return fmt::format("{}", *number.value); }
  std::string operator()(const Decimal& number) const { return fmt::format("{}", *number.value); }
  std::string operator()(const OneOf& one) const { return JsonText(*one.value); }
};

// Whether a flag or a text has a value; others have one always.
bool IsGiven(const Option& option) {
  if (const auto* const flag = std::get_if<Flag>(&option.value)) return *flag->given;
  const auto* const text = std::get_if<Text>(&option.value);
  return text != nullptr && !text->value->empty();
}

const Option* Find(const std::vector<Option>& options, const std::string& longName) {
  const auto found =
      std::find_if(options.begin(), options.end(), [&](const Option& option) { return LongName(option) == longName; });
  return found == options.end() ? nullptr : &*found;
}

void CheckExclusions(const std::vector<Option>& options) {
  for (const Option& option : options) {
    if (option.excludes.empty() || option.ofRun || !IsGiven(option)) continue;
    for (const Option& other : options) {
      const std::string name = LongName(other);
      const bool excluded = (" " + option.excludes + " ").find(" " + name + " ") != std::string::npos;
      if (excluded && IsGiven(other)) Wrong(fmt::format("{} excludes {}", LongName(option), name));
    }
  }
}

// One file, or an array of them.
std::vector<std::string> FilesOf(const JsonValue& value) {
  std::vector<std::string> files;
  if (value.isString()) files.push_back(value.text);
  for (const JsonValue& item : value.items) {
    if (!item.isString()) Wrong("\"input\" takes a file or an array of files");
    files.push_back(item.text);
  }
  const bool blank = std::any_of(files.begin(), files.end(), [](const std::string& file) { return file.empty(); });
  if (files.empty() || blank) Wrong("\"input\" takes a file or an array of files");
  if (std::find(files.begin(), files.end(), "-") != files.end()) Wrong("standard input cannot be the input of a job");
  return files;
}

ListedJob JobOf(const std::string& text, const JobReader& reader) {
  std::string mistake;
  const std::optional<JsonValue> object = ParseJson(text, mistake);
  if (!object) Wrong("is no JSON: " + mistake);
  if (object->kind != JsonValue::Kind::kObject) Wrong("is no JSON object");
  reader.reset();
  std::vector<std::string> files;
  std::string out;
  for (const JsonMember& member : object->members) {
    const std::string& name = member.name;
    const JsonValue& value = member.value;
    if (name == "input") {
      files = FilesOf(value);
    } else if (name == "output") {
      out = value.text;
      if (!value.isString() || out.empty() || out == "-") Wrong("\"output\" takes the name of a file");
    } else {
      const Option* const option = Find(reader.options, "--" + name);
      if (option == nullptr) {
        Wrong(fmt::format("unknown key \"{}\"; use input, output and the long names of options", name));
      }
      if (option->ofRun) {
        Wrong(
            fmt::format("\"{}\" is no option of a single job; input and output name its files, and options of the "
                        "whole run stand on the command line",
                        name));
      }
      std::visit(Setter{name, value}, option->value);
    }
  }
  if (files.empty()) Wrong("\"input\" is missing");
  if (out.empty()) Wrong("\"output\" is missing");
  CheckExclusions(reader.options);
  ListedJob job{.options = reader.finish(), .key = DescribeValues(reader.options)};
  job.options.files = std::move(files);
  job.options.out = std::move(out);
  job.options.keepGoing = false;  // of the run, not of the files of one job
  return job;
}

}  // namespace

Shard ParseShard(const std::string& text) {
  if (text.empty()) return {};
  constexpr int kMaxShards = 1000000;
  const std::size_t slash = text.find('/');
  if (slash == std::string::npos) Wrong(fmt::format("--shard {}: use K/N, such as 1/4", text));
  const int count = ParseWholeNumber("--shard K/N: N", text.substr(slash + 1), 1, kMaxShards);
  return {ParseWholeNumber("--shard K/N: K", text.substr(0, slash), 1, count), count};
}

std::string DescribeValues(const std::vector<Option>& options) {
  std::string text;
  for (const Option& option : options) {
    if (!option.ofRun) text += LongName(option) + "=" + std::visit(ValueText(), option.value) + "\n";
  }
  return text;
}

std::vector<ListedJob> ReadManifest(const std::string& path, const Shard& shard, const JobReader& reader) {
  std::ifstream opened;
  if (path != "-") opened.open(path, std::ios::binary);
  std::istream& file = path == "-" ? std::cin : opened;
  if (!file) throw ToolError(ExitCode::kBadInput, fmt::format("{}: {}", path, std::strerror(errno)));
  std::vector<ListedJob> jobs;
  std::string line;
  for (int number = 1; std::getline(file, line); ++number) {
    if (number == 1 && line.compare(0, 3, "\xEF\xBB\xBF") == 0) line.erase(0, 3);
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    try {
      jobs.push_back(JobOf(line, reader));
    } catch (const ToolError& error) {
      throw ToolError(error.code(), fmt::format("{}, line {}: {}", DisplayName(path), number, error.what()));
    }
    ListedJob& job = jobs.back();
    job.line = number;
    job.name = fmt::format("line {}, {}", number, job.options.out);
    job.isElsewhere = (number - 1) % shard.count != shard.number - 1;
    FinishKey(job);
  }
  if (file.bad()) throw ToolError(ExitCode::kBadInput, fmt::format("{}: cannot be read to its end", path));
  if (jobs.empty()) throw ToolError(ExitCode::kBadInput, fmt::format("{}: names no jobs", DisplayName(path)));
  return jobs;
}

}  // namespace qnv::tool
