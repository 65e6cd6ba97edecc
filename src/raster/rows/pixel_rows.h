// Row kernels of images: conversion of bitmap pixels to band pixels, gray levels, mirroring and stretching. The rules
// of row_kernels.h apply; `pixels` counts pixels of the destination. "24" and "8" in a name are the bits of a
// destination pixel, "16" and "32" those of a source pixel.
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

// The masks of the components, in the order of the bytes of the converted pixel.
struct PixelMasks {
  ComponentMask component[3];
};

// Bytes of a ShuffleGroup: one vector of a byte shuffle.
inline constexpr std::size_t kGroupBytes = 16;

// A group of destination bytes whose source bytes lie close together: byte i comes from source[from + bytes[i]].
struct ShuffleGroup {
  uint8_t bytes[kGroupBytes];
  uint32_t from;
};

// The type of each kernel, named like the kernel and its entry in the table.
namespace kernel {

// Look up palette indices of 8 or 4 bits. table: 256 or 16 packed colors (for 8-bit bands the gray level in the low
// byte). odd: the first pixel is the low half of *source.
using ExpandBytesRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table);
using ExpandBytesRow8 = ExpandBytesRow24;
using ExpandNibblesRow24 = void(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels,
                                const uint32_t* table);
using ExpandNibblesRow8 = ExpandNibblesRow24;

// 16-bit pixels into three bytes.
using UnpackRow16 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks);

// Keeps the first three bytes of every four; PackSwap also reverses their order.
using PackRow32 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels);
using PackSwapRow32 = PackRow32;

// Gray levels of blue, green, red pixels, weighted 11, 59, 30.
using GrayRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels);
// The same of pixels of four bytes, of which the last does not count, and of 16-bit pixels; masks: blue, green, red.
using GrayRow32 = GrayRow24;
using GrayRow16 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks);

// Replaces each pixel by a gray level in all three bytes. Intended: the first byte, blue, is weighted 30 and the last
// 11.
using RegrayRow24 = void(uint8_t* dst, std::size_t pixels);
// Stores each source byte three times.
using TripleRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels);

// For every source pixel whose three bytes are not all `skip`, sets its byte in `marks` to `mark`; the others stay.
using MarkRow24 = void(uint8_t* marks, const uint8_t* source, std::size_t pixels, uint8_t skip, uint8_t mark);

// The pixels in reverse order.
using ReverseRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels);
using ReverseRow8 = ReverseRow24;

// Stores each source pixel `factor` times, which is 2, 4 or 8; the last one perhaps fewer times. Up to kGroupBytes past
// the source may be read.
using RepeatRow24 = void(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor);
using RepeatRow8 = RepeatRow24;

// Collects bytes group by group. stride: destination bytes of a group, 1..kGroupBytes. total: destination bytes of the
// row; the last group may be cut there. kGroupBytes bytes from each `from` on may be read.
using ShuffleRow = void(uint8_t* dst, const uint8_t* source, const ShuffleGroup* groups, std::size_t stride,
                        std::size_t total);

}  // namespace kernel

// All kernels of images by name. Declarations and tables are made from this list.
#define QNV_PIXEL_ROWS(X) \
  X(ExpandBytesRow24)     \
  X(ExpandBytesRow8)      \
  X(ExpandNibblesRow24)   \
  X(ExpandNibblesRow8)    \
  X(UnpackRow16)          \
  X(PackRow32)            \
  X(PackSwapRow32)        \
  X(GrayRow24)            \
  X(GrayRow32)            \
  X(GrayRow16)            \
  X(RegrayRow24)          \
  X(TripleRow24)          \
  X(MarkRow24)            \
  X(ReverseRow24)         \
  X(ReverseRow8)          \
  X(RepeatRow24)          \
  X(RepeatRow8)           \
  X(ShuffleRow)

// The table of a level.
struct PixelRows {
#define QNV_ENTRY(name) kernel::name* name;
  QNV_PIXEL_ROWS(QNV_ENTRY)
#undef QNV_ENTRY
};

}  // namespace qnv
