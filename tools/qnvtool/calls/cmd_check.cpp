// `qnvtool check`: what the host of a call file does wrong.
#include <fmt/core.h>

#include <map>
#include <memory>

#include "calls/checked_replay.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/calls/call_commands.h"
#include "qnvtool/calls/call_input.h"
#include "qnvtool/calls/call_options.h"

namespace qnv::tool {
namespace {

struct CheckArguments {
  std::string file;
  int shown = 10;
};

void Check(const CheckArguments& a, const CallParts& parts) {
  const calls::CallFile file = ReadCallFile(a.file);
  const CalledLibrary library = OpenCalledLibrary("", parts);
  std::map<calls::Mistake, int> counts;
  const auto found = [&](const calls::Finding& finding) {
    if (++counts[finding.mistake] <= a.shown) fmt::print("{}\n", calls::Describe(finding));
  };
  calls::Player player(file, library.functions);
  const calls::PlayReport report = Completed(PlayChecked(player, {.compare = false}, found), a.file);
  int findings = 0;
  for (const auto& [mistake, count] : counts) {
    findings += count;
    if (count > a.shown) fmt::print("mistake {}: {} more calls\n", static_cast<int>(mistake), count - a.shown);
  }
  fmt::print("{} calls, {} mistakes\n", report.made, findings);
  if (findings != 0) throw ToolError(ExitCode::kDiffers, fmt::format("{}: the host makes mistakes", a.file));
}

}  // namespace

Command CheckCommand(const CallParts& parts) {
  auto arguments = std::make_shared<CheckArguments>();
  Command command{.name = "check",
                  .summary = "Say what the host of a call file does wrong",
                  .footer = "Exit code 5: something was found. docs/host-mistakes.md explains the numbers.\n",
                  .options = {},
                  .run = {}};
  command.options = {CallFileArgument(&arguments->file),
                     {.names = "--show",
                      .placeholder = "N",
                      .help = "How many calls to list for each mistake (default 10)",
                      .value = WholeNumber{&arguments->shown, 0, 1000000000}}};
  command.run = [arguments, parts] { Check(*arguments, parts); };
  return command;
}

}  // namespace qnv::tool
