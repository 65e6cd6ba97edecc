// Where the time of a job goes, for --timing.
#pragma once

#include <chrono>
#include <string>

namespace qnv::tool {

enum class Phase { kReading, kLayout, kRasterising, kEncoding, kWriting, kSending };
inline constexpr int kPhases = 6;

// While it lives, the time of the main thread counts for `phase`; the phase around it, if any, pauses. Costs two looks
// at the clock, so it is for whole files, bands and writes, not for pixels. Only for the main thread.
class PhaseTimer {
 public:
  explicit PhaseTimer(Phase phase);
  ~PhaseTimer();
  PhaseTimer(const PhaseTimer&) = delete;
  PhaseTimer& operator=(const PhaseTimer&) = delete;

 private:
  const int outer_;
};

// One line: the milliseconds of every phase, of what no phase counts ("other"), and of the program up to now.
std::string DescribePhases();

}  // namespace qnv::tool
