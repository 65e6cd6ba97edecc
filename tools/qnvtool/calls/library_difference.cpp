// Two libraries, call by call.
#include "qnvtool/calls/library_difference.h"

#include <fmt/core.h>

#include <vector>

#include "calls/hash.h"
#include "calls/player.h"

namespace qnv::tool {
namespace {

// What a library has left behind after a call.
struct Trace {
  std::size_t call;
  uint32_t result;
  bool isHashed;
  uint64_t band, tags;
};

bool MayEndBand(const calls::StoredCall& call) {
  return call.function == calls::Function::kControl || call.function == calls::Function::kDisable;
}

// The state before each call that may end a band and after the calls [from, to), and the results of all calls up to
// `to`.
std::vector<Trace> TraceOf(const calls::CallFile& file, const calls::Functions& functions, std::size_t from,
                           std::size_t to, const std::function<bool(std::size_t)>& keep, std::string* error) {
  std::vector<Trace> traces;
  calls::Player player(file, functions);
  const auto hash = [&](const calls::StoredCall& call, Trace* trace) {
    const calls::PlayedDevice* const device = player.Device(call.Device());
    if (device == nullptr) return;
    trace->isHashed = true;
    trace->band = calls::Hash64(device->band.data(), device->band.size());
    trace->tags = calls::Hash64(device->tags.data(), device->tags.size());
  };
  calls::Player::Watcher watcher;
  watcher.before = [&](std::size_t call, const calls::StoredCall& stored, const calls::Slots&) {
    if (call >= to) return false;
    traces.push_back({call, 0, false, 0, 0});
    if (MayEndBand(stored)) hash(stored, &traces.back());
    return true;
  };
  watcher.after = [&](const calls::Player::MadeCall& made) {
    Trace trace{made.call, 0, false, 0, 0};
    // Handles are different in every process.
    const bool isHandle = calls::EntryPointOf(made.stored.function).result == calls::Result::kHandle;
    trace.result = isHandle ? made.result != 0 : static_cast<uint32_t>(made.result);
    if (made.call >= from && made.stored.function != calls::Function::kDisable) hash(made.stored, &trace);
    traces.push_back(trace);
    return true;
  };
  const calls::PlayReport report = player.Play({.compare = false, .keep = keep}, watcher);
  *error = report.error;
  return traces;
}

// The first difference; `at` is the call, `band` whether the band before a call differs.
bool FirstDifference(const std::vector<Trace>& a, const std::vector<Trace>& b, std::size_t* at, std::string* what) {
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
    *at = a[i].call;
    if (a[i].result != b[i].result) {
      *what = fmt::format("the results are 0x{:X} and 0x{:X}", a[i].result, b[i].result);
      return true;
    }
    if (a[i].band != b[i].band || a[i].tags != b[i].tags) {
      *what = a[i].band != b[i].band ? "the bands differ" : "the tag planes differ";
      return true;
    }
  }
  if (a.size() == b.size()) return false;
  *what = "one library ends earlier";
  return true;
}

}  // namespace

LibraryDifference CompareLibraries(const calls::CallFile& file, const calls::Functions& first,
                                   const calls::Functions& second, const std::function<bool(std::size_t call)>& keep) {
  LibraryDifference difference;
  std::size_t coarse = 0;
  {
    const auto a = TraceOf(file, first, SIZE_MAX, SIZE_MAX, keep, &difference.error);
    if (!difference.error.empty()) return difference;
    const auto b = TraceOf(file, second, SIZE_MAX, SIZE_MAX, keep, &difference.error);
    if (!difference.error.empty() || !FirstDifference(a, b, &coarse, &difference.what)) return difference;
  }
  // The call lies behind the last end of a band of the same device.
  std::size_t from = 0;
  calls::StoredCall call;
  file.DecodeCall(file.CallItem(coarse), &call);
  const uint32_t device = call.Device();
  for (std::size_t i = 0; i < coarse; ++i) {
    file.DecodeCall(file.CallItem(i), &call);
    if (MayEndBand(call) && call.Device() == device) from = i;
  }
  const auto a = TraceOf(file, first, from, coarse + 1, keep, &difference.error);
  const auto b = TraceOf(file, second, from, coarse + 1, keep, &difference.error);
  difference.found = FirstDifference(a, b, &difference.call, &difference.what);
  return difference;
}

}  // namespace qnv::tool
