// Where the time of a job goes, for --timing.
#pragma once

#include <chrono>
#include <string>

namespace qnv::tool {

enum class Phase { kReading, kLayout, kRasterising, kEncoding, kWriting, kSending, kWaiting };
inline constexpr int kPhases = 7;

// While it lives, the time of this thread counts for `phase`; the phase around it, if any, pauses. Costs two looks at
// the clock, so it is for whole files, bands and writes, not for pixels.
class PhaseTimer {
 public:
  explicit PhaseTimer(Phase phase);
  ~PhaseTimer();
  PhaseTimer(const PhaseTimer&) = delete;
  PhaseTimer& operator=(const PhaseTimer&) = delete;

 private:
  const int outer_;
};

// One line: the milliseconds of every phase, those of all threads added up, and of what the main thread spent outside
// of all phases ("other"); their sum ("together"); and how long the program runs ("elapsed"). A thread that waits for
// others, without work, counts for nothing.
std::string DescribePhases();

}  // namespace qnv::tool
