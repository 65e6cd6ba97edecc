// Numbered random cases: each builds a device, makes one or several calls on the library and on the reference
// model, and compares every byte of both planes, every result and every host record. Files that a fuzzer found are
// replayed as cases too.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "random/call_file_case.h"
#include "random/calls.h"
#include "random/file_case.h"
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

struct Options {
  uint64_t from = 0;
  uint64_t to = 100000;
  bool one = false;
  const char* family = nullptr;
  std::vector<const char*> files;  // or folders
};

// Returns the failure, empty when the case passed.
std::string RunCase(uint64_t number, CallMemory& memory, bool verbose, CaseTotals& totals) {
  Random random(number);
  RandomCase run(random, memory, verbose, totals);
  if (run.failed()) return run.failure();
  const Family& family = FamilyOf(number);
  if (run.deviceClass() == DeviceClass::kDualPlane && run.random().Percent(75)) TagOnePixel(run);
  if (family.call == nullptr) {
    for (int calls = run.random().Range(1, 12); calls > 0 && !run.failed(); --calls) AnyCall(run);
  } else {
    if (run.random().Percent(10)) StateCall(run);
    family.call(run);
  }
  return run.failure();
}

std::string g_running;  // for the last words of a crash

extern "C" void OnSignal(int) {
  std::fprintf(stderr, "crashed in %s\n", g_running.c_str());
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
  if (*text < '0' || *text > '9') return false;
  char* end = nullptr;
  *value = std::strtoull(text, &end, 10);
  return *end == '\0';
}

int Usage() {
  std::fprintf(stderr,
               "usage: random_tests [--cases N] [--from A] [--to B] [--case N] [--family NAME] [--files PATH]\n"
               "  --cases N      run cases 0 .. N-1 (default 100000)\n"
               "  --from A --to B  run cases A .. B-1\n"
               "  --case N       run one case and print every call\n"
               "  --family NAME  only cases of one family: blit, output, text, image, pixel, sequence\n"
               "  --files PATH   the cases of a file, printing every call, or of all files of a folder: inputs of the\n"
               "                 fuzz target \"sequences\", and call files\n");
  return 2;
}

bool ParseOptions(int count, char** arguments, Options* options) {
  if (count % 2 == 0) return false;  // every option has a value
  for (int i = 1; i < count; i += 2) {
    const std::string name = arguments[i];
    const char* value = arguments[i + 1];
    bool understood = true;
    if (name == "--cases" || name == "--to") {
      understood = ReadNumber(value, &options->to);
    } else if (name == "--from") {
      understood = ReadNumber(value, &options->from);
    } else if (name == "--case") {
      understood = ReadNumber(value, &options->from);
      options->to = options->from + 1;
      options->one = true;
    } else if (name == "--family") {
      understood = std::any_of(std::begin(kFamilies), std::end(kFamilies),
                               [&](const Family& family) { return std::strcmp(family.name, value) == 0; });
      options->family = value;
    } else if (name == "--files") {
      options->files.push_back(value);
    } else {
      return false;
    }
    if (!understood) return false;
  }
  return true;
}

class Cases {
 public:
  // run(verbose, totals) returns the failure, empty when the case passed.
  template <class Run>
  void Add(const std::string& name, bool verbose, Run run) {
    constexpr unsigned kShownInFull = 5;
    const std::string failure = run(verbose, totals_);
    if (failure.empty()) {
      ++passed_;
      return;
    }
    ++failed_;
    if (failed_ <= kShownInFull && !verbose) {
      CaseTotals again;
      std::printf("%s\n", name.c_str());
      run(true, again);
    }
    std::printf("FAILED %s: %s\n", name.c_str(), failure.c_str());
    std::fflush(stdout);
  }

  // Returns the program's result.
  int Close() const {
    std::printf("%llu calls compared, %llu of them painted\n", static_cast<unsigned long long>(totals_.calls),
                static_cast<unsigned long long>(totals_.paintingCalls));
    std::printf("%llu passed, %llu failed\n", passed_, failed_);
    return failed_ == 0 && passed_ != 0 ? 0 : 1;
  }

 private:
  CaseTotals totals_;
  unsigned long long passed_ = 0;
  unsigned long long failed_ = 0;
};

void RunNumbers(const Options& options, CallMemory& memory, Cases& cases) {
  for (uint64_t number = options.from; number < options.to; ++number) {
    const char* family = FamilyOf(number).name;
    if (options.family != nullptr && std::strcmp(family, options.family) != 0) continue;
    g_running = "case " + std::to_string(number) + ", family " + family;
    cases.Add(g_running, options.one,
              [&](bool verbose, CaseTotals& totals) { return RunCase(number, memory, verbose, totals); });
  }
}

void RunFile(const std::filesystem::path& path, bool verbose, CallMemory& memory, Cases& cases) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), {}};
  const bool readable = !file.bad() && file.is_open();
  g_running = path.string();
  cases.Add(g_running, verbose, [&](bool say, CaseTotals& totals) {
    if (!readable) return std::string("cannot be read");
    if (IsCallFile(bytes)) return RunCallFile(bytes, totals);
    return RunFileCase(bytes.data(), bytes.size(), memory, say, totals);
  });
}

void RunFiles(const char* where, CallMemory& memory, Cases& cases) {
  std::error_code error;
  if (!std::filesystem::is_directory(where, error)) return RunFile(where, true, memory, cases);
  std::vector<std::filesystem::path> paths;
  for (const auto& entry : std::filesystem::directory_iterator(where)) paths.push_back(entry.path());
  std::sort(paths.begin(), paths.end());
  for (const std::filesystem::path& path : paths) RunFile(path, false, memory, cases);
}

int Main(int count, char** arguments) {
  Options options;
  if (!ParseOptions(count, arguments, &options)) return Usage();
  WatchForCrashes();
  CallMemory memory;
  Cases cases;
  for (const char* where : options.files) RunFiles(where, memory, cases);
  if (options.files.empty()) {
    RunNumbers(options, memory, cases);
  }
  return cases.Close();
}

}  // namespace
}  // namespace qnv::test

int main(int count, char** arguments) { return qnv::test::Main(count, arguments); }
