// Decodes the span lists of Output, one function for each encoding, and paints the spans. Lists hold words of 16 bits
// in caller coordinates; the origin is added and a mapping leads to band pixels. The layouts of the lists are described
// at QNVOutput in qnvdrv10.h.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "output/scratch_buffer.h"
#include "output/span_painter.h"
#include "output/span_style.h"
#include "raster/mappings.h"
#include "raster/paint_state.h"
#include "raster/rect.h"

namespace qnv {

// Reads the words of a list, which need not be aligned. Indices are relative to the current record.
class SpanWords {
 public:
  explicit SpanWords(const int16_t* points) : bytes_(reinterpret_cast<const uint8_t*>(points)) {}

  int16_t At(std::ptrdiff_t word) const {
    int16_t value;
    std::memcpy(&value, bytes_ + 2 * word, 2);
    return value;
  }
  const uint8_t* BytesFrom(std::ptrdiff_t word) const { return bytes_ + 2 * word; }
  // Moves on to the next record. False when a record with a negative count would lead to a place before the list.
  bool Advance(std::ptrdiff_t words) {
    if (bytes_ - begin_ < -2 * words) return false;
    bytes_ += 2 * words;
    return true;
  }

 private:
  const uint8_t* bytes_;           // the current record
  const uint8_t* begin_ = bytes_;  // the list
};

// The decoder of one call.
template <class Mapping>
class SpanLists {
 public:
  // limits: the intersection of band and clip in band pixels; may be empty or inverted. origin: added to every
  // coordinate of the list. scratch: memory for the spans of a record.
  SpanLists(const Mapping& mapping, SpanPainter& painter, const Rect& limits, Origin origin, ScratchBuffer& scratch)
      : mapping_(mapping), painter_(painter), limits_(limits), origin_(origin), scratch_(scratch) {}

  void Paint(SpanStyle style, uint16_t count, const int16_t* points) {
    const SpanWords words(points);
    switch (style) {
      case SpanStyle::kScanlines: return Scanlines(words, count);
      case SpanStyle::kBandedSpans: return BandedSpans(words, count);
      case SpanStyle::kRowRecords: return RowRecords(words, count);
      case SpanStyle::kRowSpans: return RowSpans(words, count);
      case SpanStyle::kByteDeltas: return ByteDeltas(words, count);
      case SpanStyle::kNibbleDeltas: return NibbleDeltas(words, count);
      case SpanStyle::kUnknown:
      case SpanStyle::kBracket: return;
    }
  }

 private:
  struct Span {
    int32_t left, right;  // clipped, in band pixels; left >= right paints nothing
  };

  // From caller coordinates to band pixels.
  int32_t MappedX(int32_t x) const { return mapping_.ToBand(WrapAdd(x, origin_.x)); }
  int32_t MappedY(int32_t y) const { return mapping_.ToBand(WrapAdd(y, origin_.y)); }
  // How many of the rows from yStart on need no look, because they lie above the limits.
  int32_t RowsAbove(int32_t yStart, int32_t count) const {
    if constexpr (std::is_same_v<Mapping, PlainMapping>) {
      const int64_t first = int64_t{yStart} + origin_.y;
      if (first < INT32_MIN) return 0;  // its number wraps: it lies far below
      return static_cast<int32_t>(std::clamp<int64_t>(limits_.top - first, 0, count));
    }
    return 0;
  }
  bool RowInside(int32_t y) const { return limits_.top <= y && y < limits_.bottom; }

  // left, right: caller coordinates, the origin not yet added.
  Span Clipped(int32_t left, int32_t right) const {
    return {MaxOf(MappedX(left), limits_.left), MinOf(MappedX(right), limits_.right)};
  }

  void PaintSpan(int32_t y, const Span& span) {
    if (span.left < span.right) painter_.Paint(y, span.left, span.right);
  }

  // Styles 4 and 104. Word pair 0 is (unused, y), the others are the spans (left, right) of that row.
  void Scanlines(SpanWords words, uint16_t count) {
    const int32_t y = MappedY(words.At(1));
    if (!RowInside(y)) return;
    for (int32_t i = 1; i < count; ++i)
      PaintSpan(y, Clipped(words.At(std::ptrdiff_t{2} * i), words.At(std::ptrdiff_t{2} * i + 1)));
  }

  // Styles 5 and 105. Each record is n, top, bottom, n words of spans, and n again. Its spans are the same for all rows
  // from top to bottom, so they are mapped and clipped once.
  void BandedSpans(SpanWords words, uint16_t count) {
    for (int32_t record = 0; record < count; ++record) {
      const int32_t n = words.At(0);
      const int32_t top = MaxOf(MappedY(words.At(1)), limits_.top);
      const int32_t bottom = MinOf(MappedY(words.At(2)), limits_.bottom);
      if (top < bottom && (n == 1 || n == 2)) {
        const Span span = Clipped(words.At(3), words.At(4));
        if (span.left < span.right) painter_.PaintRows(top, bottom, span.left, span.right);
      } else if (top < bottom && n > 0) {
        // An odd n pairs its last value with the n that closes the record.
        const int32_t pairs = (n + 1) / 2;
        auto* spans = static_cast<Span*>(scratch_.Acquire(static_cast<uint32_t>(pairs) * sizeof(Span)));
        if (spans != nullptr) {
          // Only spans that paint are kept, so that empty ones cost no time on every row.
          int32_t kept = 0;
          for (int32_t i = 0; i < pairs; ++i) {
            spans[kept] = Clipped(words.At(3 + 2 * i), words.At(4 + 2 * i));
            if (spans[kept].left < spans[kept].right) ++kept;
          }
          for (int32_t y = top; y < bottom && kept != 0; ++y) {
            for (int32_t i = 0; i < kept; ++i) painter_.Paint(y, spans[i].left, spans[i].right);
          }
          scratch_.Release();
        }
      }
      if (!words.Advance(std::ptrdiff_t{n} + 4)) return;
    }
  }

  // Style 205. The y of the first row, then for each row n and n words of spans.
  void RowRecords(SpanWords words, uint16_t count) {
    const int32_t yStart = words.At(0);
    words.Advance(1);
    for (int32_t row = 0; row < count; ++row) {
      const int32_t y = MappedY(yStart + row);
      if (y >= limits_.bottom) return;
      const int32_t n = words.At(0);
      if (RowInside(y)) {
        for (int32_t i = 0; i < n; i += 2) PaintSpan(y, Clipped(words.At(1 + i), words.At(2 + i)));
      }
      if (!words.Advance(std::ptrdiff_t{n} + 1)) return;
    }
  }

  // Style 305. The y of the first row, then one word pair (left, right) for each row.
  void RowSpans(SpanWords words, uint16_t count) {
    const int32_t yStart = words.At(0);
    for (int32_t row = RowsAbove(yStart, count); row < count; ++row) {
      const int32_t y = MappedY(yStart + row);
      if (y >= limits_.bottom) return;
      if (RowInside(y)) PaintSpan(y, Clipped(words.At(1 + 2 * row), words.At(2 + 2 * row)));
    }
  }

  // How far the two edges of a figure move from one row to the next.
  struct Deltas {
    int32_t left, right;
  };

  // Styles 405 and 505. y, left and right of the first row; nextDeltas() reads the change to each further row. The
  // count is compared after a row is painted, so that a count of 0 paints one row. Deltas of clipped rows are added all
  // the same. rowOf(y, &row): the band row of a caller row, origin added; false when the band does not store it.
  template <class NextDeltas, class RowOf>
  void Edges(const SpanWords& words, uint16_t count, NextDeltas nextDeltas, RowOf rowOf) {
    int32_t y = WrapAdd(words.At(0), origin_.y);
    int32_t left = words.At(1);
    int32_t right = words.At(2);
    for (int32_t done = 0;;) {
      int32_t row = 0;
      if (rowOf(y, &row)) {
        if (row >= limits_.bottom) return;
        if (RowInside(row)) PaintSpan(row, Clipped(left, right));
      }
      if (++done >= count) return;
      const Deltas deltas = nextDeltas();
      left = WrapAdd(left, deltas.left);
      right = WrapAdd(right, deltas.right);
      y = WrapAdd(y, 1);
    }
  }

  // A byte for each edge.
  void ByteDeltas(const SpanWords& words, uint16_t count) {
    const uint8_t* next = words.BytesFrom(3);
    const auto nextDeltas = [&next] {
      const Deltas deltas{static_cast<int8_t>(next[0]), static_cast<int8_t>(next[1])};
      next += 2;
      return deltas;
    };
    Edges(words, count, nextDeltas, [this](int32_t y, int32_t* row) {
      *row = mapping_.ToBand(y);
      return true;
    });
  }

  // Half a byte for each edge. Intended: on a resolution-mapping device these rows are decimated, each band row painted
  // once, whereas with byte deltas several rows may be painted on one band row.
  void NibbleDeltas(const SpanWords& words, uint16_t count) {
    const uint8_t* next = words.BytesFrom(3);
    const auto nextDeltas = [&next] {
      const uint8_t both = *next++;
      const auto signedNibble = [](int32_t nibble) { return (nibble ^ 8) - 8; };
      return Deltas{signedNibble(both & 0x0F), signedNibble(both >> 4)};
    };
    Edges(words, count, nextDeltas, [this](int32_t y, int32_t* row) { return mapping_.KeptRow(y, row); });
  }

  const Mapping& mapping_;
  SpanPainter& painter_;
  const Rect limits_;
  const Origin origin_;
  ScratchBuffer& scratch_;
};

}  // namespace qnv
