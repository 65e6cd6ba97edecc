// Draws the progress bar with terminal control codes.
#include "qnvtool/base/progress.h"

#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace qnv::tool {
namespace {

constexpr int kBarWidth = 30;
constexpr const char* kEraseLine = "\r\033[K";

}  // namespace

Progress::Progress(bool enabled) : enabled_(enabled && isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() { Clear(); }

void Progress::Clear() {
  if (shown_) std::fputs(kEraseLine, stderr);
  shown_ = false;
}

// The line is erased and written again.
void Progress::Show(double done, const std::string& label) {
  using namespace std::chrono_literals;
  const Clock::time_point now = Clock::now();
  if (!enabled_ || now - start_ < 1s || now - lastDrawn_ < 100ms) return;
  lastDrawn_ = now;
  shown_ = true;
  const int filled = static_cast<int>(std::clamp(done, 0.0, 1.0) * kBarWidth);
  const std::string bar = std::string(static_cast<std::size_t>(filled), '#') +
                          std::string(static_cast<std::size_t>(kBarWidth - filled), '.');
  std::fputs(fmt::format("{}[{}] {:3.0f}%  {}", kEraseLine, bar, done * 100, label).c_str(), stderr);
  std::fflush(stderr);
}

}  // namespace qnv::tool
