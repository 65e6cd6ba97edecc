// Makes bitmaps of every depth in the shared source memory.
#include "dib_source.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform_header.h"

namespace qnv::bench {
namespace {

// Encodes random rows as a mixture of runs and literals, as a drawing with some shading is encoded.
std::size_t EncodeRle8(uint8_t* out, int width, int height) {
  Random random(7);
  uint8_t* p = out;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width;) {
      const int left = width - x;
      if (random.Below(3) == 0 && left >= 3) {
        const int count = std::min(left, 3 + random.Below(20));
        *p++ = 0;
        *p++ = static_cast<uint8_t>(count);
        for (int i = 0; i < count; ++i) *p++ = static_cast<uint8_t>(random.Next());
        if (count % 2 != 0) *p++ = 0;
        x += count;
      } else {
        const int count = std::min(left, 1 + random.Below(40));
        *p++ = static_cast<uint8_t>(count);
        *p++ = static_cast<uint8_t>(random.Next());
        x += count;
      }
    }
    *p++ = 0;
    *p++ = static_cast<uint8_t>(y + 1 < height ? 0 : 1);
  }
  return static_cast<std::size_t>(p - out);
}

}  // namespace

int SourceExtent(const ImageSource& image, int painted) {
  return std::max(1, (painted * image.sourceParts + image.targetParts / 2) / image.targetParts);
}

// Colors of the table are random; rows are random bytes, or random runs and literals.
DibSource MakeDib(Memory& memory, const ImageSource& image, int width, int height) {
  DibSource dib;
  dib.width = width;
  dib.height = height;
  BITMAPINFOHEADER header = {};
  header.biSize = sizeof header;
  header.biWidth = width;
  header.biHeight = height;
  header.biPlanes = 1;
  header.biBitCount = image.bits;
  header.biCompression = image.rle ? BI_RLE8 : BI_RGB;
  const std::size_t colors = image.bits <= 8 ? std::size_t{1} << image.bits : 0;
  dib.info.resize(sizeof header + 4 * colors);
  FillRandom(dib.info.data(), dib.info.size(), 8);
  for (std::size_t i = 0; i < colors; ++i) dib.info[sizeof header + 4 * i + 3] = 0;
  const std::size_t stride = ((static_cast<std::size_t>(width) * image.bits + 7) / 8 + 3) & ~std::size_t{3};
  dib.size = stride * static_cast<std::size_t>(height);
  // A literal of three pixels takes six bytes, so codes are at most twice as large as pixels.
  if ((image.rle ? 2 * dib.size + 1024 : dib.size) > Memory::kSourceSize) {
    std::fprintf(stderr, "qnvbench: an image does not fit into the source memory\n");
    std::exit(1);
  }
  if (image.rle) {
    dib.size = EncodeRle8(memory.source(), width, height);
    header.biSizeImage = static_cast<uint32_t>(dib.size);
  } else {
    memory.FillSource(dib.size);
  }
  std::memcpy(dib.info.data(), &header, sizeof header);
  dib.bits = memory.source();
  return dib;
}

}  // namespace qnv::bench
