// Keeps the time of every phase; a phase inside another one pauses it.
#include "qnvtool/base/phase_times.h"

#include <fmt/core.h>

#include <array>
#include <atomic>
#include <utility>

namespace qnv::tool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kOther = kPhases;  // outside of all phases, of the main thread
constexpr int kNothing = -1;     // the same, of other threads, and while a thread waits
constexpr std::array<const char*, kPhases + 1> kNames = {"reading", "layout", "rasterising", "encoding", "writing",
                                                         "sending", "",       "other"};

struct Totals {
  std::array<std::atomic<int64_t>, kPhases + 1> spent{};  // nanoseconds
  const Clock::time_point start = Clock::now();
};

Totals& TheTotals() {
  static Totals totals;
  return totals;
}

struct ThreadTimes {
  Clock::time_point since;  // when the present phase began or was last counted
  int present = kNothing;
};

thread_local ThreadTimes times;

// Counts the time up to now for the present phase. Returns that phase.
int Switch(int phase) {
  const Clock::time_point now = Clock::now();
  if (times.present != kNothing) {
    const int64_t spent = std::chrono::nanoseconds(now - times.since).count();
    TheTotals().spent[static_cast<std::size_t>(times.present)].fetch_add(spent, std::memory_order_relaxed);
  }
  times.since = now;
  return std::exchange(times.present, phase);
}

// The program starts here, on the main thread, not where the first phase begins.
[[maybe_unused]] const bool started = [] {
  times = {TheTotals().start, kOther};
  return true;
}();

}  // namespace

PhaseTimer::PhaseTimer(Phase phase) : outer_(Switch(phase == Phase::kWaiting ? kNothing : static_cast<int>(phase))) {}

PhaseTimer::~PhaseTimer() { Switch(outer_); }

std::string DescribePhases() {
  Switch(times.present);
  std::string line;
  double together = 0;
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (*kNames[i] == '\0') continue;
    const double spent = static_cast<double>(TheTotals().spent[i].load()) / 1e6;
    together += spent;
    line += fmt::format("{} {:.1f} ms, ", kNames[i], spent);
  }
  const std::chrono::duration<double, std::milli> elapsed = times.since - TheTotals().start;
  return line + fmt::format("together {:.1f} ms, elapsed {:.1f} ms", together, elapsed.count());
}

}  // namespace qnv::tool
