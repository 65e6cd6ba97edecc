// Row kernels of images: pixels of bitmap formats into band pixels, and stretching. The rules are those of
// row_kernels.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qnv {

// How one component of a 16-bit pixel becomes a byte: v = ((P & mask) << up) >> 8, then v + (v >> fill).
struct ComponentMask {
  uint32_t mask;
  uint32_t up;
  uint32_t fill;

  constexpr uint8_t Extract(uint32_t pixel) const {
    const uint32_t v = (pixel & mask) << up >> 8;
    return static_cast<uint8_t>(v + (v >> fill));
  }
};

// In the order of the bytes that they become.
struct PixelMasks {
  ComponentMask component[3];
};

inline constexpr std::size_t kGroupBytes = 16;

struct ShuffleGroup {
  uint8_t bytes[kGroupBytes];
  uint32_t from;
};

struct PixelRows {
  // Palette indices of 8 and of 4 bits. table: packed colours (the low byte alone for 8-bit bands), 256 or 16
  // of them. odd: the first pixel stands in the low half of *source.
  void (*ExpandBytesRow24)(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table);
  void (*ExpandBytesRow8)(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table);
  void (*ExpandNibblesRow24)(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table);
  void (*ExpandNibblesRow8)(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table);

  // 16-bit pixels into three bytes.
  void (*UnpackRow16)(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks);

  // The first three bytes of every four, and the same in reverse order.
  void (*PackRow32)(uint8_t* dst, const uint8_t* source, std::size_t pixels);
  void (*PackSwapRow32)(uint8_t* dst, const uint8_t* source, std::size_t pixels);

  // Blue, green, red into gray: blue weighs 11.
  void (*GrayRow24)(uint8_t* dst, const uint8_t* source, std::size_t pixels);

  // Replaces each pixel by its gray level; intended: the first byte, blue, weighs 30.
  void (*RegrayRow24)(uint8_t* dst, std::size_t pixels);
  // A gray level into all three bytes.
  void (*TripleRow24)(uint8_t* dst, const uint8_t* source, std::size_t pixels);

  // Writes `mark` for every pixel of three bytes that are not all `skip`.
  void (*MarkRow24)(uint8_t* marks, const uint8_t* source, std::size_t pixels, uint8_t skip, uint8_t mark);

  // Last pixel first.
  void (*ReverseRow24)(uint8_t* dst, const uint8_t* source, std::size_t pixels);
  void (*ReverseRow8)(uint8_t* dst, const uint8_t* source, std::size_t pixels);

  // Each source pixel `factor` times, 2, 4 or 8; `pixels` counts the destination's, the last source pixel may stand for
  // fewer. kGroupBytes behind the source may be read.
  void (*RepeatRow24)(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor);
  void (*RepeatRow8)(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor);

  // Groups of destination bytes that stand close together in the source: byte i of a group is the source's byte
  // from + bytes[i]. stride: bytes that a group stands for, 1..kGroupBytes; the last group is cut where `total`
  // bytes end. kGroupBytes from each `from` on may be read.
  void (*ShuffleRow)(uint8_t* dst, const uint8_t* source, const ShuffleGroup* groups, std::size_t stride,
                     std::size_t total);
};

extern const PixelRows kPlainPixelRows;
#if defined(__SSE2__)
extern const PixelRows kSsse3PixelRows;
extern const PixelRows kAvx2PixelRows;
#endif

namespace plain {

void ExpandBytesRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table);
void ExpandBytesRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels, const uint32_t* table);
void ExpandNibblesRow24(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table);
void ExpandNibblesRow8(uint8_t* dst, const uint8_t* source, bool odd, std::size_t pixels, const uint32_t* table);
void UnpackRow16(uint8_t* dst, const uint8_t* source, std::size_t pixels, const PixelMasks& masks);
void PackRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels);
void PackSwapRow32(uint8_t* dst, const uint8_t* source, std::size_t pixels);
void GrayRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels);
void RegrayRow24(uint8_t* dst, std::size_t pixels);
void TripleRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels);
void MarkRow24(uint8_t* marks, const uint8_t* source, std::size_t pixels, uint8_t skip, uint8_t mark);
void ReverseRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels);
void ReverseRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels);
void RepeatRow24(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor);
void RepeatRow8(uint8_t* dst, const uint8_t* source, std::size_t pixels, std::size_t factor);
void ShuffleRow(uint8_t* dst, const uint8_t* source, const ShuffleGroup* groups, std::size_t stride, std::size_t total);

}  // namespace plain

}  // namespace qnv
