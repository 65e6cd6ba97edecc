// Places of pages: what painted a pixel, what stands there, and how time and paint are spread.
#include <algorithm>
#include <cstring>

#include "calls/memory_reads.h"
#include "inspector/engine/inspector.h"

namespace qnv::inspector {
namespace {

bool PageOf(const OpenFile& file, const JsonValue& question, uint32_t* page, std::string* out) {
  const int64_t number = question["page"].Whole(-1);
  if (number < 0 || number >= static_cast<int64_t>(file.history.Pages().size())) {
    *out = "there is no such page";
    return false;
  }
  *page = static_cast<uint32_t>(number);
  return true;
}

void WriteValue(JsonWriter& json, const char* name, const uint8_t* bytes, uint32_t count) {
  json.Name(name).List();
  for (uint32_t i = 0; i < count; ++i) json.Value(uint32_t{bytes[i]});
  json.EndList();
}

}  // namespace

bool AnswerPainters(OpenFile& file, const JsonValue& question, std::string* out) {
  uint32_t number;
  if (!PageOf(file, question, &number, out)) return false;
  History& history = file.history;
  const Page& page = history.Pages()[number];
  const int64_t x = question["x"].Whole(INT64_MIN / 2), y = question["y"].Whole(INT64_MIN / 2);
  std::string error, painters;
  JsonWriter json(out);
  json.Object().Name("painters").List();
  calls::StoredCall stored;
  for (const uint32_t index : page.bands) {
    const BandOfPage& band = history.Bands()[index];
    if (!band.Holds(x, y)) continue;
    const int64_t column = x - band.Left(), row = y - band.Top();
    // Until the first call that paints the band, its rectangle may be that of the band before.
    const uint32_t first = band.begun - 1;
    LiveDevice* const live = history.At(page.device, first, &error);
    if (live == nullptr) {
      *out = error;
      return false;
    }
    const uint32_t pixelBytes = band.shape.PixelBytes();
    const auto at = static_cast<std::size_t>(row * band.shape.Stride() + column * pixelBytes);
    const auto tagAt = static_cast<std::size_t>(row * band.shape.TagStride() + column);
    // What a call paints at a pixel depends on nothing but what was there: the calls that cannot reach it are left out,
    // unless a later one needs the state that they leave.
    std::vector<bool> needed(band.end - first);
    for (uint32_t position = first; position < band.end; ++position) {
      const std::size_t i = position - first;
      if (!history.IsCall(page.device, position)) {
        needed[i] = true;
        continue;
      }
      const CallRow& call = history.Rows()[history.CallAt(page.device, position)];
      needed[i] = call.function == calls::Function::kControl || call.reach.Holds(column, row);
    }
    history.NeedState(page.device, first, &needed);
    live->isKnown = false;
    for (uint32_t position = first; position < band.end; ++position) {
      if (!needed[position - first]) continue;
      uint8_t before[3] = {}, tagBefore = 0;
      std::memcpy(before, &live->band[at], pixelBytes);
      if (band.shape.dualPlane) tagBefore = live->tags[tagAt];
      if (!history.Make(page.device, live, position, &error)) {
        *out = error;
        return false;
      }
      const uint8_t* const after = &live->band[at];
      const bool sameTag = !band.shape.dualPlane || live->tags[tagAt] == tagBefore;
      if ((std::memcmp(before, after, pixelBytes) == 0 && sameTag) || !history.IsCall(page.device, position)) continue;
      const std::size_t call = history.CallAt(page.device, position);
      json.Object().Member("call", call);
      WriteValue(json, "value", after, pixelBytes);
      json.Name("tag");
      if (band.shape.dualPlane) {
        json.Value(uint32_t{live->tags[tagAt]});
      } else {
        json.Null();
      }
      WriteValue(json, "before", before, pixelBytes);
      json.Name("tagBefore");
      if (band.shape.dualPlane) {
        json.Value(uint32_t{tagBefore});
      } else {
        json.Null();
      }
      history.File().DecodeCall(history.File().CallItem(call), &stored);
      json.Member("line", DescribeCall(history.File(), call, stored)).EndObject();
    }
  }
  json.EndList().EndObject();
  return true;
}

bool AnswerPixel(OpenFile& file, const JsonValue& question, std::string* out) {
  uint32_t page;
  if (!PageOf(file, question, &page, out)) return false;
  const int64_t call = question["call"].Whole(-1);
  if (call < -1 || call >= static_cast<int64_t>(file.history.Rows().size())) {
    *out = "there is no such call";
    return false;
  }
  PagePixel pixel;
  const int64_t x = question["x"].Whole(INT64_MIN / 2), y = question["y"].Whole(INT64_MIN / 2);
  std::string error;
  if (!file.pictures.PixelAt(page, x, y, call, &pixel, &error)) {
    *out = error;
    return false;
  }
  JsonWriter json(out);
  json.Object();
  if (pixel.isInBand) {
    WriteValue(json, "value", pixel.bytes, pixel.byteCount);
  } else {
    json.Name("value").Null();
  }
  json.Name("tag");
  if (pixel.hasTag) {
    json.Value(uint32_t{pixel.tag});
  } else {
    json.Null();
  }
  json.EndObject();
  return true;
}

bool AnswerHeat(OpenFile& file, const JsonValue& question, std::string* out) {
  uint32_t number;
  if (!PageOf(file, question, &number, out)) return false;
  const History& history = file.history;
  const Page& page = history.Pages()[number];
  constexpr int64_t kMaxSide = 1024;
  const int64_t columns = std::clamp<int64_t>(question["columns"].Whole(), 1, kMaxSide);
  const int64_t rows = std::clamp<int64_t>(question["rows"].Whole(), 1, kMaxSide);
  const bool isTime = question["what"].text() == "time";
  const auto width = static_cast<double>(page.right - page.left), height = static_cast<double>(page.bottom - page.top);
  const double cellWidth = width / static_cast<double>(columns), cellHeight = height / static_cast<double>(rows);
  std::vector<float> values(static_cast<std::size_t>(columns * rows));
  for (const uint32_t index : page.bands) {
    const BandOfPage& band = history.Bands()[index];
    for (uint32_t position = band.first; position < band.end; ++position) {
      if (!history.IsCall(page.device, position)) continue;
      const CallRow& row = history.Rows()[history.CallAt(page.device, position)];
      if (row.reach.IsEmpty() || !row.isMade || !calls::EntryPointOf(row.function).draws) continue;
      const auto left = static_cast<double>(band.Left() - page.left + row.reach.left);
      const auto right = static_cast<double>(band.Left() - page.left + row.reach.right);
      const auto top = static_cast<double>(band.Top() - page.top + row.reach.top);
      const auto bottom = static_cast<double>(band.Top() - page.top + row.reach.bottom);
      const auto pixels = static_cast<double>(row.reach.Pixels());
      // Time is shared out evenly; overdraw counts how often a pixel of the cell was reached.
      const double each = isTime ? static_cast<double>(row.nanoseconds) / pixels : 1 / (cellWidth * cellHeight);
      const auto firstColumn = static_cast<int64_t>(left / cellWidth),
                 firstRow = static_cast<int64_t>(top / cellHeight);
      for (int64_t r = std::max<int64_t>(firstRow, 0); r < rows; ++r) {
        const double y0 = static_cast<double>(r) * cellHeight;
        const double inRow = std::min(bottom, y0 + cellHeight) - std::max(top, y0);
        if (inRow <= 0) break;
        for (int64_t c = std::max<int64_t>(firstColumn, 0); c < columns; ++c) {
          const double x0 = static_cast<double>(c) * cellWidth;
          const double inColumn = std::min(right, x0 + cellWidth) - std::max(left, x0);
          if (inColumn <= 0) break;
          values[static_cast<std::size_t>(r * columns + c)] += static_cast<float>(inRow * inColumn * each);
        }
      }
    }
  }
  float max = 0;
  for (const float value : values) max = std::max(max, value);
  JsonWriter json(out);
  json.Object().Member("max", static_cast<uint64_t>(max + 0.5F)).Base64("values", values).EndObject();
  return true;
}

bool AnswerCompare(OpenFile&, OpenFile*, std::string* out) {
  *out = "not yet";
  return false;
}

}  // namespace qnv::inspector
