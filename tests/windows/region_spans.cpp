// Turns the platform's regions into span lists.
#include "windows/region_spans.h"

#include <cstdlib>
#include <cstring>

namespace qnv::test {
namespace {

std::vector<RECT> Rectangles(HRGN region) {
  std::vector<uint8_t> data(GetRegionData(region, 0, nullptr));
  if (data.empty() ||
      GetRegionData(region, static_cast<DWORD>(data.size()), reinterpret_cast<RGNDATA*>(data.data())) == 0) {
    std::abort();
  }
  RGNDATAHEADER header;
  std::memcpy(&header, data.data(), sizeof header);
  std::vector<RECT> rectangles(header.nCount);
  if (!rectangles.empty()) std::memcpy(rectangles.data(), data.data() + header.dwSize, header.nCount * sizeof(RECT));
  return rectangles;
}

int16_t Word(int32_t value) {
  const int16_t word = static_cast<int16_t>(value);
  if (word != value) std::abort();
  return word;
}

// Rows from the first to the last, those without spans included.
template <class Visit>
void ForEachRow(const RegionRows& rows, Visit visit) {
  static const std::vector<int16_t> kNothing;
  for (int32_t y = rows.begin()->first; y <= rows.rbegin()->first; ++y) {
    const auto found = rows.find(y);
    visit(found == rows.end() ? kNothing : found->second);
  }
}

uint32_t HeightOf(const RegionRows& rows) {
  return static_cast<uint32_t>(rows.rbegin()->first - rows.begin()->first + 1);
}

struct Edges {
  int32_t left;
  int32_t right;
};

std::vector<Edges> SingleSpans(const RegionRows& rows) {
  std::vector<Edges> edges;
  ForEachRow(rows, [&edges](const std::vector<int16_t>& spans) {
    if (spans.size() != 2) std::abort();
    edges.push_back({spans[0], spans[1]});
  });
  return edges;
}

// Words, then bytes, as the delta encodings lay them out. `pack` appends the bytes of one step.
template <class Pack>
SpanList Deltas(HRGN region, const SpanOrigin& origin, Pack pack) {
  const RegionRows rows = RowsOf(region);
  const std::vector<Edges> edges = SingleSpans(rows);
  std::vector<uint8_t> bytes;
  for (std::size_t i = 1; i < edges.size(); ++i) {
    pack(&bytes, edges[i].left - edges[i - 1].left, edges[i].right - edges[i - 1].right);
  }
  bytes.resize((bytes.size() + 1) & ~std::size_t{1});
  SpanList list{
      HeightOf(rows),
      {Word(rows.begin()->first - origin.y), Word(edges[0].left - origin.x), Word(edges[0].right - origin.x)}};
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    list.words.push_back(static_cast<int16_t>(bytes[i] | bytes[i + 1] << 8));
  }
  return list;
}

void AppendMoved(std::vector<int16_t>* words, const std::vector<int16_t>& spans, const SpanOrigin& origin) {
  for (int16_t x : spans) words->push_back(Word(x - origin.x));
}

}  // namespace

RegionRows RowsOf(HRGN region) {
  RegionRows rows;
  for (const RECT& rectangle : Rectangles(region)) {
    for (LONG y = rectangle.top; y < rectangle.bottom; ++y) {
      rows[y].push_back(Word(rectangle.left));
      rows[y].push_back(Word(rectangle.right));
    }
  }
  if (rows.empty()) std::abort();
  return rows;
}

SpanList BandedSpans(HRGN region, const SpanOrigin& origin) {
  // Rows with the same spans make one record, whatever the platform's own bands are.
  const RegionRows rows = RowsOf(region);
  SpanList list;
  for (auto first = rows.begin(); first != rows.end();) {
    auto end = first;
    int32_t bottom = first->first;
    for (; end != rows.end() && end->first == bottom && end->second == first->second; ++end) ++bottom;
    const int16_t values = Word(static_cast<int32_t>(first->second.size()));
    list.words.insert(list.words.end(), {values, Word(first->first - origin.y), Word(bottom - origin.y)});
    AppendMoved(&list.words, first->second, origin);
    list.words.push_back(values);
    ++list.count;
    first = end;
  }
  return list;
}

SpanList RowRecords(HRGN region, const SpanOrigin& origin) {
  const RegionRows rows = RowsOf(region);
  SpanList list{HeightOf(rows), {Word(rows.begin()->first - origin.y)}};
  ForEachRow(rows, [&](const std::vector<int16_t>& spans) {
    list.words.push_back(Word(static_cast<int32_t>(spans.size())));
    AppendMoved(&list.words, spans, origin);
  });
  return list;
}

SpanList RowSpans(HRGN region, const SpanOrigin& origin) {
  const RegionRows rows = RowsOf(region);
  SpanList list{HeightOf(rows), {Word(rows.begin()->first - origin.y)}};
  for (const Edges& edges : SingleSpans(rows)) {
    list.words.insert(list.words.end(), {Word(edges.left - origin.x), Word(edges.right - origin.x)});
  }
  return list;
}

SpanList ByteDeltas(HRGN region, const SpanOrigin& origin) {
  return Deltas(region, origin, [](std::vector<uint8_t>* bytes, int32_t left, int32_t right) {
    if (left < -128 || left > 127 || right < -128 || right > 127) std::abort();
    bytes->push_back(static_cast<uint8_t>(left));
    bytes->push_back(static_cast<uint8_t>(right));
  });
}

SpanList NibbleDeltas(HRGN region, const SpanOrigin& origin) {
  return Deltas(region, origin, [](std::vector<uint8_t>* bytes, int32_t left, int32_t right) {
    if (left < -8 || left > 7 || right < -8 || right > 7) std::abort();
    bytes->push_back(static_cast<uint8_t>((left & 15) | (right & 15) << 4));
  });
}

}  // namespace qnv::test
