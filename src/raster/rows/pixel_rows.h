// Row kernels of images: pixels of bitmap formats into band pixels, and stretching. The rules are those of
// row_kernels.h; `pixels` counts pixels of the destination.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv {

// How one component of a 16-bit pixel becomes a byte: v = ((P & mask) << up) >> 8, then v + (v >> fill).
struct ComponentMask {
  uint32_t mask;
  uint32_t up;
  uint32_t fill;

  [[gnu::always_inline]] constexpr uint8_t Extract(uint32_t pixel) const {
    const uint32_t v = (pixel & mask) << up >> 8;
    return static_cast<uint8_t>(v + (v >> fill));
  }
};

// In the order of the bytes that they become.
struct PixelMasks {
  ComponentMask component[3];
};

inline constexpr std::size_t kGroupBytes = 16;

// Destination bytes that lie close together in the source: byte i of the group is the source's byte from + bytes[i].
struct ShuffleGroup {
  uint8_t bytes[kGroupBytes];
  uint32_t from;
};

// The type of each kernel, named like the kernel and its entry in the table.
namespace kernel {

// Palette indices of 8 and of 4 bits. table: packed colors (the low byte alone for 8-bit bands), 256 or 16 of them.
// odd: the first pixel stands in the low half of *source.
using ExpandBytesRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table);
using ExpandBytesRow8 = ExpandBytesRow24;
using ExpandNibblesRow24 = void(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels,
                                const uint32_t* table);
using ExpandNibblesRow8 = ExpandNibblesRow24;

// 16-bit pixels into three bytes.
using UnpackRow16 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks);

// The first three bytes of every four, and the same in reverse order.
using PackRow32 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels);
using PackSwapRow32 = PackRow32;

// Blue, green, red into gray: blue weighs 11.
using GrayRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels);

// Replaces each pixel by its gray level; intended: the first byte, blue, weighs 30.
using RegrayRow24 = void(uint8_t* dst, std::size_t pixels);
// A gray level into all three bytes.
using TripleRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels);

// Writes `mark` for every pixel of three bytes that are not all `skip`.
using MarkRow24 = void(uint8_t* marks, const uint8_t* source, std::size_t pixels, uint8_t skip, uint8_t mark);

// Last pixel first.
using ReverseRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels);
using ReverseRow8 = ReverseRow24;

// Each source pixel `factor` times, 2, 4 or 8; the last source pixel may stand for fewer. kGroupBytes past the source
// may be read.
using RepeatRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor);
using RepeatRow8 = RepeatRow24;

// Groups of destination bytes. stride: bytes that a group stands for, 1..kGroupBytes; the last group is cut where
// `total` bytes end. kGroupBytes from each `from` on may be read.
using ShuffleRow = void(uint8_t* dst, const uint8_t* source, const ShuffleGroup* groups, std::size_t stride,
                        std::size_t total);

}  // namespace kernel

#define QNV_PIXEL_ROWS(X) \
  X(ExpandBytesRow24)     \
  X(ExpandBytesRow8)      \
  X(ExpandNibblesRow24)   \
  X(ExpandNibblesRow8)    \
  X(UnpackRow16)          \
  X(PackRow32)            \
  X(PackSwapRow32)        \
  X(GrayRow24)            \
  X(RegrayRow24)          \
  X(TripleRow24)          \
  X(MarkRow24)            \
  X(ReverseRow24)         \
  X(ReverseRow8)          \
  X(RepeatRow24)          \
  X(RepeatRow8)           \
  X(ShuffleRow)

struct PixelRows {
#define QNV_ENTRY(name) kernel::name* name;
  QNV_PIXEL_ROWS(QNV_ENTRY)
#undef QNV_ENTRY
};

}  // namespace qnv
