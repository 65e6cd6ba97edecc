// Source bitmaps of noise for transfers.
#include "support/source_image.h"

#include <algorithm>

#include "support/random_bytes.h"

namespace qnv::test {
namespace {

int RowBytes(const SourceForm& form, int width) {
  return form.bytesPerPixel == 0 ? (width + 7) / 8 : width * form.bytesPerPixel;
}

std::size_t MemoryBytes(const SourceForm& form, int width, int height, int slack) {
  if (height <= 0 || width <= 0) return 0;
  const int row = RowBytes(form, width);
  return static_cast<std::size_t>(row + slack) * static_cast<std::size_t>(height - 1) + static_cast<std::size_t>(row);
}

}  // namespace

SourceImage::SourceImage(const SourceForm& form, int width, int height, uint64_t seed, int slack)
    : pixels_(MemoryBytes(form, width, height, slack), 0),
      record_{0,
              static_cast<int16_t>(width),
              static_cast<int16_t>(height),
              static_cast<uint16_t>(RowBytes(form, width) + slack),
              form.planes,
              form.bitsPixel,
              pixels_.data()} {
  FillWithNoise(&pixels_, seed);
  Seal();
}

bool SourceImage::Unchanged() const {
  return pixels_.FencesIntact() && std::equal(sealed_.begin(), sealed_.end(), pixels_.data());
}

}  // namespace qnv::test
