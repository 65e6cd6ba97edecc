// Lays out all jobs, compares their names, prints them, and tells what became of them.
#include "qnvtool/job/many_jobs.h"

#include <fmt/core.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <set>

#include "qnvtool/base/interruption.h"
#include "qnvtool/base/ordered_tasks.h"
#include "qnvtool/base/output_file.h"
#include "qnvtool/base/progress.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/job/job_report.h"
#include "qnvtool/job/print_job.h"

namespace qnv::tool {
namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

// What is known of a job.
struct JobState {
  enum class Result { kWaiting, kDoneBefore, kPrinted, kFailed };
  Result result = Result::kWaiting;
  int pages = 0;
  double seconds = 0;
  ExitCode code = ExitCode::kOk;
  std::string error;
  std::vector<std::string> inputs;
  std::vector<PageNames> outputs;
};

// Calls `work`, and keeps its error in `state`. Interruptions pass.
template <class Work>
void KeepError(JobState& state, const Work& work) {
  const auto fail = [&](ExitCode code, const char* error) {
    state.result = JobState::Result::kFailed;
    state.code = code;
    state.error = error;
  };
  try {
    work();
  } catch (const ToolError& error) {
    fail(error.code(), error.what());
  } catch (const std::bad_alloc&) {
    fail(ExitCode::kBadInput, "not enough memory");
  } catch (const std::exception& error) {
    fail(ExitCode::kBadInput, error.what());
  }
}

class ManyJobs {
 public:
  ManyJobs(const std::vector<ListedJob>& jobs, const RunOptions& run, const PrintParts& parts)
      : jobs_(jobs),
        run_(run),
        parts_(parts),
        threads_(run.threads > 0 ? run.threads : CoreCount()),
        notes_(run.quiet),
        progress_(!run.quiet),
        states_(jobs.size()) {}

  void Print() {
    if (!run_.report.empty()) ReadReport();
    const std::size_t waiting = Waiting().size();
    // Where there are fewer jobs than threads, each gets several.
    const int side = std::clamp(static_cast<int>(std::min<std::size_t>(waiting, kMaxSide)), 1, threads_);
    Workers workers(side);
    threadsOfJob_ = threads_ / side;
    ForWaiting(workers, [this](std::size_t index) { LayOut(index); });
    StopAtFailure();
    CompareNames();
    if (!run_.newFolder.empty()) MakeFolder();
    for (const std::size_t index : Waiting()) pages_ += states_[index].pages;
    ForWaiting(workers, [this](std::size_t index) { PrintOne(index); });
    Tell();
  }

 private:
  static constexpr std::size_t kMaxSide = 1024;

  std::vector<std::size_t> Waiting() const {
    std::vector<std::size_t> indices;
    for (std::size_t i = 0; i < jobs_.size(); ++i) {
      if (!jobs_[i].isElsewhere && states_[i].result == JobState::Result::kWaiting) indices.push_back(i);
    }
    return indices;
  }

  template <class Work>
  void ForWaiting(Workers& workers, const Work& work) {
    const std::vector<std::size_t> indices = Waiting();
    OrderedTasks<int> tasks(workers, static_cast<int>(indices.size()) + 1, [](int) {});
    for (const std::size_t index : indices) {
      tasks.Start([&work, index] {
        ThrowIfInterrupted();
        work(index);
        return 0;
      });
    }
    tasks.Finish();
  }

  void ReadReport() {
    std::string remark;
    report_.emplace(run_.report, remark);
    if (!remark.empty()) notes_.Show(run_.report, remark);
    for (const std::size_t index : Waiting()) {
      const ReportLine* const line = report_->DoneLine(jobs_[index].key);
      if (line == nullptr) continue;
      JobState& state = states_[index];
      state.result = JobState::Result::kDoneBefore;
      state.pages = line->pages;
      state.seconds = line->seconds;
      for (const FileState& file : line->read) state.inputs.push_back(file.path);
      for (const FileState& file : line->outputs) state.outputs.push_back({file.path, "", ""});
    }
  }

  void LayOut(std::size_t index) {
    JobState& state = states_[index];
    KeepError(state, [&] {
      Workers alone(1);
      const PrintJob job(jobs_[index].options, parts_, alone, notes_);
      state.pages = job.sheets();
      state.inputs = job.inputs();
      state.outputs = job.outputs();
    });
    if (state.result == JobState::Result::kFailed && run_.keepGoing) Complain(index);
  }

  // The error of a job, with its name where the error does not begin with it.
  std::string ErrorOf(std::size_t index) const {
    const std::string name = jobs_[index].name + ": ";
    const std::string& error = states_[index].error;
    return error.compare(0, name.size(), name) == 0 ? error : name + error;
  }

  void Complain(std::size_t index) {
    const std::string line = fmt::format("qnvtool: {}\n", ErrorOf(index));
    const std::lock_guard<std::mutex> lock(mutex_);
    progress_.Clear();
    std::fputs(line.c_str(), stderr);
  }

  // Without keepGoing the first job that cannot be printed ends the run.
  void StopAtFailure() const {
    if (run_.keepGoing) return;
    for (std::size_t i = 0; i < jobs_.size(); ++i) {
      if (states_[i].result == JobState::Result::kFailed) {
        throw ToolError(states_[i].code, ErrorOf(i));
      }
    }
  }

  // Of jobs that other runs print the numbers of pages are not known: their names count as if they had one page.
  void CompareNames() const {
    FileClaims claims;
    for (const std::string& input : run_.inputs) claims.AddInput(input);
    if (!run_.report.empty()) claims.AddInput(run_.report);
    for (std::size_t i = 0; i < jobs_.size(); ++i) {
      const std::vector<std::string>& named = jobs_[i].options.files;
      for (const std::string& input : named) claims.AddInput(input);
      for (const std::string& input : states_[i].inputs) claims.AddInput(input);
    }
    for (std::size_t i = 0; i < jobs_.size(); ++i) {
      if (states_[i].result == JobState::Result::kFailed) continue;
      const PrintOptions& options = jobs_[i].options;
      try {
        if (jobs_[i].isElsewhere) {
          claims.AddOutputs({{options.out, options.tags, options.overlay}});
        } else {
          claims.AddOutputs(states_[i].outputs);
        }
      } catch (const ToolError& error) {
        throw ToolError(error.code(), fmt::format("{}: {}", jobs_[i].name, error.what()));
      }
    }
  }

  void MakeFolder() const {
    std::error_code error;
    std::filesystem::create_directories(run_.newFolder, error);
    if (error) CannotWrite(run_.newFolder, error.message());
  }

  void PrintOne(std::size_t index) {
    if (isStopped_) return;
    JobState& state = states_[index];
    const ListedJob& listed = jobs_[index];
    const Clock::time_point start = Clock::now();
    ReportLine line;
    KeepError(state, [&] {
      for (const std::string& input : state.inputs) line.read.push_back(StateOf(input));
      Workers workers(threadsOfJob_);
      PrintJob job(listed.options, parts_, workers, notes_);
      if (job.sheets() != state.pages) {
        throw ToolError(ExitCode::kBadInput, "an input file was changed while it was printed");
      }
      int before = 0;
      job.Paint([&](int sheet, double share) {
        const bool full = share >= 1 && sheet > before;
        if (full) before = sheet;
        ShowProgress(full ? 1 : 0, 0);
      });
      state.result = JobState::Result::kPrinted;
    });
    state.seconds = SecondsSince(start);
    const bool failed = state.result == JobState::Result::kFailed;
    if (failed && !run_.keepGoing) isStopped_ = true;
    if (failed) Complain(index);
    if (report_) AddToReport(index, std::move(line));
    ShowProgress(0, 1);
  }

  // A report that cannot be written ends the run: without it a later run would print jobs again.
  void AddToReport(std::size_t index, ReportLine line) {
    const JobState& state = states_[index];
    line.key = jobs_[index].key;
    line.line = jobs_[index].line;
    line.inputs = jobs_[index].options.files;
    line.pages = state.pages;
    line.seconds = state.seconds;
    line.code = static_cast<int>(state.code);
    line.error = state.error;
    std::set<std::string> known;
    for (const PageNames& page : state.outputs) {
      for (const std::string& path : {page.picture, page.tags, page.overlay}) {
        if (path.empty() || !known.insert(path).second) continue;
        line.outputs.push_back(line.code == 0 ? StateOf(path) : FileState{path, 0, 0});
      }
    }
    report_->Add(line);
  }

  void ShowProgress(int pages, int jobs) {
    const std::lock_guard<std::mutex> lock(mutex_);
    pagesDone_ += pages;
    jobsDone_ += jobs;
    progress_.Show(static_cast<double>(pagesDone_) / std::max(pages_, 1),
                   fmt::format("page {} of {}, {} jobs done", pagesDone_, pages_, jobsDone_));
  }

  std::string ResultOf(const JobState& state) const {
    switch (state.result) {
      case JobState::Result::kPrinted: return "printed";
      case JobState::Result::kDoneBefore: return "printed before";
      case JobState::Result::kFailed: return state.error;
      default: return "not begun";
    }
  }

  // The table, and the error of the run.
  void Tell() {
    progress_.Clear();
    std::size_t width = 4;
    std::array<std::size_t, 4> counts{};
    int pages = 0;
    ExitCode code = ExitCode::kOk;
    for (std::size_t i = 0; i < jobs_.size(); ++i) {
      if (jobs_[i].isElsewhere) continue;
      const JobState& state = states_[i];
      width = std::max(width, std::min<std::size_t>(jobs_[i].name.size(), 50));
      ++counts[static_cast<std::size_t>(state.result)];
      if (state.result == JobState::Result::kPrinted) pages += state.pages;
      code = std::max(code, state.code);
    }
    const auto count = [&](JobState::Result result) { return counts[static_cast<std::size_t>(result)]; };
    const std::size_t failed = count(JobState::Result::kFailed);
    const std::size_t left = count(JobState::Result::kWaiting);
    const std::size_t all = counts[0] + counts[1] + counts[2] + counts[3];
    if (!run_.quiet) {
      fmt::print("{:<{}}  {:>5}  {:>8}  {}\n", "job", width, "pages", "seconds", "result");
      for (std::size_t i = 0; i < jobs_.size(); ++i) {
        if (jobs_[i].isElsewhere) continue;
        const JobState& state = states_[i];
        const bool done = state.result == JobState::Result::kPrinted || state.result == JobState::Result::kDoneBefore;
        fmt::print("{:<{}}  {:>5}  {:>8}  {}\n", jobs_[i].name, width, done ? fmt::format("{}", state.pages) : "-",
                   done ? fmt::format("{:.2f}", state.seconds) : "-", ResultOf(state));
      }
      const double seconds = SecondsSince(start_);
      fmt::print("{} jobs: {} printed, {} printed before, {} failed, {} not begun; {} pages in {:.2f} s\n", all,
                 count(JobState::Result::kPrinted), count(JobState::Result::kDoneBefore), failed, left, pages, seconds);
      std::fflush(stdout);
    }
    if (code != ExitCode::kOk) throw ToolError(code, fmt::format("{} of {} jobs were not printed", failed + left, all));
  }

  const std::vector<ListedJob>& jobs_;
  const RunOptions& run_;
  const PrintParts& parts_;
  const int threads_;
  int threadsOfJob_ = 1;
  const Clock::time_point start_ = Clock::now();
  NotePrinter notes_;
  std::optional<JobReport> report_;
  std::atomic<bool> isStopped_ = false;

  std::mutex mutex_;  // for what follows, except for the states, each of which belongs to one task at a time
  Progress progress_;
  int pages_ = 0;  // to print
  int pagesDone_ = 0;
  int jobsDone_ = 0;
  std::vector<JobState> states_;
};

}  // namespace

// FNV-1a of 64 bits.
void FinishKey(ListedJob& job) {
  std::string text =
      job.key + "output=" + job.options.out + "\ntags=" + job.options.tags + "\noverlay=" + job.options.overlay + "\n";
  for (const std::string& file : job.options.files) text += "input=" + file + "\n";
  uint64_t hash = 0xCBF29CE484222325;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  job.key = fmt::format("{:016x}", hash);
}

void PrintMany(const std::vector<ListedJob>& jobs, const RunOptions& run, const PrintParts& parts) {
  const InterruptionGuard guard;
  ManyJobs(jobs, run, parts).Print();
}

}  // namespace qnv::tool
