// Numbered random cases: each builds a device, makes one or several calls on the library and on the reference
// model, and compares every byte of both planes, every result and every host record.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "random/calls.h"
#include "random/random_case.h"

#if defined(__SANITIZE_ADDRESS__)
// Sanitizers end the program by abort, so that the case they stopped in is named.
extern "C" const char* __asan_default_options() { return "abort_on_error=1"; }
extern "C" const char* __ubsan_default_options() { return "abort_on_error=1:print_stacktrace=1"; }
#endif

namespace qnv::test {
namespace {

struct Family {
  const char* name;
  int share;                  // of every hundred cases
  void (*call)(RandomCase&);  // null: a sequence of all
};

constexpr Family kFamilies[] = {
    {"blit", 27, BlitCall},   {"output", 18, OutputCall}, {"text", 13, TextCall},
    {"image", 19, ImageCall}, {"pixel", 7, PixelCall},    {"sequence", 16, nullptr},
};

const Family& FamilyOf(uint64_t number) {
  int position = static_cast<int>(number % 100);
  // Neighbouring numbers belong to different families, so that any short range holds all of them.
  position = position * 37 % 100;
  for (const Family& family : kFamilies) {
    if (position < family.share) return family;
    position -= family.share;
  }
  return kFamilies[0];
}

void Sequence(RandomCase& run) {
  for (int calls = run.random().Range(1, 12); calls > 0 && !run.failed(); --calls) {
    const int pick = run.random().Range(0, 99);
    if (pick < 25) {
      StateCall(run);
    } else if (pick < 45) {
      BlitCall(run);
    } else if (pick < 63) {
      OutputCall(run);
    } else if (pick < 76) {
      TextCall(run);
    } else if (pick < 90) {
      ImageCall(run);
    } else {
      PixelCall(run);
    }
  }
}

struct Options {
  uint64_t from = 0;
  uint64_t to = 100000;
  bool one = false;
  const char* family = nullptr;
};

// Returns the failure, empty when the case passed.
std::string RunCase(uint64_t number, CallMemory& memory, bool verbose, CaseTotals& totals) {
  RandomCase run(number, memory, verbose, totals);
  if (run.failed()) return run.failure();
  const Family& family = FamilyOf(number);
  if (run.deviceClass() == DeviceClass::kDualPlane && run.random().Percent(75)) TagOnePixel(run);
  if (family.call == nullptr) {
    Sequence(run);
  } else {
    if (run.random().Percent(10)) StateCall(run);
    family.call(run);
  }
  return run.failure();
}

uint64_t g_running = 0;  // for the last words of a crash

extern "C" void OnSignal(int) {
  std::fprintf(stderr, "crashed in case %llu\n", static_cast<unsigned long long>(g_running));
  std::fflush(stderr);
  std::_Exit(3);
}

void WatchForCrashes() {
  std::signal(SIGABRT, OnSignal);
#if !defined(__SANITIZE_ADDRESS__)
  std::signal(SIGSEGV, OnSignal);
  std::signal(SIGFPE, OnSignal);
  std::signal(SIGILL, OnSignal);
#endif
}

bool ReadNumber(const char* text, uint64_t* value) {
  if (text == nullptr || *text < '0' || *text > '9') return false;
  char* end = nullptr;
  *value = std::strtoull(text, &end, 10);
  return *end == '\0';
}

int Usage() {
  std::fprintf(stderr,
               "usage: random_tests [--cases N] [--from A] [--to B] [--case N] [--family NAME]\n"
               "  --cases N      run cases 0 .. N-1 (default 100000)\n"
               "  --from A --to B  run cases A .. B-1\n"
               "  --case N       run one case and print every call\n"
               "  --family NAME  only cases of one family: blit, output, text, image, pixel, sequence\n");
  return 2;
}

bool ParseOptions(int count, char** arguments, Options* options) {
  for (int i = 1; i < count; i += 2) {
    const char* value = i + 1 < count ? arguments[i + 1] : nullptr;
    const char* name = arguments[i];
    if (std::strcmp(name, "--cases") == 0 || std::strcmp(name, "--to") == 0) {
      if (!ReadNumber(value, &options->to)) return false;
    } else if (std::strcmp(name, "--from") == 0) {
      if (!ReadNumber(value, &options->from)) return false;
    } else if (std::strcmp(name, "--case") == 0) {
      if (!ReadNumber(value, &options->from)) return false;
      options->to = options->from + 1;
      options->one = true;
    } else if (std::strcmp(name, "--family") == 0) {
      bool known = false;
      for (const Family& family : kFamilies)
        known = known || (value != nullptr && std::strcmp(family.name, value) == 0);
      if (!known) return false;
      options->family = value;
    } else {
      return false;
    }
  }
  return true;
}

int Main(int count, char** arguments) {
  Options options;
  if (!ParseOptions(count, arguments, &options)) return Usage();
  WatchForCrashes();
  constexpr unsigned kShownInFull = 5;
  CallMemory memory;
  CaseTotals totals;
  unsigned long long passed = 0;
  unsigned long long failed = 0;
  for (uint64_t number = options.from; number < options.to; ++number) {
    if (options.family != nullptr && std::strcmp(FamilyOf(number).name, options.family) != 0) continue;
    g_running = number;
    const std::string failure = RunCase(number, memory, options.one, totals);
    if (failure.empty()) {
      ++passed;
      continue;
    }
    ++failed;
    if (failed <= kShownInFull && !options.one) {
      CaseTotals again;
      std::printf("case %llu, family %s\n", static_cast<unsigned long long>(number), FamilyOf(number).name);
      RunCase(number, memory, true, again);
    }
    std::printf("FAILED case %llu: %s\n", static_cast<unsigned long long>(number), failure.c_str());
    std::fflush(stdout);
  }
  std::printf("%llu calls compared, %llu of them painted\n", static_cast<unsigned long long>(totals.calls),
              static_cast<unsigned long long>(totals.paintingCalls));
  std::printf("%llu passed, %llu failed\n", passed, failed);
  return failed == 0 && passed != 0 ? 0 : 1;
}

}  // namespace
}  // namespace qnv::test

int main(int count, char** arguments) { return qnv::test::Main(count, arguments); }
