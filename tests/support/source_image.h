// A source bitmap of a transfer with its own fenced pixels: reading one byte past the last pixel stops the test.
#pragma once

#include <cstdint>
#include <vector>

#include "qnvdrv10.h"
#include "support/fenced_buffer.h"

namespace qnv::test {

struct SourceForm {
  const char* name;
  uint8_t planes;
  uint8_t bitsPixel;
  int bytesPerPixel;  // of the memory behind it; 0 = eight pixels a byte
};

inline constexpr SourceForm kOneBitSource{"one-bit source", 1, 1, 0};
inline constexpr SourceForm kColorSource{"24-bit source", 1, 24, 3};
inline constexpr SourceForm kGraySource{"8-bit source", 1, 8, 1};

class SourceImage {
 public:
  // Noise of `width` x `height` pixels; each row is followed by `slack` bytes that belong to no pixel, except the
  // last, which ends where the memory ends.
  SourceImage(const SourceForm& form, int width, int height, uint64_t seed, int slack = 0);

  const SourceBitmap* record() const { return &record_; }
  bool oneBit() const { return record_.bmPlanes == 1 && record_.bmBitsPixel == 1; }
  uint8_t* Row(int32_t row) { return pixels_.data() + row * int32_t{record_.bmWidthBytes}; }
  const uint8_t* Row(int32_t row) const { return pixels_.data() + row * int32_t{record_.bmWidthBytes}; }
  bool Bit(int32_t column, int32_t row) const { return (Row(row)[column >> 3] >> (7 - (column & 7)) & 1) != 0; }

  // Takes what the pixels hold now as what they have to stay.
  void Seal() { sealed_.assign(pixels_.data(), pixels_.data() + pixels_.size()); }
  bool Unchanged() const;

 private:
  FencedBuffer pixels_;
  SourceBitmap record_;
  std::vector<uint8_t> sealed_;
};

}  // namespace qnv::test
