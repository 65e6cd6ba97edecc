// The parts of a call that people look at one by one: fields of records, codes as formulas, colors, and pictures.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "inspector/engine/inspector.h"

namespace qnv::inspector {

// Adds "formula", "flags", "color" and "fields" to the object of an argument, as far as it has them.
void WriteParts(JsonWriter& json, const calls::CallFile& file, const calls::StoredCall& call, std::size_t argument);

struct CallPicture {
  uint32_t id;
  std::size_t argument;
  const char* what;  // "brush", "source", "dib" or "glyph"
  std::string label;
  uint32_t width, height;
};

// The pictures of a call: brushes, sources, images and texts, each painted by the library itself on a device of its
// own.
std::vector<CallPicture> PicturesOf(OpenFile& file, std::size_t call);

}  // namespace qnv::inspector
