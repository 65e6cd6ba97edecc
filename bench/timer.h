// Timing of short jobs. Jobs that are compared are measured in turn, so that a disturbance of the machine affects all
// of them alike.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

namespace qnv::bench {

// Something that is measured by repeating it.
class Job {
 public:
  virtual ~Job() = default;
  virtual void Run(int times) = 0;
  // Restores the picture that the first run starts with. Not timed.
  virtual void Rewind() {}
  // A hash of the current picture, 0 for a job without one. Shows that a job paints, and that two paint the same.
  virtual uint64_t PictureHash() const { return 0; }
};

struct TimingPlan {
  double batchNs = 400e3;   // a sample repeats the job until it takes about this long
  int samples = 21;         // of each job
  double budgetNs = 150e6;  // of one job; slow jobs get fewer samples, never fewer than three
};

struct Timing {
  double bestNs = 0;    // of one run
  double medianNs = 0;  // of one run
};

// The time of a batch in nanoseconds.
inline double TimeBatch(Job& job, int times) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  job.Run(times);
  return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

// The number of runs for a batch of the planned length. Finding it also warms up caches and predictors.
inline int CalibrateBatch(Job& job, const TimingPlan& plan) {
  constexpr int kMaxTimes = 1 << 24;
  int times = 1;
  for (;;) {
    const double ns = std::max(TimeBatch(job, times), 1.0);
    if (ns >= plan.batchNs / 2 || times >= kMaxTimes) {
      return std::clamp(static_cast<int>(times * plan.batchNs / ns), 1, kMaxTimes);
    }
    times = std::min(kMaxTimes, times * static_cast<int>(std::clamp(plan.batchNs / ns, 2.0, 16.0)));
  }
}

// Measures several jobs in turn. Null jobs are allowed and give a Timing of zeros.
inline std::vector<Timing> MeasureInTurn(const std::vector<Job*>& jobs, const TimingPlan& plan) {
  struct State {
    int times = 0;
    int samples = 0;
    std::vector<double> ns;
  };
  std::vector<State> states(jobs.size());
  int rounds = 0;
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    if (jobs[i] == nullptr) continue;
    jobs[i]->Rewind();
    State& state = states[i];
    state.times = CalibrateBatch(*jobs[i], plan);
    const double batchNs = TimeBatch(*jobs[i], state.times);
    state.samples = std::clamp(static_cast<int>(plan.budgetNs / std::max(batchNs, 1.0)), 3, std::max(plan.samples, 3));
    rounds = std::max(rounds, state.samples);
  }
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < jobs.size(); ++i) {
      if (round >= states[i].samples) continue;
      jobs[i]->Rewind();
      if (states[i].times > 1) jobs[i]->Run(1);  // fills the cache again, which rewinding has changed
      states[i].ns.push_back(TimeBatch(*jobs[i], states[i].times) / states[i].times);
    }
  }
  std::vector<Timing> timings(jobs.size());
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    std::vector<double>& ns = states[i].ns;
    if (ns.empty()) continue;
    std::sort(ns.begin(), ns.end());
    timings[i] = {ns.front(), ns[ns.size() / 2]};
  }
  return timings;
}

}  // namespace qnv::bench
