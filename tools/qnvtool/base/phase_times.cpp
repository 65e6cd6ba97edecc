// Keeps the time of every phase; a phase inside another one pauses it.
#include "qnvtool/base/phase_times.h"

#include <fmt/core.h>

#include <array>
#include <utility>

namespace qnv::tool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kOther = kPhases;  // outside of all phases
constexpr std::array<const char*, kPhases + 1> kNames = {"reading", "layout",  "rasterising", "encoding",
                                                         "writing", "sending", "other"};

struct Times {
  std::array<Clock::duration, kPhases + 1> spent{};
  const Clock::time_point start = Clock::now();
  Clock::time_point since = start;  // when the present phase began or was last counted
  int present = kOther;
};

Times& TheTimes() {
  static Times times;
  return times;
}

// Counts the time up to now for the present phase. Returns that phase.
int Switch(int phase) {
  Times& times = TheTimes();
  const Clock::time_point now = Clock::now();
  times.spent[static_cast<std::size_t>(times.present)] += now - times.since;
  times.since = now;
  return std::exchange(times.present, phase);
}

// The program starts here, not where the first phase begins.
[[maybe_unused]] const Times& started = TheTimes();

}  // namespace

PhaseTimer::PhaseTimer(Phase phase) : outer_(Switch(static_cast<int>(phase))) {}

PhaseTimer::~PhaseTimer() { Switch(outer_); }

std::string DescribePhases() {
  const auto milliseconds = [](Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
  };
  Switch(TheTimes().present);
  std::string line;
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    line += fmt::format("{} {:.1f} ms, ", kNames[i], milliseconds(TheTimes().spent[i]));
  }
  return line + fmt::format("together {:.1f} ms", milliseconds(TheTimes().since - TheTimes().start));
}

}  // namespace qnv::tool
