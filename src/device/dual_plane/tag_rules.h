// Which raster operations change tags. A tag changes when painting replaces what a pixel shows. Operations that keep,
// invert or only combine the old value leave the tag as it is; some of them do so for one color alone, white or black.
#pragma once

#include <cstdint>

#include "color/color_forms.h"

namespace qnv {

// When an operation between a pen or brush color and the band changes the tag.
enum class TagRule : uint8_t {
  kNever,
  kUnlessWhite,  // white keeps or inverts the old value
  kUnlessBlack,
  kAlways,
};

// The rule of a binary raster operation. truth: its code - 1. An operation and its inverse have the same rule.
constexpr TagRule TagRuleOfRop2(uint32_t truth) {
  switch (truth < 8 ? 15 - truth : truth) {
    case 9:
    case 10: return TagRule::kNever;
    case 8:
    case 11: return TagRule::kUnlessWhite;
    case 13:
    case 14: return TagRule::kUnlessBlack;
    default: return TagRule::kAlways;
  }
}

// The color that leaves the tag alone. Requires: kUnlessWhite or kUnlessBlack.
constexpr uint32_t SkipColor(TagRule rule) { return rule == TagRule::kUnlessWhite ? kWhite : 0; }

// Which pixels of its destination a bit-block transfer tags.
enum class TagAction : uint8_t {
  kNothing,
  kFill,             // the whole destination
  kSource,           // source pixels that paint
  kBrush,            // brush cells that paint, always with the graphics tag
  kBrushThenSource,  // brush cells that are not black, then source pixels
};

struct TransferTagRule {
  TagAction action;
  bool takesTag;  // writes the tag of the call; else always the graphics tag
  uint32_t skip;  // color of source pixels or brush cells that do not paint
};

// The rule of a ternary raster operation. An operation and its inverse have the same rule. Intended: those without
// takesTag write the graphics tag for images too.
constexpr TransferTagRule TagRuleOfRop3(uint8_t index) {
  switch (index < 0x80 ? static_cast<uint8_t>(~index) : index) {
    case 0x88:                                                      // D and S
    case 0xBB: return {TagAction::kSource, true, kWhite};           // D or not S
    case 0x99:                                                      // not (S xor D)
    case 0xA5:                                                      // not (P xor D)
    case 0xAA: return {TagAction::kNothing, false, 0};              // D
    case 0xA0:                                                      // P and D
    case 0xAF: return {TagAction::kBrush, false, kWhite};           // not P or D
    case 0xB8: return {TagAction::kSource, false, kWhite};          // S ? D : P
    case 0xDD:                                                      // S or not D
    case 0xEE: return {TagAction::kSource, true, 0};                // S or D
    case 0xE2:                                                      // S ? P : D
    case 0xEA: return {TagAction::kSource, false, 0};               // D or (P and S)
    case 0xF0: return {TagAction::kFill, false, 0};                 // P
    case 0xF5:                                                      // P or not D
    case 0xFA: return {TagAction::kBrush, false, 0};                // P or D
    case 0xFB: return {TagAction::kBrushThenSource, true, kWhite};  // P or not S or D
    default: return {TagAction::kFill, true, 0};
  }
}

}  // namespace qnv
