// Measures limits and rows, and checks that all builds paint the same pictures.
#include "runner.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>

#include "bench_memory.h"
#include "memory_limits.h"

namespace qnv::bench {
namespace {

// A limit is measured once for each shape, depth and kind.
struct LimitKey {
  Shape shape;
  int bytesPerPixel;
  LimitKind kind;
  auto operator<=>(const LimitKey&) const = default;
};

struct MeasuredLimit {
  Limit limit;
  LimitSurface surface;
};

// The plan for --quick and --samples.
TimingPlan PlanOf(const Options& options) {
  TimingPlan plan;
  if (options.quick) plan = {100e3, 5, 5e6};
  if (options.samples > 0) {
    plan.budgetNs *= std::max(1.0, 1.0 * options.samples / plan.samples);
    plan.samples = options.samples;
  }
  return plan;
}

// One run of the benchmark.
class Runner {
 public:
  Runner(const Options& options, const Libraries& libraries, Report& report)
      : options_(options), libraries_(libraries), report_(report), plan_(PlanOf(options)) {}

  void MeasureLimits(const std::vector<std::pair<const Row*, Shape>>& rows) {
    for (const auto& [row, shape] : rows) {
      if (row->spec.limit != LimitKind::kNone) Need(*row, shape, row->spec.limit);
      if (ReadsSourceInPlace(row->spec)) Need(*row, shape, LimitKind::kCombine);
    }
  }

  // Measures a row, prints the result and adds it to the report.
  void MeasureRow(const Row& row, Shape shape) {
    RowResult result =
        row.spec.operation == Operation::kBltAllCodes ? MeasureAllCodes(row, shape) : MeasureOne(row, shape, plan_);
    result.name = row.name;
    result.shape = Info(shape).name;
    PrintRow(result);
    report_.rows.push_back(std::move(result));
  }

  // Measures the limits once more, which shows whether the speed of the machine has changed.
  void RepeatLimits() {
    for (std::size_t i = 0; i < order_.size(); ++i) {
      const MeasuredLimit& measured = limits_.at(order_[i]);
      const auto job = MakeLimitJob(*measured.limit.loop, measured.surface);
      const Timing timing = MeasureInTurn({job.get()}, plan_).front();
      report_.limits[i].rateAtEnd = BytesOf(measured.surface) / timing.bestNs;
    }
  }

 private:
  static double BytesOf(const LimitSurface& surface) { return static_cast<double>(surface.rowBytes) * surface.rows; }

  // Whether a row combines the band with a source byte by byte.
  static bool ReadsSourceInPlace(const RowSpec& spec) {
    const bool byteForByte = spec.source == Source::kRgb24 || spec.source == Source::kGray8;
    return byteForByte && spec.limit == LimitKind::kReadModifyWrite;
  }

  // Measures a limit unless that has been done.
  void Need(const Row& row, Shape shape, LimitKind kind) {
    const LimitKey key = {shape, BytesPerPixel(row.spec.band), kind};
    if (limits_.count(key) != 0) return;
    const LimitSurface surface = SurfaceOf(memory_, row, shape);
    const Limit limit = MeasureLimit(kind, surface, plan_);
    limits_[key] = {limit, surface};
    order_.push_back(key);
    report_.limits.push_back(
        {Info(shape).name, key.bytesPerPixel, LimitName(kind), limit.loop->name, limit.gigabytesPerSecond, 0});
  }

  // The jobs of one row, in the order in which they are sampled.
  struct Jobs {
    RowJob main;
    std::vector<std::unique_ptr<Job>> others;
    std::vector<Job*> all;
    Rival rival;

    void Add(std::unique_ptr<Job> job) {
      all.push_back(job.get());
      others.push_back(std::move(job));
    }
  };

  // Measures a row with all builds and the rival.
  RowResult MeasureOne(const Row& row, Shape shape, const TimingPlan& plan) {
    Jobs jobs;
    jobs.main = MakeJob(*libraries_.main, memory_, row, shape);
    jobs.all.push_back(jobs.main.job.get());
    // The limit is measured again together with each row.
    const MeasuredLimit* const limit = Find(row, shape, row.spec.limit);
    jobs.Add(limit != nullptr ? MakeLimitJob(*limit->limit.loop, limit->surface) : nullptr);
    jobs.Add(libraries_.baseline != nullptr ? MakeJob(*libraries_.baseline, memory_, row, shape).job : nullptr);
    for (const auto& level : libraries_.levels) jobs.Add(MakeJob(*level.second, memory_, row, shape).job);
    if (options_.rival) jobs.rival = MakeRival(memory_, row, shape);
    jobs.all.push_back(jobs.rival.job.get());

    RowResult result;
    CheckPictures(row, jobs, result);
    const std::vector<Timing> timings = MeasureInTurn(jobs.all, plan);
    result.bestNs = timings[0].bestNs;
    result.medianNs = timings[0].medianNs;
    const Amounts& amounts = jobs.main.amounts;
    result.calls = amounts.calls;
    result.bytes = amounts.bytes;
    result.sourceBytes = amounts.sourceBytes;
    result.items = amounts.items;
    if (limit != nullptr) {
      // The higher of the two, so that a disturbed limit does not make the share too large.
      result.limit = LimitName(row.spec.limit);
      result.limitRate = std::max(limit->limit.gigabytesPerSecond, BytesOf(limit->surface) / timings[1].bestNs);
    }
    if (ReadsSourceInPlace(row.spec)) {
      result.combineRate = Find(row, shape, LimitKind::kCombine)->limit.gigabytesPerSecond;
    }
    result.plainNs = timings[2].bestNs;
    for (std::size_t i = 0; i < libraries_.levels.size(); ++i) {
      result.levels.push_back({libraries_.levels[i].first, timings[3 + i].bestNs});
    }
    if (jobs.rival.job != nullptr) {
      result.rival = jobs.rival.name;
      result.rivalNs = timings.back().bestNs;
    }
    return result;
  }

  // Compares the pictures of all builds. A row that paints nothing would be fast for the wrong reason.
  void CheckPictures(const Row& row, Jobs& jobs, RowResult& result) {
    if (row.spec.operation == Operation::kSkip || (row.spec.operation == Operation::kPixel && row.spec.code == 0))
      return;
    const auto paint = [](Job& job, bool& painted) {
      job.Rewind();
      const uint64_t before = job.PictureHash();
      job.Run(1);
      const uint64_t after = job.PictureHash();
      painted = after != before;
      return after;
    };
    bool painted = false;
    const uint64_t picture = paint(*jobs.main.job, painted);
    if (!painted) Complain(row, "paints nothing", result);
    // The first two jobs are the library and its limit, the last one is the rival.
    for (std::size_t i = 2; i + 1 < jobs.all.size(); ++i) {
      if (jobs.all[i] != nullptr && paint(*jobs.all[i], painted) != picture) {
        Complain(row, "another build paints another picture", result);
      }
    }
    if (jobs.rival.job == nullptr) return;
    result.rivalSame = paint(*jobs.rival.job, painted) == picture;
    if (painted) return;
    result.note = jobs.rival.name + " paints nothing";
    jobs.all.back() = nullptr;
    jobs.rival.job.reset();
  }

  void Complain(const Row& row, const char* what, RowResult& result) {
    std::fprintf(stderr, "qnvbench: %s: %s\n", row.name.c_str(), what);
    result.note = what;
    ++report_.faults;
  }

  // Every code that paints, each measured alone; the result is the geometric mean.
  RowResult MeasureAllCodes(const Row& row, Shape shape) {
    TimingPlan plan = plan_;
    plan.batchNs /= 4;
    plan.samples = std::max(3, plan.samples / 3);
    plan.budgetNs /= 8;
    RowResult mean;
    double logBest = 0, logMedian = 0, logPlain = 0, logRival = 0, slowestNs = 0;
    std::vector<double> logLevels(libraries_.levels.size());
    uint32_t slowest = 0;
    int codes = 0;
    for (uint32_t index = 0; index < 256; ++index) {
      if (index == 0xAA) continue;
      Row single = row;
      single.spec.operation = Operation::kBlt;
      single.spec.code = index << 16;
      const RowResult one = MeasureOne(single, shape, plan);
      ++codes;
      logBest += std::log(one.bestNs);
      logMedian += std::log(one.medianNs);
      logPlain += std::log(std::max(one.plainNs, 1e-9));
      logRival += std::log(std::max(one.rivalNs, 1e-9));
      for (std::size_t i = 0; i < logLevels.size(); ++i) logLevels[i] += std::log(one.levels[i].second);
      if (one.bestNs > slowestNs) {
        slowestNs = one.bestNs;
        slowest = index;
      }
      const double limitRate = std::max(mean.limitRate, one.limitRate);
      mean.limit = one.limit;
      mean.limitRate = limitRate;
      mean.combineRate = one.combineRate;
      mean.bytes = one.bytes;
      mean.sourceBytes = one.sourceBytes;
      mean.rival = one.rival;
    }
    mean.bestNs = std::exp(logBest / codes);
    mean.medianNs = std::exp(logMedian / codes);
    if (libraries_.baseline != nullptr) mean.plainNs = std::exp(logPlain / codes);
    if (!mean.rival.empty()) mean.rivalNs = std::exp(logRival / codes);
    for (std::size_t i = 0; i < logLevels.size(); ++i) {
      mean.levels.push_back({libraries_.levels[i].first, std::exp(logLevels[i] / codes)});
    }
    char note[80];
    const double share = mean.limitRate > 0 ? mean.bytes / slowestNs / mean.limitRate : 0;
    std::snprintf(note, sizeof note, "slowest %02x: %.0f ns, share %.2f", static_cast<unsigned>(slowest), slowestNs,
                  share);
    mean.note = note;
    return mean;
  }

  const MeasuredLimit* Find(const Row& row, Shape shape, LimitKind kind) const {
    const auto found = limits_.find({shape, BytesPerPixel(row.spec.band), kind});
    return found == limits_.end() ? nullptr : &found->second;
  }

  const Options& options_;
  const Libraries& libraries_;
  Report& report_;
  TimingPlan plan_;
  Memory memory_;
  std::map<LimitKey, MeasuredLimit> limits_;
  std::vector<LimitKey> order_;
};

}  // namespace

void RunRows(const Options& options, const RowFilter& filter, const Libraries& libraries, Report& report) {
  std::vector<std::pair<const Row*, Shape>> chosen;
  for (const Row& row : AllRows()) {
    if (!filter.Takes(row)) continue;
    for (const Shape shape : row.shapes) {
      if (filter.Takes(shape)) chosen.push_back({&row, shape});
    }
  }
  const auto runner = std::make_unique<Runner>(options, libraries, report);
  runner->MeasureLimits(chosen);
  PrintLimits(report);
  PrintRowHeading();
  for (const auto& [row, shape] : chosen) runner->MeasureRow(*row, shape);
  runner->RepeatLimits();
  report.derived = DeriveFigures(report.rows);
}

}  // namespace qnv::bench
