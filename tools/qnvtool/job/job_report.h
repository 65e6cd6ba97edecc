// The report of a run of many jobs: a line of JSON for each job that ended. A later run reads it and leaves out the
// jobs that are done.
#pragma once

#include <cstdint>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace qnv::tool {

// A file as it was.
struct FileState {
  std::string path;
  uint64_t size = 0;
  int64_t time = 0;  // of its last change, in the units of the system's clock

  bool operator==(const FileState&) const = default;
};

// The state of a file now; size and time are 0 when it cannot be looked at.
FileState StateOf(const std::string& path);

struct ReportLine {
  std::string key;  // stands for everything that the job was asked for
  int line = 0;     // of the manifest; 0: none
  std::vector<std::string> inputs;
  std::vector<FileState> read;     // all files that the result depends on, as they were before
  std::vector<FileState> outputs;  // in which the time does not count
  int pages = 0;
  double seconds = 0;
  int code = 0;       // 0: done, else the exit code
  std::string error;  // why not
};

class JobReport {
 public:
  // Reads the report, if it exists. `remark` gets what to tell the user, if anything: a line that was cut off when a
  // run was killed is no error. Throws ToolError (usage) for a file that is no report, which is left as it is.
  JobReport(const std::string& path, std::string& remark);
  ~JobReport();
  JobReport(const JobReport&) = delete;
  JobReport& operator=(const JobReport&) = delete;

  // The line by which a job is done: its inputs are as they were then, and its outputs are there. Else null.
  const ReportLine* DoneLine(const std::string& key) const;

  // Appends a line. When this returns, the outputs, their names and the line are on the disk. Several threads may call
  // it. Throws ToolError (cannot write).
  void Add(const ReportLine& line);

 private:
  void Read(std::string& remark);
  [[noreturn]] void Fail() const;

  const std::string path_;
  std::map<std::string, ReportLine> done_;  // by key
  bool isCut_ = false;                      // the last line has no end
  std::mutex mutex_;
  std::FILE* file_ = nullptr;
};

// The line as it is written, without its end.
std::string FormatReportLine(const ReportLine& line);

// Reads such a line. False when it is none.
bool ParseReportLine(const std::string& text, ReportLine& line);

}  // namespace qnv::tool
