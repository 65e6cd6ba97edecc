// Ends long work in good order when the user or the system asks for it.
#pragma once

namespace qnv::tool {

// Thrown by ThrowIfInterrupted. Not a ToolError: the program ends by the signal itself, once everything is put away.
struct Interrupted {
  int signal;
};

// While one lives, SIGINT, SIGTERM and SIGHUP are noted instead of ending the program. A second one ends it at once.
class InterruptionGuard {
 public:
  InterruptionGuard();
  ~InterruptionGuard();
  InterruptionGuard(const InterruptionGuard&) = delete;
  InterruptionGuard& operator=(const InterruptionGuard&) = delete;
};

// Throws Interrupted when a signal was noted.
void ThrowIfInterrupted();

// Ends the program as the signal would have. Returns the exit code of shells for that where it has no effect.
int EndBySignal(int signal);

}  // namespace qnv::tool
