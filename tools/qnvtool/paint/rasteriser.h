// The thirteen functions of a band rasteriser, linked or loaded. Every picture that the tool makes is painted through
// this table only.
#pragma once

#include <memory>
#include <string>

#include "calls/functions.h"

namespace qnv::tool {

struct Rasteriser : calls::Functions {
  // Keeps a loaded library open as long as any copy of the table lives; null for the linked one.
  std::shared_ptr<void> library;
};

// The library that the program is linked with. Programs that only load libraries are built without this function.
Rasteriser LinkedRasteriser();

// A library file of the program's own architecture. Throws ToolError (library) when it cannot be loaded or lacks one
// of the functions.
Rasteriser LoadRasteriser(const std::string& path);

}  // namespace qnv::tool
