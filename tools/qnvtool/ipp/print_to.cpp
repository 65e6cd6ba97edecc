// The steps of a job on a printer.
#include "qnvtool/ipp/print_to.h"

#include <fmt/core.h>

#include <cstdio>
#include <filesystem>
#include <random>

#include "qnvtool/base/file_bytes.h"
#include "qnvtool/base/interruption.h"
#include "qnvtool/base/phase_times.h"
#include "qnvtool/base/progress.h"
#include "qnvtool/base/tool_error.h"

namespace qnv::tool {
namespace {

namespace fs = std::filesystem;

// A folder of this program's own for its lifetime.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    std::error_code error;
    for (int attempt = 0; attempt < 100; ++attempt) {
      path_ = fs::temp_directory_path(error) / fmt::format("qnvtool-{:08x}{:08x}", random(), random());
      if (error) break;
      if (!fs::create_directory(path_, error) || error) continue;
      fs::permissions(path_, fs::perms::owner_all, error);
      return;
    }
    throw ToolError(ExitCode::kCannotWrite, fmt::format("{}: no temporary folder can be made", path_.string()));
  }
  ~TemporaryFolder() {
    std::error_code error;
    fs::remove_all(path_, error);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const fs::path& path() const { return path_; }

 private:
  fs::path path_;
};

// The device that the plan and the wishes of the user give.
DeviceChoice DeviceFor(const PrinterOptions& printer, const JobPlan& plan) {
  if (printer.deviceName.rfind("scaled", 0) == 0) return ParseDevice(printer.deviceName, printer.dpi);
  const std::string name = !printer.deviceName.empty() ? printer.deviceName : plan.gray ? "gray" : "color";
  return ParseDevice(name, plan.dpi);
}

}  // namespace

void PrintTo(const PrinterOptions& options, PrintOptions job, const PrintParts& parts) {
  if (parts.openPrinter == nullptr) throw ToolError(ExitCode::kUsage, "--printer: this program sends nothing");
  const std::unique_ptr<Printer> printer = parts.openPrinter(options.address);
  PrinterTraits traits;
  {
    const PhaseTimer timer(Phase::kSending);
    traits = printer->Ask();
  }
  JobWishes wishes;
  wishes.format = job.format;
  wishes.hasDevice = !options.deviceName.empty();
  if (wishes.hasDevice) {
    const DeviceChoice device = ParseDevice(options.deviceName, options.dpi);
    wishes.gray = device.isGray();
    wishes.dpi = device.isScaled() ? device.bandDpi : options.dpi;
  } else {
    wishes.dpi = options.dpi;
  }
  wishes.hasPaper = options.hasPaper;
  wishes.paper = printer->Name(job.paper.widthMm, job.paper.heightMm);
  const JobPlan plan = PlanJob(traits, wishes);

  const auto note = [&](const std::string& text) {
    if (!job.quiet) fmt::print(stderr, "qnvtool: printer {}: {}\n", traits.name, text);
  };
  const TemporaryFolder folder;
  PrinterJob sent;
  sent.title = fs::path(DisplayName(job.files.front())).filename().string();
  sent.file = (folder.path() / "document").string();
  sent.mimeType = plan.mimeType;
  sent.medium = plan.medium;
  sent.dpi = plan.dpi;
  sent.gray = plan.gray;
  sent.wait = options.wait;

  job.out = sent.file;
  job.format = plan.format;
  job.device = DeviceFor(options, plan);
  job.paper = {plan.medium.widthMm, plan.medium.heightMm};
  note(fmt::format("{} at {} dpi, {}, {}", plan.mimeType, plan.dpi, plan.gray ? "gray" : "color", plan.medium.name));
  Print(job, parts);

  const PhaseTimer timer(Phase::kSending);
  const InterruptionGuard guard;
  Progress progress(!job.quiet);
  printer->Print(sent, note, [&](double done, const std::string& what) { progress.Show(done, what); });
}

}  // namespace qnv::tool
