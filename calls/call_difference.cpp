// Compares stored calls.
#include "calls/call_difference.h"

#include "calls/describe_call.h"
#include "calls/text.h"

namespace qnv::calls {
namespace {

// A stored pointer without the numbers that belong to its file.
std::string ContentOf(const CallFile& file, const StoredArgument& argument) {
  const auto blob = [&](uint32_t number) {
    const BlobView& view = file.Blob(number);
    return std::string(view.data, view.data + view.bytes);
  };
  const StoredPointer& pointer = argument.pointer;
  std::string content =
      Text(static_cast<int>(pointer.tag), " ", pointer.first, " ", pointer.rowBytes, " ", pointer.stride, " ");
  if (argument.isRecord) content += blob(argument.record);
  if (argument.isNestedRecord) content += blob(argument.nestedRecord);
  if (pointer.tag == PointerTag::kBlob || pointer.tag == PointerTag::kRows) content += blob(pointer.number);
  // Fonts: what is known of them depends on the calls before, which are compared themselves; the record is compared.
  if (pointer.tag == PointerTag::kImage) {
    const StoredImage& root = file.Image(file.Image(pointer.number).root);
    if (root.pieces != 0) content += blob(file.Piece(root.firstPiece).blob);
  }
  return content;
}

}  // namespace

std::string CallDifference(const CallFile& a, const StoredCall& x, const CallFile& b, const StoredCall& y) {
  const EntryPoint& entry = EntryPointOf(x.function);
  if (x.function != y.function) {
    return Text(entry.name, " and ", EntryPointOf(y.function).name);
  }
  const auto inWords = [&](const CallFile& file, const StoredCall& call, std::size_t i) {
    return DescribeArguments(file, call)[i].text;
  };
  for (std::size_t i = 0; i < entry.argumentCount; ++i) {
    if (x.arguments[i].number == y.arguments[i].number &&
        ContentOf(a, x.arguments[i]) == ContentOf(b, y.arguments[i])) {
      continue;
    }
    const std::string first = inWords(a, x, i), second = inWords(b, y, i);
    if (first == second) return Text(entry.name, ", ", entry.arguments[i].name, ": ", first, " with other contents");
    return Text(entry.name, ", ", entry.arguments[i].name, ": ", first, " and ", second);
  }
  const uint32_t mask = entry.result == Result::kLow16 ? 0xFFFF : UINT32_MAX;
  if ((x.result & mask) != (y.result & mask)) {
    return Text(entry.name, ": the results are 0x", Hex{x.result & mask}, " and 0x", Hex{y.result & mask});
  }
  const uint32_t both = x.flags & y.flags;
  const bool bandsDiffer = ((both & kHasBandBefore) != 0 && x.bandBefore != y.bandBefore) ||
                           ((both & kHasBandAfter) != 0 && x.bandAfter != y.bandAfter);
  const bool tagsDiffer = ((both & kHasTagsBefore) != 0 && x.tagsBefore != y.tagsBefore) ||
                          ((both & kHasTagsAfter) != 0 && x.tagsAfter != y.tagsAfter);
  if (bandsDiffer || tagsDiffer) {
    return Text(entry.name, ": the ", bandsDiffer ? "bands" : "tag planes", " differ");
  }
  return "";
}

}  // namespace qnv::calls
