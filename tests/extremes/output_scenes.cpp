// Span lists of every style. The words of a list are a document's as well: the first record takes the extremes, the
// others are small figures.
#include <cstring>

#include "extremes/stage.h"

namespace qnv::test {
namespace {

enum OutputField : std::size_t {
  kStyle = kOwnFields,
  kCount,
  kN,  // banded spans and row records
  kTop,
  kBottom,  // banded spans
  kLeft,
  kRight,
  kClosing,  // the n that closes a banded record
  kDelta,    // the first change, both nibbles or both bytes
  kPenStyle,
  kPenColor,
  kOutputMode,
  kOutputBrush = kOutputMode + kDrawModeFields
};

// The words that a list with these first ones goes on to, read as the style says; what is not given is 0. A count that
// leads back stays inside the list or ends it.
class ListWalk {
 public:
  ListWalk(const std::vector<int16_t>& words) : words_(words) {}

  uint64_t BandedSpans(uint32_t count) {
    for (uint32_t record = 0; record < count; ++record) {
      const int64_t n = At(cursor_);
      Reach(cursor_ + std::max<int64_t>(n + 4, 3));
      cursor_ += n + 4;
      if (cursor_ < 0) break;
    }
    return reached_;
  }
  uint64_t RowRecords(uint32_t count) {
    Reach(1);
    cursor_ = 1;
    for (uint32_t row = 0; row < count; ++row) {
      const int64_t n = At(cursor_);
      Reach(cursor_ + 1 + (n > 0 ? n + n % 2 : 0));
      cursor_ += n + 1;
      if (cursor_ < 0) break;
    }
    return reached_;
  }

 private:
  int64_t At(int64_t word) const {
    return word < static_cast<int64_t>(words_.size()) ? words_[static_cast<std::size_t>(word)] : 0;
  }
  void Reach(int64_t end) { reached_ = std::max(reached_, static_cast<uint64_t>(end)); }

  const std::vector<int16_t>& words_;
  int64_t cursor_ = 0;
  uint64_t reached_ = 0;
};

void Output(Stage& stage, const Values& v, int) {
  stage.Place(v);
  const uint32_t style = v.U16(kStyle), count = v.U16(kCount);
  const int16_t n = v.I16(kN), top = v.I16(kTop), bottom = v.I16(kBottom), left = v.I16(kLeft), right = v.I16(kRight);
  std::vector<int16_t> words;
  uint64_t bytes = 0;
  // Records behind the first few are zeros: 65,535 of them are promised all the same.
  constexpr int kFigures = 3;
  switch (style) {
    case OS_BANDED_SPANS:
    case OS_BANDED_SPANS + 100: {
      words = {n, top, bottom};
      for (int32_t i = 0; i < n; ++i) words.push_back(i % 2 == 0 ? left : right);
      words.push_back(v.I16(kClosing));
      for (int i = 0; i < kFigures; ++i) {
        for (int16_t word :
             {int16_t{4}, int16_t{2}, int16_t{7}, int16_t{1}, int16_t{3}, int16_t{5}, int16_t{9}, int16_t{4}}) {
          words.push_back(word);
        }
      }
      bytes = 2 * ListWalk(words).BandedSpans(count);
      break;
    }
    case OS_ROW_RECORDS:
      words = {top, n};
      for (int32_t i = 0; i < n + (n & 1); ++i) words.push_back(i % 2 == 0 ? left : right);
      for (int i = 0; i < kFigures; ++i) {
        for (int16_t word : {int16_t{2}, int16_t{1}, int16_t{3}}) words.push_back(word);
      }
      bytes = 2 * ListWalk(words).RowRecords(count);
      break;
    case OS_SCANLINES:
    case OS_SCANLINES + 100:
      words = {0, top, left, right, 1, 3};
      bytes = uint64_t{4} * count;
      break;
    case OS_ROW_SPANS:
      words = {top, left, right, 1, 3};
      bytes = count == 0 ? 0 : 2 + uint64_t{4} * count;
      break;
    case OS_BYTE_DELTAS:
    case OS_NIBBLE_DELTAS:
      words = {top, left, right, v.I16(kDelta), 0x0102};
      bytes = 6 + (count > 1 ? uint64_t{count - 1} * (style == OS_BYTE_DELTAS ? 2 : 1) : 0);
      break;
    default: break;  // nothing may be read of a list of no style
  }
  uint8_t* list = stage.host().list.Last(bytes);
  if (list == nullptr) return stage.Skip();
  const std::size_t size = static_cast<std::size_t>(bytes);
  std::memset(list, 0, size);
  if (size != 0) std::memcpy(list, words.data(), std::min(size, 2 * words.size()));

  const BandRect clip = v.Rect(kClip);
  const DRAWMODE mode = DrawModeOf(v, kOutputMode);
  const PhysicalPen pen{v.U16(kPenStyle), 1, 1, v.U32(kPenColor)};
  const PhysicalBrush brush = BrushOf(v, kOutputBrush);
  const Limits limits{.clip = clip};
  // Every span can fill a row of the band, and those of a banded record all its rows.
  const uint64_t work = bytes * kBandColumns * kBandRows / 4 + 100;
  for (const PhysicalPen* given : {&pen, static_cast<const PhysicalPen*>(nullptr)}) {
    stage.Run(work, limits, [&] {
      QNVOutput(stage.handle(), v.U32(kStyle), v.U32(kCount),
                static_cast<const int16_t*>(static_cast<const void*>(list)), given, given == nullptr ? &brush : nullptr,
                &mode, &clip);
    });
  }
}

}  // namespace

void AddOutputScenes(std::vector<Scene>& scenes, const DeviceClass& device) {
  struct List {
    const char* name;
    uint32_t style;
    int64_t count, n;
  };
  constexpr List kLists[] = {
      {"Output, scan lines", OS_SCANLINES, 3, 0},         {"Output, banded spans", OS_BANDED_SPANS, 2, 6},
      {"Output, one banded span", OS_BANDED_SPANS, 1, 2}, {"Output, row records", OS_ROW_RECORDS, 3, 2},
      {"Output, row spans", OS_ROW_SPANS, 2, 0},          {"Output, byte deltas", OS_BYTE_DELTAS, 5, 0},
      {"Output, nibble deltas", OS_NIBBLE_DELTAS, 5, 0},
  };
  for (const List& list : kLists) {
    scenes.push_back({list.name,
                      FieldsWith(device, {{"style", 32, list.style},
                                          {"count", 32, list.count},
                                          {"n", 16, list.n},
                                          {"top", 16, InWord(CallerY(device, 0))},
                                          {"bottom", 16, InWord(CallerY(device, 6))},
                                          {"left", 16, InWord(CallerX(device, 0))},
                                          {"right", 16, InWord(CallerX(device, 9))},
                                          {"closing n", 16, list.n},
                                          {"delta", 16, 0x1F2},
                                          {"pen style", 16, PS_SOLID},
                                          {"pen colour", 32, 0x00405060}}) +
                          DrawModeFields() + BrushFields(BS_HATCHED),
                      Output});
  }
}

}  // namespace qnv::test
