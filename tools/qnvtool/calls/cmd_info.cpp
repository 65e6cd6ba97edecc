// `qnvtool info`: what a call file holds.
#include <fmt/core.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <unordered_map>

#include "calls/describe_call.h"
#include "qnvtool/base/file_names.h"
#include "qnvtool/calls/call_commands.h"
#include "qnvtool/calls/call_input.h"
#include "qnvtool/calls/call_options.h"

namespace qnv::tool {
namespace {

void PrintInfo(const std::string& path, const calls::CallFile& file) {
  std::error_code error;
  const auto bytes = std::filesystem::file_size(PathOf(path), error);
  uint64_t blobBytes = 0;
  for (uint32_t i = 1; i <= file.BlobCount(); ++i) blobBytes += file.Blob(i).bytes;
  fmt::print("{}: {} bytes, {} blocks, {} bytes uncompressed\n", path, error ? 0 : bytes, file.BlockCount(),
             file.RawBytes());
  fmt::print("recorded on {} with pointers of {} bytes\n", file.System(), file.PointerBytes());
  for (const auto& [key, text] : file.Notes()) fmt::print("{}: {}\n", key, text);
  fmt::print("{} calls, {} blobs of {} bytes, {} font images\n", file.CallCount(), file.BlobCount(), blobBytes,
             file.ImageCount());

  struct Kind {
    uint64_t calls = 0, nanoseconds = 0;
  };
  Kind kinds[calls::kFunctionCount];
  std::vector<uint64_t> bands(file.DeviceCount() + 1), callsOf(file.DeviceCount() + 1);
  std::vector<std::string> descriptions(file.DeviceCount() + 1);
  std::unordered_map<std::string, uint64_t> repeats;
  std::set<uint32_t> threads;
  calls::StoredCall call;
  for (std::size_t i = 0; i < file.CallCount(); ++i) {
    const calls::FileItem& item = file.CallItem(i);
    file.DecodeCall(item, &call);
    Kind& kind = kinds[static_cast<std::size_t>(call.function)];
    ++kind.calls;
    kind.nanoseconds += call.nanoseconds;
    threads.insert(call.thread);
    if (call.function == calls::Function::kEnable && call.result != 0) {
      descriptions[call.result] = calls::DescribeArguments(file, call)[0].text +
                                  (call.arguments[3].pointer.tag != calls::PointerTag::kNull ? ", tag plane" : "");
    }
    if (const uint32_t device = call.Device(); device != 0) {
      ++callsOf[device];
      if ((call.flags & calls::kHasBandBefore) != 0) ++bands[device];
      // Equal arguments are equal text.
      std::string arguments;
      for (const calls::DescribedField& field : calls::DescribeArguments(file, call)) arguments += field.text + ",";
      for (std::size_t j = 0; j < calls::EntryPointOf(call.function).argumentCount; ++j) {
        arguments += fmt::format("{},", call.arguments[j].pointer.number);
      }
      ++repeats[calls::EntryPointOf(call.function).name + arguments];
    }
  }
  fmt::print("{} threads\n\n{:<26}{:>10}{:>14}{:>12}\n", threads.size(), "function", "calls", "ms", "ns a call");
  for (const calls::EntryPoint& entry : calls::kEntryPoints) {
    const Kind& kind = kinds[static_cast<std::size_t>(entry.function)];
    if (kind.calls == 0) continue;
    fmt::print("{:<26}{:>10}{:>14.3f}{:>12}\n", entry.name, kind.calls, static_cast<double>(kind.nanoseconds) / 1e6,
               kind.nanoseconds / kind.calls);
  }
  fmt::print("\n");
  for (uint32_t device = 1; device <= file.DeviceCount(); ++device) {
    fmt::print("device {}: {}; {} calls, {} painted bands\n", device, descriptions[device], callsOf[device],
               bands[device]);
  }
  uint64_t repeated = 0;
  for (const auto& [text, count] : repeats) repeated += count - 1;
  fmt::print("{} calls repeat an earlier call with the same arguments\n", repeated);
}

}  // namespace

Command InfoCommand() {
  auto path = std::make_shared<std::string>();
  Command command{.name = "info", .summary = "Say what a call file holds", .options = {}, .run = {}};
  command.options = {CallFileArgument(path.get())};
  command.run = [path] { PrintInfo(*path, ReadCallFile(*path)); };
  return command;
}

}  // namespace qnv::tool
