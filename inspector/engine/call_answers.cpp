// One call: its arguments in parts, what is wrong with it, and what it changed.
#include <algorithm>
#include <cstring>

#include "calls/describe_call.h"
#include "calls/memory_reads.h"
#include "inspector/engine/call_parts.h"
#include "inspector/engine/inspector.h"

namespace qnv::inspector {
namespace {

using calls::Function;
using calls::Reach;

constexpr const char* kTypeNames[] = {"handle",
                                      "int32_t",
                                      "uint32_t",
                                      "void *",
                                      "const void *",
                                      "const DeviceDescription *",
                                      "const BandRect *",
                                      "DeviceSize *",
                                      "uint32_t *",
                                      "const int16_t *",
                                      "const PhysicalPen *",
                                      "const PhysicalBrush *",
                                      "DRAWMODE *",
                                      "const DRAWMODE *",
                                      "const SourceBitmap *"};

// A call's painted rectangle before and after it.
struct Change {
  bool isKnown = false;  // the call was made on a device with a band
  const BandOfPage* band = nullptr;
  calls::DeviceShape shape;  // after the call
  Reach rect;                // of the changed pixels and tags
  uint64_t pixels = 0, tags = 0;
  // Rows [first, first + rows) of the planes.
  int32_t first = 0, rows = 0;
  std::vector<uint8_t> bandBefore, bandAfter, tagsBefore, tagsAfter;
};

bool FindChange(OpenFile& file, std::size_t number, int32_t margin, Change* change, std::string* error) {
  History& history = file.history;
  const CallRow& row = history.Rows()[number];
  const bool clears = row.function == Function::kControl && !row.reach.IsEmpty();
  if (!row.isMade || row.device == 0 || row.reach.IsEmpty() || (!clears && !calls::EntryPointOf(row.function).draws)) {
    return true;
  }
  LiveDevice* live = history.At(row.device, row.position, error);
  if (live == nullptr) return false;
  if (live->band.size() <= 1) return true;
  const uint32_t stride = live->shape.Stride(), tagStride = live->shape.TagStride();
  const Reach whole = BandReach(live->shape);
  change->first = std::max(row.reach.top - margin, whole.top);
  change->rows = std::min(row.reach.bottom + margin, whole.bottom) - change->first;
  const auto rowsOf = [&](const std::vector<uint8_t>& plane, uint32_t planeStride) {
    const std::size_t first = static_cast<std::size_t>(change->first) * planeStride;
    const std::size_t end = std::min(plane.size(), first + static_cast<std::size_t>(change->rows) * planeStride);
    return std::vector<uint8_t>(plane.begin() + static_cast<std::ptrdiff_t>(first),
                                plane.begin() + static_cast<std::ptrdiff_t>(end));
  };
  change->bandBefore = rowsOf(live->band, stride);
  if (live->shape.dualPlane) change->tagsBefore = rowsOf(live->tags, tagStride);
  live = history.At(row.device, row.position + 1, error);
  if (live == nullptr) return false;
  change->bandAfter = rowsOf(live->band, stride);
  if (live->shape.dualPlane) change->tagsAfter = rowsOf(live->tags, tagStride);
  change->isKnown = true;
  change->shape = live->shape;
  if (row.page >= 0) {
    const Page& page = history.Pages()[static_cast<std::size_t>(row.page)];
    change->band = &history.Bands()[page.bands[row.band]];
  }
  const uint32_t pixelBytes = live->shape.PixelBytes();
  const auto compare = [&](const std::vector<uint8_t>& before, const std::vector<uint8_t>& after, uint32_t planeStride,
                           uint32_t bytes) {
    uint64_t count = 0;
    for (int32_t y = 0; y < change->rows; ++y) {
      const std::size_t at = static_cast<std::size_t>(y) * planeStride;
      const std::size_t rowBytes = static_cast<std::size_t>(whole.right) * bytes;
      if (at + rowBytes > before.size() || std::memcmp(&before[at], &after[at], rowBytes) == 0) continue;
      for (int32_t x = 0; x < whole.right; ++x) {
        const std::size_t pixel = at + static_cast<std::size_t>(x) * bytes;
        if (std::memcmp(&before[pixel], &after[pixel], bytes) == 0) continue;
        ++count;
        const int32_t top = change->first + y;
        change->rect.Join({x, top, x + 1, top + 1});
      }
    }
    return count;
  };
  change->pixels = compare(change->bandBefore, change->bandAfter, stride, pixelBytes);
  change->tags = compare(change->tagsBefore, change->tagsAfter, tagStride, 1);
  return true;
}

}  // namespace

bool AnswerCall(OpenFile& file, const JsonValue& question, std::string* out) {
  std::size_t number;
  if (!CallOf(file, question, &number, out)) return false;
  Change change;
  if (!FindChange(file, number, 0, &change, out)) return false;
  const History& history = file.history;
  const CallRow& row = history.Rows()[number];
  const calls::CallFile& calls = history.File();
  calls::StoredCall call;
  calls.DecodeCall(calls.CallItem(number), &call);
  const calls::EntryPoint& entry = calls::EntryPointOf(row.function);
  JsonWriter json(out);
  json.Object().Member("call", number).Member("function", entry.name).Member("device", row.device);
  json.Member("page", row.page).Member("band", row.band).Member("ns", row.nanoseconds).Member("result", row.result);
  json.Member("made", row.isMade).Member("differs", row.differs);
  json.Member("line", DescribeCall(calls, number, call)).Name("arguments").List();
  const auto fields = DescribeArguments(calls, call);
  const std::vector<CallPicture> pictures = PicturesOf(file, number);
  for (std::size_t i = 0; i < fields.size(); ++i) {
    json.Object().Member("name", fields[i].name);
    json.Member("type", kTypeNames[static_cast<std::size_t>(entry.arguments[i].type)]);
    json.Member("text", fields[i].text);
    WriteParts(json, calls, call, i);
    for (const CallPicture& picture : pictures) {
      if (picture.argument == i) json.Member("picture", picture.id);
    }
    json.EndObject();
  }
  json.EndList().Name("findings").List();
  for (const calls::Finding& finding : history.Findings()) {
    if (finding.call != number) continue;
    const calls::MistakeText& text = calls::TextOf(finding.mistake);
    json.Object().Member("mistake", static_cast<uint32_t>(finding.mistake));
    json.Member("argument", entry.arguments[finding.argument].name);
    json.Member("wrong", text.wrong).Member("advice", text.advice).EndObject();
  }
  json.EndList().Name("changed").Object().Name("rect");
  if (change.rect.IsEmpty()) {
    json.Null();
  } else {
    const int64_t left = change.shape.rect.left, top = change.shape.rect.top;
    json.List().Value(left + change.rect.left).Value(top + change.rect.top);
    json.Value(left + change.rect.right).Value(top + change.rect.bottom).EndList();
  }
  json.Member("pixels", change.pixels).Member("tags", change.tags).EndObject();
  json.Name("pictures").List();
  for (const CallPicture& picture : pictures) {
    json.Object().Member("id", picture.id).Member("what", picture.what).Member("label", picture.label);
    json.Member("width", picture.width).Member("height", picture.height).EndObject();
  }
  json.EndList().EndObject();
  return true;
}

// The changed rectangle and some pixels around it: before the call, after it, or the changed pixels alone.
bool DrawChange(OpenFile& file, const JsonValue& question, Picture* picture, std::string* error) {
  constexpr int32_t kMargin = 8;
  std::size_t number;
  Change change;
  if (!CallOf(file, question, &number, error) || !FindChange(file, number, kMargin, &change, error)) return false;
  if (change.rect.IsEmpty()) {
    *error = "the call changes nothing";
    return false;
  }
  const Reach whole = BandReach(change.shape);
  const Reach part{std::max(change.rect.left - kMargin, 0), std::max(change.rect.top - kMargin, change.first),
                   std::min(change.rect.right + kMargin, whole.right),
                   std::min(change.rect.bottom + kMargin, change.first + change.rows)};
  const std::string& which = question["which"].text();
  const bool isOutline = which == "outline";
  const std::vector<uint8_t>& plane = which == "before" ? change.bandBefore : change.bandAfter;
  const uint32_t stride = change.shape.Stride(), tagStride = change.shape.TagStride();
  const uint32_t pixelBytes = change.shape.PixelBytes();
  const auto at = [&](int32_t x, int32_t y) {
    return static_cast<std::size_t>(y - change.first) * stride + static_cast<std::size_t>(x) * pixelBytes;
  };
  const auto isChanged = [&](int32_t x, int32_t y) {
    if (x < 0 || x >= whole.right || y < change.first || y >= change.first + change.rows) return false;
    if (std::memcmp(&change.bandBefore[at(x, y)], &change.bandAfter[at(x, y)], pixelBytes) != 0) return true;
    const std::size_t tag = static_cast<std::size_t>(y - change.first) * tagStride + static_cast<std::size_t>(x);
    return !change.tagsBefore.empty() && change.tagsBefore[tag] != change.tagsAfter[tag];
  };
  // Large changes are shown smaller: every so many pixels and rows.
  constexpr int64_t kMaxPixels = int64_t{1} << 22;
  int32_t step = 1;
  while (part.Pixels() / step / step > kMaxPixels) ++step;
  picture->width = static_cast<uint32_t>((part.right - part.left + step - 1) / step);
  picture->height = static_cast<uint32_t>((part.bottom - part.top + step - 1) / step);
  picture->pixels.assign(std::size_t{picture->width} * picture->height * 4, 0);
  uint8_t* out = picture->pixels.data();
  for (int32_t y = part.top; y < part.bottom; y += step) {
    for (int32_t x = part.left; x < part.right; x += step, out += 4) {
      if (isOutline) {
        if (!isChanged(x, y)) continue;
        const bool isInside = isChanged(x - 1, y) && isChanged(x + 1, y) && isChanged(x, y - 1) && isChanged(x, y + 1);
        out[0] = 230;
        out[2] = 92;
        out[3] = isInside ? 90 : 255;
        continue;
      }
      const uint8_t* const pixel = &plane[at(x, y)];
      out[0] = pixel[pixelBytes - 1];
      out[1] = pixel[pixelBytes / 2];
      out[2] = pixel[0];
      out[3] = 255;
    }
  }
  return true;
}

}  // namespace qnv::inspector
