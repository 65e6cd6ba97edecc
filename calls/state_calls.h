// The state that calls leave in a device for later ones: the origin, the place of the band, the pattern of the last
// call with a draw mode, and on dual-plane devices whether an image was painted since the band was cleared. Walks over
// the calls of one device and says at any place which of them have to be made again, on a new device, for the same
// state.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "calls/call_file.h"

namespace qnv::calls {

class StateCalls {
 public:
  // dualPlane: the device was made with a tag plane.
  explicit StateCalls(bool dualPlane) : dualPlane_(dualPlane) {}

  // A call of the device that has been made, with the result that the file has.
  void After(std::size_t call, const StoredCall& stored);

  // Whether a call paints with the pattern of an earlier one.
  static bool TakesEarlierPattern(const StoredCall& stored);
  // The drawing calls that prepared the pattern in force: the last one that did for certain, and those behind it that
  // may have done so. Empty when there is none, or when there are too many.
  std::vector<std::size_t> PatternCalls() const;

  // The calls that lead a new device to this state, besides the contents of its planes, in order. withPattern: a later
  // call may take the pattern. False when they are too many.
  bool Calls(bool withPattern, std::vector<std::size_t>* calls) const;

 private:
  static constexpr std::size_t kNone = SIZE_MAX;
  static constexpr std::size_t kMaxKept = 64;

  // A drawing call, and the calls that had set the origin and the place of the band before it.
  struct Kept {
    std::size_t call, origin, rect;
  };
  // certain: the call replaces what the calls before it left.
  void Keep(std::vector<Kept>* kept, bool* tooMany, std::size_t call, bool certain) const;

  bool dualPlane_;
  std::size_t origin_ = kNone, rect_ = kNone;
  std::vector<Kept> pattern_, image_;
  bool tooManyPatterns_ = false, tooManyImages_ = false, imageIsCertain_ = false;
};

}  // namespace qnv::calls
