// One image transfer, taken row by row: what is checked before anything is painted, which source pixels cover
// which destination pixels, and the color of each. Where the pixels go is the devices' business.
#pragma once

#include <optional>
#include <vector>

#include "reference/arithmetic.h"
#include "reference/model.h"

namespace qnv::reference {

struct Rgb {
  uint8_t blue = 0, green = 0, red = 0;
  uint8_t Gray() const { return static_cast<uint8_t>((blue * 11 + red * 30 + green * 59) / 100); }
};

// A device-independent bitmap whose pixels can be asked for one at a time.
class DibImage {
 public:
  // `rowsUsed` stored rows are decoded of a run-length source; no other source is touched here.
  DibImage(const void* info, const void* bits, int rowsUsed);
  Rgb Pixel(int column, int storedRow) const;

 private:
  Rgb TableColor(uint32_t index) const;
  Rgb Color16(uint32_t pixel) const;

  BITMAPINFOHEADER header_;
  const uint8_t* info_;
  const uint8_t* bits_;
  std::size_t stride_;
  std::vector<uint8_t> decoded_;  // one byte a pixel, biWidth a row
};

// Palette indices of the first `rows` stored rows, `width` a row.
std::vector<uint8_t> DecodeRle(const uint8_t* data, bool fourBits, int width, int rows);

class ImageWalk {
 public:
  struct Row {
    bool converted = false;                  // false once the destination is full: the row is not even read
    int first = 0;                           // first destination row, from the clip's top
    int count = 0;                           // destination rows covered; may be 0 although converted
    std::vector<std::optional<Rgb>> pixels;  // by column from the clip's left; empty where nothing lands

    // The colors of all columns; where nothing lands the one of before, or black.
    void PutInto(std::vector<Rgb>* colors, bool keepsEarlier) const {
      if (!keepsEarlier) colors->clear();
      colors->resize(std::max(colors->size(), pixels.size()));
      for (std::size_t x = 0; x < pixels.size(); ++x) (*colors)[x] = pixels[x].value_or((*colors)[x]);
    }
  };

  // Nothing where the transfer is refused or clipped away. `band` is in the coordinates of the call.
  static std::optional<ImageWalk> Begin(const ImageArgs& args, Point origin, const Rect& band);

  const Rect& clip() const { return clip_; }
  int left() const { return clip_.left - band_.left; }
  int top() const { return clip_.top - band_.top; }
  int columns() const { return clip_.right - clip_.left; }
  int rows() const { return clip_.bottom - clip_.top; }

  bool AtEnd() const { return nextSourceRow_ >= sourceRows_; }
  Row Next();

 private:
  ImageWalk() = default;
  bool Map(const ImageArgs& args, Point destination, const BITMAPINFOHEADER& header);

  Rect clip_{};
  Rect band_{};
  int sourceLeft_ = 0, sourceTop_ = 0, sourceColumns_ = 0, sourceRows_ = 0;
  bool mirrorX_ = false, mirrorY_ = false;
  uint32_t xStep_ = 0, yStep_ = 0, xStart_ = 0, yPosition_ = 0;  // 16.16, two's complement
  int nextSourceRow_ = 0;
  int rowsDone_ = 0;
  std::shared_ptr<const DibImage> image_;
};

}  // namespace qnv::reference
