// `qnvtool trim`: writes a smaller file with the calls that one wants to look at, and the state that they need.
#include <fmt/core.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <memory>

#include "calls/call_capture.h"
#include "calls/hash.h"
#include "calls/player.h"
#include "calls/state_calls.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/calls/call_areas.h"
#include "qnvtool/calls/call_commands.h"
#include "qnvtool/calls/call_input.h"
#include "qnvtool/calls/call_options.h"
#include "qnvtool/calls/library_difference.h"
#include "qnvtool/calls/plane_picture.h"

namespace qnv::tool {
namespace {

struct TrimArguments {
  std::string file, out, rect, library, against;
  int from = 0, count = 2000000000, device = 1;
  bool untilDiffers = false, stored = false, hash = false;
};

// The calls of a file by what trimming needs to know of them.
class CallList {
 public:
  explicit CallList(const calls::CallFile& file) : draws_(file.CallCount()), keep_(file.CallCount()) {
    calls::StoredCall call;
    std::map<uint32_t, calls::StateCalls> states;
    for (std::size_t i = 0; i < file.CallCount(); ++i) {
      file.DecodeCall(file.CallItem(i), &call);
      const calls::EntryPoint& entry = calls::EntryPointOf(call.function);
      draws_[i] = entry.draws;
      // Devices, bands and origins stay; records are stored with the calls that use them.
      keep_[i] = call.function == calls::Function::kEnable || call.function == calls::Function::kDisable ||
                 call.function == calls::Function::kControl;
      if (call.function == calls::Function::kEnable) {
        states.emplace(call.result, calls::StateCalls(call.arguments[3].pointer.tag != calls::PointerTag::kNull));
      } else if (const auto state = states.find(call.Device()); state != states.end()) {
        if (calls::StateCalls::TakesEarlierPattern(call)) patternOf_[i] = state->second.PatternCalls();
        state->second.After(i, call);
      }
    }
  }

  bool Draws(std::size_t call) const { return draws_[call]; }
  bool IsKept(std::size_t call) const { return keep_[call]; }
  std::size_t size() const { return keep_.size(); }
  // Keeps a call, and those whose pattern it paints with.
  void Keep(std::size_t call) {
    keep_[call] = true;
    const auto found = patternOf_.find(call);
    if (found == patternOf_.end()) return;
    for (const std::size_t earlier : found->second) keep_[earlier] = true;
  }
  std::size_t DrawCount() const {
    std::size_t count = 0;
    for (std::size_t i = 0; i < size(); ++i) count += draws_[i] && keep_[i];
    return count;
  }

 private:
  std::vector<bool> draws_, keep_;
  std::map<std::size_t, std::vector<std::size_t>> patternOf_;
};

// The pixels of a rectangle of the band, and their tags.
uint64_t HashOfRect(const calls::PlayedDevice& device, const BandRect& rect) {
  const BandRect& band = device.shape.rect;
  const PlaneSize size = SizeOf(device);
  const int64_t left = std::max<int64_t>(int64_t{rect.left} - band.left, 0);
  const int64_t right = std::min<int64_t>(int64_t{rect.right} - band.left, size.width);
  const int64_t top = std::max<int64_t>(int64_t{rect.top} - band.top, 0);
  const int64_t bottom = std::min<int64_t>(int64_t{rect.bottom} - band.top, size.height);
  uint64_t hash = 0;
  if (left >= right) return hash;
  const auto add = [&](const calls::GuardedPlane& plane, uint32_t stride, uint32_t pixelBytes) {
    if (plane.empty()) return;
    for (int64_t row = top; row < bottom; ++row) {
      const auto first = static_cast<std::size_t>(row * stride + left * pixelBytes);
      hash = calls::Hash64(plane.data() + first, static_cast<std::size_t>((right - left) * pixelBytes), hash);
    }
  };
  add(device.band, device.shape.Stride(), device.shape.PixelBytes());
  if (device.shape.dualPlane) add(device.tags, device.shape.TagStride(), 1);
  return hash;
}

// Keeps the calls that change a pixel or a tag of the rectangle. The others can be left out: what a call paints there
// depends on nothing but what was there.
void KeepTouching(const calls::CallFile& file, const calls::Functions& functions, const TrimArguments& a,
                  CallList* list) {
  const BandRect rect = ParseRect(a.rect);
  const auto wanted = static_cast<uint32_t>(a.device);
  calls::Player player(file, functions);
  uint64_t before = 0;
  calls::Player::Watcher watcher;
  watcher.before = [&](std::size_t call, const calls::StoredCall& stored, const calls::Slots&) {
    const calls::PlayedDevice* const device = player.Device(wanted);
    if (list->Draws(call) && stored.Device() == wanted && device != nullptr) before = HashOfRect(*device, rect);
    return true;
  };
  watcher.after = [&](const calls::Player::MadeCall& made) {
    const calls::PlayedDevice* const device = player.Device(wanted);
    if (list->Draws(made.call) && made.stored.Device() == wanted && device != nullptr &&
        HashOfRect(*device, rect) != before) {
      list->Keep(made.call);
    }
    return true;
  };
  Completed(player.Play({.compare = false}, watcher), a.file);
}

// Leaves out calls as long as the libraries still differ: halves, then quarters, and so on down to single calls.
void KeepDiffering(const calls::CallFile& file, const TrimArguments& a, const CallParts& parts, CallList* list) {
  const CalledLibrary first = OpenCalledLibrary(a.library, parts), second = OpenCalledLibrary(a.against, parts);
  const LibraryDifference all = CompareLibraries(file, first.functions, second.functions);
  if (!all.error.empty()) throw ToolError(ExitCode::kBadInput, fmt::format("{}: {}", a.file, all.error));
  if (!all.found) throw ToolError(ExitCode::kUsage, fmt::format("{}: the libraries do not differ", a.file));
  std::vector<std::size_t> wanted;
  for (std::size_t i = 0; i <= all.call && i < list->size(); ++i) {
    if (list->Draws(i) || !list->IsKept(i)) wanted.push_back(i);
  }
  const CallList base = *list;
  const auto listOf = [&](const std::vector<std::size_t>& calls) {
    CallList kept = base;
    for (const std::size_t call : calls) kept.Keep(call);
    return kept;
  };
  const auto differs = [&](const std::vector<std::size_t>& calls) {
    const CallList kept = listOf(calls);
    return CompareLibraries(file, first.functions, second.functions, [&](std::size_t i) { return kept.IsKept(i); })
        .found;
  };
  for (std::size_t part = std::max<std::size_t>(wanted.size() / 2, 1);; part = std::max<std::size_t>(part / 2, 1)) {
    bool smaller = false;
    for (std::size_t at = 0; at < wanted.size();) {
      std::vector<std::size_t> rest(wanted.begin(), wanted.begin() + static_cast<std::ptrdiff_t>(at));
      rest.insert(rest.end(), wanted.begin() + static_cast<std::ptrdiff_t>(std::min(at + part, wanted.size())),
                  wanted.end());
      if (!rest.empty() && differs(rest)) {
        wanted = rest;
        smaller = true;
      } else {
        at += part;
      }
    }
    if (part == 1 && !smaller) break;
  }
  *list = listOf(wanted);
}

void Trim(const TrimArguments& a, const CallParts& parts) {
  const calls::CallFile file = ReadCallFile(a.file);
  const CalledLibrary library = OpenCalledLibrary(a.library, parts);
  CallList list(file);
  const auto from = static_cast<std::size_t>(a.from);
  const bool isRange = a.rect.empty() && !a.untilDiffers;
  if (!a.rect.empty()) {
    KeepTouching(file, library.functions, a, &list);
  } else if (a.untilDiffers) {
    KeepDiffering(file, a, parts, &list);
  } else {
    for (std::size_t i = from; i < list.size() && i - from < static_cast<std::size_t>(a.count); ++i) list.Keep(i);
  }
  // What the bands hold where the range begins.
  std::map<uint32_t, calls::PlaneContents> contents;
  if (isRange && from != 0) {
    calls::Player player(file, library.functions);
    calls::Player::Watcher watcher;
    watcher.before = [&](std::size_t call, const calls::StoredCall&, const calls::Slots&) {
      if (call < from) return true;
      for (uint32_t d = 1; d <= file.DeviceCount(); ++d) {
        const calls::PlayedDevice* const device = player.Device(d);
        if (device == nullptr) continue;
        contents[d] = {{device->band.begin(), device->band.end()}, {device->tags.begin(), device->tags.end()}};
      }
      return false;
    };
    Completed(player.Play({.compare = false}, watcher), a.file);
  }
  std::FILE* const out = std::fopen(a.out.c_str(), "wb");
  if (out == nullptr) throw ToolError(ExitCode::kCannotWrite, fmt::format("{}: cannot be written", a.out));
  calls::CaptureOptions options;
  options.compress = !a.stored;
  options.hashEveryCall = a.hash;
  calls::CallCapture capture(out, options);
  capture.Note("trimmed", fmt::format("{} of {} calls", list.DrawCount(), file.CallCount()));
  {
    calls::Player player(file, library.functions);
    calls::PendingCall pending;
    bool isSet = contents.empty();
    calls::Player::Watcher watcher;
    watcher.before = [&](std::size_t call, const calls::StoredCall& stored, const calls::Slots& slots) {
      if (!isSet && call >= from) {
        for (const auto& [number, device] : contents) {
          player.SetContents(number, device);
          if (player.Device(number) != nullptr) capture.ForgetContents(player.Device(number)->handle);
        }
        isSet = true;
      }
      capture.Before(stored.function, slots, stored.thread, &pending);
      return true;
    };
    watcher.after = [&](const calls::Player::MadeCall& made) {
      capture.After(made.slots, made.result, made.nanoseconds, &pending);
      return true;
    };
    Completed(player.Play({.compare = false, .keep = [&](std::size_t call) { return list.IsKept(call); }}, watcher),
              a.file);
  }
  capture.Close();
  if (capture.Failed()) throw ToolError(ExitCode::kCannotWrite, fmt::format("{}: cannot be written", a.out));
  fmt::print("{}: {} calls, {} of them drawing calls, of {}\n", a.out, capture.Calls(), list.DrawCount(),
             file.CallCount());
}

}  // namespace

Command TrimCommand(const CallParts& parts) {
  auto arguments = std::make_shared<TrimArguments>();
  TrimArguments& a = *arguments;
  Command command{
      .name = "trim",
      .summary = "Write the calls of interest of a call file, with the state that they need",
      .footer =
          "Without --rect and --until-differs the calls --from and --count name are kept. Calls that make,\n"
          "move, clear and end devices are always kept.\n",
      .options = {},
      .run = {}};
  command.options = {
      CallFileArgument(&a.file),
      CallFileOut(&a.out),
      {.names = "--from", .placeholder = "N", .help = "First call", .value = WholeNumber{&a.from, 0, 2000000000}},
      {.names = "--count", .placeholder = "N", .help = "How many calls", .value = WholeNumber{&a.count, 0, 2000000000}},
      {.names = "--rect",
       .placeholder = "L,T,R,B",
       .help = "Calls that change something in this rectangle of the page",
       .value = Text{&a.rect}},
      {.names = "--device",
       .placeholder = "N",
       .help = "Device of --rect (default 1)",
       .value = WholeNumber{&a.device, 1, 1000000000}},
      {.names = "--until-differs",
       .placeholder = "",
       .help = "As few calls as still show a difference between --library and --against",
       .value = Flag{&a.untilDiffers},
       .excludes = "--rect"},
      LibraryOption(&a.library),
      LibraryOption(&a.against, "--against", "The other library of --until-differs (default: the built-in one)"),
      HashOption(&a.hash),
      StoredOption(&a.stored),
  };
  command.run = [arguments, parts] { Trim(*arguments, parts); };
  return command;
}

}  // namespace qnv::tool
