// Which pixels of the tag plane a call writes on the dual-plane device, and with what: one table for pens and figures,
// one for transfers and images. Colors are compared whole, top byte included.
#pragma once

#include <cstdint>

#include "qnvdrv10.h"

namespace qnv::test {

// What a two-operand operation does to the tags: a color that leaves the paper as it was marks nothing.
enum class Marking { kAlways, kNever, kUnlessWhite, kUnlessBlack };

struct Rop2Marking {
  const char* name;
  int16_t code;
  Marking marking;
};

inline constexpr Rop2Marking kRop2Markings[] = {
    {"R2_BLACK", R2_BLACK, Marking::kAlways},
    {"R2_NOTMERGEPEN", R2_NOTMERGEPEN, Marking::kUnlessBlack},
    {"R2_MASKNOTPEN", R2_MASKNOTPEN, Marking::kUnlessBlack},
    {"R2_NOTCOPYPEN", R2_NOTCOPYPEN, Marking::kAlways},
    {"R2_MASKPENNOT", R2_MASKPENNOT, Marking::kUnlessWhite},
    {"R2_NOT", R2_NOT, Marking::kNever},
    {"R2_XORPEN", R2_XORPEN, Marking::kNever},
    {"R2_NOTMASKPEN", R2_NOTMASKPEN, Marking::kUnlessWhite},
    {"R2_MASKPEN", R2_MASKPEN, Marking::kUnlessWhite},
    {"R2_NOTXORPEN", R2_NOTXORPEN, Marking::kNever},
    {"R2_NOP", R2_NOP, Marking::kNever},
    {"R2_MERGENOTPEN", R2_MERGENOTPEN, Marking::kUnlessWhite},
    {"R2_COPYPEN", R2_COPYPEN, Marking::kAlways},
    {"R2_MERGEPENNOT", R2_MERGEPENNOT, Marking::kUnlessBlack},
    {"R2_MERGEPEN", R2_MERGEPEN, Marking::kUnlessBlack},
    {"R2_WHITE", R2_WHITE, Marking::kAlways},
};

inline constexpr bool Marks(Marking marking, uint32_t color) {
  if (marking == Marking::kUnlessWhite) return color != 0xFFFFFF;
  if (marking == Marking::kUnlessBlack) return color != 0;
  return marking == Marking::kAlways;
}

// What a three-operand operation, or its inverse, does to the tags.
enum class TagRule {
  kFillImage,     // every pixel is an image's
  kFillGraphics,  // every pixel is graphics
  kNothing,
  kImageUnlessWhite,  // by the source pixel
  kImageUnlessBlack,
  kGraphicsUnlessWhite,
  kGraphicsUnlessBlack,
  kBrushUnlessWhite,  // graphics, by the brush
  kBrushUnlessBlack,
  kPatPaint,  // graphics by the brush unless black, then image by the source unless white
};

inline constexpr TagRule TagRuleOf(uint32_t index) {
  switch (index < 0x80 ? ~index & 0xFF : index) {
    case 0x88:
    case 0xBB: return TagRule::kImageUnlessWhite;
    case 0x99:
    case 0xA5:
    case 0xAA: return TagRule::kNothing;
    case 0xA0:
    case 0xAF: return TagRule::kBrushUnlessWhite;
    case 0xB8: return TagRule::kGraphicsUnlessWhite;
    case 0xDD:
    case 0xEE: return TagRule::kImageUnlessBlack;
    case 0xE2:
    case 0xEA: return TagRule::kGraphicsUnlessBlack;
    case 0xF0: return TagRule::kFillGraphics;
    case 0xF5:
    case 0xFA: return TagRule::kBrushUnlessBlack;
    case 0xFB: return TagRule::kPatPaint;
    default: return TagRule::kFillImage;
  }
}

// True for the operations that tag every pixel, whatever its color.
inline constexpr bool FillsTags(uint32_t index) {
  return TagRuleOf(index) == TagRule::kFillImage || TagRuleOf(index) == TagRule::kFillGraphics;
}

// The tag of one pixel of an image, by the colors of the image and of a solid brush.
inline constexpr uint32_t ImageTagAfter(TagRule rule, uint32_t source, uint32_t brush, uint32_t before) {
  constexpr uint32_t kPaper = 0xFFFFFF, kBlack = 0;
  const auto unless = [before](uint32_t color, uint32_t skipped, uint32_t tag) {
    return color != skipped ? tag : before;
  };
  switch (rule) {
    case TagRule::kFillImage: return QNV_TAG_IMAGE;
    case TagRule::kFillGraphics: return QNV_TAG_GRAPHICS;
    case TagRule::kImageUnlessWhite: return unless(source, kPaper, QNV_TAG_IMAGE);
    case TagRule::kImageUnlessBlack: return unless(source, kBlack, QNV_TAG_IMAGE);
    case TagRule::kGraphicsUnlessWhite: return unless(source, kPaper, QNV_TAG_GRAPHICS);
    case TagRule::kGraphicsUnlessBlack: return unless(source, kBlack, QNV_TAG_GRAPHICS);
    case TagRule::kBrushUnlessWhite: return unless(brush, kPaper, QNV_TAG_GRAPHICS);
    case TagRule::kBrushUnlessBlack: return unless(brush, kBlack, QNV_TAG_GRAPHICS);
    case TagRule::kPatPaint: return source != kPaper ? QNV_TAG_IMAGE : unless(brush, kBlack, QNV_TAG_GRAPHICS);
    case TagRule::kNothing: break;
  }
  return before;
}

// A transfer writes graphics wherever an image would write any tag.
inline constexpr bool TransferMarks(uint32_t index, uint32_t source, uint32_t brush) {
  constexpr uint32_t kUnwritten = 0xFF;
  return ImageTagAfter(TagRuleOf(index), source, brush, kUnwritten) != kUnwritten;
}

}  // namespace qnv::test
