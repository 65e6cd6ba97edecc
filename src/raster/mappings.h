// Mappings from caller coordinates, page pixels with the origin added, to pixels of the band. Transfers, spans and text
// are templates over a mapping: PlainMapping for bands at the resolution of the page, KeptMapping for those at another
// one.
#pragma once

#include <cstdint>

#include "raster/coordinate_map.h"
#include "raster/rect.h"

namespace qnv {

// Consecutive band pixels of a row, and the caller columns whose pixels they show.
struct ColumnRun {
  int32_t bandColumn;       // of the first pixel, counted from the left edge of the band
  int32_t callerColumn;     // of the first pixel, counted from the first column asked for
  int32_t count;            // pixels
  const uint16_t* indices;  // for each pixel its caller column, counted from callerColumn; null: 0, 1, 2 ...
};

// Plain and dual-plane devices: a caller pixel is a band pixel.
struct PlainMapping {
  static constexpr bool kOneToOne = true;

  // The rectangle of the band in caller pixels.
  Rect CallerRect(const Rect& band) const { return band; }
  // A single coordinate in band pixels.
  int32_t ToBand(int32_t v) const { return v; }

  // The band row that shows a caller row; false when the row is dropped.
  bool KeptRow(int32_t y, int32_t* row) const {
    *row = y;
    return true;
  }

  // The same with both rows counted from the top of the band; negative when the row is dropped.
  int32_t BandRow(int32_t row) const { return row; }

  // Calls paint(ColumnRun) for the band pixels of the caller columns [first, first + count), which are counted from the
  // left edge of the band. bandColumns: width of the band in its own pixels.
  template <class Paint>
  void ForEachRun(int32_t first, int32_t count, int32_t /*bandColumns*/, Paint paint) const {
    paint(ColumnRun{first, 0, count, nullptr});
  }
};

// The resolution-mapping device: caller pixels are decimated on a coarser band, spread out on a finer one.
struct KeptMapping {
  static constexpr bool kOneToOne = false;
  // Pixels of a run; not more than one fetch of a source delivers.
  static constexpr int32_t kMaxRunPixels = 2048;

  const CoordinateMap* map;

  Rect CallerRect(const Rect& band) const {
    return {map->MapToPage(band.left), map->MapToPage(band.top), map->MapToPage(band.right),
            map->MapToPage(band.bottom)};
  }
  int32_t ToBand(int32_t v) const { return map->MapToBand(v); }
  bool KeptRow(int32_t y, int32_t* row) const {
    *row = map->MapKept(y);
    return *row >= 0;
  }
  int32_t BandRow(int32_t row) const { return map->MapKept(row); }

  // Calls visit(band row, caller row) for those of the caller rows [first, first + count) that the band shows; both are
  // counted from the top of the band. Where the band is coarser than the page the loop runs over its rows, which are
  // fewer.
  template <class Visit>
  void ForEachKeptRow(int32_t first, int32_t count, int32_t bandRows, Visit visit) const {
    if (map->Decimates()) {
      if (EndOf(first, count) <= 0) return;
      int32_t row = map->FirstBandFrom(MaxOf(first, 0));
      map->ForEachPage(row, MinOf(map->EndBandOf(EndOf(first, count)), bandRows), [&](int32_t page) {
        visit(row++, page);
        return true;
      });
      return;
    }
    for (int32_t i = 0; i < count; ++i) {
      const int32_t row = map->MapKept(WrapAdd(first, i));
      if (row >= 0 && row < bandRows) visit(row, WrapAdd(first, i));
    }
  }

  template <class Paint>
  void ForEachRun(int32_t first, int32_t count, int32_t bandColumns, Paint paint) const {
    if (map->Decimates()) {
      const int64_t end = EndOf(first, count);
      if (end <= 0) return;  // left of the page nothing is kept
      return ForEachDecimatedRun(map->FirstBandFrom(MaxOf(first, 0)), MinOf(map->EndBandOf(end), bandColumns), 0, first,
                                 paint);
    }
    ForEachMappedRun(
        count, bandColumns, [&](int32_t i) { return map->MapKept(WrapAdd(first, i)); }, paint);
  }

  // For the columns of text: calls paint(ColumnRun) for those of the caller columns [first, first + count) that the
  // table maps to the band columns [left, right). Where the band is coarser than the page the loop runs over its
  // columns, which are fewer.
  template <class Paint>
  void ForEachTableRun(int32_t first, int32_t count, int32_t left, int32_t right, Paint paint) const {
    if (map->Decimates()) {
      return ForEachDecimatedRun(MaxOf(map->FirstBandFrom(first), left),
                                 MinOf(map->EndBandOf(int64_t{first} + count), right), left, first, paint);
    }
    CoordinateMap::TableColumns columns(*map, first);
    const auto bandColumnOf = [&](int32_t) {
      int32_t column;
      return columns.Next(&column) ? WrapSubtract(column, left) : -1;
    };
    ForEachMappedRun(count, WrapSubtract(right, left), bandColumnOf, paint);
  }

  // Calls paint(ColumnRun) for those of the columns 0 .. count - 1 whose band column, bandColumnOf(i), lies in
  // [0, bandColumns), collected into runs of consecutive band columns. A dropped column has a negative band column.
  template <class BandColumnOf, class Paint>
  static void ForEachMappedRun(int32_t count, int32_t bandColumns, BandColumnOf bandColumnOf, Paint paint) {
    uint16_t indices[kMaxRunPixels];
    ColumnRun run{0, 0, 0, indices};
    for (int32_t i = 0; i < count; ++i) {
      const int32_t column = bandColumnOf(i);
      if (column < 0 || column >= bandColumns) continue;
      const bool joins = run.count != 0 && run.count != kMaxRunPixels && column == run.bandColumn + run.count &&
                         i - run.callerColumn <= UINT16_MAX;
      if (!joins) {
        if (run.count != 0) paint(static_cast<const ColumnRun&>(run));
        run.bandColumn = column;
        run.callerColumn = i;
        run.count = 0;
      }
      indices[run.count++] = static_cast<uint16_t>(i - run.callerColumn);
    }
    if (run.count != 0) paint(static_cast<const ColumnRun&>(run));
  }

 private:
  // The end of a range, at most 2^31: coordinates beyond would wrap to negative ones, which are never kept. count holds
  // an unsigned number, because a page may have 2^31 columns and more.
  static int64_t EndOf(int32_t first, int32_t count) {
    const int64_t end = int64_t{first} + static_cast<uint32_t>(count);
    return end > INT32_MAX ? int64_t{INT32_MAX} + 1 : end;
  }

  // For a band that is not finer than the page: each of its columns shows a caller column, so the loop runs over the
  // band columns [column, end). The columns of a run are counted from `left` in the band and from `first` in the
  // caller.
  template <class Paint>
  void ForEachDecimatedRun(int32_t column, int32_t end, int32_t left, int32_t first, Paint paint) const {
    uint16_t indices[kMaxRunPixels];
    while (column < end) {
      const int32_t start = map->PageOf(column);
      ColumnRun run{WrapSubtract(column, left), WrapSubtract(start, first), 0, indices};
      map->ForEachPage(column, end, [&](int32_t page) {
        if (run.count == kMaxRunPixels || page - start > UINT16_MAX) return false;
        indices[run.count++] = static_cast<uint16_t>(page - start);
        return true;
      });
      paint(static_cast<const ColumnRun&>(run));
      column += run.count;
    }
  }
};

}  // namespace qnv
