// Reads reports, and appends to them with nothing left in memory of the system.
#include "qnvtool/job/job_report.h"

#include <fcntl.h>
#include <fmt/core.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

#include "qnvtool/base/json.h"
#include "qnvtool/base/output_file.h"
#include "qnvtool/base/tool_error.h"
#ifndef _WIN32
#include <unistd.h>
#endif

namespace qnv::tool {
namespace {

namespace fs = std::filesystem;

// How every line begins.
constexpr const char* kBegin = R"({"job":")";

// Sees to it that a file or a folder is on the disk. What cannot be opened is left to those who need it.
void Sync(const std::string& path) {
#ifndef _WIN32
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
#else
  static_cast<void>(path);
#endif
}

std::string FormatFiles(const std::vector<FileState>& files, bool times) {
  std::string text;
  for (const FileState& file : files) {
    if (!text.empty()) text += ',';
    text += fmt::format("[{},{}", JsonText(file.path), file.size);
    if (times) text += fmt::format(",{}", file.time);
    text += ']';
  }
  return text;
}

bool IsNumber(const JsonValue& value) { return value.kind == JsonValue::Kind::kNumber; }

// A member that is an array of arrays: path, size and, in some, time.
bool ReadFiles(const JsonValue& line, const char* name, std::vector<FileState>& files) {
  const JsonValue* const array = line.Find(name);
  if (array == nullptr) return false;
  for (const JsonValue& item : array->items) {
    if (item.items.size() < 2 || !item.items[0].isString() || !IsNumber(item.items[1])) return false;
    FileState file{item.items[0].text, std::strtoull(item.items[1].text.c_str(), nullptr, 10), 0};
    if (item.items.size() > 2) file.time = std::strtoll(item.items[2].text.c_str(), nullptr, 10);
    files.push_back(std::move(file));
  }
  return true;
}

}  // namespace

FileState StateOf(const std::string& path) {
  FileState state{path, 0, 0};
  std::error_code error;
  const uint64_t size = fs::file_size(path, error);
  if (error) return state;
  state.size = size;
  const auto time = fs::last_write_time(path, error);
  if (!error) state.time = static_cast<int64_t>(time.time_since_epoch().count());
  return state;
}

std::string FormatReportLine(const ReportLine& line) {
  std::string inputs;
  for (const std::string& input : line.inputs) inputs += (inputs.empty() ? "" : ",") + JsonText(input);
  std::string text =
      fmt::format(R"({}{}","line":{},"result":"{}","input":[{}],"output":[{}],"pages":{},"seconds":{:.3f})", kBegin,
                  line.key, line.line, line.code == 0 ? "done" : "failed", inputs, FormatFiles(line.outputs, false),
                  line.pages, line.seconds);
  if (line.code != 0) text += fmt::format(R"(,"code":{},"error":{})", line.code, JsonText(line.error));
  return text + fmt::format(R"(,"read":[{}]}})", FormatFiles(line.read, true));
}

bool ParseReportLine(const std::string& text, ReportLine& line) {
  std::string error;
  const std::optional<JsonValue> value = ParseJson(text, error);
  if (!value || value->kind != JsonValue::Kind::kObject) return false;
  const JsonValue* const key = value->Find("job");
  const JsonValue* const number = value->Find("line");
  const JsonValue* const result = value->Find("result");
  const JsonValue* const pages = value->Find("pages");
  const JsonValue* const seconds = value->Find("seconds");
  const JsonValue* const inputs = value->Find("input");
  for (const JsonValue* const needed : {key, number, result, pages, seconds, inputs}) {
    if (needed == nullptr) return false;
  }
  if (!ReadFiles(*value, "output", line.outputs) || !ReadFiles(*value, "read", line.read)) return false;
  line.key = key->text;
  line.line = std::atoi(number->text.c_str());
  for (const JsonValue& input : inputs->items) line.inputs.push_back(input.text);
  line.pages = std::atoi(pages->text.c_str());
  line.seconds = std::atof(seconds->text.c_str());
  if (const JsonValue* const code = value->Find("code"); code != nullptr) line.code = std::atoi(code->text.c_str());
  if (const JsonValue* const why = value->Find("error"); why != nullptr) line.error = why->text;
  return (line.code == 0) == (result->text == "done");
}

JobReport::JobReport(const std::string& path, std::string& remark) : path_(path) {
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw ToolError(ExitCode::kUsage, fmt::format("--report {}: is no file", path));
  }
  if (fs::exists(status)) Read(remark);
  file_ = std::fopen(path.c_str(), "ab");
  if (file_ == nullptr) Fail();
  std::setvbuf(file_, nullptr, _IONBF,
               0);  // one call of the system writes a line, so that those of programs do not mix
}

JobReport::~JobReport() {
  if (file_ != nullptr) std::fclose(file_);
}

void JobReport::Fail() const { CannotWrite(path_, std::strerror(errno)); }

void JobReport::Read(std::string& remark) {
  std::ifstream file(path_, std::ios::binary);
  if (!file) throw ToolError(ExitCode::kUsage, fmt::format("--report {}: {}", path_, std::strerror(errno)));
  std::string text;
  for (int number = 1; std::getline(file, text); ++number) {
    isCut_ = file.eof();
    ReportLine line;
    if (ParseReportLine(text, line)) {
      if (line.code == 0) done_[line.key] = std::move(line);
      continue;
    }
    // A run that is killed leaves the beginning of a line. Anything else is not for this program to write to.
    const std::string begin = kBegin;
    const std::size_t compared = std::min(begin.size(), text.size());
    if (text.compare(0, compared, begin, 0, compared) != 0 || (text.empty() && !isCut_)) {
      throw ToolError(ExitCode::kUsage,
                      fmt::format("--report {}: line {} is none of a report; name another file", path_, number));
    }
    remark = fmt::format("line {} is incomplete and does not count", number);
  }
}

const ReportLine* JobReport::DoneLine(const std::string& key) const {
  const auto found = done_.find(key);
  if (found == done_.end()) return nullptr;
  for (const FileState& file : found->second.read) {
    if (StateOf(file.path) != file) return nullptr;
  }
  std::error_code error;
  for (const FileState& file : found->second.outputs) {
    if (fs::file_size(file.path, error) != file.size || error) return nullptr;
  }
  return &found->second;
}

void JobReport::Add(const ReportLine& line) {
  std::set<std::string> folders;
  for (const FileState& file : line.outputs) {
    Sync(file.path);
    const fs::path folder = fs::path(file.path).parent_path();
    folders.insert(folder.empty() ? "." : folder.string());
  }
  for (const std::string& folder : folders) Sync(folder);
  std::string text = FormatReportLine(line) + "\n";
  const std::lock_guard<std::mutex> lock(mutex_);
  if (isCut_) text.insert(0, 1, '\n');
  isCut_ = false;
  if (std::fwrite(text.data(), 1, text.size(), file_) != text.size()) Fail();
#ifndef _WIN32
  if (fsync(fileno(file_)) != 0 && errno != EINVAL) Fail();
#endif
}

}  // namespace qnv::tool
