// `qnvtool dump`: the calls of a file as text for people, or one JSON object a call.
#include <fmt/core.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <memory>

#include "calls/describe_call.h"
#include "calls/json_text.h"
#include "qnvtool/base/tool_error.h"
#include "qnvtool/calls/call_areas.h"
#include "qnvtool/calls/call_commands.h"
#include "qnvtool/calls/call_input.h"
#include "qnvtool/calls/call_options.h"

namespace qnv::tool {
namespace {

struct DumpArguments {
  std::string file, call, rop, color, rect;
  int device = 0, from = 0, count = 2000000000;
  bool json = false;
};

std::string Lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
  return text;
}

bool Holds(const std::string& text, const std::string& part) {
  return Lower(text).find(Lower(part)) != std::string::npos;
}

bool IsWanted(const DumpArguments& a, const calls::StoredCall& call, const std::vector<calls::DescribedField>& fields) {
  if (a.device != 0 && call.Device() != static_cast<uint32_t>(a.device)) return false;
  if (!a.call.empty() && !Holds(calls::EntryPointOf(call.function).name, a.call)) return false;
  const auto anyField = [&](const std::string& name, const std::string& part) {
    return std::any_of(fields.begin(), fields.end(), [&](const calls::DescribedField& field) {
      return (name.empty() || field.name == name) && Holds(field.text, part);
    });
  };
  if (!a.rop.empty() && !anyField("rop", a.rop)) return false;
  return a.color.empty() || anyField("", a.color);
}

void PrintText(std::size_t number, const calls::StoredCall& call, const std::vector<calls::DescribedField>& fields) {
  fmt::print("{}\n", calls::DescribeCall(number, call, fields));
}

void PrintJson(std::size_t number, const calls::StoredCall& call, const std::vector<calls::DescribedField>& fields) {
  const calls::EntryPoint& entry = calls::EntryPointOf(call.function);
  std::string line =
      fmt::format("{{\"call\":{},\"function\":{},\"thread\":{}", number, calls::JsonText(entry.name), call.thread);
  for (const calls::DescribedField& field : fields) {
    line +=
        fmt::format(",{}:{}", calls::JsonText(field.name), field.isNumber ? field.text : calls::JsonText(field.text));
  }
  fmt::print("{},\"returned\":{},\"ns\":{}}}\n", line, call.result, call.nanoseconds);
}

}  // namespace

Command DumpCommand(const CallParts& parts) {
  auto arguments = std::make_shared<DumpArguments>();
  DumpArguments& a = *arguments;
  Command command{.name = "dump", .summary = "Show the calls of a call file", .options = {}, .run = {}};
  command.options = {
      CallFileArgument(&a.file),
      {.names = "--json", .placeholder = "", .help = "One JSON object a line", .value = Flag{&a.json}},
      {.names = "--call",
       .placeholder = "NAME",
       .help = "Only functions whose name holds NAME",
       .value = Text{&a.call}},
      {.names = "--device",
       .placeholder = "N",
       .help = "Only calls of this device",
       .value = WholeNumber{&a.device, 1, 1000000000}},
      {.names = "--rop",
       .placeholder = "NAME",
       .help = "Only calls whose raster code holds NAME, as it is shown",
       .value = Text{&a.rop}},
      {.names = "--color",
       .placeholder = "TEXT",
       .help = "Only calls with a field that holds TEXT, such as 0x00FF00",
       .value = Text{&a.color}},
      {.names = "--rect",
       .placeholder = "L,T,R,B",
       .help = "Only calls that may paint in this rectangle of the page",
       .value = Text{&a.rect}},
      {.names = "--from", .placeholder = "N", .help = "First call", .value = WholeNumber{&a.from, 0, 2000000000}},
      {.names = "--count",
       .placeholder = "N",
       .help = "How many calls to show",
       .value = WholeNumber{&a.count, 0, 2000000000}},
  };
  command.run = [arguments, parts] {
    BandRect rect{};
    if (!arguments->rect.empty()) rect = ParseRect(arguments->rect);
    // Which calls are shown is known before the file is read, unless they are chosen by what is in them.
    const bool chooses =
        arguments->device != 0 || !arguments->call.empty() || !arguments->rop.empty() || !arguments->color.empty();
    const auto from = static_cast<std::size_t>(arguments->from);
    std::vector<CallArea> areas;
    calls::CallFile file;
    if (arguments->rect.empty()) {
      file = ReadCallFile(arguments->file, from, chooses ? SIZE_MAX : static_cast<std::size_t>(arguments->count));
    } else {
      file = ReadCallFile(arguments->file);
      areas = CallAreas(file, parts.linkedRasteriser(), arguments->file);
    }
    calls::StoredCall call;
    int shown = 0;
    for (std::size_t i = std::max(from, file.FirstCall()); i < file.EndCall(); ++i) {
      if (shown == arguments->count) break;
      if (!areas.empty() && !areas[i].area.Meets(rect)) continue;
      file.DecodeCall(file.CallItem(i), &call);
      const auto fields = calls::DescribeArguments(file, call);
      if (!IsWanted(*arguments, call, fields)) continue;
      ++shown;
      (arguments->json ? PrintJson : PrintText)(i, call, fields);
    }
    if (std::fflush(stdout) != 0) throw ToolError(ExitCode::kCannotWrite, "standard output: cannot be written");
  };
  return command;
}

}  // namespace qnv::tool
