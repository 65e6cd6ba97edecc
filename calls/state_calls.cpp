// Follows the state of a device call by call.
#include "calls/state_calls.h"

#include <algorithm>

namespace qnv::calls {
namespace {

bool IsNull(const StoredCall& call, std::size_t argument) {
  return call.arguments[argument].pointer.tag == PointerTag::kNull;
}

bool IsImageCall(Function function) {
  return function == Function::kStretchDIBits || function == Function::kDevSetDIBitsToDevice;
}

// The place of the draw mode of the calls that paint with a pattern; 0 for the others.
std::size_t ModeOf(Function function) {
  switch (function) {
    case Function::kDevBitBlt: return 10;
    case Function::kOutput: return 6;
    case Function::kStretchDIBits: return 15;
    default: return 0;
  }
}

}  // namespace

bool StateCalls::TakesEarlierPattern(const StoredCall& stored) {
  const std::size_t mode = ModeOf(stored.function);
  return mode != 0 && IsNull(stored, mode);
}

void StateCalls::Keep(std::vector<Kept>* kept, bool* tooMany, std::size_t call, bool certain) const {
  if (certain) {
    kept->clear();
    *tooMany = false;
  }
  if (kept->size() >= kMaxKept) *tooMany = true;
  if (!*tooMany) kept->push_back({call, origin_, rect_});
}

void StateCalls::After(std::size_t call, const StoredCall& stored) {
  const uint32_t result = stored.result & 0xFFFF;
  if ((stored.flags & kIncomplete) != 0) return;
  switch (stored.function) {
    case Function::kControl: {
      const uint32_t code = stored.arguments[1].number & 0xFFFF;
      if (code == QNV_SET_ORIGIN && !IsNull(stored, 2)) origin_ = call;
      if (code == QNV_SET_BAND_RECT && !IsNull(stored, 2)) rect_ = call;
      if (code == QNV_CLEAR_BAND) {
        image_.clear();
        tooManyImages_ = imageIsCertain_ = false;
      }
      return;
    }
    case Function::kOutput:
      // A dual-plane device refuses some spans before they prepare anything; their result is 0.
      if (!IsNull(stored, 6)) Keep(&pattern_, &tooManyPatterns_, call, !dualPlane_ || result != 0);
      return;
    case Function::kDevBitBlt:
      if (!IsNull(stored, 10) && !IsNull(stored, 11)) {
        Keep(&pattern_, &tooManyPatterns_, call, !dualPlane_ || result != 0);
      }
      return;
    case Function::kDevExtTextOut:
      // The opaque rectangle is a transfer, unless nothing of it is left.
      if ((stored.arguments[12].number & ETO_OPAQUE) != 0 && !IsNull(stored, 11)) {
        Keep(&pattern_, &tooManyPatterns_, call, false);
      }
      return;
    default: break;
  }
  if (!IsImageCall(stored.function)) return;
  const bool copies =
      stored.function == Function::kDevSetDIBitsToDevice || stored.arguments[13].number == uint32_t{SRCCOPY};
  // Other codes paint row by row, by transfers with their brush and draw mode, as far as rows are visible.
  if (!copies && !IsNull(stored, 15)) Keep(&pattern_, &tooManyPatterns_, call, false);
  if (dualPlane_ && !imageIsCertain_) {
    imageIsCertain_ = copies && result == 1;
    Keep(&image_, &tooManyImages_, call, imageIsCertain_);
  }
}

std::vector<std::size_t> StateCalls::PatternCalls() const {
  std::vector<std::size_t> calls;
  if (!tooManyPatterns_) {
    for (const Kept& kept : pattern_) calls.push_back(kept.call);
  }
  return calls;
}

bool StateCalls::Calls(bool withPattern, std::vector<std::size_t>* calls) const {
  calls->clear();
  if (tooManyImages_ || (withPattern && tooManyPatterns_)) return false;
  const auto add = [&](const Kept& kept) {
    if (kept.origin != kNone) calls->push_back(kept.origin);
    if (kept.rect != kNone) calls->push_back(kept.rect);
    if (kept.call != kNone) calls->push_back(kept.call);
  };
  if (withPattern) std::for_each(pattern_.begin(), pattern_.end(), add);
  std::for_each(image_.begin(), image_.end(), add);
  add({kNone, origin_, rect_});
  std::sort(calls->begin(), calls->end());
  calls->erase(std::unique(calls->begin(), calls->end()), calls->end());
  return true;
}

}  // namespace qnv::calls
