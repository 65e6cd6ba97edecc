// `qnvtool diff`: the first difference between the calls of two files.
#include <fmt/core.h>

#include <memory>

#include "calls/describe_call.h"
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

// A stored pointer without the numbers that belong to its file.
std::string ContentOf(const calls::CallFile& file, const calls::StoredArgument& argument) {
  const auto blob = [&](uint32_t number) {
    const calls::BlobView& view = file.Blob(number);
    return std::string(view.data, view.data + view.bytes);
  };
  const calls::StoredPointer& pointer = argument.pointer;
  std::string content =
      fmt::format("{} {} {} {} ", static_cast<int>(pointer.tag), pointer.first, pointer.rowBytes, pointer.stride);
  if (argument.isRecord) content += blob(argument.record);
  if (argument.isNestedRecord) content += blob(argument.nestedRecord);
  if (pointer.tag == calls::PointerTag::kBlob || pointer.tag == calls::PointerTag::kRows)
    content += blob(pointer.number);
  // Fonts: what is known of them depends on the calls before, which are compared themselves; the record is compared.
  if (pointer.tag == calls::PointerTag::kImage) {
    const calls::StoredImage& root = file.Image(file.Image(pointer.number).root);
    if (root.pieces != 0) content += blob(file.Piece(root.firstPiece).blob);
  }
  return content;
}

// What differs; empty when nothing does.
std::string DifferenceOf(const calls::CallFile& a, const calls::StoredCall& x, const calls::CallFile& b,
                         const calls::StoredCall& y) {
  const calls::EntryPoint& entry = calls::EntryPointOf(x.function);
  if (x.function != y.function) {
    return fmt::format("{} and {}", entry.name, calls::EntryPointOf(y.function).name);
  }
  const auto inWords = [&](const calls::CallFile& file, const calls::StoredCall& call, std::size_t i) {
    return calls::DescribeArguments(file, call)[i].text;
  };
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    if (x.arguments[i].number == y.arguments[i].number &&
        ContentOf(a, x.arguments[i]) == ContentOf(b, y.arguments[i])) {
      continue;
    }
    const std::string first = inWords(a, x, i), second = inWords(b, y, i);
    if (first == second)
      return fmt::format("{}, {}: {} with other contents", entry.name, entry.arguments[i].name, first);
    return fmt::format("{}, {}: {} and {}", entry.name, entry.arguments[i].name, first, second);
  }
  const uint32_t mask = entry.result == calls::Result::kLow16 ? 0xFFFF : UINT32_MAX;
  if ((x.result & mask) != (y.result & mask)) {
    return fmt::format("{}: the results are 0x{:X} and 0x{:X}", entry.name, x.result & mask, y.result & mask);
  }
  const uint32_t both = x.flags & y.flags;
  const bool bandsDiffer = ((both & calls::kHasBandBefore) != 0 && x.bandBefore != y.bandBefore) ||
                           ((both & calls::kHasBandAfter) != 0 && x.bandAfter != y.bandAfter);
  const bool tagsDiffer = ((both & calls::kHasTagsBefore) != 0 && x.tagsBefore != y.tagsBefore) ||
                          ((both & calls::kHasTagsAfter) != 0 && x.tagsAfter != y.tagsAfter);
  if (bandsDiffer || tagsDiffer) {
    return fmt::format("{}: the {} differ", entry.name, bandsDiffer ? "bands" : "tag planes");
  }
  return "";
}

void Diff(const DiffArguments& a) {
  const calls::CallFile first = ReadCallFile(a.first), second = ReadCallFile(a.second);
  const std::size_t count = std::min(first.CallCount(), second.CallCount());
  std::size_t differences = 0;
  calls::StoredCall x, y;
  for (std::size_t i = 0; i < count; ++i) {
    first.DecodeCall(first.CallItem(i), &x);
    second.DecodeCall(second.CallItem(i), &y);
    const std::string difference = DifferenceOf(first, x, second, y);
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
