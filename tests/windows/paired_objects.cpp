// Makes sources and brushes for both sides from the same pixels.
#include "windows/paired_objects.h"

#include <cstdlib>
#include <cstring>
#include <vector>

#include "support/random_bytes.h"

namespace qnv::test {
namespace {

constexpr BitRows kHatches[6] = {
    {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF},  // horizontal
    {0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F},  // vertical
    {0x7F, 0xBF, 0xDF, 0xEF, 0xF7, 0xFB, 0xFD, 0xFE},  // falling
    {0xFE, 0xFD, 0xFB, 0xF7, 0xEF, 0xDF, 0xBF, 0x7F},  // rising
    {0x00, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F},  // cross
    {0x7D, 0xBB, 0xD7, 0xEF, 0xD7, 0xBB, 0x7D, 0xFE},  // diagonal cross
};

std::size_t PaddedRow(int32_t width, uint32_t bytesPerPixel) {
  return (static_cast<std::size_t>(width) * bytesPerPixel + 3) & ~std::size_t{3};
}

DibHeader TopDownHeader(int32_t width, int32_t height, uint16_t depth) {
  DibHeader dib{};
  dib.header.biSize = sizeof dib.header;
  dib.header.biWidth = width;
  dib.header.biHeight = -height;
  dib.header.biPlanes = 1;
  dib.header.biBitCount = depth;
  SetGrayColors(&dib);
  return dib;
}

// One pixel from the library's order of bytes to the platform's.
void CopyPixel(const uint8_t* from, uint8_t* to, uint32_t bytesPerPixel) {
  if (bytesPerPixel == 1) {
    *to = *from;
    return;
  }
  to[0] = from[2];
  to[1] = from[1];
  to[2] = from[0];
}

SourcePair BytePixelSource(const SourceForm& form, int32_t width, int32_t height, uint64_t seed) {
  const uint32_t bytesPerPixel = static_cast<uint32_t>(form.bytesPerPixel);
  auto library = std::make_unique<SourceImage>(form, width, height, seed, 3);
  const DibHeader dib = TopDownHeader(width, height, static_cast<uint16_t>(8 * bytesPerPixel));
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(nullptr, dib.info(), DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap == nullptr) std::abort();
  for (int32_t row = 0; row < height; ++row) {
    uint8_t* to = static_cast<uint8_t*>(bits) + static_cast<std::size_t>(row) * PaddedRow(width, bytesPerPixel);
    for (int32_t column = 0; column < width; ++column) {
      const uint32_t offset = static_cast<uint32_t>(column) * bytesPerPixel;
      CopyPixel(library->Row(row) + offset, to + offset, bytesPerPixel);
    }
  }
  return {std::move(library), std::make_unique<GdiSource>(bitmap)};
}

// 8 x 8 pixels of noise as the library's pattern bitmap and as the platform's packed bitmap.
BrushPair BytePattern(const Witness& witness, uint32_t bytesPerPixel, uint64_t seed) {
  std::vector<uint8_t> cells(64 * bytesPerPixel);
  RandomBytes random(seed);
  for (uint8_t& byte : cells) byte = random.Byte();
  const SourceBitmap bitmap{
      0, 8, 8, static_cast<uint16_t>(8 * bytesPerPixel), 1, static_cast<uint8_t>(8 * bytesPerPixel), cells.data()};

  const DibHeader dib = TopDownHeader(8, 8, static_cast<uint16_t>(8 * bytesPerPixel));
  const std::size_t headerSize = sizeof dib.header + (bytesPerPixel == 1 ? sizeof dib.colors : 0);
  std::vector<uint8_t> packed(headerSize + cells.size());
  std::memcpy(packed.data(), &dib, headerSize);
  for (std::size_t i = 0; i < cells.size(); i += bytesPerPixel) {
    CopyPixel(cells.data() + i, packed.data() + headerSize + i, bytesPerPixel);
  }
  return {bytesPerPixel == 1 ? "gray pattern" : "color pattern", PatternBrush(witness.handle(), bitmap),
          GdiObject<HBRUSH>(CreateDIBPatternBrushPt(packed.data(), DIB_RGB_COLORS))};
}

HBRUSH BitBrush(const BitRows& rows) {
  const GdiObject<HBITMAP> tile(BitTile(rows));
  return CreatePatternBrush(tile.get());
}

}  // namespace

SourcePair ColorSourcePair(int32_t width, int32_t height, uint64_t seed) {
  return BytePixelSource(kColorSource, width, height, seed);
}

SourcePair GraySourcePair(int32_t width, int32_t height, uint64_t seed) {
  return BytePixelSource(kGraySource, width, height, seed);
}

SourcePair BitSourcePair(int32_t width, int32_t height, uint64_t seed) {
  auto library = std::make_unique<SourceImage>(kOneBitSource, width, height, seed, 1);
  const std::size_t used = static_cast<std::size_t>(width + 7) / 8;
  const std::size_t stride = (used + 1) & ~std::size_t{1};  // rows of monochrome bitmaps are padded to 16 bits
  std::vector<uint8_t> bits(stride * static_cast<std::size_t>(height));
  for (int32_t row = 0; row < height; ++row) {
    std::memcpy(bits.data() + static_cast<std::size_t>(row) * stride, library->Row(row), used);
  }
  return {std::move(library), std::make_unique<GdiSource>(CreateBitmap(width, height, 1, 1, bits.data()))};
}

SourcePair DeepSourcePair(const Witness& witness, int32_t width, int32_t height, uint64_t seed) {
  return witness.shape().depth == 24 ? ColorSourcePair(width, height, seed) : GraySourcePair(width, height, seed);
}

BrushPair SolidPair(const Witness& witness, COLORREF color) {
  return {"solid brush", SolidBrush(witness.handle(), color), GdiObject<HBRUSH>(CreateSolidBrush(color))};
}

BrushPair ColorPatternPair(const Witness& witness, uint64_t seed) { return BytePattern(witness, 3, seed); }

BrushPair GrayPatternPair(const Witness& witness, uint64_t seed) { return BytePattern(witness, 1, seed); }

BrushPair DeepPatternPair(const Witness& witness, uint64_t seed) {
  return witness.shape().depth == 24 ? ColorPatternPair(witness, seed) : GrayPatternPair(witness, seed);
}

BrushPair BitPatternPair(const Witness& witness, const BitRows& rows) {
  const SourceBitmap bitmap{0, 8, 8, 1, 1, 1, rows.data()};
  return {"one-bit pattern", PatternBrush(witness.handle(), bitmap), GdiObject<HBRUSH>(BitBrush(rows))};
}

BrushPair HatchPair(const Witness& witness, int16_t hatch, COLORREF color) {
  return {"hatch", HatchBrush(witness.handle(), hatch, color), GdiObject<HBRUSH>(BitBrush(HatchRows(hatch)))};
}

const BitRows& HatchRows(int16_t hatch) { return kHatches[hatch]; }

HBITMAP BitTile(const BitRows& rows) {
  uint8_t bits[16] = {};
  for (std::size_t i = 0; i < rows.size(); ++i) bits[2 * i] = rows[i];
  return CreateBitmap(8, 8, 1, 1, bits);
}

}  // namespace qnv::test
