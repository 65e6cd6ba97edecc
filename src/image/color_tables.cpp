// Prepares color tables and masks from the header of a bitmap.
#include "image/color_tables.h"

#include <algorithm>
#include <cstring>

#include "color/color_forms.h"

namespace qnv {
namespace {

// Offset of the three masks from the beginning of the header, in bytes; biSize does not matter.
constexpr uint32_t kMaskOffset = 40;

// One color in target form. entry: four bytes of the table, blue, green, red and one that is not used.
uint32_t TableEntry(const uint8_t* entry, PixelTarget target) {
  const uint32_t blue = entry[0], green = entry[1], red = entry[2];
  switch (target) {
    case PixelTarget::kBand24: return blue | green << 8 | red << 16;
    case PixelTarget::kSource24: return red | green << 8 | blue << 16;
    case PixelTarget::kGray8: break;
  }
  return WeightedGray(red, green, blue);
}

// How the bits under a mask become a byte: shifts for ComponentMask::Extract.
ComponentMask MakeComponent(uint32_t mask) {
  uint32_t bits = 0;
  while (1u << bits < mask) ++bits;
  const uint32_t up = 16 - bits;
  // A component of fewer than eight bits leaves low bits of the byte open. They are filled with its own high bits, so
  // that the largest component becomes 255.
  const uint32_t open = (255 - (mask << up >> 8)) & 0xFFFF;
  uint32_t openBits = 0;
  while (open != 0 && 1u << openBits <= open) ++openBits;
  // For a mask of one bit the shift would be negative; nothing is filled in then.
  constexpr uint32_t kAddsNothing = 31;
  return {mask, up, openBits <= 8 ? 8 - openBits : kAddsNothing};
}

}  // namespace

void MakeColorTable(const Dib& dib, PixelTarget target, ColorTable* table) {
  const uint32_t full = 1u << dib.bitCount;
  const uint32_t given = dib.colorsUsed != 0 ? std::min(dib.colorsUsed, full) : full;
  const uint8_t* entry = dib.info + dib.infoSize;
  for (uint32_t i = 0; i < given; ++i, entry += 4) table->entries[i] = TableEntry(entry, target);
  std::fill(table->entries + given, table->entries + full, target == PixelTarget::kGray8 ? 0xFFu : kWhite);
}

PixelMasks MakePixelMasks(const Dib& dib, PixelTarget target) {
  uint32_t masks[3] = {0x7C00, 0x03E0, 0x001F};  // red, green, blue
  if (dib.compression == BI_BITFIELDS) std::memcpy(masks, dib.info + kMaskOffset, sizeof masks);
  const ComponentMask red = MakeComponent(masks[0] & 0xFFFF);
  const ComponentMask green = MakeComponent(masks[1] & 0xFFFF);
  const ComponentMask blue = MakeComponent(masks[2] & 0xFFFF);
  if (target == PixelTarget::kSource24) return {{red, green, blue}};
  return {{blue, green, red}};
}

}  // namespace qnv
