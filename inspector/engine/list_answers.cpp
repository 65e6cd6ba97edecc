// The file as a whole, and the list of its calls.
#include <algorithm>
#include <cstdlib>
#include <limits>

#include "calls/describe_call.h"
#include "calls/memory_reads.h"
#include "inspector/engine/inspector.h"

namespace qnv::inspector {
namespace {

using calls::Function;

enum RowFlags : uint8_t { kDraws = 1, kHasFindings = 2, kSkipped = 4, kDiffers = 8 };

constexpr uint32_t kNoDetail = 0xFFFFFFFF;

// The raster code of transfers and images, the binary operation of the others.
uint32_t DetailOf(const calls::CallFile& file, const calls::StoredCall& call) {
  const auto rop2 = [&](std::size_t argument) -> uint32_t {
    const calls::StoredPointer& pointer = call.arguments[argument].pointer;
    if (pointer.tag != calls::PointerTag::kBlob) return kNoDetail;
    const calls::BlobView& blob = file.Blob(pointer.number);
    return blob.bytes < 2 ? kNoDetail : calls::GetLittle<uint16_t>(blob.data);
  };
  switch (call.function) {
    case Function::kDevBitBlt: return call.arguments[8].number;
    case Function::kStretchDIBits: return call.arguments[13].number;
    case Function::kDevSetDIBitsToDevice: return uint32_t{SRCCOPY};
    case Function::kOutput: return rop2(6);
    case Function::kPixel: return rop2(4);
    case Function::kPolyPixel: return rop2(6);
    default: return kNoDetail;
  }
}

std::string Lower(std::string text) {
  for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return text;
}

std::string LineOf(const OpenFile& file, std::size_t number) {
  const calls::CallFile& calls = file.history.File();
  calls::StoredCall call;
  calls.DecodeCall(calls.CallItem(number), &call);
  return DescribeCall(calls, number, call);
}

template <class T>
T Clamped(uint64_t value) {
  return static_cast<T>(std::min<uint64_t>(value, std::numeric_limits<T>::max()));
}

}  // namespace

bool AnswerSummary(OpenFile& file, std::string* out) {
  const History& history = file.history;
  const calls::CallFile& calls = history.File();
  JsonWriter json(out);
  json.Object().Member("name", "").Member("calls", history.Rows().size());
  json.Member("system", calls.System()).Member("pointerBytes", calls.PointerBytes());
  json.Name("notes").List();
  for (const auto& [key, text] : calls.Notes()) json.List().Value(key).Value(text).EndList();
  json.EndList().Name("devices").List();
  for (uint32_t number = 1; number <= calls.DeviceCount(); ++number) {
    const calls::DeviceShape& shape = history.ShapeAtStart(number);
    const BandRect& rect = shape.rect;
    json.Object().Member("number", number).Member("kind", KindOf(shape));
    json.Member("bits", uint32_t{shape.description.bitsPerPixel});
    json.Member("bandWidth", int64_t{rect.right} - rect.left).Member("bandHeight", int64_t{rect.bottom} - rect.top);
    json.Member("resolutionA", uint32_t{shape.description.resolutionA});
    json.Member("resolutionB", uint32_t{shape.description.resolutionB});
    json.Member("hasTags", shape.dualPlane).EndObject();
  }
  json.EndList().Name("pages").List();
  for (std::size_t i = 0; i < history.Pages().size(); ++i) {
    const Page& page = history.Pages()[i];
    json.Object().Member("page", i).Member("device", page.device);
    json.Member("width", page.right - page.left).Member("height", page.bottom - page.top);
    json.Member("left", page.left).Member("top", page.top);
    json.Member("firstCall", page.firstCall).Member("lastCall", page.lastCall).Name("bands").List();
    for (const uint32_t index : page.bands) {
      const BandOfPage& band = history.Bands()[index];
      json.Object().Member("band", band.number).Member("left", band.Left()).Member("top", band.Top());
      json.Member("right", band.Left() + band.size.right).Member("bottom", band.Top() + band.size.bottom);
      json.Member("firstCall", band.firstCall).Member("lastCall", band.lastCall).EndObject();
    }
    json.EndList().EndObject();
  }
  json.EndList().Name("mistakes").List();
  for (uint32_t i = 1; i <= calls::kMistakeCount; ++i) {
    const calls::MistakeText& text = calls::TextOf(static_cast<calls::Mistake>(i));
    json.Object().Member("number", i).Member("wrong", text.wrong).Member("advice", text.advice).EndObject();
  }
  uint64_t total = 0;
  for (const CallRow& row : history.Rows()) total += row.nanoseconds;
  json.EndList().Member("totalNs", total).Member("findings", history.Findings().size());
  json.Member("truncated", history.Shortcoming()).EndObject();
  return true;
}

bool AnswerRows(OpenFile& file, std::string* out) {
  const History& history = file.history;
  const std::size_t count = history.Rows().size();
  std::vector<uint8_t> function(count), flags(count);
  std::vector<uint16_t> device(count), band(count);
  std::vector<int16_t> page(count);
  std::vector<uint32_t> ns(count), result(count), detail(count);
  calls::StoredCall call;
  for (std::size_t i = 0; i < count; ++i) {
    const CallRow& row = history.Rows()[i];
    history.File().DecodeCall(history.File().CallItem(i), &call);
    function[i] = static_cast<uint8_t>(row.function);
    device[i] = Clamped<uint16_t>(row.device);
    page[i] = row.page < 0 ? int16_t{-1} : Clamped<int16_t>(static_cast<uint64_t>(row.page));
    band[i] = Clamped<uint16_t>(row.band);
    ns[i] = Clamped<uint32_t>(row.nanoseconds);
    result[i] = row.result;
    detail[i] = DetailOf(history.File(), call);
    flags[i] = static_cast<uint8_t>((calls::EntryPointOf(row.function).draws ? kDraws : 0) |
                                    (row.isMade ? 0 : kSkipped) | (row.differs ? kDiffers : 0));
  }
  for (const calls::Finding& finding : history.Findings()) flags[finding.call] |= kHasFindings;
  JsonWriter json(out);
  json.Object().Name("functions").List();
  for (const calls::EntryPoint& entry : calls::kEntryPoints) json.Value(entry.name);
  json.EndList().Base64("function", function).Base64("device", device).Base64("page", page).Base64("band", band);
  json.Base64("ns", ns).Base64("result", result).Base64("flags", flags).Base64("detail", detail).EndObject();
  return true;
}

bool AnswerLines(OpenFile& file, const JsonValue& question, std::string* out) {
  const auto calls = static_cast<int64_t>(file.history.Rows().size());
  const int64_t first = std::clamp<int64_t>(question["first"].Whole(), 0, calls);
  constexpr int64_t kMaxLines = 10000;
  const int64_t count = std::clamp<int64_t>(question["count"].Whole(), 0, std::min(kMaxLines, calls - first));
  JsonWriter json(out);
  json.Object().Name("lines").List();
  for (int64_t i = first; i < first + count; ++i) json.Value(LineOf(file, static_cast<std::size_t>(i)));
  json.EndList().EndObject();
  return true;
}

namespace {

// "#rrggbb" as lines have physical colors: 0xBBGGRR.
bool ReadColor(const std::string& text, uint32_t* color) {
  if (text.size() != 7 || text[0] != '#') return false;
  char* end = nullptr;
  const unsigned long rgb = std::strtoul(text.c_str() + 1, &end, 16);
  *color = static_cast<uint32_t>((rgb & 255) << 16 | (rgb >> 8 & 255) << 8 | rgb >> 16);
  return *end == '\0';
}

}  // namespace

bool AnswerFind(OpenFile& file, const JsonValue& question, std::string* out) {
  const History& history = file.history;
  const std::size_t count = history.Rows().size();
  const std::string text = Lower(question["text"].text());
  std::string color;
  if (question["color"].kind() == JsonValue::Kind::kText) {
    uint32_t value = 0;
    if (!ReadColor(question["color"].text(), &value)) {
      *out = "a color is written #rrggbb";
      return false;
    }
    color = Lower(calls::Text("0x", calls::Hex{value, 6}));
  }
  if ((!text.empty() || !color.empty()) && file.lowerLines.empty()) {
    file.lowerLines.resize(count);
    for (std::size_t i = 0; i < count; ++i) file.lowerLines[i] = Lower(LineOf(file, i));
  }
  std::vector<bool> functions(calls::kFunctionCount, question["function"].items().empty());
  for (const JsonValue& item : question["function"].items()) {
    for (std::size_t i = 0; i < calls::kFunctionCount; ++i) {
      if (item.text() == calls::kEntryPoints[i].name || (item.IsNumber() && item.Whole(-1) == static_cast<int64_t>(i)))
        functions[i] = true;
    }
  }
  const bool hasRect = question["rect"].items().size() == 4;
  int64_t rect[4] = {};
  for (std::size_t i = 0; hasRect && i < 4; ++i) rect[i] = question["rect"].items()[i].Whole();
  const bool hasRop = question["rop"].IsNumber(), onlyFindings = question["findings"].IsTrue();
  std::vector<bool> found;
  if (onlyFindings) {
    found.resize(count);
    for (const calls::Finding& finding : history.Findings()) found[finding.call] = true;
  }
  std::vector<uint32_t> calls;
  calls::StoredCall stored;
  for (std::size_t i = 0; i < count; ++i) {
    const CallRow& row = history.Rows()[i];
    if (!functions[static_cast<std::size_t>(row.function)]) continue;
    if (question["device"].IsNumber() && question["device"].Whole() != int64_t{row.device}) continue;
    if (question["page"].IsNumber() && question["page"].Whole() != row.page) continue;
    if (onlyFindings && !found[i]) continue;
    if (hasRect) {
      if (row.page < 0 || row.reach.IsEmpty()) continue;
      const Page& page = history.Pages()[static_cast<std::size_t>(row.page)];
      const BandOfPage& band = history.Bands()[page.bands[row.band]];
      if (band.Left() + row.reach.left >= rect[2] || band.Left() + row.reach.right <= rect[0] ||
          band.Top() + row.reach.top >= rect[3] || band.Top() + row.reach.bottom <= rect[1]) {
        continue;
      }
    }
    if (hasRop) {
      history.File().DecodeCall(history.File().CallItem(i), &stored);
      if (int64_t{DetailOf(history.File(), stored)} != question["rop"].Whole(-1)) continue;
    }
    if (!text.empty() && file.lowerLines[i].find(text) == std::string::npos) continue;
    if (!color.empty() && file.lowerLines[i].find(color) == std::string::npos) continue;
    calls.push_back(static_cast<uint32_t>(i));
  }
  JsonWriter(out).Object().Base64("calls", calls).EndObject();
  return true;
}

bool AnswerCosts(OpenFile& file, const JsonValue& question, std::string* out) {
  const History& history = file.history;
  struct Cost {
    uint64_t calls = 0, ns = 0, pixels = 0;
  };
  Cost costs[calls::kFunctionCount];
  std::vector<uint32_t> slowest;
  for (std::size_t i = 0; i < history.Rows().size(); ++i) {
    const CallRow& row = history.Rows()[i];
    if (question["page"].IsNumber() && question["page"].Whole() != row.page) continue;
    Cost& cost = costs[static_cast<std::size_t>(row.function)];
    ++cost.calls;
    cost.ns += row.nanoseconds;
    cost.pixels += static_cast<uint64_t>(row.reach.Pixels());
    slowest.push_back(static_cast<uint32_t>(i));
  }
  constexpr std::size_t kSlowest = 100;
  const auto isSlower = [&](uint32_t a, uint32_t b) {
    const uint64_t x = history.Rows()[a].nanoseconds, y = history.Rows()[b].nanoseconds;
    return x != y ? x > y : a < b;
  };
  const std::size_t shown = std::min(kSlowest, slowest.size());
  std::partial_sort(slowest.begin(), slowest.begin() + static_cast<std::ptrdiff_t>(shown), slowest.end(), isSlower);
  JsonWriter json(out);
  json.Object().Name("byFunction").List();
  for (std::size_t i = 0; i < calls::kFunctionCount; ++i) {
    if (costs[i].calls == 0) continue;
    json.Object().Member("function", calls::kEntryPoints[i].name).Member("calls", costs[i].calls);
    json.Member("ns", costs[i].ns).Member("pixels", costs[i].pixels).EndObject();
  }
  json.EndList().Name("slowest").List();
  for (std::size_t i = 0; i < shown; ++i) {
    json.Object().Member("call", slowest[i]).Member("ns", history.Rows()[slowest[i]].nanoseconds).EndObject();
  }
  json.EndList().EndObject();
  return true;
}

}  // namespace qnv::inspector
