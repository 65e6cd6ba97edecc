// Pictures of pages at any call: the bands that are complete, the one that is being painted, and paper for the others.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "inspector/engine/history.h"

namespace qnv::inspector {

struct Picture {
  uint32_t width = 0, height = 0;
  std::vector<uint8_t> pixels;  // red, green, blue, alpha
};

// A part of a page, in page pixels, and how many pixels it is reduced to.
struct View {
  uint32_t page = 0;
  bool tags = false;
  int64_t left = 0, top = 0, width = 0, height = 0;
  int64_t columns = 0, rows = 0;
  bool operator==(const View&) const = default;
};

inline constexpr int64_t kMaxPictureSide = 1 << 14;
inline constexpr int64_t kMaxPicturePixels = int64_t{1} << 26;

// What stands at a place of a page after a call.
struct PagePixel {
  bool isInBand = false;
  uint8_t bytes[3] = {};  // in the order of the band
  uint32_t byteCount = 0;
  bool hasTag = false;
  uint8_t tag = 0;
};

// Rows of a complete page as bytes of its bands; what lies outside all bands is 0.
struct PageRows {
  std::size_t pixelBytes = 0;
  std::vector<uint8_t> bytes;
};

class PagePictures {
 public:
  explicit PagePictures(History& history) : history_(history) {}

  // The view after `call` (-1: before the first). Rows that are as in the last picture of the same view are not painted
  // again. Null with *error.
  const Picture* Draw(View view, int64_t call, std::string* error);
  bool PixelAt(uint32_t page, int64_t x, int64_t y, int64_t call, PagePixel* pixel, std::string* error);
  // The rows [top, bottom) when all calls have been made.
  bool RowsOf(uint32_t page, bool tags, int64_t top, int64_t bottom, PageRows* rows, std::string* error);

 private:
  struct ShownBand {
    const BandOfPage* band;
    bool isBlank;
    uint32_t position;               // of the device that shows it
    const RowGroups* groups;         // kept contents; null: the device is replayed to the position
    std::vector<uint64_t> versions;  // of its groups of rows: 0 blank, 1 complete, others being painted
  };

  bool Show(uint32_t page, bool tags, int64_t call, std::vector<ShownBand>* bands, std::string* error);
  // A row of the band's memory; null for blank bands.
  const uint8_t* RowOf(const ShownBand& shown, bool tags, int64_t y);
  void PaintRow(const View& view, const std::vector<ShownBand>& bands, int64_t row, uint8_t* out);
  // 0 or 1 when the versions of all that a row of the picture shows are that: blank or complete. Else 2.
  uint64_t SingleVersion(const View& view, const std::vector<ShownBand>& bands, int64_t row) const;
  bool IsSameRow(const View& view, const std::vector<ShownBand>& bands, int64_t row) const;
  void AddRow(const View& view, const ShownBand& shown, int64_t y);

  History& history_;
  const RowGroup* unpacked_ = nullptr;
  std::vector<uint8_t> groupBytes_;  // of unpacked_
  struct Sum {
    uint32_t red, green, blue, alpha, count;
  };
  std::vector<Sum> sums_;         // of a row of the picture
  std::vector<uint8_t> covered_;  // columns of a row of the view that a later band has painted
  View view_;
  std::vector<std::vector<uint64_t>> versions_;
  Picture picture_;
  // Rows of the same view that showed nothing but bands that were blank (0) or complete (1): they look the same
  // whenever they do so again.
  static constexpr std::size_t kMaxKeptPixels = std::size_t{1} << 22;
  std::vector<uint8_t> keptRows_[2];
  std::vector<bool> isKept_[2];
};

}  // namespace qnv::inspector
