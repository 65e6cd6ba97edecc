// `qnvtool time`: replays a file several times and shows where the time goes.
#include <fmt/core.h>

#include <algorithm>
#include <memory>
#include <numeric>

#include "calls/player.h"
#include "qnvtool/calls/call_areas.h"
#include "qnvtool/calls/call_commands.h"
#include "qnvtool/calls/call_input.h"
#include "qnvtool/calls/call_options.h"

namespace qnv::tool {
namespace {

struct TimeArguments {
  std::string file, library;
  int runs = 5, slowest = 10;
};

void Time(const TimeArguments& a, const CallParts& parts) {
  const calls::CallFile file = ReadCallFile(a.file);
  const CalledLibrary library = OpenCalledLibrary(a.library, parts);
  std::vector<uint64_t> best(file.CallCount(), UINT64_MAX);
  uint64_t bestRun = UINT64_MAX, recorded = 0;
  calls::StoredCall call;
  for (std::size_t i = 0; i < file.CallCount(); ++i) {
    file.DecodeCall(file.CallItem(i), &call);
    recorded += call.nanoseconds;
  }
  for (int run = 0; run < a.runs; ++run) {
    calls::Player player(file, library.functions);
    calls::Player::Watcher watcher;
    watcher.after = [&](const calls::Player::MadeCall& made) {
      best[made.call] = std::min(best[made.call], made.nanoseconds);
      return true;
    };
    bestRun = std::min(bestRun, Completed(player.Play({.compare = false}, watcher), a.file).nanoseconds);
  }
  fmt::print("{} calls; best of {} runs: {:.3f} ms; when recorded: {:.3f} ms\n", file.CallCount(), a.runs,
             static_cast<double>(bestRun) / 1e6, static_cast<double>(recorded) / 1e6);
  std::vector<std::size_t> order;
  for (std::size_t i = 0; i < best.size(); ++i) {
    if (best[i] != UINT64_MAX) order.push_back(i);
  }
  const auto shown = std::min(order.size(), static_cast<std::size_t>(a.slowest));
  std::partial_sort(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(shown), order.end(),
                    [&](std::size_t x, std::size_t y) { return best[x] != best[y] ? best[x] > best[y] : x < y; });
  const std::vector<CallArea> areas = CallAreas(file, library.functions, a.file);
  fmt::print("{:>10}{:>14}{:>12}{:>11}  {}\n", "call", "best ns", "pixels", "ns/pixel", "function");
  for (std::size_t i = 0; i < shown; ++i) {
    file.DecodeCall(file.CallItem(order[i]), &call);
    const int64_t pixels = areas[order[i]].pixels;
    const std::string each =
        pixels == 0 ? "-" : fmt::format("{:.3f}", static_cast<double>(best[order[i]]) / static_cast<double>(pixels));
    fmt::print("{:>10}{:>14}{:>12}{:>11}  {}\n", order[i], best[order[i]], pixels, each,
               calls::EntryPointOf(call.function).name);
  }
}

}  // namespace

Command TimeCommand(const CallParts& parts) {
  auto arguments = std::make_shared<TimeArguments>();
  TimeArguments& a = *arguments;
  Command command{.name = "time",
                  .summary = "Measure the calls of a call file",
                  .footer = "Pixels are those of the smallest known rectangle that the call can reach.\n",
                  .options = {},
                  .run = {}};
  command.options = {
      CallFileArgument(&a.file),
      LibraryOption(&a.library),
      {.names = "--runs",
       .placeholder = "N",
       .help = "How often to replay; the best time of each call counts (default 5)",
       .value = WholeNumber{&a.runs, 1, 1000}},
      {.names = "--slowest",
       .placeholder = "N",
       .help = "How many calls to list (default 10)",
       .value = WholeNumber{&a.slowest, 0, 1000000}},
  };
  command.run = [arguments, parts] { Time(*arguments, parts); };
  return command;
}

}  // namespace qnv::tool
