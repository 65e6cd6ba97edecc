// `qnvtool diff`: the first difference between the calls of two files.
#include <fmt/core.h>

#include <memory>

#include "calls/call_difference.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/calls/call_commands.h"
#include "qnvtool/calls/call_input.h"
#include "qnvtool/calls/call_options.h"

namespace qnv::tool {
namespace {

struct DiffArguments {
  std::string first, second;
  int shown = 10;
};

void Diff(const DiffArguments& a) {
  const calls::CallFile first = ReadCallFile(a.first), second = ReadCallFile(a.second);
  const std::size_t count = std::min(first.CallCount(), second.CallCount());
  std::size_t differences = 0;
  calls::StoredCall x, y;
  for (std::size_t i = 0; i < count; ++i) {
    first.DecodeCall(first.CallItem(i), &x);
    second.DecodeCall(second.CallItem(i), &y);
    const std::string difference = calls::CallDifference(first, x, second, y);
    if (difference.empty()) continue;
    if (++differences <= static_cast<std::size_t>(a.shown)) fmt::print("call {}: {}\n", i, difference);
  }
  if (first.CallCount() != second.CallCount()) {
    ++differences;
    fmt::print("{} has {} calls, {} has {}\n", a.first, first.CallCount(), a.second, second.CallCount());
  }
  fmt::print("{} calls compared, {} differences\n", count, differences);
  if (differences != 0) throw ToolError(ExitCode::kDiffers, fmt::format("{} and {} differ", a.first, a.second));
}

}  // namespace

Command DiffCommand() {
  auto arguments = std::make_shared<DiffArguments>();
  DiffArguments& a = *arguments;
  Command command{.name = "diff",
                  .summary = "Compare the calls of two call files",
                  .footer = "Exit code 5: something differs. Times, threads and places in memory are not compared.\n",
                  .options = {},
                  .run = {}};
  command.options = {CallFileArgument(&a.first, "first"),
                     CallFileArgument(&a.second, "second"),
                     {.names = "--show",
                      .placeholder = "N",
                      .help = "How many differing calls to list (default 10)",
                      .value = WholeNumber{&a.shown, 0, 1000000000}}};
  command.run = [arguments] { Diff(*arguments); };
  return command;
}

}  // namespace qnv::tool
