// Converts rows for every pair of bitmap format and target form, by row kernels where the pixels are consecutive.
#include "image/row_converters.h"

#include <algorithm>
#include <cstring>

#include "color/color_forms.h"
#include "raster/rows/store_pixel.h"

namespace qnv {
namespace {

// Pixel x of a row with a color table.
template <uint32_t kBits>
uint32_t ReadPixel(const uint8_t* row, uint32_t x, const uint32_t* table) {
  if constexpr (kBits == 1) return table[row[x / 8] >> (7 - x % 8) & 1];
  if constexpr (kBits == 4) return table[x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 0x0F];
  if constexpr (kBits == 8) return table[row[x]];
}

// Converts pixels of 16, 24 or 32 bits to three bytes in target order.
template <PixelTarget kTarget, uint32_t kBits>
void Convert24(uint8_t* out, const uint8_t* pixels, std::size_t count, const ConverterContext& context) {
  const PixelRows& image = *context.rows.image;
  if constexpr (kBits == 16) {
    image.UnpackRow16(out, pixels, count, context.colors.masks);
  } else if constexpr (kBits == 24) {
    if constexpr (kTarget == PixelTarget::kSource24) {
      context.rows.SwapRow24(out, pixels, count);
    } else {
      context.rows.CopyRow(out, pixels, 3 * count);
    }
  } else {
    (kTarget == PixelTarget::kSource24 ? image.PackSwapRow32 : image.PackRow32)(out, pixels, count);
  }
}

// Converts pixels of 16, 24 or 32 bits to gray levels.
template <uint32_t kBits>
void ConvertGray(uint8_t* out, const uint8_t* pixels, std::size_t count, const ConverterContext& context) {
  const PixelRows& image = *context.rows.image;
  if constexpr (kBits == 16) {
    image.GrayRow16(out, pixels, count, context.colors.masks);
  } else {
    (kBits == 24 ? image.GrayRow24 : image.GrayRow32)(out, pixels, count);
  }
}

// See RowConverter::Consecutive.
template <PixelTarget kTarget, uint32_t kBits>
void Consecutive(uint8_t* out, const uint8_t* row, uint32_t first, std::size_t count, const ConverterContext& context) {
  constexpr bool kGray = kTarget == PixelTarget::kGray8;
  const RowKernels& rows = context.rows;
  const PixelRows& image = *rows.image;
  const uint32_t* table = context.colors.table.entries;
  if constexpr (kBits == 1) {
    (kGray ? rows.ExpandBitsRow8 : rows.ExpandBitsRow24)(out, row + first / 8, first % 8, count, table[1], table[0]);
  } else if constexpr (kBits == 4) {
    (kGray ? image.ExpandNibblesRow8 : image.ExpandNibblesRow24)(out, row + first / 2, first % 2 != 0, count, table);
  } else if constexpr (kBits == 8) {
    (kGray ? image.ExpandBytesRow8 : image.ExpandBytesRow24)(out, row + first, count, table);
  } else if constexpr (kGray) {
    ConvertGray<kBits>(out, row + std::size_t{kBits / 8} * first, count, context);
  } else {
    Convert24<kTarget, kBits>(out, row + std::size_t{kBits / 8} * first, count, context);
  }
}

// See RowConverter::Indexed. Pixels with a color table are looked up one by one. Other pixels are first collected, in
// pieces that stay in the cache, and then converted like consecutive ones.
template <PixelTarget kTarget, uint32_t kBits>
void Indexed(uint8_t* out, const uint8_t* row, const uint16_t* indices, std::size_t count,
             const ConverterContext& context) {
  if constexpr (kBits <= 8) {
    StorePixels<BytesOf(kTarget)>(
        out, count, [&](std::size_t i) { return ReadPixel<kBits>(row, indices[i], context.colors.table.entries); });
  } else {
    constexpr std::size_t kPiece = 256;
    constexpr std::size_t kBytes = kBits / 8;
    uint8_t gathered[kBytes * kPiece];
    for (std::size_t done = 0; done < count; done += kPiece) {
      const std::size_t piece = std::min(kPiece, count - done);
      for (std::size_t i = 0; i < piece; ++i) {
        std::memcpy(gathered + kBytes * i, row + kBytes * indices[done + i], kBytes);
      }
      Consecutive<kTarget, kBits>(out + BytesOf(kTarget) * done, gathered, 0, piece, context);
    }
  }
}

template <PixelTarget kTarget>
RowConverter ConverterOf(uint32_t bitCount) {
  switch (bitCount) {
    case 1: return {Consecutive<kTarget, 1>, Indexed<kTarget, 1>};
    case 4: return {Consecutive<kTarget, 4>, Indexed<kTarget, 4>};
    case 8: return {Consecutive<kTarget, 8>, Indexed<kTarget, 8>};
    case 16: return {Consecutive<kTarget, 16>, Indexed<kTarget, 16>};
    case 24: return {Consecutive<kTarget, 24>, Indexed<kTarget, 24>};
    default: return {Consecutive<kTarget, 32>, Indexed<kTarget, 32>};
  }
}

}  // namespace

RowConverter RowConverterFor(uint32_t bitCount, PixelTarget target) {
  switch (target) {
    case PixelTarget::kBand24: return ConverterOf<PixelTarget::kBand24>(bitCount);
    case PixelTarget::kSource24: return ConverterOf<PixelTarget::kSource24>(bitCount);
    case PixelTarget::kGray8: break;
  }
  return ConverterOf<PixelTarget::kGray8>(bitCount);
}

}  // namespace qnv
