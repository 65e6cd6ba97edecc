// `qnvtool replay`: makes the calls of a file again and compares with the file, or with a second library.
#include <fmt/core.h>

#include <algorithm>
#include <memory>

#include "calls/hash.h"
#include "calls/player.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/calls/call_commands.h"
#include "qnvtool/calls/call_input.h"
#include "qnvtool/calls/call_options.h"
#include "qnvtool/calls/library_difference.h"
#include "qnvtool/calls/plane_picture.h"

namespace qnv::tool {
namespace {

struct ReplayArguments {
  std::string file, library, against, pictures;
  bool all = false;
};

void ReplayAgainstFile(const calls::CallFile& file, const ReplayArguments& a, const CallParts& parts) {
  const CalledLibrary library = OpenCalledLibrary(a.library, parts);
  calls::Player player(file, library.functions);
  const calls::PlayReport report = player.Play({.stopAtFirst = !a.all});
  for (const calls::Difference& difference : report.differences) {
    fmt::print("call {} ({}): {}\n", difference.call, PlaceOf(file, difference.call), difference.what);
  }
  Completed(report, a.file);
  fmt::print("{} calls, {:.3f} ms in the library, {} checksums compared, {} differences\n", report.made,
             static_cast<double>(report.nanoseconds) / 1e6, report.compared, report.differences.size());
  if (report.skipped != 0) fmt::print("{} calls were left out: their memory was not recorded\n", report.skipped);
  if (!report.differences.empty()) {
    throw ToolError(ExitCode::kDiffers, fmt::format("{}: {} does not do what was recorded", a.file, library.name));
  }
}

void ReplayAgainstLibrary(const calls::CallFile& file, const ReplayArguments& a, const CallParts& parts) {
  const CalledLibrary first = OpenCalledLibrary(a.library, parts);
  const CalledLibrary second = OpenCalledLibrary(a.against, parts);
  const LibraryDifference difference = CompareLibraries(file, first.functions, second.functions);
  if (!difference.error.empty()) throw ToolError(ExitCode::kBadInput, fmt::format("{}: {}", a.file, difference.error));
  if (!difference.found) {
    fmt::print("{} calls, no difference\n", file.CallCount());
    return;
  }
  fmt::print("call {} ({}): {}\n", difference.call, PlaceOf(file, difference.call), difference.what);
  if (!a.pictures.empty()) {
    for (const CalledLibrary* const library : {&first, &second}) {
      const std::string picture = a.pictures + (library == &first ? "-a.png" : "-b.png");
      calls::Player player(file, library->functions);
      player.Play({.compare = false}, {.before = {}, .after = [&](const calls::Player::MadeCall& made) {
                                         if (made.call != difference.call) return true;
                                         const calls::PlayedDevice* const device = player.Device(made.stored.Device());
                                         if (device != nullptr) WriteDevicePicture(*device, false, picture, parts);
                                         return false;
                                       }});
    }
  }
  throw ToolError(ExitCode::kDiffers,
                  fmt::format("{}: {} and {} differ at call {}", a.file, first.name, second.name, difference.call));
}

}  // namespace

Command ReplayCommand(const CallParts& parts) {
  auto arguments = std::make_shared<ReplayArguments>();
  Command command{.name = "replay",
                  .summary = "Make the calls of a call file again and compare",
                  .footer = "Exit code 5: something differs.\n",
                  .options = {},
                  .run = {}};
  command.options = {
      CallFileArgument(&arguments->file),
      LibraryOption(&arguments->library),
      LibraryOption(&arguments->against, "--against",
                    "Compare with this library, call by call, instead of with the file"),
      {.names = "--pictures",
       .placeholder = "PREFIX",
       .help = "With --against: write the two bands after the call that differs as PREFIX-a.png and PREFIX-b.png",
       .value = Text{&arguments->pictures}},
      {.names = "--all", .placeholder = "", .help = "Go on after the first difference", .value = Flag{&arguments->all}},
  };
  command.run = [arguments, parts] {
    const calls::CallFile file = ReadCallFile(arguments->file);
    if (arguments->against.empty()) {
      ReplayAgainstFile(file, *arguments, parts);
    } else {
      ReplayAgainstLibrary(file, *arguments, parts);
    }
  };
  return command;
}

}  // namespace qnv::tool
