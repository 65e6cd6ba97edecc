// Every integer argument and record field of every export, put to its extremes: one after the other, and with --pairs
// two at a time. Whatever the numbers, nothing may fault, be written outside clip and band, take longer than what there
// is to paint and to read, or make the device hold more memory than is documented.
//
//   extremes_tests                          singles
//   extremes_tests --pairs --share 3/16     every 16th pair, beginning with the third
//   extremes_tests --device 4 --scene 7     one table alone
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "extremes/stage.h"

#if defined(__SANITIZE_ADDRESS__)
// Sanitizers end the program by abort, so that the call they stopped in is named.
extern "C" const char* __asan_default_options() { return "abort_on_error=1:handle_segv=0"; }
extern "C" const char* __ubsan_default_options() { return "abort_on_error=1:print_stacktrace=1"; }
#endif

namespace qnv::test {
namespace {

constexpr DeviceClass kDevices[] = {
    {"24 bits", QNV_KIND_RASTER, 24, 360, 360, false, true, 0, 0},
    {"24 bits, left of the page", QNV_KIND_RASTER, 24, 720, 360, false, true, -5, -3},
    {"24 bits, far down", QNV_KIND_RASTER, 24, 360, 360, false, true, 1000, 30000},
    {"8 bits", QNV_KIND_RASTER, 8, 360, 360, false, true, 0, 0},
    {"two planes", QNV_KIND_RASTER, 24, 360, 360, true, true, 0, 0},
    {"two planes, described with 8 bits", QNV_KIND_RASTER, 8, 360, 360, true, true, -2, 3},
    {"720 to 360", QNV_KIND_SCALED, 24, 720, 360, false, true, 0, 0},
    {"600 to 400, gray", QNV_KIND_SCALED, 0, 600, 400, false, true, -5, -3},
    {"360 to 720", QNV_KIND_SCALED, 24, 360, 720, false, true, 2, 2},
    {"65535 to 1", QNV_KIND_SCALED, 24, 65535, 1, false, true, -1, -1},
    {"1 to 65535", QNV_KIND_SCALED, 24, 1, 65535, false, true, -3, -3},
    // Smaller than a pixel of the page, a band shows something where the page's pixels are rounded to the next.
    {"1 to 65535, between two pixels", QNV_KIND_SCALED, 24, 1, 65535, false, true, 32765, 32765},
    {"65535 to 65534", QNV_KIND_SCALED, 24, 65535, 65534, false, true, 0, 0},
    {"3 to 40000, gray", QNV_KIND_SCALED, 0, 3, 40000, false, true, 6660, 6660},
    {"360 to 0", QNV_KIND_SCALED, 24, 360, 0, false, true, 0, 0},
    {"24 bits without memory", QNV_KIND_RASTER, 24, 360, 360, false, false, 0, 0},
    {"65535 to 1 without memory", QNV_KIND_SCALED, 24, 65535, 1, false, false, 0, 0},
};

struct Options {
  bool pairs = false;
  uint64_t share = 0, shares = 1;
  int device = -1, scene = -1;
  bool verbose = false;
};

// The call that is being made, for whoever stops the program in it.
struct Current {
  const DeviceClass* device = nullptr;
  const Scene* scene = nullptr;
  struct Change {
    const Field* field;
    int64_t value;
  } changes[2] = {};
} current;

void NameCurrent(std::FILE* to) {
  std::fprintf(to, "%s, %s", current.device->name, current.scene->name);
  for (const Current::Change& change : current.changes) {
    if (change.field != nullptr) {
      std::fprintf(to, ", %s = %lld", change.field->name, static_cast<long long>(change.value));
    }
  }
  std::fprintf(to, "\n");
}

extern "C" void NameAndEnd(int signal) {
  if (current.scene != nullptr) {
    std::fprintf(stderr, "signal %d: ", signal);
    NameCurrent(stderr);
  }
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

class Runner {
 public:
  explicit Runner(const Options& options) : options_(options) {}

  void Run() {
    for (std::size_t d = 0; d < std::size(kDevices); ++d) {
      if (options_.device >= 0 && static_cast<std::size_t>(options_.device) != d) continue;
      Stage stage(kDevices[d], host_);
      std::vector<Scene> scenes;
      AddObjectScenes(scenes, kDevices[d]);
      AddTransferScenes(scenes, kDevices[d]);
      AddOutputScenes(scenes, kDevices[d]);
      AddTextScenes(scenes, kDevices[d]);
      AddImageScenes(scenes, kDevices[d]);
      current.device = &kDevices[d];
      for (std::size_t s = 0; s < scenes.size(); ++s) {
        if (options_.scene >= 0 && static_cast<std::size_t>(options_.scene) != s) continue;
        const uint64_t callsBefore = stage.calls();
        const double begun = ThreadSeconds();
        RunScene(stage, scenes[s]);
        if (options_.verbose) {
          std::printf("%2zu %2zu %s, %s: %llu calls, %.2f s\n", d, s, kDevices[d].name, scenes[s].name,
                      static_cast<unsigned long long>(stage.calls() - callsBefore), ThreadSeconds() - begun);
          std::fflush(stdout);
        }
      }
      calls_ += stage.calls();
      skipped_ += stage.skipped();
      heap_ = std::max(heap_, stage.highestHeap());
      slowest_ = std::max(slowest_, stage.slowest());
    }
    std::printf("%llu calls, %llu not made for want of host memory; the slowest took %.3f s, a device held %llu KB\n",
                static_cast<unsigned long long>(calls_), static_cast<unsigned long long>(skipped_), slowest_,
                static_cast<unsigned long long>(heap_ / 1024));
    std::printf("%llu of %llu tables begin with a call that paints\n", static_cast<unsigned long long>(painting_),
                static_cast<unsigned long long>(passed_ + failed_));
    std::printf("%llu passed, %llu failed\n", static_cast<unsigned long long>(passed_),
                static_cast<unsigned long long>(failed_));
  }
  bool Succeeded() const { return failed_ == 0 && passed_ != 0; }

 private:
  // Each with the extreme values of its first or only field; a table of values counts as one test.
  void RunScene(Stage& stage, const Scene& scene) {
    current.scene = &scene;
    bool good = true;
    stage.Restart();
    Values values(scene.fields);
    good &= Call(stage, scene, values);
    const std::vector<uint8_t> expected = stage.Painted();
    stage.Rewind();
    const bool paints = expected != stage.Painted();
    painting_ += paints ? 1 : 0;
    if (options_.verbose && !paints) std::printf("begins with a call that paints nothing:\n");
    const BandRect band = stage.BandOf(Values(CommonFields(stage.device())));
    std::vector<std::vector<int64_t>> extremes;
    for (const Field& field : scene.fields) {
      extremes.push_back(field.bits == 0 ? std::vector<int64_t>{} : ExtremesOf(field, band));
    }
    for (std::size_t i = 0; i < scene.fields.size(); ++i) {
      for (int64_t value : extremes[i]) {
        values.Set(i, value);
        current.changes[0] = {&scene.fields[i], value};
        if (!options_.pairs) {
          good &= Call(stage, scene, values);
          continue;
        }
        for (std::size_t j = i + 1; j < scene.fields.size(); ++j) {
          for (int64_t other : extremes[j]) {
            if (pair_++ % options_.shares != options_.share) continue;
            values.Set(j, other);
            current.changes[1] = {&scene.fields[j], other};
            good &= Call(stage, scene, values);
          }
          values.Set(j, scene.fields[j].base);
        }
        current.changes[1] = {};
      }
      values.Set(i, scene.fields[i].base);
      current.changes[0] = {};
    }
    // What wild calls leave behind harms no ordinary one.
    stage.Rewind();
    good &= Call(stage, scene, values);
    if (stage.Painted() != expected) {
      good = false;
      std::printf("FAILED the first call no longer paints what it did; ");
      NameCurrent(stdout);
    }
    ++(good ? passed_ : failed_);
  }

  bool Call(Stage& stage, const Scene& scene, const Values& values) {
    scene.call(stage, values, scene.variant);
    const std::string fault = stage.TakeFault();
    if (fault.empty()) return true;
    if (++faults_ <= 30) {
      std::printf("FAILED %s", fault.c_str());
      NameCurrent(stdout);
      std::fflush(stdout);
    }
    return false;
  }

  const Options options_;
  HostMemory host_;
  uint64_t pair_ = 0, calls_ = 0, skipped_ = 0, heap_ = 0, passed_ = 0, failed_ = 0, faults_ = 0, painting_ = 0;
  double slowest_ = 0;
};

bool Parse(int argc, char** argv, Options* options) {
  for (int i = 1; i < argc; ++i) {
    const bool more = i + 1 < argc;
    if (std::strcmp(argv[i], "--pairs") == 0) {
      options->pairs = true;
    } else if (std::strcmp(argv[i], "--verbose") == 0) {
      options->verbose = true;
    } else if (std::strcmp(argv[i], "--device") == 0 && more) {
      options->device = std::atoi(argv[++i]);
    } else if (std::strcmp(argv[i], "--scene") == 0 && more) {
      options->scene = std::atoi(argv[++i]);
    } else if (std::strcmp(argv[i], "--share") == 0 && more) {
      unsigned long long share = 0, shares = 0;
      if (std::sscanf(argv[++i], "%llu/%llu", &share, &shares) != 2 || share < 1 || share > shares) return false;
      options->share = share - 1;
      options->shares = shares;
    } else {
      return false;
    }
  }
  return true;
}

}  // namespace
}  // namespace qnv::test

int main(int argc, char** argv) {
  qnv::test::Options options;
  if (!qnv::test::Parse(argc, argv, &options)) {
    std::fprintf(stderr, "usage: %s [--pairs] [--share i/n] [--device n] [--scene n] [--verbose]\n", argv[0]);
    return 2;
  }
  for (int signal : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(signal, qnv::test::NameAndEnd);
  qnv::test::Runner runner(options);
  runner.Run();
  return runner.Succeeded() ? 0 : 1;
}
