// A progress bar for the terminal.
#pragma once

#include <chrono>
#include <string>

namespace qnv::tool {

// What is shown on a terminal of so many columns: a bar, the percentage and the label; without the bar, or with the
// label cut off, where there is no room. It never fills the last column, behind which terminals begin another line.
std::string ProgressLine(double done, const std::string& label, int columns);

class Progress {
 public:
  // Shows nothing when not `enabled` or when standard error is no terminal.
  explicit Progress(bool enabled);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Shows the part that is done, 0..1, and a label. The bar appears after one second and is drawn at most ten times a
  // second.
  void Show(double done, const std::string& label);

  // Removes the bar, for other lines; Show draws it again.
  void Clear();

 private:
  using Clock = std::chrono::steady_clock;
  const bool enabled_;
  const Clock::time_point start_ = Clock::now();
  Clock::time_point lastDrawn_{};
  bool shown_ = false;
};

}  // namespace qnv::tool
