#include "image/row_converters.h"

#include <cstring>

#include "color/color_forms.h"

namespace qnv {
namespace {

template <PixelTarget kTarget>
uint32_t Compose(uint32_t blue, uint32_t green, uint32_t red) {
  if constexpr (kTarget == PixelTarget::kBand24) return blue | green << 8 | red << 16;
  if constexpr (kTarget == PixelTarget::kSource24) return red | green << 8 | blue << 16;
  if constexpr (kTarget == PixelTarget::kGray8) return WeightedGray(red, green, blue);
}

// Readers: the pixel of a column, as a colour in target form.

struct Indexed1 {
  const ColorTable& table;
  uint32_t operator()(const uint8_t* row, uint32_t x) const { return table.entries[row[x / 8] >> (7 - x % 8) & 1]; }
};

struct Indexed4 {
  const ColorTable& table;
  uint32_t operator()(const uint8_t* row, uint32_t x) const {
    return table.entries[x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 0x0F];
  }
};

struct Indexed8 {
  const ColorTable& table;
  uint32_t operator()(const uint8_t* row, uint32_t x) const { return table.entries[row[x]]; }
};

template <PixelTarget kTarget>
struct Masked16 {
  const PixelMasks& masks;
  uint32_t operator()(const uint8_t* row, uint32_t x) const {
    const uint32_t pixel = static_cast<uint32_t>(row[2 * x] | row[2 * x + 1] << 8);
    return Compose<kTarget>(masks.blue.Extract(pixel), masks.green.Extract(pixel), masks.red.Extract(pixel));
  }
};

// Blue, green, red and, at 32 bits, a byte that is not looked at.
template <PixelTarget kTarget, uint32_t kBytes>
struct Direct {
  uint32_t operator()(const uint8_t* row, uint32_t x) const {
    const uint8_t* pixel = row + kBytes * x;
    return Compose<kTarget>(pixel[0], pixel[1], pixel[2]);
  }
};

template <PixelTarget kTarget>
void Store(uint8_t* out, uint32_t colour) {
  out[0] = static_cast<uint8_t>(colour);
  if constexpr (kTarget != PixelTarget::kGray8) {
    out[1] = static_cast<uint8_t>(colour >> 8);
    out[2] = static_cast<uint8_t>(colour >> 16);
  }
}

template <PixelTarget kTarget, class Reader>
void Convert(uint8_t* out, const uint8_t* row, const SourceColumns& columns, const Reader& reader) {
  for (int32_t i = 0; i < columns.count; ++i, out += BytesOf(kTarget)) {
    const int32_t x = columns.picks != nullptr ? columns.picks[i] : columns.first + i;
    Store<kTarget>(out, reader(row, static_cast<uint32_t>(x)));
  }
}

template <PixelTarget kTarget, uint32_t kBits>
void ConvertRow(uint8_t* out, const uint8_t* row, const SourceColumns& columns, const PixelColours& colours,
                const RowKernels& rows) {
  if constexpr (kBits == 1) {
    Convert<kTarget>(out, row, columns, Indexed1{colours.table});
  } else if constexpr (kBits == 4) {
    Convert<kTarget>(out, row, columns, Indexed4{colours.table});
  } else if constexpr (kBits == 8) {
    Convert<kTarget>(out, row, columns, Indexed8{colours.table});
  } else if constexpr (kBits == 16) {
    Convert<kTarget>(out, row, columns, Masked16<kTarget>{colours.masks});
  } else {
    if constexpr (kBits == 24 && kTarget != PixelTarget::kGray8) {
      if (columns.picks == nullptr) {
        const uint8_t* first = row + std::ptrdiff_t{3} * columns.first;
        const std::size_t count = static_cast<std::size_t>(columns.count);
        if constexpr (kTarget == PixelTarget::kBand24) {
          std::memcpy(out, first, 3 * count);
        } else {
          rows.SwapRow24(out, first, count);
        }
        return;
      }
    }
    Convert<kTarget>(out, row, columns, Direct<kTarget, kBits / 8>{});
  }
}

template <PixelTarget kTarget>
RowConverter ConverterOf(uint32_t bitCount) {
  switch (bitCount) {
    case 1: return ConvertRow<kTarget, 1>;
    case 4: return ConvertRow<kTarget, 4>;
    case 8: return ConvertRow<kTarget, 8>;
    case 16: return ConvertRow<kTarget, 16>;
    case 24: return ConvertRow<kTarget, 24>;
    default: return ConvertRow<kTarget, 32>;
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
