// Places of pages: what painted a pixel, what stands there, and how time and paint are spread.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "calls/call_difference.h"
#include "calls/describe_call.h"
#include "calls/text.h"
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
  json.Object().Member("max", static_cast<uint64_t>(std::llround(max))).Base64("values", values).EndObject();
  return true;
}

namespace {

// The pages of two files, compared row by row in squares of some pixels.
class PageComparison {
 public:
  PageComparison(OpenFile& first, OpenFile& second, uint32_t page) : files_{&first, &second}, page_(page) {}

  bool Compare(std::string* error);
  // Squares that differ, joined with those to the right of them, as far as they are to be listed.
  const std::vector<calls::Reach>& Rects() const { return rects_; }
  uint64_t pixels() const { return pixels_; }

 private:
  static constexpr int64_t kSquare = 16;
  static constexpr std::size_t kMaxRects = 1000;

  void AddRects(const std::vector<bool>& squares, int64_t top, int64_t bottom);

  OpenFile* files_[2];
  const uint32_t page_;
  std::vector<calls::Reach> rects_;
  uint64_t pixels_ = 0;
};

void PageComparison::AddRects(const std::vector<bool>& squares, int64_t top, int64_t bottom) {
  const Page& page = files_[0]->history.Pages()[page_];
  for (std::size_t i = 0; i < squares.size(); ++i) {
    if (!squares[i]) continue;
    std::size_t end = i + 1;
    while (end < squares.size() && squares[end]) ++end;
    const int64_t right = std::min(page.right, page.left + static_cast<int64_t>(end) * kSquare);
    const calls::Reach rect{static_cast<int32_t>(page.left + static_cast<int64_t>(i) * kSquare),
                            static_cast<int32_t>(top), static_cast<int32_t>(right), static_cast<int32_t>(bottom)};
    i = end;
    // The one above it with the same columns grows.
    const auto above = std::find_if(rects_.rbegin(), rects_.rend(), [&](const calls::Reach& other) {
      return other.bottom == rect.top && other.left == rect.left && other.right == rect.right;
    });
    if (above != rects_.rend()) {
      above->bottom = rect.bottom;
    } else if (rects_.size() < kMaxRects) {
      rects_.push_back(rect);
    } else {
      rects_.back().Join(rect);
    }
  }
}

bool PageComparison::Compare(std::string* error) {
  const Page& page = files_[0]->history.Pages()[page_];
  const int64_t width = page.right - page.left;
  const bool hasTags = files_[0]->history.ShapeAtStart(page.device).dualPlane;
  std::vector<bool> squares;
  for (int64_t top = page.top; top < page.bottom; top += kSquare) {
    const int64_t bottom = std::min(page.bottom, top + kSquare);
    squares.assign(static_cast<std::size_t>((width + kSquare - 1) / kSquare), false);
    bool differs = false;
    for (const bool tags : {false, true}) {
      if (tags && !hasTags) continue;
      PageRows rows[2];
      for (std::size_t i = 0; i < 2; ++i) {
        if (!files_[i]->pictures.RowsOf(page_, tags, top, bottom, &rows[i], error)) return false;
      }
      const std::size_t bytes = rows[0].pixelBytes;
      if (rows[0].bytes == rows[1].bytes) continue;
      if (rows[0].bytes.size() != rows[1].bytes.size()) {
        *error = "the pages have pixels of different sizes";
        return false;
      }
      for (std::size_t at = 0; at < rows[0].bytes.size(); at += bytes) {
        if (std::memcmp(&rows[0].bytes[at], &rows[1].bytes[at], bytes) == 0) continue;
        if (!tags) ++pixels_;
        squares[at / bytes % static_cast<std::size_t>(width) / kSquare] = true;
        differs = true;
      }
    }
    if (differs) AddRects(squares, top, bottom);
  }
  return true;
}

// The first call that differs; the number of calls of the shorter file when it ends first; -1.
int64_t FirstDifference(const calls::CallFile& a, const calls::CallFile& b, std::string* text) {
  const std::size_t count = std::min(a.CallCount(), b.CallCount());
  calls::StoredCall x, y;
  for (std::size_t i = 0; i < count; ++i) {
    a.DecodeCall(a.CallItem(i), &x);
    b.DecodeCall(b.CallItem(i), &y);
    *text = CallDifference(a, x, b, y);
    if (!text->empty()) return static_cast<int64_t>(i);
  }
  if (a.CallCount() == b.CallCount()) return -1;
  *text = calls::Text("one file has ", a.CallCount(), " calls, the other ", b.CallCount());
  return static_cast<int64_t>(count);
}

}  // namespace

bool AnswerCompare(OpenFile& file, OpenFile* other, std::string* out) {
  if (other == nullptr) {
    *out = "the file to compare with is not open";
    return false;
  }
  const auto &pages = file.history.Pages(), &others = other->history.Pages();
  std::string text, error;
  const int64_t first = FirstDifference(file.history.File(), other->history.File(), &text);
  bool same = first < 0 && pages.size() == others.size();
  if (text.empty() && pages.size() != others.size()) {
    text = calls::Text("one file has ", pages.size(), " pages, the other ", others.size());
  }
  JsonWriter json(out);
  json.Object().Member("firstDifferent", first).Name("pages").List();
  for (std::size_t i = 0; i < std::min(pages.size(), others.size()); ++i) {
    json.Object().Member("page", i);
    const Page &a = pages[i], &b = others[i];
    if (a.left != b.left || a.top != b.top || a.right != b.right || a.bottom != b.bottom) {
      // All of the larger of both differs, as far as can be said.
      same = false;
      if (text.empty()) text = calls::Text("page ", i, " has another size");
      json.Name("rects").List().List().Value(std::min(a.left, b.left)).Value(std::min(a.top, b.top));
      json.Value(std::max(a.right, b.right)).Value(std::max(a.bottom, b.bottom)).EndList().EndList();
      json.Member("pixels", (a.right - a.left) * (a.bottom - a.top)).EndObject();
      continue;
    }
    PageComparison comparison(file, *other, static_cast<uint32_t>(i));
    if (!comparison.Compare(&error)) {
      *out = error;
      return false;
    }
    json.Name("rects").List();
    for (const calls::Reach& rect : comparison.Rects()) {
      json.List().Value(rect.left).Value(rect.top).Value(rect.right).Value(rect.bottom).EndList();
    }
    json.EndList().Member("pixels", comparison.pixels()).EndObject();
    if (comparison.Rects().empty()) continue;
    same = false;
    if (text.empty()) text = calls::Text("page ", i, " differs");
  }
  json.EndList().Member("same", same).Member("text", text).EndObject();
  return true;
}

}  // namespace qnv::inspector
