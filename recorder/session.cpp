// Loads the real library and records what passes.
#include "recorder/session.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <new>

#include "recorder/platform.h"
#include "recorder/settings.h"

namespace qnv::recorder {
namespace {

using namespace calls;

std::atomic<const Session*> current{nullptr};
std::mutex startLock;
// Neither is ever freed: threads of the host may still be inside a call when the process ends.
Session* started = nullptr;

bool ResolveAll(Functions& functions, void* library, std::string* error) {
  return ForEachFunction(functions, [&](const char* name, auto& function) {
    function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(FindSymbol(library, name));
    if (function == nullptr) *error = std::string("the library does not export ") + name;
    return function != nullptr;
  });
}

void StopInChild() {
  // The file belongs to the parent.
  if (started != nullptr) started->capture = nullptr;
}

// The host's callback. Its lock is held while it runs, so that it may go away once it is removed. A callback may set
// another one.
std::recursive_mutex callbackLock;
QNVFindingCallback* findingCallback = nullptr;
void* callbackContext = nullptr;

void CallBack(const Finding& finding) {
  const std::lock_guard locked(callbackLock);
  if (findingCallback == nullptr) return;
  const EntryPoint& entry = EntryPointOf(finding.function);
  const MistakeText& text = TextOf(finding.mistake);
  const QNVFinding told{.size = sizeof told,
                        .mistake = static_cast<uint32_t>(finding.mistake),
                        .call = finding.call,
                        .function = entry.name,
                        .argument = entry.arguments[finding.argument].name,
                        .wrong = text.wrong,
                        .advice = text.advice};
  findingCallback(&told, callbackContext);
}

// To the callback, and in words the first findings of each kind, so that a mistake that is made everywhere does not
// hide the others.
void TellFinding(const Finding& finding) {
  constexpr int kMaxTold = 20;
  static int told[kMistakeCount + 1];  // under the lock of the capture
  CallBack(finding);
  int& count = told[static_cast<std::size_t>(finding.mistake)];
  if (count++ < kMaxTold) Tell("qnvrec: " + Describe(finding));
}

Session* Start() {
  auto* const session = new Session();
  const Settings settings = ReadSettings();
  std::string error;
  void* library = nullptr;
  for (const std::string& path : settings.libraries) {
    library = OpenLibrary(path, &error);
    if (library != nullptr) break;
  }
  session->isLoaded = library != nullptr && ResolveAll(session->functions, library, &error);
  if (!session->isLoaded) {
    Tell("qnvrec: no library to record: " + error);
    return session;
  }
  if (settings.file.empty()) return session;
  std::FILE* const file = std::fopen(settings.file.c_str(), "wb");
  if (file == nullptr) {
    Tell("qnvrec: cannot write " + settings.file + "; nothing is recorded");
    return session;
  }
  CaptureOptions options{settings.hashEveryCall, settings.flushEveryCall, settings.compress};
  if (settings.check) options.check = TellFinding;
  session->capture = new CallCapture(file, options);
  session->checks = settings.check;
  session->capture->Note("recorder", "1");
  OnFork(StopInChild);
  return session;
}

uint64_t NanosecondsSince(std::chrono::steady_clock::time_point start) {
  return static_cast<uint64_t>(
      std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::steady_clock::now() - start).count());
}

}  // namespace

const Session& CurrentSession() {
  const Session* session = current.load(std::memory_order_acquire);
  if (session != nullptr) [[likely]] {
    return *session;
  }
  const std::lock_guard locked(startLock);
  if (started == nullptr) {
    started = Start();
    current.store(started, std::memory_order_release);
  }
  return *started;
}

uintptr_t RecordedCall(const Session& session, Function function, const Slots& slots) {
  PendingCall call;
  bool kept = false;
  // Without memory the call is made, but not kept.
  try {
    session.capture->Before(function, slots, ThreadNumber(), &call);
    kept = true;
  } catch (const std::bad_alloc&) {
  }
  const auto start = std::chrono::steady_clock::now();
  const uintptr_t result = Invoke(session.functions, function, slots);
  const uint64_t nanoseconds = NanosecondsSince(start);
  try {
    if (kept) session.capture->After(slots, result, nanoseconds, &call);
  } catch (const std::bad_alloc&) {
  }
  return result;
}

bool SetFindingCallback(QNVFindingCallback* callback, void* context) {
  const std::lock_guard locked(callbackLock);
  findingCallback = callback;
  callbackContext = context;
  return CurrentSession().checks;
}

void EndOfProcess() {
  // Other threads of the process may be gone already, one of them with the lock.
  if (started == nullptr || started->capture == nullptr || !started->capture->IsFree()) return;
  started->capture->Close();
}

}  // namespace qnv::recorder
