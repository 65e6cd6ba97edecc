// Notes signals for the program to look at; handlers do nothing else.
#include "qnvtool/base/interruption.h"

#include <atomic>
#include <csignal>

namespace qnv::tool {
namespace {

std::atomic<int> noted = 0;
static_assert(std::atomic<int>::is_always_lock_free);  // for the handler

std::atomic<int> guards = 0;

#ifdef _WIN32
constexpr int kSignals[] = {SIGINT, SIGTERM};
#else
constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};
#endif

// The default action is restored, so that a second signal ends the program.
extern "C" void NoteSignal(int signal) {
  noted = signal;
  std::signal(signal, SIG_DFL);
}

}  // namespace

InterruptionGuard::InterruptionGuard() {
  if (guards++ != 0) return;
  noted = 0;
  for (const int signal : kSignals) {
    // Signals that the caller ignores (nohup, background jobs of a shell) stay ignored.
    if (std::signal(signal, NoteSignal) == SIG_IGN) std::signal(signal, SIG_IGN);
  }
}

InterruptionGuard::~InterruptionGuard() {
  if (--guards != 0) return;
  for (const int signal : kSignals) {
    if (std::signal(signal, SIG_DFL) == SIG_IGN) std::signal(signal, SIG_IGN);
  }
}

void ThrowIfInterrupted() {
  const int signal = noted;
  if (signal != 0) throw Interrupted{signal};
}

int EndBySignal(int signal) {
  std::signal(signal, SIG_DFL);
  std::raise(signal);
  return 128 + signal;
}

}  // namespace qnv::tool
