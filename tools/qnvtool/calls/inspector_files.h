// The page of the inspector and its engine, as they lie in the program.
#pragma once

#include <string_view>

namespace qnv::tool {

// The page, without call files and engine.
std::string_view InspectorPage();
// The WebAssembly module.
std::string_view InspectorEngine();

}  // namespace qnv::tool
