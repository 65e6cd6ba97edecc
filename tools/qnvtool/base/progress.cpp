// Draws the progress bar with terminal control codes.
#include "qnvtool/base/progress.h"

#include <fmt/core.h>
#include <unistd.h>
#ifndef _WIN32
#include <sys/ioctl.h>
#endif

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace qnv::tool {
namespace {

constexpr int kMaxBar = 30;
constexpr int kMinBar = 10;
constexpr const char* kEraseLine = "\r\033[K";

// The width of the terminal at this moment.
int Columns() {
#ifndef _WIN32
  winsize size{};
  if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0) return size.ws_col;
#endif
  return 80;
}

// The first characters of a UTF-8 text, as many as fit.
std::string Cut(const std::string& text, int columns) {
  std::size_t end = 0;
  for (int used = 0; end < text.size(); ++end) {
    const bool begins = (static_cast<uint8_t>(text[end]) & 0xC0) != 0x80;
    if (begins && used++ == columns) break;
  }
  return text.substr(0, end);
}

}  // namespace

Progress::Progress(bool enabled) : enabled_(enabled && isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() { Clear(); }

void Progress::Clear() {
  if (shown_) std::fputs(kEraseLine, stderr);
  shown_ = false;
}

std::string ProgressLine(double done, const std::string& label, int columns) {
  const double share = std::clamp(done, 0.0, 1.0);
  const std::string text = fmt::format("{:3.0f}%  {}", share * 100, label);
  const int bar = std::min(columns - 1 - static_cast<int>(text.size() + 3), kMaxBar);
  if (bar < kMinBar) return Cut(text, columns - 1);
  const auto filled = static_cast<std::size_t>(share * bar);
  return fmt::format("[{}{}] {}", std::string(filled, '#'), std::string(static_cast<std::size_t>(bar) - filled, '.'),
                     text);
}

// The line is erased and written again.
void Progress::Show(double done, const std::string& label) {
  using namespace std::chrono_literals;
  const Clock::time_point now = Clock::now();
  if (!enabled_ || now - start_ < 1s || now - lastDrawn_ < 100ms) return;
  lastDrawn_ = now;
  shown_ = true;
  std::fputs((kEraseLine + ProgressLine(done, label, Columns())).c_str(), stderr);
  std::fflush(stderr);
}

}  // namespace qnv::tool
