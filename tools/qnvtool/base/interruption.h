// Lets long work end cleanly, with unfinished files removed, when the user or the system interrupts it.
#pragma once

namespace qnv::tool {

// Thrown by ThrowIfInterrupted. Not a ToolError: once everything is cleaned up, the program ends itself by the same
// signal.
struct Interrupted {
  int signal;
};

// For its lifetime SIGINT, SIGTERM and SIGHUP are noted instead of ending the program. A second signal ends it at once.
// Guards may lie inside one another, on several threads.
class InterruptionGuard {
 public:
  InterruptionGuard();
  ~InterruptionGuard();
  InterruptionGuard(const InterruptionGuard&) = delete;
  InterruptionGuard& operator=(const InterruptionGuard&) = delete;
};

// Throws Interrupted when a signal was noted.
void ThrowIfInterrupted();

// Ends the program as the signal would have. If that has no effect, returns the exit code by which shells report it.
int EndBySignal(int signal);

}  // namespace qnv::tool
