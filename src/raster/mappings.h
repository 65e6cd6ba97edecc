// From the coordinates of the caller to rows and columns of the band: the one thing in which a plain device
// and a resolution-mapping one differ when they paint. Transfers, spans and text are written over a mapping.
#pragma once

#include <cstdint>

#include "raster/coordinate_map.h"
#include "raster/rect.h"

namespace qnv {

// Neighbouring band pixels and the caller columns that they come from.
struct ColumnRun {
  int32_t bandColumn;       // of the first pixel, from the band's left edge
  int32_t callerColumn;     // of the first pixel, from the start of the walk
  int32_t count;            // pixels
  const uint16_t* indices;  // caller column of each pixel, from the start of the walk; null: one after another
};

// Plain devices: caller pixels are band pixels.
struct PlainMapping {
  static constexpr bool kOneToOne = true;

  Rect CallerRect(const Rect& band) const { return band; }
  int32_t ToBand(int32_t v) const { return v; }

  // The band row of a caller row by the thinning rule; false when it is stored nowhere.
  bool KeptRow(int32_t y, int32_t* row) const {
    *row = y;
    return true;
  }

  // Band row of a caller row, both from the band's top.
  int32_t BandRow(int32_t row) const { return row; }

  // Calls paint(ColumnRun) for caller columns [first, first + count), counted from the band's left edge.
  template <class Paint>
  void ForEachRun(int32_t first, int32_t count, int32_t /*bandColumns*/, Paint paint) const {
    paint(ColumnRun{first, 0, count, nullptr});
  }
};

// The resolution-mapping device: caller pixels are thinned or spread.
struct KeptMapping {
  static constexpr bool kOneToOne = false;
  // As many as one fetch of a source takes.
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

  // Calls visit(band row, caller row) for those of the caller rows [first, first + count), counted from the band's top,
  // that the band holds. Work follows the band's rows where it is coarser than the page.
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
    if (map->Decimates()) return ForEachDecimatedRun(first, count, bandColumns, paint);
    ForEachMappedRun(
        count, bandColumns, [&](int32_t i) { return map->MapKept(WrapAdd(first, i)); }, paint);
  }

  // Gathers the columns 0 .. count - 1 of a walk whose band column bandColumnOf(i) lies in [0, bandColumns)
  // into runs of neighbours. Dropped columns have a negative band column.
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
  // Coordinates wrap behind 2^31 - 1, where none is kept. count: unsigned, a page may be wider than a signed one tells.
  static int64_t EndOf(int32_t first, int32_t count) {
    const int64_t end = int64_t{first} + static_cast<uint32_t>(count);
    return end > INT32_MAX ? int64_t{INT32_MAX} + 1 : end;
  }

  // Band columns side by side, each of which has a caller column: those are walked instead.
  template <class Paint>
  void ForEachDecimatedRun(int32_t first, int32_t count, int32_t bandColumns, Paint paint) const {
    if (EndOf(first, count) <= 0) return;
    int32_t column = map->FirstBandFrom(MaxOf(first, 0));
    const int32_t endColumn = MinOf(map->EndBandOf(EndOf(first, count)), bandColumns);
    uint16_t indices[kMaxRunPixels];
    while (column < endColumn) {
      const int32_t start = map->PageOf(column);
      ColumnRun run{column, start - first, 0, indices};
      map->ForEachPage(column, endColumn, [&](int32_t page) {
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
