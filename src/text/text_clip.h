// The rectangles of a text call, in caller coordinates: what clips its glyphs and what is filled before them, as its
// clip, opaque rectangle and options determine.
#pragma once

#include "raster/rect.h"
#include "text/text_arguments.h"

namespace qnv {

struct TextClip {
  bool clips = false;  // glyphs are limited to `clip`
  Rect clip{};
  bool fills = false;  // `opaque` is filled before the glyphs are painted
  Rect opaque{};       // may be empty
};

// ETO_CLIPPED narrows the clip to the opaque rectangle, ETO_OPAQUE fills what the clip leaves of that rectangle.
inline TextClip TextClipOf(const TextArguments& a) {
  TextClip result;
  if (a.clip != nullptr) {
    result.clips = true;
    result.clip = *a.clip;
  }
  if (a.opaqueRect == nullptr) return result;
  result.opaque = *a.opaqueRect;
  if ((a.options & ETO_CLIPPED) != 0) {
    if (result.clips) {
      RectIntersect(result.clip, result.clip, result.opaque);
    } else {
      result.clips = true;
      result.clip = result.opaque;
    }
  }
  if ((a.options & ETO_OPAQUE) != 0) {
    result.fills = true;
    if (result.clips) RectIntersect(result.opaque, result.opaque, result.clip);
  }
  return result;
}

}  // namespace qnv
